#include "platform/virtual_host.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvex {
namespace {

TEST(VirtualHostTest, TimersTickByIntervalAndNeverReenterTheirHandler) {
  VirtualHost host;
  int ticks = 0, depth = 0, max_depth = 0, other_ticks = 0;
  auto slow = host.CreateTimer([&] {
    ++ticks;
    max_depth = std::max(max_depth, ++depth);
    // A long operation yielding to the loop: the other timer runs inside
    // it, this one must not.
    if (ticks == 1)
      for (int i = 0; i < 100; ++i) host.DoEvents(host.Clock() + 0.01);
    --depth;
  });
  auto other = host.CreateTimer([&] { ++other_ticks; });
  slow->SetInterval(100);
  other->SetInterval(250);
  EXPECT_FALSE(slow->enabled());  // created disabled
  slow->SetEnabled(true);
  other->SetEnabled(true);

  host.RunUntil(0.1);
  EXPECT_EQ(ticks, 1);
  EXPECT_EQ(max_depth, 1);
  EXPECT_GT(other_ticks, 0);
  // The next tick comes one interval after the long handler ended.
  const double ended = host.Elapsed();
  const int before = ticks;
  host.RunUntil(ended + 0.099);
  EXPECT_EQ(ticks, before);
  host.RunUntil(ended + 0.1);
  EXPECT_EQ(ticks, before + 1);
}

TEST(VirtualHostTest, TimerDisabledInItsHandlerStaysOff) {
  VirtualHost host;
  int ticks = 0;
  std::unique_ptr<HostTimer> timer;
  timer = host.CreateTimer([&] {
    ++ticks;
    timer->SetEnabled(false);
    host.DoEvents();  // yields with the timer off: no second tick
  });
  timer->SetInterval(1);
  timer->SetEnabled(true);
  host.RunUntil(1.0);
  EXPECT_EQ(ticks, 1);
  EXPECT_FALSE(timer->enabled());

  // Enabling again restarts the interval from now.
  timer->SetInterval(200);
  timer->SetEnabled(true);
  host.RunUntil(1.199);
  EXPECT_EQ(ticks, 1);
  host.RunUntil(1.2);
  EXPECT_EQ(ticks, 2);

  // An interval of 0 never ticks.
  int zero_ticks = 0;
  auto zero = host.CreateTimer([&] { ++zero_ticks; });
  zero->SetEnabled(true);
  host.RunUntil(3.0);
  EXPECT_EQ(zero_ticks, 0);
}

TEST(VirtualHostTest, ScheduledCallsRunByTimeThenByOrderQueued) {
  VirtualHost host;
  std::string order;
  host.Schedule(0.5, [&] { order += "a"; });
  host.Schedule(0.1, [&] { order += "b"; });
  host.Schedule(0.1, [&] { order += "c"; });
  host.Schedule(0, [&] { order += "d"; });
  host.ScheduleAt(0.3, [&] { order += "e"; });
  host.RunUntil(1.0);
  EXPECT_EQ(order, "dbcea");

  // A call that queues itself again runs once per DoEvents, not for ever.
  int runs = 0;
  std::function<void()> again = [&] {
    ++runs;
    host.Schedule(0, again);
  };
  host.Schedule(0, again);
  host.DoEvents();
  EXPECT_EQ(runs, 1);
  host.DoEvents();
  EXPECT_EQ(runs, 2);
}

TEST(VirtualHostTest, AWaitJumpsToWhatIsDueButNeverPastWakeByAndAYieldBarelyMoves) {
  VirtualHost host(CivilTime{2000, 1, 1, 10, 0, 0, 0});
  bool first = false, second = false;
  host.Schedule(5, [&] { first = true; });
  host.DoEvents(host.Clock() + 100);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 5.0);
  EXPECT_TRUE(first);

  host.Schedule(10, [&] { second = true; });
  host.DoEvents(host.Clock() + 2);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 7.0);
  EXPECT_FALSE(second);
  host.DoEvents(host.Clock() + 100);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 15.0);
  EXPECT_TRUE(second);

  // A plain yield with nothing due costs one yield step.
  host.SetYieldStep(0.01);
  host.Schedule(1, [] {});
  host.DoEvents();
  EXPECT_DOUBLE_EQ(host.Elapsed(), 15.01);
}

TEST(VirtualHostTest, RunEndsAtTheEndSet) {
  VirtualHost host;
  host.SetYieldStep(1000);
  host.SetEnd(3);
  bool ran = false;
  host.Schedule(5, [&] { ran = true; });
  EXPECT_THROW(host.DoEvents(), RunEnded);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 3.0);
  EXPECT_FALSE(ran);
  EXPECT_THROW(host.DoEvents(), RunEnded);
  EXPECT_THROW(host.RunUntil(10), RunEnded);

  // Running to a time before the end, with nothing to do, stops there.
  VirtualHost idle;
  idle.SetEnd(100);
  idle.RunUntil(5);
  EXPECT_DOUBLE_EQ(idle.Elapsed(), 5.0);
  EXPECT_THROW(idle.RunUntil(200), RunEnded);
  EXPECT_DOUBLE_EQ(idle.Elapsed(), 100.0);
}

TEST(VirtualHostTest, ClockGrowsPastMidnightWhileTimerWraps) {
  VirtualHost host(CivilTime{2000, 12, 31, 23, 59, 59, 500});
  EXPECT_DOUBLE_EQ(host.Timer(), 86399.5);
  host.RunUntil(1.0);
  EXPECT_DOUBLE_EQ(host.Timer(), 0.5);
  EXPECT_DOUBLE_EQ(host.Clock(), 86400.5);
  CivilTime t = host.Now();
  EXPECT_EQ(t.year, 2001);
  EXPECT_EQ(t.month, 1);
  EXPECT_EQ(t.day, 1);
  EXPECT_EQ(t.hour, 0);
  EXPECT_EQ(t.second, 0);
  EXPECT_EQ(t.millisecond, 500);

  // Timer has millisecond steps.
  host.RunUntil(1.0004);
  EXPECT_DOUBLE_EQ(host.Timer(), 0.5);
}

TEST(VirtualHostTest, NowAcrossMonthEnds) {
  struct Case {
    CivilTime start;
    double seconds;
    int year, month, day, hour;
  };
  const Case cases[] = {
      {{2000, 2, 28, 23, 0, 0, 0}, 3600, 2000, 2, 29, 0},  // leap year
      {{2001, 2, 28, 23, 0, 0, 0}, 3600, 2001, 3, 1, 0},
      {{2000, 4, 30, 12, 0, 0, 0}, 86400, 2000, 5, 1, 12},
      {{1999, 12, 31, 23, 59, 59, 0}, 1, 2000, 1, 1, 0},
      {{2000, 1, 31, 0, 0, 0, 0}, 30 * 86400.0, 2000, 3, 1, 0},
  };
  for (const Case& c : cases) {
    VirtualHost host(c.start);
    host.RunUntil(c.seconds);
    CivilTime t = host.Now();
    EXPECT_EQ(t.year, c.year);
    EXPECT_EQ(t.month, c.month);
    EXPECT_EQ(t.day, c.day);
    EXPECT_EQ(t.hour, c.hour);
  }
  int y, m, d;
  CivilFromDays(DaysFromCivil(1970, 1, 1), &y, &m, &d);
  EXPECT_EQ(DaysFromCivil(1970, 1, 1), 0);
  EXPECT_EQ(y * 10000 + m * 100 + d, 19700101);
}

}  // namespace
}  // namespace quorvex
