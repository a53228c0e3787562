#include "ports/virtual_host.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "ports/wait_trace.h"

namespace quorvex {

int DaysFromCivil(int y, int m, int d) {
  y -= m <= 2;
  const int era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int>(doe) - 719468;
}

void CivilFromDays(int z, int* y, int* m, int* d) {
  z += 719468;
  const int era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int yy = static_cast<int>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  *d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  *m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  *y = yy + (*m <= 2);
}

namespace {
constexpr std::int64_t kTimerResolutionUs = 15625;
}  // namespace

class VirtualHost::TimerImpl : public HostTimer {
 public:
  TimerImpl(VirtualHost* host, std::function<void()> fn)
      : host_(host), fn_(std::move(fn)) {}
  ~TimerImpl() override {
    if (host_) {
      auto& v = host_->timers_;
      v.erase(std::remove(v.begin(), v.end(), this), v.end());
    }
  }
  void SetInterval(int ms) override {
    interval_ms_ = std::max(ms, 0);
    if (enabled_) due_ = host_->now_us_ + Step();
  }
  int interval() const override { return interval_ms_; }
  void SetEnabled(bool on) override {
    if (on && !enabled_) due_ = host_->now_us_ + Step();
    enabled_ = on;
  }
  bool enabled() const override { return enabled_; }

  // Timers on the client's platform tick no faster than the system clock's
  // resolution (15.625 ms): a timer set to 1 ms fires about 64 times a
  // second, not 1000.
  std::int64_t Step() const {
    return std::max<std::int64_t>(std::int64_t{interval_ms_} * 1000,
                                  kTimerResolutionUs);
  }
  // Due to fire: enabled, an interval set, not inside its own handler.
  bool Ready() const { return enabled_ && interval_ms_ > 0 && !running_; }

  void Fire() {
    running_ = true;
    seq_at_fire_ = ++host_->seq_;
    try {
      fn_();
    } catch (...) {
      running_ = false;
      throw;
    }
    running_ = false;
    // The next tick comes one interval after this one ended.
    due_ = host_->now_us_ + Step();
  }

  VirtualHost* host_;
  std::function<void()> fn_;
  int interval_ms_ = 0;
  bool enabled_ = false;
  bool running_ = false;
  std::int64_t due_ = 0;
  std::uint64_t seq_at_fire_ = 0;
};

VirtualHost::VirtualHost(CivilTime start) {
  start_of_day_us_ =
      ((static_cast<std::int64_t>(start.hour) * 60 + start.minute) * 60 +
       start.second) *
          1000000LL +
      start.millisecond * 1000LL;
  start_days_ = DaysFromCivil(start.year, start.month, start.day);
}

VirtualHost::~VirtualHost() {
  for (TimerImpl* t : timers_) t->host_ = nullptr;
}

std::int64_t VirtualHost::Micros(double seconds) {
  return static_cast<std::int64_t>(std::llround(seconds * 1e6));
}

double VirtualHost::Clock() const { return (start_of_day_us_ + now_us_) / 1e6; }

double VirtualHost::Timer() const {
  std::int64_t us = (start_of_day_us_ + now_us_) % 86400000000LL;
  // The runtime's Timer has millisecond steps.
  return static_cast<double>(us / 1000) / 1000.0;
}

CivilTime VirtualHost::Now() const {
  std::int64_t total = start_of_day_us_ + now_us_;
  int days = start_days_ + static_cast<int>(total / 86400000000LL);
  std::int64_t in_day = total % 86400000000LL;
  CivilTime t;
  CivilFromDays(days, &t.year, &t.month, &t.day);
  std::int64_t ms = in_day / 1000;
  t.millisecond = static_cast<int>(ms % 1000);
  std::int64_t s = ms / 1000;
  t.second = static_cast<int>(s % 60);
  t.minute = static_cast<int>((s / 60) % 60);
  t.hour = static_cast<int>(s / 3600);
  return t;
}

void VirtualHost::Schedule(double delay_seconds, std::function<void()> fn) {
  std::int64_t due = now_us_ + std::max<std::int64_t>(Micros(delay_seconds), 0);
  queue_.emplace(std::make_pair(due, ++seq_), std::move(fn));
}

void VirtualHost::ScheduleAt(double at_seconds, std::function<void()> fn) {
  std::int64_t due = std::max(Micros(at_seconds), now_us_);
  queue_.emplace(std::make_pair(due, ++seq_), std::move(fn));
}

std::unique_ptr<HostTimer> VirtualHost::CreateTimer(
    std::function<void()> on_tick) {
  auto t = std::make_unique<TimerImpl>(this, std::move(on_tick));
  timers_.push_back(t.get());
  return t;
}

void VirtualHost::SetEnd(double end_seconds) { end_us_ = Micros(end_seconds); }

std::int64_t VirtualHost::NextDue() const {
  std::int64_t next = INT64_MAX;
  if (!queue_.empty()) next = queue_.begin()->first.first;
  for (const TimerImpl* t : timers_)
    if (t->Ready()) next = std::min(next, t->due_);
  return next;
}

bool VirtualHost::RunDue() {
  // Only what was queued before this call runs now, so that a handler
  // that posts itself again cannot keep one DoEvents busy for ever.
  const std::uint64_t limit = seq_;
  bool ran = false;
  while (true) {
    // The earliest due item: a scheduled call or a timer, by time, then
    // by the order they were queued.
    auto qit = queue_.begin();
    bool have_q = qit != queue_.end() && qit->first.first <= now_us_ &&
                  qit->first.second <= limit;
    TimerImpl* tbest = nullptr;
    for (TimerImpl* t : timers_) {
      if (t->Ready() && t->due_ <= now_us_ && t->seq_at_fire_ <= limit &&
          (!tbest || t->due_ < tbest->due_))
        tbest = t;
    }
    if (!have_q && !tbest) break;
    ran = true;
    if (have_q && (!tbest || qit->first.first <= tbest->due_)) {
      auto fn = std::move(qit->second);
      queue_.erase(qit);
      fn();
    } else {
      tbest->Fire();
    }
  }
  return ran;
}

void VirtualHost::AdvanceTo(std::int64_t t) {
  if (t <= now_us_) return;
  if (t >= end_us_) {
    double from = now_us_ / 1e6;
    now_us_ = end_us_;
    if (pacer_) pacer_(from, now_us_ / 1e6);
    throw RunEnded();
  }
  double from = now_us_ / 1e6;
  now_us_ = t;
  turns_at_time_ = 0;
  if (pacer_) pacer_(from, now_us_ / 1e6);
}

void VirtualHost::Turn() {
  ++turns_;
  ++turns_at_time_;
  if (now_us_ / 1000000 != second_) {
    second_ = now_us_ / 1000000;
    turns_in_second_ = 0;
  }
  ++turns_in_second_;
  char at[32];
  std::snprintf(at, sizeof at, "%.6f", now_us_ / 1e6);
  if (watchdog_.turns_without_time > 0 &&
      turns_at_time_ > watchdog_.turns_without_time)
    throw NoProgress("no progress: virtual time stuck at " + std::string(at) +
                     " s for " + std::to_string(turns_at_time_ - 1) +
                     " turns of the message loop, in " + WaitTrace::Describe());
  if (watchdog_.turns_per_second > 0 &&
      turns_in_second_ > watchdog_.turns_per_second)
    throw NoProgress("runaway loop: " + std::to_string(turns_in_second_ - 1) +
                     " turns of the message loop within virtual second " +
                     std::to_string(second_) + " (at " + at + " s), in " +
                     WaitTrace::Describe());
}

void VirtualHost::DoEvents(double wake_by) {
  if (now_us_ >= end_us_) throw RunEnded();
  Turn();
  if (RunDue()) return;
  // A plain yield costs a moment; a wait (wake_by given) lets time run on
  // to the next thing that is due, but not past wake_by.
  std::int64_t target = std::min(NextDue(), now_us_ + yield_step_us_);
  if (wake_by > 0) {
    std::int64_t w = Micros(wake_by) - start_of_day_us_;
    target = std::min(NextDue(), w);
  }
  if (target <= now_us_) target = now_us_ + 1;
  AdvanceTo(target);
  RunDue();
}

void VirtualHost::RunUntil(double end_seconds) {
  std::int64_t end = Micros(end_seconds);
  while (true) {
    Turn();
    RunDue();
    std::int64_t next = NextDue();
    // Nothing left before `end`: time goes to `end` (throwing RunEnded
    // when the run's end comes first), never beyond it.
    if (next > end) {
      AdvanceTo(end);
      return;
    }
    AdvanceTo(next);
  }
}

}  // namespace quorvex
