#include "settings/inserts.h"

#include <gtest/gtest.h>

#include "settings/random_number.h"

namespace quorvex {
namespace {

CivilTime At(int hour, int minute) {
  CivilTime t;
  t.year = 2000;
  t.month = 1;
  t.day = 5;
  t.hour = hour;
  t.minute = minute;
  return t;
}

TEST(InsertsTest, TimeAndCase) {
  InsertValues v;
  v.now = At(9, 5);
  EXPECT_EQ(ExpandInserts("[t] and [t], not [T]", v),
            "09:05 and 09:05, not [T]");
  v.now = At(0, 0);
  EXPECT_EQ(ExpandInserts("[d] [t]", v), "1/5/2000 00:00");
  v.now.month = 12;
  v.now.day = 31;
  EXPECT_EQ(ExpandInserts("[d]", v), "12/31/2000");
}

TEST(InsertsTest, EveryCodeInOrder) {
  Settings s;
  s.Handle = "srv[l]";
  s.LAscii = "<[h]";
  s.RAscii = ">";
  InsertValues v = MakeInsertValues(s, At(12, 0), 4, 17, 1003, 5, 750);
  // A handle holding "[l]" gets the decoration; the decoration's "[h]"
  // comes too late to be replaced.
  EXPECT_EQ(ExpandInserts("[h]", v), "srv<[h]");
  EXPECT_EQ(ExpandInserts("[p] pending, [s] sent, [r]", v),
            "4 pending, 17 sent, >");
  EXPECT_EQ(ExpandInserts("[aol]/[cpu]/[del] [web]", v),
            std::string("-3/1995/0 ") + kWebAddress);
  EXPECT_EQ(ExpandInserts("[x] [d [aol", v), "[x] [d [aol");
}

TEST(RandomNumberTest, RepeatableAndInRange) {
  for (int n : {1, 2, 7, 1000}) {
    std::vector<int> seen(n + 1);
    for (int i = 0; i < 2000; ++i) {
      double timer = 43200 + i * 0.001;
      int pick = RandomNumber(n, timer, 42);
      ASSERT_GE(pick, 1);
      ASSERT_LE(pick, n);
      EXPECT_EQ(pick, RandomNumber(n, timer, 42));
      ++seen[pick];
    }
    if (n <= 7) {
      for (int k = 1; k <= n; ++k) EXPECT_GT(seen[k], 0) << n << " " << k;
    }
  }
  int differ = 0;
  for (int i = 0; i < 50; ++i)
    differ += RandomNumber(1000, i, 1) != RandomNumber(1000, i, 2);
  EXPECT_GT(differ, 40);  // the seed matters
  EXPECT_EQ(RandomNumber(0, 1.0, 1), 0);
  EXPECT_GE(RandomNumber(2147483647, 0.5, 9), 1);
}

}  // namespace
}  // namespace quorvex
