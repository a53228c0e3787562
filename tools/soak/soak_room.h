// A seeded random room for a soak run, written as a scenario file that
// quorvex-sim runs as it stands: people making valid, invalid and hostile
// requests, joining, leaving, thanking and flooding; the user pausing,
// stopping and starting, clearing, removing, banning, changing settings,
// exiting and starting the program again; faults of the client (lost
// clicks, sign-offs, its process killed, its room full when it comes back,
// full mailboxes, dead mails, slowness) and of the program's files.
#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace quorvex::soak {

// Fault kinds a run may draw; a kind left out is never injected.
inline const std::set<std::string> kFaultKinds = {
    "lost-click",    "signoff",   "kill",  "full-room",
    "full-mailbox",  "dead-mail", "slow",  "registry-write",
    "profile-write", "disk-full", "vanish"};

struct RoomOptions {
  std::set<std::string> faults = kFaultKinds;
  // Virtual seconds of a run, before the quiet end that lets the queue
  // drain.
  int min_seconds = 60, max_seconds = 180;
  // Virtual seconds of the quiet end.
  int drain_seconds = 240;
};

std::string MakeRoom(std::uint64_t seed, const RoomOptions& options);

}  // namespace quorvex::soak
