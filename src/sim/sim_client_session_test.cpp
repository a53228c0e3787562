// Sign-off, sign-on, closing and starting the client.
#include <gtest/gtest.h>

#include "sim/sim_rig.h"

namespace quorvex {
namespace {

class SimSessionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    api_.SetUserName("Host");
    api_.SetRoomName("Lobby");
    api_.AddPerson("Ann");
  }
  // The sign-on button: the first icon, then three windows on.
  Hwnd SignOnButton(const char* caption) {
    Hwnd h = api_.FindWindowEx(rig_.Doc(caption), 0, "_AOL_Icon", nullptr);
    for (int i = 0; i < 3; ++i) h = api_.GetWindow(h, win::kGwHwndNext);
    return h;
  }
  std::string ModalText() {
    Hwnd modal = api_.FindWindow("_AOL_Modal", nullptr);
    return rig_.Text(api_.FindWindowEx(modal, 0, "_AOL_Static", nullptr));
  }
  bool SignedOnAsSeen() {
    for (Hwnd w = api_.GetWindow(rig_.Mdi(), win::kGwChild); w;
         w = api_.GetWindow(w, win::kGwHwndNext))
      if (api_.GetWindowText(w, 100).rfind("Welcome, ", 0) == 0) return true;
    return false;
  }

  SimRig rig_;
  SimClient& api_ = rig_.client;
};

TEST_F(SimSessionTest, SignOffClosesTheOnlineWindowsAndSignOnComesBack) {
  api_.Launch();
  // The welcome window only goes down to an icon.
  api_.SendMessage(rig_.Doc("Welcome, Host!"), win::kWmClose, 0, 0);
  EXPECT_TRUE(SignedOnAsSeen());

  api_.SignOffAfter(5);
  rig_.Run(4);
  EXPECT_TRUE(api_.signed_on());
  rig_.Run(2);
  EXPECT_FALSE(SignedOnAsSeen());
  EXPECT_EQ(rig_.Doc("Lobby"), 0u);
  EXPECT_EQ(rig_.events.client, std::vector<std::string>{"signs off"});
  // Keywords do nothing while signed off.
  rig_.Keyword("aol://2719:2-2-Lobby");
  rig_.Run(1);
  EXPECT_EQ(rig_.Doc("Lobby"), 0u);

  Hwnd button = SignOnButton("Goodbye from America Online!");
  EXPECT_EQ(rig_.Text(button), "Sign On");
  rig_.Click(button);
  rig_.Run(0.5);
  EXPECT_NE(ModalText().find("Step 1: "), std::string::npos);
  rig_.Run(4);
  EXPECT_EQ(api_.FindWindow("_AOL_Modal", nullptr), 0u);
  EXPECT_TRUE(SignedOnAsSeen());
  EXPECT_EQ(rig_.Doc("Goodbye from America Online!"), 0u);
  EXPECT_EQ(rig_.events.client.back(), "signs on");

  rig_.Keyword("aol://2719:2-2-Lobby");  // back into the room
  rig_.Run(0.5);
  EXPECT_EQ(rig_.events.client.back(), "enters Lobby");
}

TEST_F(SimSessionTest, FailedSignOnShowsAnErrorToDismiss) {
  api_.SetSignedOffAtStart();
  api_.knobs().signon_failures = 1;
  api_.Launch();
  rig_.Click(SignOnButton("Sign On"));
  rig_.Run(5);
  EXPECT_FALSE(api_.signed_on());
  EXPECT_EQ(ModalText().find("Step "), std::string::npos);
  Hwnd modal = api_.FindWindow("_AOL_Modal", nullptr);
  rig_.Click(api_.FindWindowEx(modal, 0, "_AOL_Icon", nullptr));
  EXPECT_FALSE(api_.IsWindow(modal));
  rig_.Click(SignOnButton("Sign On"));
  rig_.Run(5);
  EXPECT_TRUE(SignedOnAsSeen());
}

TEST_F(SimSessionTest, CloseAskedTwiceThenStartedAgain) {
  api_.knobs().close_needs_two = true;
  api_.knobs().close_time = 3;
  api_.Launch();
  Hwnd frame = rig_.Frame();
  std::uint32_t old_pid = api_.process_id();
  api_.PostMessage(frame, win::kWmClose, 0, 0);
  rig_.Run(10);
  EXPECT_TRUE(api_.IsWindow(frame));  // the first request was ignored
  api_.PostMessage(frame, win::kWmClose, 0, 0);
  rig_.Run(2);
  EXPECT_TRUE(api_.IsWindow(frame));  // closing takes a while
  rig_.Run(2);
  EXPECT_FALSE(api_.IsWindow(frame));
  EXPECT_EQ(rig_.events.client,
            (std::vector<std::string>{"signs off", "closes"}));

  api_.Start();
  api_.Start();  // one copy only
  rig_.Run(api_.knobs().start_time + 0.1);
  EXPECT_EQ(rig_.events.client,
            (std::vector<std::string>{"signs off", "closes", "starts"}));
  EXPECT_NE(rig_.Frame(), frame);
  EXPECT_NE(rig_.Doc("Sign On"), 0u);
  // The old process's handles no longer read anything.
  EXPECT_EQ(api_.OpenProcess(0xF0010, false, old_pid), 0u);
}

TEST_F(SimSessionTest, SignOffDropsWhatWasUnderWay) {
  api_.SetLatency(1);
  api_.Launch();
  rig_.Click(rig_.ToolbarIcon(2));
  api_.SignOff();
  rig_.Run(2);
  // Write Mail was asked for before the sign-off: it never opens.
  EXPECT_EQ(rig_.Doc("Write Mail"), 0u);

  // Written offline, a mail can wait but not go now.
  rig_.Click(rig_.ToolbarIcon(2));
  rig_.Run(3);
  Hwnd write = rig_.Doc("Write Mail");
  ASSERT_NE(write, 0u);
  rig_.SetText(rig_.Nth(write, "_AOL_Edit", 1), "Ann");
  rig_.Click(rig_.Nth(write, "_AOL_Icon", 16));
  rig_.Run(2);
  EXPECT_TRUE(rig_.events.mails.empty());
  rig_.Click(rig_.Nth(write, "_AOL_Icon", 17));
  EXPECT_FALSE(api_.IsWindow(write));
  EXPECT_EQ(api_.WaitingCount(), 1);
}

TEST_F(SimSessionTest, PreferencePagesRememberTheirCheckBoxes) {
  constexpr unsigned kBmGetCheck = 240, kBmSetCheck = 241;
  const char* confirm = "Confirm mail after it has been sent";
  api_.Launch();
  rig_.Keyword("Preferences");
  rig_.Run(0.2);
  Hwnd prefs = rig_.Doc("Preferences");
  ASSERT_NE(prefs, 0u);
  Hwnd page = 0, box = 0;
  auto open_mail_page = [&] {
    rig_.Click(rig_.Nth(prefs, "_AOL_Icon", 3));  // Mail
    rig_.Run(0.2);
    page = api_.FindWindow("_aol_modal", "Mail Preferences");
    box = api_.FindWindowEx(page, 0, "_aol_checkbox", confirm);
  };
  open_mail_page();
  ASSERT_NE(box, 0u);
  EXPECT_EQ(api_.SendMessage(box, kBmGetCheck, 0, 0), 1);
  rig_.Click(box);  // a click toggles
  EXPECT_EQ(api_.SendMessage(box, kBmGetCheck, 0, 0), 0);
  // Cancel forgets, OK keeps.
  rig_.Click(rig_.Nth(page, "_AOL_Icon", 2));
  EXPECT_EQ(api_.Preference(confirm), 1);
  open_mail_page();
  api_.SendMessage(box, kBmSetCheck, 0, 0);
  rig_.Click(rig_.Nth(page, "_AOL_icon", 1));
  EXPECT_FALSE(api_.IsWindow(page));
  EXPECT_EQ(api_.Preference(confirm), 0);
  open_mail_page();
  EXPECT_EQ(api_.SendMessage(box, kBmGetCheck, 0, 0), 0);
}

}  // namespace
}  // namespace quorvex
