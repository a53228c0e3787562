// SIGINT and SIGTERM end a run the way its end does: the handler only
// notes the signal; the run, the next time virtual time moves, throws
// RunInterrupted, which unwinds it (removing its temporary folder) up to
// main, which then ends by the same signal.
#pragma once

#include <stdexcept>

namespace quorvex::scenario {

struct RunInterrupted : std::runtime_error {
  explicit RunInterrupted(int signal)
      : std::runtime_error("interrupted"), signal(signal) {}
  int signal;
};

void InstallInterruptHandlers();
// Throws RunInterrupted when a signal has come.
void ThrowIfInterrupted();
// Forgets a signal noted (for tests that send one).
void ClearInterrupt();
// Ends the process by `signal` with its default action.
[[noreturn]] void EndBySignal(int signal);

}  // namespace quorvex::scenario
