// A seeded random room for a soak run, written as a scenario file that
// quorvex-sim runs as it stands: people making valid, invalid and hostile
// requests, joining, leaving, thanking and flooding; the user pausing,
// stopping and starting, clearing, removing, banning, changing settings,
// exiting and starting the program again; faults of the client (lost
// clicks, sign-offs, its process killed, its room full when it comes back,
// full mailboxes, dead mails, slowness) and of the program's files.
//
// Beside them, three draws whose people the invariants know by name:
//  - flood stretches: the user clears the list, then for a minute or more
//    people named "flooder" + n repeat a request (a duplicate), thanks or
//    status every second, while "asker" asks for a mail of its own now and
//    then, and nothing else happens;
//  - damaged files: Quorvex.INI, or a RestartSettings.INI that makes the
//    run start with a resume, whose counts say more, less or nothing that
//    is a number, with long values and sometimes a real gap;
//  - requests during a start: right after a start is pressed, people named
//    "early" + n each ask for a mail while the mailbox is read again.
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
  // The draws above; a front end that cannot set up profile files, say,
  // leaves damaged files out.
  bool flood_stretches = true;
  bool damaged_files = true;
  bool start_requests = true;
};

std::string MakeRoom(std::uint64_t seed, const RoomOptions& options);

}  // namespace quorvex::soak
