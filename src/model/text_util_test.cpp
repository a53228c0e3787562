#include "model/text_util.h"

#include <gtest/gtest.h>

#include <string>

namespace quorvex {
namespace {

TEST(TextUtilTest, ValReadsTheLeadingNumber) {
  EXPECT_EQ(Val("5abc"), 5);
  EXPECT_EQ(Val("abc"), 0);
  EXPECT_EQ(Val(" 2.5"), 2.5);
  EXPECT_EQ(Val("1e3"), 1000);
  EXPECT_EQ(Val("1e"), 1);  // an exponent without digits is not read
  EXPECT_EQ(Val("-"), 0);
  EXPECT_EQ(Val("-7-9"), -7);
  EXPECT_EQ(Val(".5"), 0.5);
  EXPECT_EQ(Val(""), 0);
  EXPECT_GT(Val("1e999"), 1e308);  // no infinity

  EXPECT_TRUE(IsNumeric(" 12 "));
  EXPECT_TRUE(IsNumeric("-2.5"));
  EXPECT_FALSE(IsNumeric("12a"));
  EXPECT_FALSE(IsNumeric(""));
  EXPECT_FALSE(IsNumeric("-"));
}

TEST(TextUtilTest, NumbersWrittenAsTheRuntimeWritesThem) {
  EXPECT_EQ(NumberText(7), "7");
  EXPECT_EQ(NumberText(2.5), "2.5");
  EXPECT_EQ(NumberText(-3), "-3");
  EXPECT_EQ(NumberText(0), "0");
  EXPECT_EQ(NumberText(1e14), "100000000000000");
  EXPECT_EQ(NumberText(1e15), "1E+15");
  EXPECT_EQ(SingleText(0.1345f), "0.1345");
  EXPECT_EQ(SingleText(0.3567f), "0.3567");
  EXPECT_EQ(SingleText(0.6899f), "0.6899");
  EXPECT_EQ(SingleText(0.0f), "0");

  EXPECT_EQ(RoundHalfEven(2.5), 2);
  EXPECT_EQ(RoundHalfEven(3.5), 4);
  EXPECT_EQ(RoundHalfEven(-2.5), -2);
  EXPECT_EQ(RoundHalfEven(2.6), 3);
}

TEST(TextUtilTest, CaseAndBlanks) {
  EXPECT_EQ(LCase("AbC\xC3\x89"), "abc\xC3\xA9");  // É folds too
  EXPECT_EQ(UCase("sn-7"), "SN-7");
  EXPECT_TRUE(EqualsIgnoreCase("Bob Smith", "bob SMITH"));
  EXPECT_FALSE(EqualsIgnoreCase("bob", "bobs"));
  EXPECT_TRUE(ContainsIgnoreCase("Madonna Live", "LIVE"));
  EXPECT_TRUE(ContainsIgnoreCase("x", ""));
  EXPECT_EQ(Trim("\t a b  "), "\t a b");  // spaces only, not tabs
  EXPECT_EQ(RemoveSpaces(" bob  smith "), "bobsmith");
  EXPECT_TRUE(StartsWith("/srv send", "/srv"));
  EXPECT_FALSE(StartsWith("/s", "/srv"));
}

TEST(TextUtilTest, Replacing) {
  // The search goes on after the inserted text: no endless growth.
  EXPECT_EQ(ReplaceText("aXa", "x", "xx"), "axxa");
  EXPECT_EQ(ReplaceText("[H] and [h]", "[h]", "srv"), "srv and srv");
  EXPECT_EQ(ReplaceText("abc", "", "z"), "abc");
  EXPECT_EQ(ReplaceAll("[H] and [h]", "[h]", "srv"), "[H] and srv");
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
}

TEST(TextUtilTest, LikePatterns) {
  EXPECT_TRUE(Like("madonna", "mad*"));
  EXPECT_TRUE(Like("madonna", "*onna"));
  EXPECT_TRUE(Like("madonna", "m*d*a"));
  EXPECT_FALSE(Like("madonna", "*x*"));
  EXPECT_TRUE(Like("", "*"));
  EXPECT_TRUE(Like("", ""));
  EXPECT_FALSE(Like("", "?"));
  EXPECT_TRUE(Like("cat", "c?t"));
  EXPECT_FALSE(Like("ct", "c?t"));
  EXPECT_TRUE(Like("a7", "a#"));
  EXPECT_FALSE(Like("ax", "a#"));
  EXPECT_TRUE(Like("b", "[a-c]"));
  EXPECT_FALSE(Like("d", "[a-c]"));
  EXPECT_FALSE(Like("B", "[a-c]"));  // binary compare
  EXPECT_TRUE(Like("y", "[!x]"));
  EXPECT_FALSE(Like("x", "[!x]"));
  EXPECT_TRUE(Like("a-b", "a[-]b"));
  EXPECT_TRUE(Like("a*b", "a[*]b"));
  EXPECT_TRUE(Like("[x", "[x"));  // an unclosed list is a literal "["
  EXPECT_TRUE(Like("file12.txt", "file##.*"));

  // A pattern that makes naive backtracking exponential.
  const std::string text(20000, 'a');
  EXPECT_FALSE(Like(text, "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_TRUE(Like(text + "b", "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

}  // namespace
}  // namespace quorvex

namespace quorvex {
namespace {

TEST(CaseFoldingTest, FoldsAsciiAndLatinOneLettersButNotSigns) {
  EXPECT_EQ(LCase("ZO\xC3\x8B \xC3\x97"), "zo\xC3\xAB \xC3\x97");  // ZOË × -> zoë ×
  EXPECT_EQ(UCase("caf\xC3\xA9 \xC3\xB7"), "CAF\xC3\x89 \xC3\xB7");  // café ÷ -> CAFÉ ÷
  EXPECT_TRUE(EqualsIgnoreCase("Zo\xC3\x8B", "zO\xC3\xAB"));
  EXPECT_FALSE(EqualsIgnoreCase("\xC3\x97", "\xC3\xB7"));
  // Other multi-byte characters pass through untouched.
  EXPECT_EQ(LCase("\xE2\x80\xA2[A]"), "\xE2\x80\xA2[a]");
}

}  // namespace
}  // namespace quorvex
