#include "client/wait.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "ports/virtual_host.h"

namespace quorvex {
namespace {

TEST(PauseTest, StartsFromTheClockRoundedToAWholeSecond) {
  VirtualHost host(CivilTime{2004, 5, 1, 0, 0, 10, 600});
  // 10.6 rounds to 11: a pause of one second ends at 12.0.
  Pause(host, 1);
  EXPECT_DOUBLE_EQ(host.Clock(), 12.0);
  PauseSeconds(host, 0.45f);
  EXPECT_NEAR(host.Clock(), 12.45, 1e-6);
  // 12.45 rounds down to 12, which is already 0.3 s ago.
  Pause(host, 0.3);
  EXPECT_NEAR(host.Clock(), 12.45, 1e-6);
  // Halves round to even: 12.5 to 12, 13.5 to 14.
  host.RunUntil(host.Elapsed() + 0.05);
  Pause(host, 1);
  EXPECT_NEAR(host.Clock(), 13.0, 1e-6);
  host.RunUntil(host.Elapsed() + 0.5);
  Pause(host, 1);
  EXPECT_NEAR(host.Clock(), 15.0, 1e-6);

  // Across midnight it lasts as long as any other: 86399 (rounded) to 86401.
  VirtualHost late(CivilTime{2004, 5, 1, 23, 59, 59, 300});
  Pause(late, 2);
  EXPECT_NEAR(late.Elapsed(), 1.7, 1e-6);
  EXPECT_EQ(late.Now().day, 2);
}

TEST(WaitUntilTest, PollsYieldingUntilMet) {
  VirtualHost host;
  bool ready = false;
  host.Schedule(0.5, [&] { ready = true; });
  EXPECT_EQ(WaitUntil(host, [&] { return ready; }), WaitEnd::kMet);
  EXPECT_GE(host.Elapsed(), 0.5);
  // Met at once: no yield at all.
  const double before = host.Elapsed();
  EXPECT_EQ(WaitUntil(host, [] { return true; }), WaitEnd::kMet);
  EXPECT_EQ(host.Elapsed(), before);

  // With a speed it pauses that many seconds between polls.
  int polls = 0;
  const double slow = host.Elapsed();
  WaitUntil(host, [&] { return ++polls == 4; }, {.speed = 1});
  EXPECT_NEAR(host.Elapsed() - slow, 3.0, 0.6);

  host.SetEnd(host.Elapsed() + 5);
  EXPECT_THROW(WaitUntil(host, [] { return false; }), RunEnded);
  EXPECT_THROW(Pause(host, 10), RunEnded);
}

TEST(WaitUntilTest, RoundsRepeatsAndGivingUp) {
  VirtualHost host;
  int polls = 0, nudges = 0;
  EXPECT_EQ(WaitUntil(host, [&] { return ++polls == 0; },
                      {.every = 3, .repeat = [&] { ++nudges; }, .rounds = 10}),
            WaitEnd::kOutOfRounds);
  EXPECT_EQ(polls, 10);
  EXPECT_EQ(nudges, 3);  // after rounds 3, 6 and 9

  // Giving up wins over a result found in the same round, as a round
  // that finds the client signed off returns before its test.
  EXPECT_EQ(
      WaitUntil(host, [] { return true; }, {.give_up = [] { return true; }}),
      WaitEnd::kGaveUp);
  int rounds = 0;
  EXPECT_EQ(WaitUntil(host, [] { return false; },
                      {.give_up = [&] { return ++rounds == 4; }}),
            WaitEnd::kGaveUp);
}

TEST(WaitUntilTest, AStuckWaitIsNamedByTheWatchdog) {
  VirtualHost host;
  host.SetWatchdog({.turns_without_time = 1000, .turns_per_second = 0});
  std::function<void()> again = [&] { host.Schedule(0, again); };
  host.Schedule(0, again);
  for (const char* name :
       {"forward window", static_cast<const char*>(nullptr)}) {
    try {
      WaitUntil(host, [] { return false; }, {.name = name});
      FAIL() << "the wait never ended";
    } catch (const NoProgress& e) {
      const std::string what = e.what();
      // Named by its name, or else by where it was called from.
      EXPECT_NE(what.find(name ? "in forward window (" : "in a wait ("),
                std::string::npos)
          << what;
      EXPECT_NE(what.find("wait_test.cpp:"), std::string::npos) << what;
    }
  }
}

}  // namespace
}  // namespace quorvex
