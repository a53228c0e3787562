#include "client/error_boxes.h"

#include "client/mail_send.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

using ErrorBoxesTest = ClientTest;

// The too-long box is found the same way, by its text.
TEST_F(ErrorBoxesTest, DeadMailBoxIsAClientBoxFoundByItsTextAndPressed) {
  AddMails(2);
  sim.SetDeadMail(2);
  Launch();
  ForwardMailNow(c, "(Ann)", OpenForwardWindow(1), "body");
  Run(2);
  EXPECT_EQ(FindClientBox(api, kTooLongBoxText), 0u);
  EXPECT_EQ(FindDialog(api, "Waol"), 0u);  // not a dialog or a modal
  EXPECT_EQ(FindModalButton(api, "OK"), 0u);
  const Hwnd box = FindClientBox(api, kDeadMailBoxText);
  ASSERT_NE(box, 0u);
  PressButton(api, FindDialogButton(api, box, "OK"));
  EXPECT_FALSE(api.IsWindow(box));
  EXPECT_TRUE(mails.empty());
  // The forward window stays for the error handler to close.
  EXPECT_NE(FindComposeWindow(api), 0u);
}

TEST_F(ErrorBoxesTest, FullMailboxErrorListsTheNames) {
  AddMails(1);
  sim.SetFullMailbox("Bob");
  Launch();
  ForwardMailNow(c, "(Ann)(Bob)", OpenForwardWindow(0), "body");
  Run(2);
  const Hwnd error = FindErrorWindow(api);
  ASSERT_NE(error, 0u);
  EXPECT_EQ(GetErrorText(api, error), "Bob - Mailbox is full");
  DismissErrorWindow(api, error);
  EXPECT_EQ(FindErrorWindow(api), 0u);
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);
}

}  // namespace
}  // namespace quorvex
