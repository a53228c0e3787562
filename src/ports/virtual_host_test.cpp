#include "ports/virtual_host.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "ports/wait_trace.h"

namespace quorvex {
namespace {

TEST(VirtualHostTest, TimerDisabledInItsHandlerStaysOffUntilEnabledAgain) {
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
  // Enabling again restarts the interval from now.
  timer->SetInterval(200);
  timer->SetEnabled(true);
  host.RunUntil(1.1);
  timer->SetEnabled(true);  // already on: it keeps its time
  host.RunUntil(1.199);
  EXPECT_EQ(ticks, 1);
  host.RunUntil(1.2);
  EXPECT_EQ(ticks, 2);
  timer->SetInterval(0);  // never ticks
  host.RunUntil(3.0);
  EXPECT_EQ(ticks, 2);
}

TEST(VirtualHostTest, WaitsJumpToWhatIsDueButNeverPastWakeByOrTheEnd) {
  VirtualHost host;
  bool ran = false;
  host.Schedule(5, [&] { ran = true; });
  host.DoEvents(host.Clock() + 100);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 5.0);
  EXPECT_TRUE(ran);
  ran = false;
  host.Schedule(10, [&] { ran = true; });
  host.DoEvents(host.Clock() + 2);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 7.0);
  EXPECT_FALSE(ran);
  // A plain yield with nothing due costs one yield step.
  host.SetYieldStep(0.01);
  host.DoEvents();
  EXPECT_DOUBLE_EQ(host.Elapsed(), 7.01);

  host.SetYieldStep(1000);
  host.SetEnd(9);
  EXPECT_THROW(host.DoEvents(), RunEnded);
  EXPECT_DOUBLE_EQ(host.Elapsed(), 9.0);
  EXPECT_FALSE(ran);
  EXPECT_THROW(host.RunUntil(10), RunEnded);
}

TEST(VirtualHostTest, CalendarAndTimerAcrossMidnightAndMonthEnds) {
  // Year, month, day and hour reached, written as yyyymmddhh.
  const std::tuple<CivilTime, double, int> cases[] = {
      {{2000, 2, 28, 23, 0, 0, 0}, 3600, 2000022900},  // leap year
      {{2001, 2, 28, 23, 0, 0, 0}, 3600, 2001030100},
      {{2000, 4, 30, 12, 0, 0, 0}, 86400, 2000050112},
      {{2000, 12, 31, 23, 59, 59, 500}, 1, 2001010100},
      {{2000, 1, 31, 0, 0, 0, 0}, 30 * 86400.0, 2000030100}};
  for (const auto& [start, seconds, want] : cases) {
    VirtualHost host(start);
    host.RunUntil(seconds);
    CivilTime t = host.Now();
    EXPECT_EQ(t.year * 1000000 + t.month * 10000 + t.day * 100 + t.hour, want);
  }
  // Timer wraps at midnight in millisecond steps; Clock keeps growing.
  VirtualHost host(CivilTime{2000, 12, 31, 23, 59, 59, 500});
  EXPECT_DOUBLE_EQ(host.Timer(), 86399.5);
  host.RunUntil(1.0004);
  EXPECT_DOUBLE_EQ(host.Timer(), 0.5);
  EXPECT_DOUBLE_EQ(host.Clock(), 86400.5004);
}

TEST(WatchdogTest, StopsARunWhoseTimeStandsStillNamingTheWait) {
  VirtualHost host;
  host.SetWatchdog({.turns_without_time = 100, .turns_per_second = 0});
  // Something that posts itself again at once: every yield runs it and
  // time never moves.
  std::function<void()> again = [&] { host.Schedule(0, again); };
  host.Schedule(0, again);
  const WaitTrace outer("mail window", "OpenMail", "src/mailbox.cpp", 12);
  const WaitTrace inner(nullptr, "Pause", "/x/wait.cpp", 40);
  for (int i = 0; i < 100; ++i) host.DoEvents();  // the limit itself is fine
  try {
    host.DoEvents();
    FAIL() << "the stuck run went on";
  } catch (const NoProgress& e) {
    EXPECT_EQ(std::string(e.what()),
              "no progress: virtual time stuck at 0.000000 s for 100 turns of "
              "the message loop, in a wait (Pause, wait.cpp:40) inside mail "
              "window (OpenMail, mailbox.cpp:12)");
  }
}

TEST(WatchdogTest, StopsALoopThatTurnsTooOftenPerVirtualSecond) {
  VirtualHost host;
  host.SetYieldStep(0.001);
  host.SetWatchdog({.turns_without_time = 0, .turns_per_second = 1000});
  EXPECT_EQ(WaitTrace::Describe(), "no wait");
  // 1000 plain yields of 1 ms fill second 0 exactly; the next is second
  // 1's first.
  for (int i = 0; i < 1999; ++i) host.DoEvents();
  EXPECT_EQ(host.ElapsedMicros(), 1999000);
  // Second 1 has had 1000 turns; a cheaper yield makes the next one too
  // many in the same second.
  host.SetYieldStep(0.0000001);
  host.DoEvents();
  EXPECT_THROW(host.DoEvents(), NoProgress);
  // A self-posting item inside RunUntil is caught the same way.
  VirtualHost other;
  other.SetWatchdog({.turns_without_time = 50, .turns_per_second = 0});
  std::function<void()> again = [&] { other.Schedule(0, again); };
  other.Schedule(0, again);
  EXPECT_THROW(other.RunUntil(1), NoProgress);
}

}  // namespace
}  // namespace quorvex
