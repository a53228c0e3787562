// The doors to the outside, as a front end hands them to the program.
#pragma once

#include <cstdint>

#include "ports/host.h"
#include "ports/machine.h"
#include "ports/profile_file.h"
#include "ports/prompter.h"
#include "ports/registry.h"
#include "ports/window_api.h"

namespace quorvex {

struct Ports {
  Host& host;
  WindowApi& api;
  Registry& registry;
  ProfileFile& profiles;
  Prompter& prompter;
  Machine& machine;
  std::uint64_t seed = 1;  // of every random choice
};

}  // namespace quorvex
