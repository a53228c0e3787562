#include "sim/sim_memory.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(SimMemoryTest, ReadsOnlyWithinOneMappedBlock) {
  SimMemory m;
  std::uint32_t a = m.Allocate(8, 0xCD);
  std::uint32_t b = m.Allocate(8);
  ASSERT_TRUE(m.WriteU32(a + 4, 0x00A3F123));
  unsigned char bytes[5] = {};
  ASSERT_TRUE(m.Read(a + 3, bytes, 5));
  // Filled as asked, then little-endian, as the program reassembles it.
  EXPECT_EQ(bytes[0], 0xCD);
  EXPECT_EQ(bytes[1], 0x23);
  EXPECT_EQ(bytes[3], 0xA3);

  // Past a block's end (into the gap) or across blocks: nothing read.
  char buf[16];
  EXPECT_FALSE(m.Read(a + 4, buf, 8));
  EXPECT_FALSE(m.Read(a, buf, static_cast<std::size_t>(b - a) + 1));
  EXPECT_FALSE(m.Read(a - 1, buf, 1));
  EXPECT_FALSE(m.Write(b + 6, "abc", 3));

  m.Free(a);
  EXPECT_FALSE(m.Read(a, buf, 1));
  EXPECT_TRUE(m.Read(b, buf, 8));
  EXPECT_GT(m.Allocate(4), b);  // freed addresses are not handed out again
}

}  // namespace
}  // namespace quorvex
