#include "client/mailbox.h"

#include "client/mail_send.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

using MailboxTest = ClientTest;

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
  EXPECT_EQ(lstMails.Item(12), "my velo-grid list number 4");
  // The index is shown, so the first report says 0 mails.
  EXPECT_EQ(shown, (std::vector<std::string>{"status: refreshed 0 mails",
                                             "status: refreshed 10 mails"}));
  ListBox skipping("lstMails");
  LoadMailbox(c, skipping, true, status);
  EXPECT_EQ(skipping.Count(), 12);
  EXPECT_TRUE(IsForeignListTitle("velo-grid list number 1"));
  EXPECT_FALSE(IsForeignListTitle("velo-grid list number"));
  EXPECT_FALSE(IsForeignListTitle("Velo-Grid list number 1"));

  // By position; past the end nothing opens.
  EXPECT_EQ(GetMailCount(api), 13);
  EXPECT_EQ(GetMailTitle(api, 2), "mail 2");
  EXPECT_EQ(GetMailTitle(api, 13), "");
  OpenMail(c, 13);
  Run(1);
  EXPECT_EQ(FindOpenMail(api), 0u);
  OpenMail(c, 2);
  Run(1);
  ASSERT_NE(FindOpenMail(api), 0u);
  EXPECT_EQ(GetCaption(api, FindOpenMail(api)), "mail 2");
}

TEST_F(MailboxTest, PositionsSkipOtherServersListsWhereverTheyStand) {
  sim.AddMail("velo-grid list number 1");
  AddMails(2);
  sim.AddMail("old velo-grid list number 2");
  AddMails(1, "tune ");
  sim.AddMail("velo-grid list number 3");
  Launch();
  StatusStrip status;
  ListBox lstMails("lstMails");
  std::vector<int> positions;
  LoadMailbox(c, lstMails, true, status, &positions);
  EXPECT_EQ(lstMails.Items(),
            (std::vector<std::string>{"mail 0", "mail 1", "tune 0"}));
  EXPECT_EQ(positions, (std::vector<int>{1, 2, 4}));
  // Kept, every title has its own position.
  positions.clear();
  ListBox all("lstMails");
  LoadMailbox(c, all, false, status, &positions);
  EXPECT_EQ(positions, (std::vector<int>{0, 1, 2, 3, 4, 5}));
}

TEST_F(MailboxTest, AnEmptyMailboxIsOpenedAndClosedUntilTheRunEnds) {
  Launch();
  EXPECT_EQ(GetMailCount(api), 0);  // not open
  host.SetEnd(60);
  StatusStrip status;
  ListBox lstMails("lstMails");
  EXPECT_THROW(LoadMailbox(c, lstMails, false, status), RunEnded);
  EXPECT_GT(Count(win::kWmClose), 10);
  EXPECT_TRUE(lstMails.Empty());
}

TEST_F(MailboxTest, DeletingEmptiesTheSentListAndTheQueue) {
  Launch();
  // With nothing sent it only closes; the menu's icon is clicked by
  // posting, Delete would be sent a click.
  DeleteSentMail(c);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
  for (const RecordedMessage& m : api.messages)
    EXPECT_FALSE(!m.posted && m.msg == win::kWmLButtonDown) << m.hwnd;

  sim.knobs().sent_fill_step = 2;  // the list fills in steps
  for (int i = 0; i < 5; ++i) {
    WriteMailNow(c, "Ann", "s", "b");
    Run(1);  // until the window has gone
  }
  for (int i = 0; i < 3; ++i) {  // queued by Send Later
    PostClickIcon(api, FindToolbarIcon(api, 2));
    Run(1);
    const Hwnd write = FindDocument(api, kWriteMail);
    SetText(api, FindChild(api, write, "_AOL_Edit"), "Ann");
    ClickIcon(api, FindNthChild(api, write, "_AOL_Icon", 17));
  }
  ASSERT_EQ(sim.SentCount(), 5);
  ASSERT_EQ(sim.WaitingCount(), 3);
  DeleteSentMail(c);
  EXPECT_EQ(sim.SentCount(), 0);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
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
  When([&] { return FindTabbedMailbox(sim) != 0; },
       [&] { sim.SignOffAfter(1.5); }, 0.01);
  DeleteSentMail(c);
  EXPECT_FALSE(IsSignedOn(api));
  EXPECT_EQ(sim.SentCount(), 3);
  // Signed off before they open, neither list is waited for.
  DeleteSentMail(c);
  DeleteMailWaiting(c);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
  EXPECT_EQ(FindDocument(api, kMailWaiting), 0u);
}

TEST_F(MailboxTest, ShrinkMailWindowsMakesTheClientRememberOneByOne) {
  AddMails(3);
  Launch();
  ShrinkMailWindows(c);
  EXPECT_EQ(FindOpenMail(api), 0u);
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
