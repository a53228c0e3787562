// Virtual time: the clock moves only when the program waits, jumping to the
// next thing that is due. A run is deterministic to the millisecond, and an
// hour of serving takes well under a second of CPU.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

#include "ports/host.h"

namespace quorvex {

// Thrown out of DoEvents when virtual time reaches the end set with
// SetEnd: the program stops where it stands, as if the power went off.
struct RunEnded : std::runtime_error {
  RunEnded() : std::runtime_error("virtual run ended") {}
};

// Thrown out of DoEvents (or RunUntil) when the watchdog finds the run
// stuck: virtual time no longer moves, or the loop turns far more often per
// virtual second than any working program does. The message names the
// waits the program is in.
struct NoProgress : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The watchdog's limits, in turns of the message loop (a DoEvents, or a
// round of RunUntil); 0 switches a limit off. A working program yields at
// most some ten thousand times a virtual second (a plain yield costs 0.1
// ms), and time moves on every yield that finds nothing due.
struct WatchdogLimits {
  std::int64_t turns_without_time = 1'000'000;
  std::int64_t turns_per_second = 2'000'000;
};

class VirtualHost : public Host {
 public:
  // `start` is the clock at virtual time 0.
  explicit VirtualHost(CivilTime start = {});
  ~VirtualHost() override;

  double Timer() const override;
  double Clock() const override;
  CivilTime Now() const override;
  void DoEvents(double wake_by = 0) override;
  void Schedule(double delay_seconds, std::function<void()> fn) override;
  std::unique_ptr<HostTimer> CreateTimer(
      std::function<void()> on_tick) override;

  // Virtual seconds since the start (microsecond steps).
  double Elapsed() const { return now_us_ / 1e6; }
  std::int64_t ElapsedMicros() const { return now_us_; }
  // Runs `fn` at virtual time `at_seconds` (from the start).
  void ScheduleAt(double at_seconds, std::function<void()> fn);

  // Time never passes `end_seconds`; reaching it throws RunEnded.
  void SetEnd(double end_seconds);
  // Called whenever time moves, with the old and new virtual seconds (used
  // to pace a run to the wall clock).
  void SetPacer(std::function<void(double, double)> pacer) {
    pacer_ = std::move(pacer);
  }
  // How far the clock moves on a plain yield when nothing is due (seconds):
  // what one turn of the message loop costs.
  void SetYieldStep(double seconds) { yield_step_us_ = Micros(seconds); }

  // Runs the loop until virtual time `end_seconds`, even when nothing is
  // left to do; throws RunEnded when the end set with SetEnd comes first.
  void RunUntil(double end_seconds);

  // On by default, with the limits above.
  void SetWatchdog(WatchdogLimits limits) { watchdog_ = limits; }
  // Turns of the message loop so far (a run's work, for figures).
  std::int64_t turns() const { return turns_; }

 private:
  class TimerImpl;
  friend class TimerImpl;
  struct Item {
    std::int64_t due;
    std::uint64_t seq;
    std::function<void()> fn;
  };
  static std::int64_t Micros(double seconds);
  // Earliest due time of anything pending, or INT64_MAX.
  std::int64_t NextDue() const;
  // Runs everything due now that was queued before the call; true if any.
  bool RunDue();
  void AdvanceTo(std::int64_t t);
  // Counts a turn of the loop; throws NoProgress past the limits.
  void Turn();

  std::int64_t
      start_of_day_us_;  // clock at time 0, microseconds since midnight
  int start_days_;       // days since 1970-01-01 at time 0
  std::int64_t now_us_ = 0;
  std::int64_t end_us_ = INT64_MAX;
  std::int64_t yield_step_us_ = 100;  // 0.1 ms
  std::uint64_t seq_ = 0;
  std::multimap<std::pair<std::int64_t, std::uint64_t>, std::function<void()>>
      queue_;
  std::vector<TimerImpl*> timers_;
  std::function<void(double, double)> pacer_;
  WatchdogLimits watchdog_;
  std::int64_t turns_ = 0;
  std::int64_t turns_at_time_ = 0;    // turns since the clock last moved
  std::int64_t second_ = 0;           // the virtual second being counted
  std::int64_t turns_in_second_ = 0;  // turns within it
};

// Days since 1970-01-01 for a civil date, and back.
int DaysFromCivil(int y, int m, int d);
void CivilFromDays(int days, int* y, int* m, int* d);

}  // namespace quorvex
