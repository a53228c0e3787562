// The recipients field and the rich edit's line messages.
#include "sim/recipients.h"

#include <gtest/gtest.h>

#include "sim/rich_text.h"

namespace quorvex {
namespace {

using Names = std::vector<std::string>;

TEST(RecipientsTest, CommasSeparateAndParenthesesMakeBlindCopies) {
  Recipients r = ParseRecipients("(ann)(bob smith)(cy)");
  EXPECT_EQ(r.to, Names{});
  EXPECT_EQ(r.blind, (Names{"ann", "bob smith", "cy"}));

  r = ParseRecipients(" joe ,ann,, (bob) ,cy");
  EXPECT_EQ(r.All(), (Names{"joe", "ann", "cy", "bob"}));

  // Empty parentheses and a field of blanks name nobody; an unclosed
  // parenthesis runs to the end.
  EXPECT_TRUE(ParseRecipients("  ( ) , ").empty());
  r = ParseRecipients("joe(ann");
  EXPECT_EQ(r.to, Names{"joe"});
  EXPECT_EQ(r.blind, Names{"ann"});
  // Names are keyed ignoring case and spaces.
  EXPECT_EQ(ScreenNameKey("Joe Smith"), ScreenNameKey("joesmith"));
}

TEST(RichTextTest, ChatIsShownWithItsTagsRendered) {
  EXPECT_EQ(RenderedChat("Host:<font color=#003377 face=\"tahoma\">"
                         "\xC2\xB7\xE2\x80\xA2[dave list <U>1</U> sent]"
                         "\xE2\x80\xA2\xC2\xB7"),
            "Host:\xC2\xB7\xE2\x80\xA2[dave list 1 sent]\xE2\x80\xA2\xC2\xB7");
  EXPECT_EQ(RenderedChat("<B><U>12</B></U> mails sent"), "12 mails sent");
  // What opens no tag is text: a "<" before a digit, a blank or the end,
  // an entity, a tag never closed.
  EXPECT_EQ(RenderedChat("i <3 it, a < b & c &amp; d <"),
            "i <3 it, a < b & c &amp; d <");
  EXPECT_EQ(RenderedChat("</"), "</");
  EXPECT_EQ(RenderedChat("x <b never closed"), "x <b never closed");
  EXPECT_EQ(RenderedChat("<i>a</i>>"), "a>");
  EXPECT_EQ(RenderedChat(""), "");
}

TEST(RichTextTest, LineMessagesOnOneAndSeveralLines) {
  // One line: line 1 does not exist, so a reader of line 1 gets nothing.
  EXPECT_EQ(RichLineIndex("hello", 1), -1);
  EXPECT_EQ(RichLineLength("hello", -1), 0);
  EXPECT_EQ(RichGetLine("hello", 1, 100), "");

  // All three breaks count; a break at the end opens an empty last line.
  const std::string two = "first\r\nsecond\rthird\n";
  EXPECT_EQ(RichLineIndex(two, 1), 7);
  EXPECT_EQ(RichLineIndex(two, 2), 14);
  EXPECT_EQ(RichLineIndex(two, 3), 20);
  EXPECT_EQ(RichLineIndex(two, 4), -1);
  EXPECT_EQ(RichLineIndex(two, -1), 20);  // the caret's line: the last
  EXPECT_EQ(RichLineLength(two, 9), 6);   // any index within the line
  EXPECT_EQ(RichGetLine(two, 1, 3), "sec");
  EXPECT_EQ(RichGetLine(two, 3, 100), "");
}

}  // namespace
}  // namespace quorvex
