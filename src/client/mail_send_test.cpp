#include "client/mail_send.h"

#include "model/text_util.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

class MailSendTest : public ClientTest {
 protected:
  void SetUp() override {
    AddMails(3);
    c.expand_inserts = [](const std::string& s) {
      return ReplaceText(s, "[s]", "42");
    };
  }
};

TEST_F(MailSendTest, ForwardAndWriteFillTheWindowAndSend) {
  Launch();
  ForwardMailNow(c, "(Ann)(Bob)", OpenForwardWindow(1), "body [s]");
  // The Status window that shows while sending is made tiny.
  const Hwnd status = FindDocument(api, "Status");
  ASSERT_NE(status, 0u);
  EXPECT_EQ(sim.WindowSize(status).x, 1);
  Run(2);
  EXPECT_EQ(FindComposeWindow(api), 0u);
  // Send Now, then Send Later: still sent once.
  ForwardMail(c, "(Ann)", OpenForwardWindow(0), "body");
  Run(2);
  EXPECT_EQ(sim.WaitingCount(), 0);
  WriteMailNow(c, "Ann", "the list", "items [s]");
  Run(1);
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);
  WriteMail(c, "Bob", "s", "b");
  Run(1);
  // A forward's subject is its caption "Fwd: mail 1" from the fifth
  // character.
  EXPECT_EQ(mails,
            (std::vector<MailSeen>{{"(Ann)(Bob)", " mail 1", "body 42", true},
                                   {"(Ann)", " mail 0", "body", true},
                                   {"Ann", "the list", "items 42", true},
                                   {"Bob", "s", "b", true}}));
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 3u);
  EXPECT_EQ(sim.Mailboxes()["Bob"].size(), 2u);
}

TEST_F(MailSendTest, AForwardWindowIsFilledOnlyWhenSendNowIsThere) {
  sim.SetLatency(1.0);  // its icons get their texts a second after it opens
  Launch();
  const Hwnd forward = OpenForwardWindow(0);
  ASSERT_EQ(GetText(api, FindNthChild(api, forward, "_AOL_Icon", 1)), "");
  std::string seen = "unread";
  host.Schedule(
      0.5, [&] { seen = GetText(api, FindChild(api, forward, "_AOL_Edit")); });
  ForwardMailNow(c, "(Ann)", forward, "body");
  EXPECT_EQ(seen, "");
  Run(2);
  EXPECT_EQ(mails.size(), 1u);

  // Signed off while it waits: it gives up at once.
  const Hwnd second = OpenForwardWindow(1);
  const double start = host.Elapsed();
  sim.SignOffAfter(0.3);
  EXPECT_FALSE(ForwardMailNow(c, "(Ann)", second, "body"));
  EXPECT_LT(host.Elapsed() - start, 0.5);
  Run(3);
  EXPECT_EQ(mails.size(), 1u);
}

TEST_F(MailSendTest, AForwardWindowClosedBeforeItsIconsCameIsGivenUp) {
  // A start clears the client's mail windows while a forward waits.
  sim.SetLatency(1.0);
  Launch();
  const Hwnd forward = OpenForwardWindow(0);
  host.Schedule(0.3, [&] { CloseWindow(api, forward); });
  const double start = host.Elapsed();
  EXPECT_FALSE(ForwardMail(c, "(Ann)", forward, "body"));
  EXPECT_LT(host.Elapsed() - start, 0.5);
  Run(3);
  EXPECT_TRUE(mails.empty());
}

TEST_F(MailSendTest, EachWriteWaitsForThePreviousWindowToGo) {
  Launch();
  WriteMailNow(c, "Ann", "one", "first");
  WriteMail(c, "Bob", "two", "second");
  WriteMailNow(c, "Ann", "three", "third");
  Run(3);
  ASSERT_EQ(mails.size(), 3u);
  EXPECT_EQ(mails[0], (MailSeen{"Ann", "one", "first", true}));
  EXPECT_EQ(mails[1], (MailSeen{"Bob", "two", "second", true}));
  EXPECT_EQ(mails[2], (MailSeen{"Ann", "three", "third", true}));

  // A window without recipients is no mail going out: closed at once.
  PostClickIcon(api, FindToolbarIcon(api, aol::kToolbarWriteIcon));
  Run(1);
  ASSERT_NE(FindWriteMail(api), 0u);
  double start = host.Elapsed();
  WriteMailNow(c, "Bob", "four", "fourth");
  EXPECT_LT(host.Elapsed() - start, 2);
  Run(2);
  ASSERT_EQ(mails.size(), 4u);
  EXPECT_EQ(mails[3], (MailSeen{"Bob", "four", "fourth", true}));

  // One addressed but never sent (every click lost) is sent for it, at a
  // pace, before the next mail is written.
  PostClickIcon(api, FindToolbarIcon(api, aol::kToolbarWriteIcon));
  Run(1);
  SetText(api, FindNthChild(api, FindWriteMail(api), aol::kEditClass, 1),
          "Cal");
  start = host.Elapsed();
  WriteMailNow(c, "Ann", "five", "fifth");
  EXPECT_GE(host.Elapsed() - start, kAskAgainSeconds);
  EXPECT_LT(host.Elapsed() - start, kAskAgainSeconds + 2);
  Run(2);
  ASSERT_EQ(mails.size(), 6u);
  EXPECT_EQ(mails[4].to, "Cal");
  EXPECT_EQ(mails[5], (MailSeen{"Ann", "five", "fifth", true}));
}

TEST_F(MailSendTest, UntilSentOutlastsLostClicks) {
  sim.knobs().lost_click_chance = 1;  // every click while busy is lost
  sim.knobs().busy = 2;
  Launch();
  WriteMailUntilSent(c, "Joe Smith", "my list", "1. mail 0");
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);
  EXPECT_GT(Count(win::kWmLButtonDown), 2);
  Run(1);
  ASSERT_EQ(mails.size(), 1u);
  // Mailed to oneself, it comes back into the mailbox.
  EXPECT_EQ(sim.IncomingTitles().back(), "my list");
}

}  // namespace
}  // namespace quorvex
