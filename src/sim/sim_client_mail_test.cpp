// The mailboxes, forwarding and writing mail, and the client's error
// boxes, driven the way the program drives them.
#include <gtest/gtest.h>

#include "testing/sim_rig.h"

namespace quorvex {
namespace {

class SimMailTest : public ::testing::Test {
 protected:
  void SetUp() override {
    api_.SetUserName("Host");
    api_.AddPerson("Ann");
    api_.AddPerson("Bob Smith");
    api_.AddMail("cats", "Zed", "meow");
    api_.AddMail("dogs");
    api_.AddMail("song list");
    api_.Launch();
  }

  // The tool bar's mail menu, then Up, Up, Right, Return.
  Hwnd OpenOfflineMailbox() {
    rig_.PostClick(rig_.ToolbarIcon(3));
    Hwnd menu = 0;
    while (!(menu = api_.FindWindowA("#32768", nullptr)) ||
           !api_.IsWindowVisible(menu))
      rig_.host.DoEvents();
    rig_.PostKey(menu, win::kVkUp);
    api_.PostMessageA(menu, win::kWmKeyDown, win::kVkUp, 0);
    rig_.PostKey(menu, win::kVkRight);
    rig_.PostKey(menu, win::kVkReturn);
    rig_.Run(0.2);
    return rig_.Doc("Incoming/Saved Mail");
  }
  void RunToolbarMenu(char letter) {
    rig_.PostClick(rig_.ToolbarIcon(3));
    rig_.Run(0.2);
    api_.PostMessageA(api_.FindWindowA("#32768", nullptr), win::kWmChar,
                      static_cast<unsigned char>(letter), 0);
    rig_.Run(0.2);
  }
  std::string Item(Hwnd tree, int i) {
    auto n = api_.SendMessageA(tree, win::kLbGetTextLen, i, 0);
    std::string s;
    api_.SendMessageGetText(tree, win::kLbGetText, i, &s,
                            static_cast<std::size_t>(n) + 1);
    return s;
  }
  std::intptr_t Count(Hwnd tree) {
    return api_.SendMessageA(tree, win::kLbGetCount, 0, 0);
  }
  Hwnd FindByChildren(bool compose) {
    for (Hwnd w = api_.FindWindowExA(rig_.Mdi(), 0, "AOL Child", nullptr); w;
         w = api_.FindWindowExA(rig_.Mdi(), w, "AOL Child", nullptr)) {
      Hwnd rich = api_.FindWindowExA(w, 0, "RICHCNTL", nullptr);
      bool combo = api_.FindWindowExA(w, 0, "_AOL_Combobox", nullptr) != 0;
      bool font = api_.FindWindowExA(w, 0, "_AOL_Fontcombo", nullptr) != 0;
      bool stat = api_.FindWindowExA(w, 0, "_AOL_Static", nullptr) != 0;
      // The room has its style boxes too; its people list tells it apart.
      bool room = api_.FindWindowExA(w, 0, "_AOL_Listbox", nullptr) != 0;
      if (compose && rich && combo && font && stat && !room) return w;
      if (!compose && rich &&
          !api_.FindWindowExA(w, rich, "RICHCNTL", nullptr) && !combo && !font)
        return w;
    }
    return 0;
  }
  // Opens mail `index` (0-based) and its forward window, complete.
  Hwnd OpenForward(int index) {
    Hwnd tree =
        api_.FindWindowExA(OpenOfflineMailbox(), 0, "_AOL_Tree", nullptr);
    api_.SendMessageA(tree, win::kLbSetCurSel, index, 0);
    rig_.PostKey(tree, win::kVkReturn);
    rig_.Run(0.2);
    Hwnd mail = FindByChildren(false);
    if (!mail) return 0;
    rig_.Click(rig_.Nth(mail, "_AOL_Icon", 8));
    rig_.Run(0.2);
    return FindByChildren(true);
  }
  // Fills in the recipients and clicks icon `icon` (14 Send Now, 15 Later).
  void Forward(int index, const std::string& to, int icon) {
    Hwnd fwd = OpenForward(index);
    rig_.SetText(rig_.Nth(fwd, "_AOL_Edit", 1), to);
    rig_.Click(rig_.Nth(fwd, "_AOL_Icon", icon));
  }

  SimRig rig_;
  SimClient& api_ = rig_.client;
};

TEST_F(SimMailTest, OfflineMailboxListsDateSenderAndTitle) {
  Hwnd box = OpenOfflineMailbox();
  ASSERT_NE(box, 0u);
  EXPECT_EQ(api_.FindWindowA("#32768", nullptr), 0u);  // the menu is gone
  Hwnd tree = api_.FindWindowExA(box, 0, "_AOL_Tree", nullptr);
  EXPECT_EQ(Count(tree), 3);
  EXPECT_EQ(Item(tree, 0), "01/01/2000\tZed\tcats");
  EXPECT_EQ(Item(tree, 1), "01/01/2000\tHost\tdogs");
  EXPECT_EQ(api_.SendMessageA(tree, win::kLbGetTextLen, 3, 0), -1);
  std::string cut;
  api_.SendMessageGetText(tree, win::kLbGetText, 2, &cut, 5);
  EXPECT_EQ(cut, "01/0");

  // Asking again brings the same window up rather than a second one.
  api_.ShowWindow(box, win::kSwMinimize);
  EXPECT_EQ(OpenOfflineMailbox(), box);
}

TEST_F(SimMailTest, ForwardSendNowReachesEveryRecipient) {
  Hwnd fwd = OpenForward(0);
  ASSERT_NE(fwd, 0u);
  EXPECT_EQ(api_.GetWindowTextA(fwd, 100), "Fwd: cats");
  Hwnd open_mail = FindByChildren(false);
  EXPECT_EQ(rig_.Text(rig_.Nth(fwd, "_AOL_Icon", 15)), "Send Later");

  rig_.SetText(rig_.Nth(fwd, "_AOL_Edit", 1), "(ann)(bob smith)(newbie)");
  rig_.SetText(rig_.Nth(fwd, "RICHCNTL", 1), "mail number 1");
  Hwnd send_now = rig_.Nth(fwd, "_AOL_Icon", 14);
  EXPECT_EQ(rig_.Text(send_now), "Send Now");
  for (int i = 0; i < 5; ++i) rig_.Click(send_now);  // one mail only
  ASSERT_EQ(rig_.events.mails.size(), 1u);
  EXPECT_EQ(rig_.events.mails[0].to, "(ann)(bob smith)(newbie)");
  EXPECT_TRUE(rig_.events.mails[0].send_now);
  // The status window shows while the mail goes out.
  EXPECT_NE(rig_.Doc("Status"), 0u);
  rig_.Run(1);
  EXPECT_EQ(rig_.Doc("Status"), 0u);
  EXPECT_FALSE(api_.IsWindow(fwd));
  EXPECT_FALSE(api_.IsWindow(open_mail));  // it goes with its forward
  auto boxes = api_.Mailboxes();
  ASSERT_EQ(boxes["Ann"].size(), 1u);
  EXPECT_EQ(boxes["Ann"][0].body, "mail number 1");
  EXPECT_EQ(boxes["Ann"][0].forward_of, "cats");
  EXPECT_EQ(boxes["Bob Smith"].size(), 1u);
  EXPECT_EQ(boxes["newbie"].size(), 1u);
  EXPECT_EQ(rig_.Doc("Error"), 0u);
}

TEST_F(SimMailTest, ForwardWindowIsIncompleteAtFirst) {
  Hwnd tree = api_.FindWindowExA(OpenOfflineMailbox(), 0, "_AOL_Tree", nullptr);
  api_.SetLatency(1);
  api_.SendMessageA(tree, win::kLbSetCurSel, 1, 0);
  rig_.PostKey(tree, win::kVkReturn);
  rig_.Run(1.1);
  rig_.Click(rig_.Nth(FindByChildren(false), "_AOL_Icon", 8));
  rig_.Run(1.1);
  Hwnd fwd = FindByChildren(true);
  ASSERT_NE(fwd, 0u);
  // A few blank icons only: counting on wraps back to the first ones, and
  // a click there sends nothing.
  EXPECT_EQ(rig_.Nth(fwd, "_AOL_Icon", 14), rig_.Nth(fwd, "_AOL_Icon", 2));
  rig_.Click(rig_.Nth(fwd, "_AOL_Icon", 14));
  rig_.Run(1);
  EXPECT_EQ(rig_.Text(rig_.Nth(fwd, "_AOL_Icon", 14)), "Send Now");
  EXPECT_TRUE(rig_.events.mails.empty());
}

TEST_F(SimMailTest, SendLaterQueuesTheMailAndDeleteRemovesOnePerClick) {
  Forward(0, "cy", 15);
  Forward(1, "ann, (bob smith)", 15);
  ASSERT_EQ(rig_.events.mails.size(), 2u);
  EXPECT_FALSE(rig_.events.mails[0].send_now);
  EXPECT_TRUE(api_.Mailboxes()["Ann"].empty());  // not sent yet

  RunToolbarMenu('b');
  Hwnd waiting = rig_.Doc("Mail Waiting to be Sent");
  ASSERT_NE(waiting, 0u);
  Hwnd tree = api_.FindWindowExA(waiting, 0, "_AOL_Tree", nullptr);
  EXPECT_EQ(Count(tree), 2);
  rig_.Click(rig_.Nth(waiting, "_AOL_Icon", 2));
  ASSERT_EQ(Count(tree), 1);
  EXPECT_EQ(Item(tree, 0), "01/01/2000\tann, (bob smith)\tFwd: dogs");

  // The automatic session sends what waits.
  RunToolbarMenu('a');
  Hwnd session = api_.FindWindowA("_AOL_Modal", "Automatic AOL");
  ASSERT_NE(session, 0u);
  Hwnd view = api_.FindWindowExA(session, 0, "_AOL_View", nullptr);
  rig_.Run(2);
  EXPECT_EQ(rig_.Text(view), "AOL session is complete.");
  EXPECT_EQ(api_.Mailboxes()["Bob Smith"].size(), 1u);
  EXPECT_EQ(Count(tree), 0);
}

TEST_F(SimMailTest, FullMailboxShowsTheErrorWindowAndOthersStillGetIt) {
  api_.SetFullMailbox("Bob Smith");
  api_.SetFullMailbox("ann");
  api_.SetFullMailbox("ann", false);
  Forward(2, "(ann)(bobsmith)", 14);
  rig_.Run(1);
  Hwnd error = rig_.Doc("Error");
  ASSERT_NE(error, 0u);
  Hwnd view = api_.FindWindowExA(error, 0, "_AOL_View", nullptr);
  EXPECT_EQ(rig_.Text(view), "bobsmith - Mailbox is full");
  EXPECT_EQ(api_.Mailboxes()["Ann"].size(), 1u);
  EXPECT_TRUE(api_.Mailboxes()["Bob Smith"].empty());
  rig_.Click(api_.FindWindowExA(error, 0, "_AOL_Icon", nullptr));
  EXPECT_FALSE(api_.IsWindow(error));
}

TEST_F(SimMailTest, DeadAndOverlongMailsAreRefusedWithTheClientsBox) {
  api_.SetDeadMail(3);
  Hwnd fwd = OpenForward(2);
  rig_.SetText(rig_.Nth(fwd, "_AOL_Edit", 1), "(ann)");
  Hwnd send_now = rig_.Nth(fwd, "_AOL_Icon", 14);
  rig_.Click(send_now);
  rig_.Click(send_now);  // held by the box: no second one
  Hwnd box = api_.FindWindowA("#32770", "America Online");
  ASSERT_NE(box, 0u);
  EXPECT_NE(api_.FindWindowExA(box, 0, "Static", kDeadMailText), 0u);
  EXPECT_EQ(api_.FindWindowExA(0, box, "#32770", nullptr), 0u);
  Hwnd ok = api_.FindWindowExA(box, 0, "Button", "OK");
  api_.SendMessageA(ok, win::kWmKeyDown, win::kVkSpace, 0);
  api_.SendMessageA(ok, win::kWmKeyUp, win::kVkSpace, 0);
  EXPECT_FALSE(api_.IsWindow(box));
  EXPECT_TRUE(rig_.events.mails.empty());
  api_.SendMessageA(fwd, win::kWmClose, 0, 0);
  EXPECT_EQ(FindByChildren(false), 0u);  // the open mail went too

  // An over-long body is refused until it fits.
  api_.knobs().max_body_chars = 10;
  fwd = OpenForward(0);
  rig_.SetText(rig_.Nth(fwd, "_AOL_Edit", 1), "ann");
  rig_.SetText(rig_.Nth(fwd, "RICHCNTL", 1), "eleven char");
  rig_.Click(rig_.Nth(fwd, "_AOL_Icon", 14));
  box = api_.FindWindowA("#32770", "America Online");
  EXPECT_NE(api_.FindWindowExA(box, 0, "Static", kTooLongText), 0u);
  api_.SendMessageA(box, win::kWmClose, 0, 0);
  rig_.SetText(rig_.Nth(fwd, "RICHCNTL", 1), "ten chars!");
  rig_.Click(rig_.Nth(fwd, "_AOL_Icon", 14));
  rig_.Run(1);
  EXPECT_EQ(api_.Mailboxes()["Ann"].size(), 1u);

  // With nobody to send to, nothing goes.
  Forward(1, "", 14);
  EXPECT_NE(api_.FindWindowA("#32770", "America Online"), 0u);
}

}  // namespace
}  // namespace quorvex
