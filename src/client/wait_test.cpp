#include "client/wait.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

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

TEST(WaitUntilTest, RepeatsAtAPaceThatSlowsDownAndEndsInTime) {
  VirtualHost host;
  std::vector<double> repeats;
  EXPECT_EQ(WaitUntil(host, [] { return false; },
                      {.repeat = [&] { repeats.push_back(host.Elapsed()); },
                       .pace = 1,
                       .pace_max = 4,
                       .within = 12}),
            WaitEnd::kOutOfTime);
  // After 1 s, then 2, then 4 and 4 again: never sooner, hardly later.
  const std::vector<double> due = {1, 3, 7, 11};
  ASSERT_EQ(repeats.size(), due.size());
  for (std::size_t i = 0; i < due.size(); ++i) {
    EXPECT_GE(repeats[i], due[i]);
    EXPECT_LT(repeats[i], due[i] + 0.011);
  }
  EXPECT_GE(host.Elapsed(), 12.0);
  EXPECT_LT(host.Elapsed(), 12.011);

  // Rounds and pace together: both must have passed.
  int nudges = 0;
  const double start = host.Elapsed();
  WaitUntil(host, [&] { return host.Elapsed() - start >= 2.5; },
            {.every = 50, .repeat = [&] { ++nudges; }, .pace = 1});
  EXPECT_EQ(nudges, 2);  // at 1 s and 2 s (100 and 200 rounds of 10 ms)
}

}  // namespace
}  // namespace quorvex
