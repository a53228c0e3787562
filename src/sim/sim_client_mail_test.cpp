// The mailboxes, forwarding and writing mail, and the client's error
// boxes, found and opened by the program's own window walks rather than
// by copies of them.
#include "testing/test_client.h"

namespace quorvex {
namespace {

class SimMailTest : public ClientTest {
 protected:
  void SetUp() override {
    sim.AddPerson("Ann");
    sim.AddPerson("Bob Smith");
    sim.AddMail("cats", "Zed", "meow");
    sim.AddMail("dogs");
    sim.AddMail("song list");
    Launch();
  }
  std::string Item(Hwnd tree, int i) {
    const auto n = api.SendMessageA(tree, win::kLbGetTextLen, i, 0);
    std::string s;
    api.SendMessageGetText(tree, win::kLbGetText, i, &s,
                           static_cast<std::size_t>(n) + 1);
    return s;
  }
  Hwnd Icon(Hwnd window, int n) {
    return FindNthChild(api, window, aol::kIconClass, n);
  }
  // The forward window of mail `position`, complete, addressed to `to`.
  Hwnd Forward(int position, const std::string& to) {
    const Hwnd fwd = OpenForwardWindow(position);
    Run(0.2);
    SetText(api, FindChild(api, fwd, aol::kEditClass), to);
    return fwd;
  }
  void SetBody(Hwnd fwd, const std::string& body) {
    SetText(api, FindChild(api, fwd, aol::kRichTextClass), body);
  }
  Hwnd ClientBox() {
    return api.FindWindowA(aol::kDialogClass, "America Online");
  }
  // Sends mail `position` on to `to` at once; the text of the "Error"
  // window that came of it.
  std::string ErrorSendingTo(int position, const std::string& to) {
    ClickIcon(api, Icon(Forward(position, to), 14));
    Run(1);
    const Hwnd error = FindDocument(api, "Error");
    return error ? GetText(api, FindChild(api, error, aol::kViewClass)) : "";
  }
};

TEST_F(SimMailTest, OfflineMailboxListsDateSenderAndTitle) {
  OpenOfflineMailbox(c);
  Run(0.2);
  const Hwnd box = FindDocument(api, kIncomingMail);
  ASSERT_NE(box, 0u);
  EXPECT_EQ(api.FindWindowA(aol::kPopupMenuClass, nullptr), 0u);  // gone
  const Hwnd tree = FindChild(api, box, aol::kTreeClass);
  EXPECT_EQ(api.SendMessageA(tree, win::kLbGetCount, 0, 0), 3);
  EXPECT_EQ(Item(tree, 0), "05/01/2004\tZed\tcats");
  EXPECT_EQ(Item(tree, 1), "05/01/2004\tJoe Smith\tdogs");
  EXPECT_EQ(api.SendMessageA(tree, win::kLbGetTextLen, 3, 0), -1);
  std::string cut;
  api.SendMessageGetText(tree, win::kLbGetText, 2, &cut, 5);
  EXPECT_EQ(cut, "05/0");

  // Asking again brings the same window up rather than a second one.
  api.ShowWindow(box, win::kSwMinimize);
  OpenOfflineMailbox(c);
  Run(0.2);
  EXPECT_EQ(FindDocument(api, kIncomingMail), box);
}

TEST_F(SimMailTest, AForwardWindowStillFillingSendsNothing) {
  sim.SetLatency(1);
  const Hwnd fwd = OpenForwardWindow(1);
  ASSERT_NE(fwd, 0u);
  SetText(api, FindChild(api, fwd, aol::kEditClass), "(ann)");
  // A few blank icons only, and a click on one of them sends nothing.
  EXPECT_EQ(Icon(fwd, 14), 0u);
  ClickIcon(api, Icon(fwd, 2));
  Run(1.1);
  EXPECT_EQ(GetText(api, Icon(fwd, 14)), "Send Now");
  EXPECT_TRUE(mails.empty());
}

TEST_F(SimMailTest, FullMailboxesAreNamedAsWrittenAndMatchedWithoutBlanks) {
  sim.SetFullMailbox("Bob Smith");
  sim.SetFullMailbox("ann");
  sim.SetFullMailbox("ann", false);
  EXPECT_EQ(ErrorSendingTo(2, "(ann)(bobsmith)"), "bobsmith - Mailbox is full");
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);
  EXPECT_TRUE(sim.Mailboxes()["Bob Smith"].empty());

  // A line set for a name is shown as written, the name matched as
  // names are; the others keep theirs.
  ClickIcon(api, Icon(FindDocument(api, "Error"), 1));
  sim.SetFullMailbox("ann");
  sim.SetErrorLine("bob smith", "x-full\r\n-");
  EXPECT_EQ(ErrorSendingTo(2, "(ann)(bobsmith)"),
            "ann - Mailbox is full\r\nx-full\r\n-");
}

TEST_F(SimMailTest, DeadAndOverlongMailsAreRefusedWithTheClientsBox) {
  sim.SetDeadMail(3);
  Hwnd fwd = Forward(2, "(ann)");
  const Hwnd send_now = Icon(fwd, 14);
  ClickIcon(api, send_now);
  ClickIcon(api, send_now);  // held by the box: no second one
  Hwnd box = ClientBox();
  ASSERT_NE(box, 0u);
  EXPECT_NE(api.FindWindowExA(box, 0, "Static", kDeadMailText), 0u);
  EXPECT_EQ(api.FindWindowExA(0, box, aol::kDialogClass, nullptr), 0u);
  api.SendMessageA(box, win::kWmClose, 0, 0);
  EXPECT_TRUE(mails.empty());
  api.SendMessageA(fwd, win::kWmClose, 0, 0);
  EXPECT_EQ(FindOpenMail(api), 0u);  // the open mail went too

  // An over-long body is refused until it fits.
  sim.knobs().max_body_chars = 10;
  fwd = Forward(0, "ann");
  SetBody(fwd, "eleven char");
  ClickIcon(api, Icon(fwd, 14));
  EXPECT_NE(api.FindWindowExA(ClientBox(), 0, "Static", kTooLongText), 0u);
  api.SendMessageA(ClientBox(), win::kWmClose, 0, 0);
  SetBody(fwd, "ten chars!");
  ClickIcon(api, Icon(fwd, 14));
  Run(1);
  EXPECT_EQ(sim.Mailboxes()["Ann"].size(), 1u);

  // With nobody to send to, nothing goes.
  ClickIcon(api, Icon(Forward(1, ""), 14));
  EXPECT_NE(ClientBox(), 0u);
}

}  // namespace
}  // namespace quorvex
