#include "client/error_boxes.h"

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mail_send.h"
#include "client/mailbox.h"
#include "client/test_client.h"
#include "client/wait.h"
#include "client/window_ops.h"

namespace quorvex {
namespace {

class ErrorBoxesTest : public ClientTest {
 protected:
  void Forward(int position, const std::string& to) {
    OpenOfflineMailbox(c);
    Run(1);
    OpenMail(c, position);
    WaitUntil(host, [&] { return FindOpenMail(api) != 0; });
    ClickIcon(api, FindNthChild(api, FindOpenMail(api), "_AOL_Icon", 8));
    WaitUntil(host, [&] { return FindComposeWindow(api) != 0; });
    ForwardMailNow(c, to, FindComposeWindow(api), "body");
    Run(2);
  }
};

TEST_F(ErrorBoxesTest, DeadMailBoxIsFoundByItsTextAndPressed) {
  AddMails(2);
  sim.SetDeadMail(2);
  Launch();
  Forward(1, "(Ann)");
  EXPECT_EQ(FindClientBox(api, kTooLongBoxText), 0u);
  const Hwnd box = FindClientBox(api, kDeadMailBoxText);
  ASSERT_NE(box, 0u);
  const Hwnd ok = FindDialogButton(api, box, "OK");
  ASSERT_NE(ok, 0u);
  PressButton(api, ok);
  EXPECT_FALSE(api.IsWindow(box));
  EXPECT_TRUE(mails.empty());
  // The forward window stays for the error handler to close.
  EXPECT_NE(FindComposeWindow(api), 0u);
}

TEST_F(ErrorBoxesTest, FullMailboxErrorListsTheNames) {
  AddMails(1);
  sim.SetFullMailbox("Bob");
  Launch();
  Forward(0, "(Ann)(Bob)");
  const Hwnd error = FindErrorWindow(api);
  ASSERT_NE(error, 0u);
  EXPECT_EQ(GetErrorText(api, error), "Bob - Mailbox is full");
  DismissErrorWindow(api, error);
  EXPECT_EQ(FindErrorWindow(api), 0u);
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);
}

TEST_F(ErrorBoxesTest, TooLongBox) {
  AddMails(1);
  sim.knobs().max_body_chars = 2;
  Launch();
  Forward(0, "(Ann)");
  EXPECT_NE(FindClientBox(api, kTooLongBoxText), 0u);
  EXPECT_EQ(FindDialog(api, "Waol"), 0u);
  EXPECT_EQ(FindModalButton(api, "OK"), 0u);
}

}  // namespace
}  // namespace quorvex
