#include "model/utf8.h"

#include <gtest/gtest.h>

#include "model/text_util.h"

namespace quorvex {
namespace {

TEST(Utf8Test, EveryByteThatStartsNoCharacterIsOne) {
  struct Case {
    const char* text;
    std::size_t chars;
  } cases[] = {
      {"", 0},
      {"ab", 2},
      {"\xC3\xA9t\xE2\x80\xA2\xF0\x9D\x84\x9E", 4},  // 2-, 1-, 3-, 4-byte
      {"\xA6", 1},                                   // lone continuation
      {"\xFC"
       "e",
       2},  // lead without one
      {"a\xE2\x82"
       "b",
       4},                  // cut sequence
      {"\xC0\xAF", 2},      // overlong
      {"\xED\xA0\x80", 3},  // a surrogate
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Utf8Characters(c.text), c.chars) << c.text;
    EXPECT_EQ(Len(c.text), c.chars) << c.text;
    const std::string_view s = c.text;
    EXPECT_EQ(Utf8Offset(s, c.chars), s.size()) << c.text;
    EXPECT_EQ(Utf8Offset(s, c.chars + 1), s.size()) << c.text;
  }
  // Offsets land on the first byte of each character.
  const std::string_view s =
      "a\xE2\x82\xC3\xA9"
      "b";
  EXPECT_EQ(Utf8Offset(s, 0), 0u);
  EXPECT_EQ(Utf8Offset(s, 1), 1u);
  EXPECT_EQ(Utf8Offset(s, 2), 2u);
  EXPECT_EQ(Utf8Offset(s, 3), 3u);
  EXPECT_EQ(Utf8Offset(s, 4), 5u);
}

}  // namespace
}  // namespace quorvex
