// What must hold after every soak run, read from the run's transcript and
// its final state:
//  - every accepted mail request is accounted for: delivered to the
//    requester's mailbox no more often than asked (a grouped forward
//    counts once per requester), and, when not delivered, ended in a way
//    the program knows: a dead mail, a full mailbox, cleared or removed by
//    the user, removed by a ban, still pending (in the list, or in the
//    saved queue after an exit), handed to the client and still waiting
//    to be sent, deleted unsent by the sent-mail check, lost to a fault
//    of the queue's file, or in flight when the program stopped;
//  - no mail reaches anyone who did not ask for something;
//  - the total counter shown equals the one stored, unless a write of the
//    settings failed.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "sim/scenario.h"

namespace quorvex::soak {

struct RunFigures {
  int accepted = 0;       // mail requests accepted
  int delivered = 0;      // forwarded mails received
  int still_pending = 0;  // accepted, pending at the end
  int waiting = 0;        // accepted, handed to the client, waiting to be sent
  int deleted_waiting = 0;  // waiting, deleted by the sent-mail check
  int banned = 0;           // removed from the list by a ban
  int excused = 0;          // accepted, not delivered, ended another known way
  int in_flight = 0;        // of those: taken when the program stopped
  std::map<std::string, int> endings;  // those ended another way, by name
  std::map<std::string, int> faults;   // injected, by kind
};

// The violations found (empty: the run is clean).
std::vector<std::string> CheckRun(const sim::Scenario& scenario,
                                  const std::string& transcript_jsonl,
                                  RunFigures* figures);

}  // namespace quorvex::soak
