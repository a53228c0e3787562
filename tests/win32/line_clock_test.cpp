#include "line_clock.h"

#include <gtest/gtest.h>

namespace quorvex::test {
namespace {

constexpr double kEps = 1e-9;

// A clear due at 9.2 runs at 9.7, after the program took requests at 9.6:
// the requests are written no later than the clear, the clear at its
// moment, and what follows at the real time again.
TEST(LineClock, WhatHappensWhileALineIsOverdueComesBeforeIt) {
  LineClock clock;
  clock.Schedule(9.2);
  clock.Schedule(20);
  EXPECT_NEAR(clock.At(9.0), 9.0, kEps);
  EXPECT_NEAR(clock.At(9.6), 9.2, kEps);
  clock.Unschedule(9.2);
  clock.Begin(9.2, 9.7);
  EXPECT_NEAR(clock.At(9.7), 9.2, kEps);
  EXPECT_NEAR(clock.At(9.75), 9.25, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(9.8), 9.8, kEps);
  EXPECT_NEAR(clock.At(21), 20, kEps);
  clock.Unschedule(20);
  // Two lines of one moment: the moment holds until both have come.
  clock.Schedule(30);
  clock.Schedule(30);
  clock.Unschedule(30);
  EXPECT_NEAR(clock.At(31), 30, kEps);
  clock.Unschedule(30);
  EXPECT_NEAR(clock.At(31), 31, kEps);
}

// A start pressed at 30 runs 3 s late and reads the mailbox for seconds;
// inside it, a say of 33.8 runs on time: what the start's step does after
// the say is not written before the say's moment.
TEST(LineClock, NothingIsWrittenBeforeALineThatHasRun) {
  LineClock clock;
  for (double at : {30.0, 33.8, 50.0}) clock.Schedule(at);
  clock.Unschedule(30);
  clock.Begin(30, 33);
  EXPECT_NEAR(clock.At(33.5), 30.5, kEps);
  clock.Unschedule(33.8);
  clock.Begin(33.8, 33.8);  // on the dot
  EXPECT_NEAR(clock.At(33.8), 33.8, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(34.0), 33.8, kEps);  // 31.0 by the start's lateness
  EXPECT_NEAR(clock.At(37.5), 34.5, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(38), 38, kEps);
}

// A clear due at 40 runs inside a say of 39 that came 3 s late, and takes
// a moment itself; the requests the program takes after it, back in the
// say's step, are written after the clear.
TEST(LineClock, NothingIsWrittenBeforeWhatWasWrittenAlready) {
  LineClock clock;
  for (double at : {39.0, 40.0, 50.0}) clock.Schedule(at);
  clock.Unschedule(39);
  clock.Begin(39, 42);
  clock.Unschedule(40);
  clock.Begin(40, 42.01);
  EXPECT_NEAR(clock.At(42.01), 40, kEps);
  EXPECT_NEAR(clock.At(42.03), 40.02, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(42.04), 40.02, kEps);  // 39.04 by the say's lateness
  EXPECT_NEAR(clock.At(43.5), 40.5, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(44), 44, kEps);
}

// A line run before its moment (the status strip said so) is written when
// it runs, and holds nothing back; a line waiting behind another does not
// stop the clock, and is written after what came while it waited.
TEST(LineClock, ALineRunEarlyOrHeldDoesNotMoveTheClock) {
  LineClock clock;
  clock.Schedule(12);
  clock.Begin(10, 8);
  EXPECT_NEAR(clock.At(8.5), 8.5, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(9), 9, kEps);
  clock.Unschedule(12);  // held behind another line
  EXPECT_NEAR(clock.At(15), 15, kEps);
  // Run at 16 once that one has: written after what came meanwhile.
  clock.Begin(12, 16);
  EXPECT_NEAR(clock.At(16.5), 15, kEps);
  EXPECT_NEAR(clock.At(19.5), 15.5, kEps);
  clock.End();
  EXPECT_NEAR(clock.At(20), 20, kEps);
}

}  // namespace
}  // namespace quorvex::test
