#include "sim/recipients.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace quorvex
