// A simulated client ready to drive in virtual time, for the tests of the
// simulated client itself; they find and click its windows with the
// program's own walks.
#pragma once

#include <cstdint>

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/window_ops.h"
#include "ports/virtual_host.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"
#include "testing/sim_recorder.h"

namespace quorvex {

struct SimRig {
  explicit SimRig(std::uint64_t seed = 1) : client(host, world, seed) {
    client.SetObserver(&events);
  }

  // Lets `seconds` of virtual time pass, running what falls due.
  void Run(double seconds) { host.RunUntil(host.Elapsed() + seconds); }

  VirtualHost host;
  SimWorld world;
  SimRecorder events;
  SimClient client;
};

}  // namespace quorvex
