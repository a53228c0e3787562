#include "model/text_util.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace quorvex {
namespace {

TEST(TextUtilTest, NumbersReadAndWrittenAsTheRuntimeDoes) {
  const std::pair<const char*, double> vals[] = {
      {"5abc", 5}, {"abc", 0},   {" 2.5", 2.5}, {"1e3", 1000}, {"1e", 1},
      {"-", 0},    {"-7-9", -7}, {".5", 0.5},   {"", 0}};
  for (const auto& [text, want] : vals) EXPECT_EQ(Val(text), want) << text;
  EXPECT_GT(Val("1e999"), 1e308);  // no infinity
  EXPECT_TRUE(IsNumeric(" 12 "));
  EXPECT_TRUE(IsNumeric("-2.5"));
  for (const char* text : {"12a", "", "-"}) EXPECT_FALSE(IsNumeric(text));

  EXPECT_EQ(NumberText(2.5), "2.5");
  EXPECT_EQ(NumberText(-3), "-3");
  EXPECT_EQ(NumberText(1e14), "100000000000000");
  EXPECT_EQ(NumberText(1e15), "1E+15");
  EXPECT_EQ(SingleText(0.1345f), "0.1345");  // not 0.134500004
  EXPECT_EQ(SingleText(0.0f), "0");
  EXPECT_EQ(RoundHalfEven(2.5), 2);
  EXPECT_EQ(RoundHalfEven(3.5), 4);
  EXPECT_EQ(RoundHalfEven(-2.5), -2);
}

TEST(TextUtilTest, CaseBlanksAndReplacing) {
  // ASCII and Latin-1 letters fold, signs such as × and ÷ and other
  // multi-byte characters do not.
  EXPECT_EQ(LCase("ZO\xC3\x8B \xC3\x97"), "zo\xC3\xAB \xC3\x97");
  EXPECT_EQ(UCase("caf\xC3\xA9 \xC3\xB7"), "CAF\xC3\x89 \xC3\xB7");
  EXPECT_EQ(LCase("\xE2\x80\xA2[A]"), "\xE2\x80\xA2[a]");
  EXPECT_TRUE(EqualsIgnoreCase("Zo\xC3\x8B", "zO\xC3\xAB"));
  EXPECT_FALSE(EqualsIgnoreCase("\xC3\x97", "\xC3\xB7"));
  EXPECT_FALSE(EqualsIgnoreCase("bob", "bobs"));
  EXPECT_TRUE(ContainsIgnoreCase("Madonna Live", "LIVE"));
  EXPECT_TRUE(ContainsIgnoreCase("x", ""));
  EXPECT_EQ(Trim("\t a b  "), "\t a b");  // spaces only, not tabs
  EXPECT_EQ(RemoveSpaces(" bob  smith "), "bobsmith");

  // The search goes on after the inserted text: no endless growth.
  EXPECT_EQ(ReplaceText("aXa", "x", "xx"), "axxa");
  EXPECT_EQ(ReplaceText("[H] and [h]", "[h]", "srv"), "srv and srv");
  EXPECT_EQ(ReplaceText("abc", "", "z"), "abc");
  EXPECT_EQ(ReplaceAll("[H] and [h]", "[h]", "srv"), "[H] and srv");
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
}

TEST(TextUtilTest, CaptionsAsTheyAreRead) {
  EXPECT_EQ(PlainCaption("serve && chat"), "serve & chat");
  EXPECT_EQ(PlainCaption("&save && exit"), "save & exit");
  EXPECT_EQ(PlainCaption("a&&&&b&"), "a&&b");
  EXPECT_EQ(UnderlinedLetter("&Start"), 's');
  EXPECT_EQ(UnderlinedLetter("&save && exit"), 's');
  // A doubled ampersand underlines nothing, nor does one at the end.
  EXPECT_EQ(UnderlinedLetter("serve && chat"), 0);
  EXPECT_EQ(UnderlinedLetter("x&&&y"), 'y');
  EXPECT_EQ(UnderlinedLetter("x&"), 0);
  EXPECT_EQ(UnderlinedLetter(""), 0);
}

TEST(TextUtilTest, LikePatterns) {
  struct Case {
    const char* text;
    const char* pattern;
    bool want;
  };
  const Case cases[] = {
      {"madonna", "m*d*a", true},
      {"madonna", "*x*", false},
      {"", "*", true},
      {"", "", true},
      {"", "?", false},
      {"cat", "c?t", true},
      {"ct", "c?t", false},
      {"a7", "a#", true},
      {"ax", "a#", false},
      {"b", "[a-c]", true},
      {"d", "[a-c]", false},
      {"B", "[a-c]", false},  // binary compare
      {"y", "[!x]", true},
      {"x", "[!x]", false},
      {"a-b", "a[-]b", true},
      {"a*b", "a[*]b", true},
      {"[x", "[x", true},  // an unclosed list is a literal "["
      {"file12.txt", "file##.*", true}};
  for (const Case& c : cases)
    EXPECT_EQ(Like(c.text, c.pattern), c.want) << c.text << " " << c.pattern;

  // A pattern that makes naive backtracking exponential.
  const std::string text(20000, 'a');
  EXPECT_FALSE(Like(text, "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_TRUE(Like(text + "b", "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

}  // namespace
}  // namespace quorvex
