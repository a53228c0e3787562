#include "server/forward_job.h"

#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/mailbox.h"
#include "client/window_ops.h"
#include "server/forward_job_test_rig.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ForwardJobTest : public ForwardJobRig {};

TEST_F(ForwardJobTest, OneForwardServesEveryoneWhoAskedForTheMail) {
  frm.settings.LAscii = "<";
  frm.settings.RAscii = ">";
  frm.frmMessages.mail_text().text = "enjoy";
  Launch(8);
  Queue({"bob-5", "amy-3", "joe smith-5"});
  RunMailJob(frm, c);

  ASSERT_EQ(seen.mails.size(), 1u);
  EXPECT_EQ(seen.mails[0].to, "(bob)(joe smith)");
  EXPECT_EQ(seen.mails[0].body,
            "<font face=tahoma color=#003377></B></U></I><quorvex\xC2\xB0"
            "\xC2\xB7\xC2\xB2 mail server -by- kestrin>\r\n"
            "<mail number <B><U>5</B></U>>\r\nenjoy\r\n");
  EXPECT_EQ(Forwarded("bob"), Lines{"mail 5"});
  EXPECT_EQ(Forwarded("joe smith"), Lines{"mail 5"});
  // One notify line, naming the first; the chat adds the decorations.
  EXPECT_EQ(Said(), Lines{"<bob mail <U>5</U> sent>"});
  EXPECT_EQ(Pending(), Lines{"amy-3"});
  EXPECT_EQ(frm.lblSent.caption(), "total: 2");
  EXPECT_EQ(statuses, (Lines{"status: opening mail", "status: forwarding mail",
                             "status: sending mail", "status: sent mail",
                             "status: scanning chat"}));
  EXPECT_EQ(FindForwardWindow(sim), 0u);
  RunMailJob(frm, c);
  EXPECT_EQ(Forwarded("amy"), Lines{"mail 3"});
}

TEST_F(ForwardJobTest, NotifyTextAndQuietForwards) {
  EXPECT_EQ(NotifyText(frm), "sent");
  frm.frmMessages.lstChat.Add("done");
  EXPECT_EQ(NotifyText(frm), "done");

  frm.settings.MailMethod = false;  // send now
  frm.settings.MailNotify = false;
  Launch(3);
  Queue({"bob-2", "amy-list", "amy~cats"});
  RunMailJob(frm, c);
  ASSERT_EQ(seen.mails.size(), 1u);
  EXPECT_TRUE(seen.mails[0].send_now);
  EXPECT_EQ(Forwarded("bob"), Lines{"mail 2"});
  EXPECT_TRUE(Said().empty());
  // Lists and finds are other steps' work.
  RunMailJob(frm, c);
  EXPECT_EQ(seen.mails.size(), 1u);
  EXPECT_EQ(Pending(), (Lines{"amy-list", "amy~cats"}));
}

TEST_F(ForwardJobTest, AKnownDeadMailIsAnsweredWithoutOpeningTheMailbox) {
  frm.settings.MailNotify = false;
  Launch(8);
  frm.dead_mails = {"3", "7"};
  Queue({"joe-7", "ann-7", "bob-2"});
  RunMailJob(frm, c);
  EXPECT_EQ(Said(), Lines{"joe mail <U>7</U> is a dead mail"});
  EXPECT_TRUE(seen.mails.empty());
  EXPECT_TRUE(statuses.empty());  // not even "status: opening mail"
  EXPECT_EQ(Pending(), Lines{"bob-2"});
}

TEST_F(ForwardJobTest, ADeadMailIsAnnouncedCachedAndItsOtherRequestsDropped) {
  sim.SetDeadMail(4);
  Launch(6);
  for (bool send_later : {true, false}) {
    SCOPED_TRACE(send_later);
    frm.settings.MailMethod = send_later;
    frm.dead_mails.clear();
    frm.lstPending().Clear();
    seen.chats.clear();
    Queue({"bob-4", "amy-2", "ann-4"});
    // Requests that come in while the mail is being forwarded.
    host.Schedule(0.1, [this] { Queue({"zed-4", "amy~4", "lee-4"}); });
    RunMailJob(frm, c);

    EXPECT_EQ(Said(), (Lines{"bob mail <U>4</U> is a dead mail",
                             "zed mail <U>4</U> is a dead mail",
                             "lee mail <U>4</U> is a dead mail"}));
    EXPECT_EQ(frm.dead_mails, Lines{"4"});
    EXPECT_EQ(Pending(), (Lines{"amy-2", "amy~4"}));
    EXPECT_EQ(frm.lblPending.caption(), "pending: 2");
    EXPECT_TRUE(Shown("status: mail 4 is a dead mail"));
    EXPECT_FALSE(frm.forward_error);
    EXPECT_EQ(FindForwardWindow(sim), 0u);
    EXPECT_TRUE(Forwarded("bob").empty());
  }
}

TEST_F(ForwardJobTest, FullMailboxesAreDroppedAndToldWhileOthersGetTheMail) {
  sim.SetFullMailbox("bob");
  Launch(8);
  Queue({"bob-5", "amy-5", "bob-6", "bob-7", "bob~cats", "amy-8"});
  RunMailJob(frm, c);

  EXPECT_EQ(Forwarded("amy"), Lines{"mail 5"});
  EXPECT_TRUE(Forwarded("bob").empty());
  // Of bob's two adjacent requests only the first goes; finds stay.
  EXPECT_EQ(Pending(), (Lines{"bob-7", "bob~cats", "amy-8"}));
  EXPECT_EQ(frm.ReplyQueue.Items(), Lines{"bob-mailbox"});
  // The others were served, so the room hears it.
  EXPECT_EQ(Said(), Lines{"bob mail <U>5</U> sent"});
  EXPECT_TRUE(Shown("status: pausing 2 secs"));
  EXPECT_EQ(FindErrorWindow(sim), 0u);
}

TEST_F(ForwardJobTest, SigningOffEndsTheStepAndLosesTheGroup) {
  Launch(8);
  Queue({"bob-5", "amy-5", "joe-6"});
  sim.SignOffAfter(0.01);
  RunMailJob(frm, c);
  EXPECT_TRUE(seen.mails.empty());
  EXPECT_TRUE(Said().empty());
  EXPECT_EQ(Pending(), Lines{"joe-6"});
  EXPECT_EQ(frm.counters.session, 2);  // taken is counted, sent or not
  RunMailJob(frm, c);                  // already signed off
  EXPECT_TRUE(Pending().empty());
  EXPECT_TRUE(seen.mails.empty());
}

TEST_F(ForwardJobTest, OnlyTheRequestedMailIsForwardedWhateverIsOpen) {
  Launch(4);
  OpenMail(c, 0);  // mail 1, opened by hand and left open
  Run(1);
  ASSERT_NE(FindOpenMail(sim), 0u);
  Queue({"bob-3", "amy-4", "kim-9"});
  RunMailJob(frm, c);
  EXPECT_EQ(Forwarded("bob"), Lines{"mail 3"});
  // A mailbox closed by hand is opened again.
  CloseWindow(sim, FindDocument(sim, kIncomingMail));
  RunMailJob(frm, c);
  EXPECT_EQ(Forwarded("amy"), Lines{"mail 4"});
  // A number past the end of the mailbox is dropped.
  RunMailJob(frm, c);
  EXPECT_TRUE(Pending().empty());
  EXPECT_EQ(seen.mails.size(), 2u);
}

}  // namespace
}  // namespace quorvex
