#include "requests/pending_line.h"

#include <gtest/gtest.h>

#include "requests/reply_order.h"

namespace quorvex {
namespace {

TEST(PendingLineTest, BuildsAndReadsAtTheFirstSeparator) {
  EXPECT_EQ(PendingLine::Mail("bob", "12"), "bob-12");
  EXPECT_EQ(PendingLine::List("bob"), "bob-list");
  EXPECT_EQ(PendingLine::Find("amy lee", "cats-dogs"), "amy lee~cats-dogs");
  // A name with a "-" splits there, as the queue always read it.
  EXPECT_EQ(PendingLine::Requester("a-b-5", '-'), "a");
  EXPECT_EQ(PendingLine::Wanted("a-b-5", '-'), "b-5");
  EXPECT_EQ(PendingLine::Requester("amy~cats-dogs", '~'), "amy");
  EXPECT_EQ(PendingLine::Requester("nobody", '-'), "");
  EXPECT_FALSE(PendingLine::Has("nobody", '~'));
}

TEST(ReplyOrderTest, BuildsAndReadsAtTheFirstDash) {
  EXPECT_EQ(ReplyOrder::Make("bob", "thankyou"), "bob-thankyou");
  ReplyOrder order;
  ASSERT_TRUE(ReplyOrder::Read(ReplyOrder::Say("hi - all"), &order));
  EXPECT_EQ(order.sn, "send");
  EXPECT_EQ(order.kind, "hi - all");
  ASSERT_TRUE(ReplyOrder::Read("bob-", &order));
  EXPECT_EQ(order.kind, "");
  EXPECT_FALSE(ReplyOrder::Read("no dash", &order));
}

}  // namespace
}  // namespace quorvex
