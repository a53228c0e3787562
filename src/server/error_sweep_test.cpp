#include "server/error_sweep.h"

#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/window_ops.h"
#include "server/forward_job.h"
#include "server/forward_job_test_rig.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

TEST(FullMailboxNamesTest, NamesAreCutBeforeTheDashOfEachLine) {
  EXPECT_EQ(FullMailboxNames("Bob - Mailbox is full\r\n"
                             "Bob Smith - Mailbox is full\n"
                             "no reason given\r\n"
                             "Screen Name: Ann-full"),
            (Lines{"bob", "bob smith", "ann"}));
  EXPECT_EQ(FullMailboxNames(" - nobody"), Lines{});
  EXPECT_EQ(FullMailboxNames(""), Lines{});
}

class ErrorSweepTest : public ForwardJobRig {
 protected:
  // A mail written by hand and sent now, as the user might.
  void WriteByHand(const std::string& to) {
    PostClickIcon(sim, FindToolbarIcon(sim, 2));
    Run(1);
    const Hwnd write = FindDocument(sim, kWriteMail);
    ASSERT_NE(write, 0u);
    SetText(sim, FindChild(sim, write, "_AOL_Edit"), to);
    ClickIcon(sim, FindNthChild(sim, write, "_AOL_Icon", 16));
  }
};

TEST_F(ErrorSweepTest, TheSecondClockAnswersAFullMailboxOutsideAForward) {
  sim.SetFullMailbox("bob");
  Launch(3);
  Queue({"bob-1", "bob~x", "amy-2"});
  WriteByHand("bob");
  Run(3);
  EXPECT_EQ(FindErrorWindow(sim), 0u);
  EXPECT_EQ(Pending(), (Lines{"bob~x", "amy-2"}));
  EXPECT_EQ(frm.lblPending.caption(), "pending: 2");
  EXPECT_EQ(frm.ReplyQueue.Items(), Lines{"bob-mailbox"});
  EXPECT_EQ(statuses, Lines{"status: pausing 2 secs"});
  EXPECT_FALSE(frm.in_sweep);
}

TEST_F(ErrorSweepTest, AMailTooLongToSendEndsTheForwardWithoutANote) {
  sim.knobs().max_body_chars = 40;
  Launch(3);
  Queue({"bob-2", "amy-3"});
  RunMailJob(frm, c);
  EXPECT_TRUE(seen.mails.empty());
  EXPECT_EQ(FindClientBox(sim, kTooLongBoxText), 0u);
  EXPECT_EQ(FindForwardWindow(sim), 0u);
  EXPECT_TRUE(Said().empty());
  EXPECT_FALSE(frm.forward_error);
  // Not a dead mail: it may be asked for again.
  EXPECT_TRUE(frm.dead_mails.empty());
  EXPECT_EQ(Pending(), Lines{"amy-3"});

  sim.knobs().max_body_chars = 0;
  RunMailJob(frm, c);
  EXPECT_EQ(Said(), Lines{"amy mail <U>3</U> sent"});
}

}  // namespace
}  // namespace quorvex
