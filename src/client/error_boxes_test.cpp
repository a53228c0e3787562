#include "client/error_boxes.h"

#include "client/mail_send.h"
#include "client/test_client.h"

namespace quorvex {
namespace {

class ErrorBoxesTest : public ClientTest {
 protected:
  void Forward(int position, const std::string& to) {
    ForwardMailNow(c, to, OpenForwardWindow(position), "body");
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
  Forward(0, "(Ann)(Bob)");
  const Hwnd error = FindErrorWindow(api);
  ASSERT_NE(error, 0u);
  EXPECT_EQ(GetErrorText(api, error), "Bob - Mailbox is full");
  DismissErrorWindow(api, error);
  EXPECT_EQ(FindErrorWindow(api), 0u);
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);
}

TEST_F(ErrorBoxesTest, TooLongBoxIsAClientBoxNotADialogOrModal) {
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
