#include "client/wait.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/text_util.h"
#include "ports/wait_trace.h"

namespace quorvex {

WaitOptions AskingAgain(std::function<bool()> give_up,
                        std::function<void()> repeat, double within) {
  return {.give_up = std::move(give_up),
          .repeat = std::move(repeat),
          .pace = kAskAgainSeconds,
          .pace_max = kAskAgainMaxSeconds,
          .within = within};
}

WaitEnd WaitUntil(Host& host, const std::function<bool()>& met,
                  const WaitOptions& how, WaitPlace where) {
  const WaitTrace trace(how.name, where.function, where.file, where.line);
  const double began = host.Clock();
  const bool repeats = how.repeat && (how.every > 0 || how.pace > 0);
  double last_repeat = began;
  double pace = how.pace;
  std::int64_t since_repeat = 0;
  for (std::int64_t round = 1;; ++round) {
    const bool done = met();
    if (how.give_up && how.give_up()) return WaitEnd::kGaveUp;
    if (done) return WaitEnd::kMet;
    if (how.rounds > 0 && round >= how.rounds) return WaitEnd::kOutOfRounds;
    if (how.within > 0 && host.Clock() - began >= how.within)
      return WaitEnd::kOutOfTime;
    // A wait may sleep until something happens, but polls now and then
    // (every 10 ms, or less often when the host hears of the client's
    // windows changing) for a condition nothing announces.
    host.DoEvents(how.wake_by > 0 ? how.wake_by
                                  : host.Clock() + host.PollSeconds());
    if (how.speed > 0) PauseSeconds(host, how.speed);
    ++since_repeat;
    if (!repeats || since_repeat < std::max<std::int64_t>(how.every, 1) ||
        host.Clock() - last_repeat < pace)
      continue;
    how.repeat();
    since_repeat = 0;
    last_repeat = host.Clock();
    if (how.pace_max > pace) pace = std::min(pace * 2, how.pace_max);
  }
}

void DoEvents(Host& host, int times) {
  for (int i = 0; i < times; ++i) host.DoEvents();
}

double ClockToWholeSecond(const Host& host) {
  return RoundHalfEven(std::floor(host.Clock() * 1000.0 + 1e-6) / 1000.0);
}

void Pause(Host& host, double seconds, WaitPlace where) {
  if (seconds <= 0) return;  // no pause, whatever the clock's fraction
  // Clock() keeps growing past midnight where the day clock starts again
  // at 0, so a pause across midnight lasts as long as any other.
  const double start = ClockToWholeSecond(host);
  const double end = start + seconds;
  // Half a microsecond of slack: the host's clock counts whole microseconds.
  WaitUntil(
      host, [&] { return host.Clock() - start + 5e-7 >= seconds; },
      {.wake_by = end, .name = "pause"}, where);
}

void PauseSeconds(Host& host, float seconds, WaitPlace where) {
  Pause(host, seconds, where);
}

}  // namespace quorvex
