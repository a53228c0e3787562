#include "client/mailbox.h"

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mail_send.h"
#include "client/test_client.h"
#include "client/window_ops.h"

namespace quorvex {
namespace {

class MailboxTest : public ClientTest {
 protected:
  // A mail queued in "Mail Waiting to be Sent" by its Send Later icon.
  void QueueMail(const std::string& to) {
    PostClickIcon(api, FindToolbarIcon(api, 2));
    Run(1);
    const Hwnd write = FindDocument(api, kWriteMail);
    ASSERT_NE(write, 0u);
    SetText(api, FindChild(api, write, "_AOL_Edit"), to);
    ClickIcon(api, FindNthChild(api, write, "_AOL_Icon", 17));
  }
};

TEST(MailTitleTest, TitleIsWhatFollowsTheSecondTab) {
  EXPECT_EQ(MailTitleOf("05/01/2004\tAnn\tsong list"), "song list");
  EXPECT_EQ(MailTitleOf("05/01/2004\tAnn\ta\tb"), "a\tb");
  EXPECT_EQ(MailTitleOf(std::string("d\ts\tso\0ng", 9)), "song");
  EXPECT_EQ(MailTitleOf("no tabs"), "no tabs");
}

TEST_F(MailboxTest, LoadOpensTheMailboxAndReadsEveryTitle) {
  AddMails(12);
  sim.AddMail("my velo-grid list number 4");
  Launch();
  StatusStrip status;
  std::vector<std::string> shown;
  status.Subscribe([&](const StatusStrip& s) { shown.push_back(s.text()); });
  ListBox lstMails("lstMails");
  LoadMailbox(c, lstMails, false, status);
  ASSERT_EQ(lstMails.Count(), 13);
  EXPECT_EQ(lstMails.Item(0), "mail 0");
  EXPECT_EQ(lstMails.Item(12), "my velo-grid list number 4");
  // The index is shown, so the first report says 0 mails.
  EXPECT_EQ(shown, (std::vector<std::string>{"status: refreshed 0 mails",
                                             "status: refreshed 10 mails"}));
  EXPECT_EQ(status.colour(), "#4488BB");

  ListBox skipping("lstMails");
  LoadMailbox(c, skipping, true, status);
  EXPECT_EQ(skipping.Count(), 12);
  EXPECT_EQ(skipping.Item(11), "mail 11");
}

TEST_F(MailboxTest, AnEmptyMailboxIsOpenedAndClosedUntilTheRunEnds) {
  Launch();
  host.SetEnd(60);
  StatusStrip status;
  ListBox lstMails("lstMails");
  EXPECT_THROW(LoadMailbox(c, lstMails, false, status), RunEnded);
  int closes = 0;
  for (const auto& m : api.messages)
    if (m.msg == win::kWmClose) ++closes;
  EXPECT_GT(closes, 10);
  EXPECT_TRUE(lstMails.Empty());
}

TEST_F(MailboxTest, CountTitleAndOpenByPosition) {
  AddMails(3);
  Launch();
  EXPECT_EQ(GetMailCount(api), 0);  // not open
  OpenOfflineMailbox(c);
  Run(1);
  EXPECT_EQ(GetMailCount(api), 3);
  EXPECT_EQ(GetMailTitle(api, 2), "mail 2");
  EXPECT_EQ(GetMailTitle(api, 3), "");  // the count itself still reads

  OpenMail(c, 5);  // fewer mails than that: nothing
  Run(1);
  EXPECT_EQ(FindOpenMail(api), 0u);
  OpenMail(c, 2);
  Run(1);
  ASSERT_NE(FindOpenMail(api), 0u);
  EXPECT_EQ(GetCaption(api, FindOpenMail(api)), "mail 2");
}

TEST_F(MailboxTest, DeleteSentMailEmptiesTheSentList) {
  sim.knobs().sent_fill_step = 2;  // the list fills in steps
  Launch();
  for (int i = 0; i < 5; ++i) {
    WriteMailNow(c, "Ann", "s", "b");
    Run(1);  // until the window has gone
  }
  ASSERT_EQ(sim.SentCount(), 5);
  DeleteSentMail(c);
  EXPECT_EQ(sim.SentCount(), 0);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
}

TEST_F(MailboxTest, DeleteSentMailWithNothingSentOnlyCloses) {
  Launch();
  DeleteSentMail(c);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
  // The menu's icon is clicked by posting; Delete would be sent a click.
  for (const auto& m : api.messages)
    if (!m.posted) {
      EXPECT_NE(m.msg, win::kWmLButtonDown) << m.hwnd;
    }
}

TEST_F(MailboxTest, DeleteMailWaitingEmptiesTheQueue) {
  Launch();
  for (int i = 0; i < 3; ++i) QueueMail("Ann");
  ASSERT_EQ(sim.WaitingCount(), 3);
  DeleteMailWaiting(c);
  EXPECT_EQ(sim.WaitingCount(), 0);
  EXPECT_EQ(FindDocument(api, kMailWaiting), 0u);
}

TEST_F(MailboxTest, DeletingStopsWhenSignedOff) {
  Launch();
  for (int i = 0; i < 3; ++i) {
    WriteMailNow(c, "Ann", "s", "b");
    Run(1);
  }
  // Signed off while the count settles, once the mailbox is there.
  std::function<void()> watch = [&] {
    if (FindTabbedMailbox(sim))
      sim.SignOffAfter(1.5);
    else
      host.Schedule(0.01, watch);
  };
  host.Schedule(0, watch);
  DeleteSentMail(c);
  EXPECT_FALSE(IsSignedOn(api));
  EXPECT_EQ(sim.SentCount(), 3);
}

TEST_F(MailboxTest, ShrinkMailWindowsMakesTheClientRememberOneByOne) {
  AddMails(3);
  Launch();
  ShrinkMailWindows(c);
  EXPECT_EQ(FindOpenMail(api), 0u);
  EXPECT_EQ(FindComposeWindow(api), 0u);
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);

  OpenMail(c, 0);
  Run(1);
  ASSERT_NE(FindOpenMail(api), 0u);
  EXPECT_EQ(sim.WindowSize(FindOpenMail(api)).x, 1);
  PostClickIcon(api, FindToolbarIcon(api, 2));
  Run(1);
  ASSERT_NE(FindDocument(api, kWriteMail), 0u);
  EXPECT_EQ(sim.WindowSize(FindDocument(api, kWriteMail)).y, 1);
}

}  // namespace
}  // namespace quorvex
