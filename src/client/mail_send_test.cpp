#include "client/mail_send.h"

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mailbox.h"
#include "client/test_client.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"

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
  // Opens mail `position` and clicks its Forward icon; the forward window
  // is awaited by the caller.
  void ClickForward(int position) {
    OpenOfflineMailbox(c);
    Run(1);
    OpenMail(c, position);
    WaitUntil(host, [&] { return FindOpenMail(api) != 0; });
    ClickIcon(api, FindNthChild(api, FindOpenMail(api), "_AOL_Icon", 8));
  }
  Hwnd AwaitForwardWindow() {
    WaitUntil(host, [&] { return FindComposeWindow(api) != 0; });
    return FindComposeWindow(api);
  }
  int SentClicks() const {
    int n = 0;
    for (const auto& m : api.messages)
      if (!m.posted && m.msg == win::kWmLButtonDown) ++n;
    return n;
  }
};

TEST_F(MailSendTest, ForwardNowFillsTheWindowAndSends) {
  Launch();
  ClickForward(1);
  const Hwnd forward = AwaitForwardWindow();
  ForwardMailNow(c, "(Ann)(Bob)", forward, "body [s]");
  // The Status window that shows while sending is made tiny.
  const Hwnd status = FindDocument(api, "Status");
  ASSERT_NE(status, 0u);
  EXPECT_EQ(sim.WindowSize(status).x, 1);
  Run(2);
  ASSERT_EQ(mails.size(), 1u);
  EXPECT_EQ(mails[0].to, "(Ann)(Bob)");
  // The subject is the caption "Fwd: mail 1" from its fifth character.
  EXPECT_EQ(mails[0].subject, " mail 1");
  EXPECT_EQ(mails[0].body, "body 42");
  EXPECT_TRUE(mails[0].now);
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);
  EXPECT_EQ(sim.Mailboxes()["Bob"].size(), 1u);
  EXPECT_EQ(FindComposeWindow(api), 0u);
}

TEST_F(MailSendTest, ForwardNowThenLaterSendsOnce) {
  Launch();
  ClickForward(0);
  ForwardMail(c, "(Ann)", AwaitForwardWindow(), "body");
  Run(2);
  ASSERT_EQ(mails.size(), 1u);
  EXPECT_TRUE(mails[0].now);
  EXPECT_EQ(sim.WaitingCount(), 0);
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);
}

TEST_F(MailSendTest, AForwardWindowIsFilledOnlyWhenSendNowIsThere) {
  sim.SetLatency(1.0);  // its icons get their texts a second after it opens
  Launch();
  ClickForward(0);
  const Hwnd forward = AwaitForwardWindow();
  const Hwnd recipients = FindChild(api, forward, "_AOL_Edit");
  ASSERT_EQ(GetText(api, FindNthChild(api, forward, "_AOL_Icon", 1)), "");
  std::string seen = "unread";
  host.Schedule(0.5, [&] { seen = GetText(api, recipients); });
  ForwardMailNow(c, "(Ann)", forward, "body");
  EXPECT_EQ(seen, "");
  Run(2);
  EXPECT_EQ(mails.size(), 1u);
}

TEST_F(MailSendTest, ForwardGivesUpWhenSignedOffWhileWaiting) {
  sim.SetLatency(1.0);
  Launch();
  ClickForward(0);
  const Hwnd forward = AwaitForwardWindow();
  const double start = host.Elapsed();
  sim.SignOffAfter(0.3);
  ForwardMailNow(c, "(Ann)", forward, "body");
  EXPECT_LT(host.Elapsed() - start, 0.5);
  Run(3);
  EXPECT_TRUE(mails.empty());
}

TEST_F(MailSendTest, WriteMailVariants) {
  Launch();
  WriteMailNow(c, "Ann", "the list", "items [s]");
  Run(1);
  ASSERT_EQ(mails.size(), 1u);
  EXPECT_EQ(mails[0].to, "Ann");
  EXPECT_EQ(mails[0].subject, "the list");
  EXPECT_EQ(mails[0].body, "items 42");
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);

  WriteMail(c, "Bob", "s", "b");
  Run(1);
  ASSERT_EQ(mails.size(), 2u);
  EXPECT_EQ(sim.Mailboxes()["Bob"].size(), 1u);
}

TEST_F(MailSendTest, UntilSentOutlastsLostClicks) {
  sim.knobs().lost_click_chance = 1;  // every click while busy is lost
  sim.knobs().busy = 2;
  Launch();
  WriteMailUntilSent(c, "Joe Smith", "my list", "1. mail 0");
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);
  EXPECT_GT(SentClicks(), 2);
  Run(1);
  ASSERT_EQ(mails.size(), 1u);
  // Mailed to oneself, it comes back into the mailbox.
  EXPECT_EQ(sim.IncomingTitles().back(), "my list");
}

}  // namespace
}  // namespace quorvex
