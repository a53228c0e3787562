// The one way to wait for the client. A wait polls a predicate, yielding to
// the message loop on every round (chat events, clicks and timers run
// meanwhile), and says as data what else it does: pause between polls,
// give up on a condition (the client signed off, a window gone), repeat an
// action every so many rounds, stop after so many rounds. Modelled on
// pywinauto's wait_until.
#pragma once

#include <cstdint>
#include <functional>

#include "ports/host.h"
#include "ports/wait_trace.h"

namespace quorvex {

struct WaitOptions {
  // Pause (PauseSeconds) after every unmet poll; <= 0: only yield.
  float speed = 0;
  // Checked after every poll, before the result: true ends the wait.
  std::function<bool()> give_up = nullptr;
  // `repeat` runs after every `every`-th unmet round (nudging the client).
  std::int64_t every = 0;
  std::function<void()> repeat = nullptr;
  // Ends the wait after this many unmet rounds; 0: no limit.
  std::int64_t rounds = 0;
  // A Clock() value the yield need not sleep past (time-bounded waits).
  double wake_by = 0;
  // With a pace, `repeat` also waits until this many seconds have passed
  // since the wait began or since the previous repeat, so that a slow
  // client is not asked again while its answer may still come; each
  // repeat doubles the pace, up to `pace_max` (0: the pace stays). Only
  // the pace counts when `every` is 0.
  double pace = 0;
  double pace_max = 0;
  // Ends the wait this many seconds after it began; 0: no limit.
  double within = 0;
  // What the wait is for, as a watchdog reports a run stuck in it; without
  // a name the place of the call says which wait it is.
  const char* name = nullptr;
};

enum class WaitEnd { kMet, kGaveUp, kOutOfRounds, kOutOfTime };

// The pace of asking the client again for something it has not answered
// (a window, a click): the first time after kAskAgainSeconds, then ever
// more slowly. The client opens a window within a few seconds even when
// slow, so that a request is rarely repeated while the first is still
// under way.
inline constexpr double kAskAgainSeconds = 10;
inline constexpr double kAskAgainMaxSeconds = 40;

// A wait that asks the client again with `repeat` at that pace, giving up
// when `give_up` holds and, with `within` above 0, that many seconds after
// it began.
WaitOptions AskingAgain(std::function<bool()> give_up,
                        std::function<void()> repeat, double within = 0);

// Polls `met` until it holds. A round: poll; give up?; met?; out of rounds?;
// yield (DoEvents); pause; repeat action. There is no time limit of its
// own: a virtual host ends a run by throwing out of DoEvents (at its end,
// or when its watchdog finds the run stuck; `where` names the wait then).
WaitEnd WaitUntil(Host& host, const std::function<bool()>& met,
                  const WaitOptions& how = {}, WaitPlace where = {});

// The clock (Host::Clock) at whole milliseconds, rounded half-to-even to a
// whole second, as the old runtime stored its timer in a whole number.
double ClockToWholeSecond(const Host& host);

// Yields to the message loop `times` times.
void DoEvents(Host& host, int times);

// Waits `seconds` from the clock rounded to a whole second: the rounding is
// deliberate, a pause may end up to half a second early or late. A pause
// of 0 (or less) returns at once.
// `where` is the caller, named when a watchdog stops a run in the pause.
void Pause(Host& host, double seconds, WaitPlace where = {});
void PauseSeconds(Host& host, float seconds, WaitPlace where = {});

}  // namespace quorvex
