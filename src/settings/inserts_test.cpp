#include "settings/inserts.h"

#include <gtest/gtest.h>

#include "settings/random_number.h"

namespace quorvex {
namespace {

TEST(InsertsTest, EveryCodeInOrder) {
  Settings s;
  s.Handle = "srv[l]";
  s.LAscii = "<[h]";
  s.RAscii = ">";
  CivilTime noon{2000, 1, 5, 12, 0};
  InsertValues v = MakeInsertValues(s, noon, 4, 17, 1003, 5, 750);
  // A handle holding "[l]" gets the decoration; the decoration's "[h]"
  // comes too late to be replaced.
  EXPECT_EQ(ExpandInserts("[h]", v), "srv<[h]");
  EXPECT_EQ(ExpandInserts("[p] pending, [s] sent, [r]", v),
            "4 pending, 17 sent, >");
  EXPECT_EQ(ExpandInserts("[aol]/[cpu]/[del] [web]", v),
            std::string("-3/1995/0 ") + kWebAddress);
  EXPECT_EQ(ExpandInserts("[x] [d [aol", v), "[x] [d [aol");

  // Zero-padded time, unpadded date; codes are lower case only.
  v.now = {2000, 1, 5, 9, 5};
  EXPECT_EQ(ExpandInserts("[t] and [t], not [T]", v),
            "09:05 and 09:05, not [T]");
  v.now = {2000, 1, 5, 0, 0};
  EXPECT_EQ(ExpandInserts("[d] [t]", v), "1/5/2000 00:00");
}

TEST(RandomNumberTest, RepeatableInRangeAndSeeded) {
  std::vector<int> seen(8);
  for (int i = 0; i < 2000; ++i) {
    double timer = 43200 + i * 0.001;
    int pick = RandomNumber(7, timer, 42);
    ASSERT_TRUE(pick >= 1 && pick <= 7) << pick;
    EXPECT_EQ(pick, RandomNumber(7, timer, 42));
    ++seen[pick];
  }
  for (int k = 1; k <= 7; ++k) EXPECT_GT(seen[k], 0) << k;
  int differ = 0;
  for (int i = 0; i < 50; ++i)
    differ += RandomNumber(1000, i, 1) != RandomNumber(1000, i, 2);
  EXPECT_GT(differ, 40);  // the seed matters
  EXPECT_EQ(RandomNumber(0, 1.0, 1), 0);
  EXPECT_EQ(RandomNumber(1, 1.0, 1), 1);  // one to pick from: that one
  EXPECT_GE(RandomNumber(2147483647, 0.5, 9), 1);
}

}  // namespace
}  // namespace quorvex
