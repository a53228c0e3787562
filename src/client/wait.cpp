#include "client/wait.h"

#include <cmath>

#include "model/text_util.h"
#include "ports/wait_trace.h"

namespace quorvex {

namespace {
constexpr double kPollSeconds = 0.01;
}  // namespace

WaitEnd WaitUntil(Host& host, const std::function<bool()>& met,
                  const WaitOptions& how, WaitPlace where) {
  const WaitTrace trace(how.name, where.function, where.file, where.line);
  for (std::int64_t round = 1;; ++round) {
    const bool done = met();
    if (how.give_up && how.give_up()) return WaitEnd::kGaveUp;
    if (done) return WaitEnd::kMet;
    if (how.rounds > 0 && round >= how.rounds) return WaitEnd::kOutOfRounds;
    // A wait may sleep until something happens, but polls at least every
    // 10 ms for a condition nothing announces.
    host.DoEvents(how.wake_by > 0 ? how.wake_by : host.Clock() + kPollSeconds);
    if (how.speed > 0) PauseSeconds(host, how.speed);
    if (how.every > 0 && how.repeat && round % how.every == 0) how.repeat();
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
