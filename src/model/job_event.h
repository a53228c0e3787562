// What the program tells its log: one value per finished job or event,
// made where the job ends and handed to the one sink the program owns
// (app/job_log.h writes it as a line of Quorvex.log).
#pragma once

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quorvex {

// How a job or event ended. The words each one is written as are the
// log's, in app/job_log.cpp.
enum class JobOutcome {
  kSent,                // a mail forwarded to its requesters
  kDeadMail,            // a mail that cannot be forwarded; the requester told
  kFullMailbox,         // the requester's mailbox refused the forward
  kLostWithSignOff,     // the client signed off before the job was done
  kLostWithExit,        // the program exited before the job was done
  kNotSent,             // the client refused the mail (too long, no such mail)
  kBanned,              // a person banned, their requests removed
  kRemovedByUser,       // a request the user took off the pending list
  kLostWithFailedSave,  // a request the queue's save at the end lost
  kListMailed,          // the lists forwarded
  kFindMailed,          // a find's results mailed
  kNothingFound,        // a find without results, said in the room
  kReplyByMail,         // a thanks or status answered by mail
  kReplyInRoom,         // a thanks or status answered in the room
  kClientRestarted,     // the chat client closed, started and signed on
  kMachineRestarted,    // the machine is being restarted
  kSentMailDeleted,     // the client's sent mail (and waiting mail) deleted
  kStarted,             // the program loaded, or serving started
  kStopped,             // serving stopped, or the program exited
  kLogIncomplete,       // lines of the log itself could not be written
};

struct JobEvent {
  JobOutcome outcome = JobOutcome::kSent;
  // Screen names as the queue writes them, each in parentheses, "(bob)(amy)",
  // or one bare name; empty when nobody asked (the program's own events).
  std::string requesters;
  // What was asked or what happened: "send 5", "send list", "find cats",
  // "thanks", "status", "serving", ...
  std::string what;
};

// Takes the events of one moment together (a clear of the whole list is
// one write of the log, however many requests it held).
using JobEventSink = std::function<void(std::span<const JobEvent>)>;

// Hands the event to the sink, when there is one.
inline void Emit(const JobEventSink* sink, JobOutcome outcome,
                 std::string requesters, std::string what) {
  const JobEvent event{outcome, std::move(requesters), std::move(what)};
  if (sink && *sink) (*sink)(std::span<const JobEvent>(&event, 1));
}

// Hands the events to the sink at once; none is no call.
inline void Emit(const JobEventSink* sink,
                 const std::vector<JobEvent>& events) {
  if (sink && *sink && !events.empty()) (*sink)(events);
}

}  // namespace quorvex
