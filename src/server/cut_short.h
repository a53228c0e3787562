// A job an exit cuts short: the exit ends the program where it stands,
// unwinding the job out of the wait it was in. The request was taken off
// the queue when the job began, so the queue saved at the exit no longer
// holds it; the log says it was lost.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "model/job_event.h"

namespace quorvex {

class LostIfCutShort {
 public:
  // `ended` is the program's own flag: unwinding without it (the machine
  // going down, a run's end) is no exit, and nothing is logged.
  LostIfCutShort(const JobEventSink* events, const bool& ended,
                 std::string requesters, std::string what)
      : events_(events),
        ended_(ended),
        requesters_(std::move(requesters)),
        what_(std::move(what)) {}
  ~LostIfCutShort() {
    if (std::uncaught_exceptions() <= exceptions_ || !ended_) return;
    try {
      Emit(events_, JobOutcome::kLostWithExit, requesters_, what_);
    } catch (...) {
      // The log loses the line; the unwinding goes on.
    }
  }
  LostIfCutShort(const LostIfCutShort&) = delete;
  LostIfCutShort& operator=(const LostIfCutShort&) = delete;

 private:
  const JobEventSink* events_;
  const bool& ended_;
  std::string requesters_;
  std::string what_;
  const int exceptions_ = std::uncaught_exceptions();
};

}  // namespace quorvex
