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
  EXPECT_EQ(r.to, (Names{"joe", "ann", "cy"}));
  EXPECT_EQ(r.blind, Names{"bob"});
  EXPECT_EQ(r.All(), (Names{"joe", "ann", "cy", "bob"}));

  // Empty parentheses and a field of blanks name nobody; an unclosed
  // parenthesis runs to the end.
  EXPECT_TRUE(ParseRecipients("  ( ) , ").empty());
  EXPECT_TRUE(ParseRecipients("").empty());
  EXPECT_EQ(ParseRecipients("joe(ann").blind, Names{"ann"});
  EXPECT_EQ(ParseRecipients("joe(ann").to, Names{"joe"});
}

TEST(RecipientsTest, ScreenNamesIgnoreCaseAndSpaces) {
  EXPECT_EQ(ScreenNameKey("Joe Smith"), ScreenNameKey("joesmith"));
  EXPECT_EQ(ScreenNameKey("$IM_OFF"), "$im_off");
  EXPECT_NE(ScreenNameKey("joe"), ScreenNameKey("joe2"));
}

}  // namespace
}  // namespace quorvex
