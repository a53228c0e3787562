#include "win32/tick_count.h"

#include <gtest/gtest.h>

namespace quorvex::win32 {
namespace {

// Both counts, the system's and XP's stand-in, move with the clock: over
// the same stretch they advance alike (within the tick of each), never
// back. Each system reading is taken before and after the counter's, so
// that a pause of the test between them cannot make them differ.
TEST(TickCountTest, TheCounterAdvancesWithTheSystemsCount) {
  const ULONGLONG start_before = ::GetTickCount64();
  const ULONGLONG counter_start = CounterMilliseconds();
  const ULONGLONG start_after = ::GetTickCount64();
  ::Sleep(300);
  const ULONGLONG end_before = ::GetTickCount64();
  const ULONGLONG counter_end = CounterMilliseconds();
  const ULONGLONG end_after = ::GetTickCount64();
  ASSERT_GE(counter_end, counter_start);
  const ULONGLONG counted = counter_end - counter_start;
  // The system's count ticks every 16 ms or so.
  EXPECT_GE(counted + 32, end_before - start_after);
  EXPECT_LE(counted, end_after - start_before + 32);
  EXPECT_GE(counted, 250u);
  // Where the system has the function, TickCount64 is its count.
  const ULONGLONG before = ::GetTickCount64();
  const ULONGLONG ours = TickCount64();
  EXPECT_GE(ours, before);
  EXPECT_LE(ours, ::GetTickCount64());
}

}  // namespace
}  // namespace quorvex::win32
