// Sign-off, sign-on, closing and starting the client.
#include <gtest/gtest.h>

#include <algorithm>

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
    Hwnd w = rig_.Doc(caption);
    Hwnd h = api_.FindWindowEx(w, 0, "_AOL_Icon", nullptr);
    for (int i = 0; i < 3; ++i) h = api_.GetWindow(h, win::kGwHwndNext);
    return h;
  }
  std::string ModalText() {
    Hwnd modal = api_.FindWindow("_AOL_Modal", nullptr);
    return rig_.Text(api_.FindWindowEx(modal, 0, "_AOL_Static", nullptr));
  }
  bool SignedOnAsSeen() {
    Hwnd mdi = rig_.Mdi();
    for (Hwnd w = api_.GetWindow(mdi, win::kGwChild); w;
         w = api_.GetWindow(w, win::kGwHwndNext))
      if (api_.GetWindowText(w, 100).rfind("Welcome, ", 0) == 0) return true;
    return false;
  }

  SimRig rig_;
  SimClient& api_ = rig_.client;
};

TEST_F(SimSessionTest, SignOffClosesTheOnlineWindowsAndSignOnComesBack) {
  api_.Launch();
  Hwnd welcome = rig_.Doc("Welcome, Host!");
  // The welcome window only goes down to an icon.
  api_.SendMessage(welcome, win::kWmClose, 0, 0);
  EXPECT_TRUE(SignedOnAsSeen());

  api_.SignOffAfter(5);
  rig_.Run(4);
  EXPECT_TRUE(api_.signed_on());
  rig_.Run(2);
  EXPECT_FALSE(api_.signed_on());
  EXPECT_FALSE(SignedOnAsSeen());
  EXPECT_EQ(rig_.Doc("Lobby"), 0u);
  EXPECT_EQ(rig_.events.client, std::vector<std::string>{"signs off"});
  ASSERT_NE(rig_.Doc("Goodbye from America Online!"), 0u);
  // Keywords do nothing while signed off.
  rig_.Keyword("aol://2719:2-2-Lobby");
  rig_.Run(1);
  EXPECT_EQ(rig_.Doc("Lobby"), 0u);

  Hwnd button = SignOnButton("Goodbye from America Online!");
  EXPECT_EQ(rig_.Text(button), "Sign On");
  rig_.Click(button);
  rig_.Run(0.5);
  EXPECT_NE(ModalText().find("Step 1: "), std::string::npos);
  rig_.Run(1);
  EXPECT_NE(ModalText().find("Step 2: "), std::string::npos);
  rig_.Run(3);
  EXPECT_EQ(api_.FindWindow("_AOL_Modal", nullptr), 0u);
  EXPECT_TRUE(SignedOnAsSeen());
  EXPECT_NE(rig_.Doc("Buddy List Window"), 0u);
  EXPECT_EQ(rig_.Doc("Goodbye from America Online!"), 0u);
  EXPECT_EQ(rig_.events.client.back(), "signs on");

  // Back into the room by its address.
  rig_.Keyword("aol://2719:2-2-Lobby");
  rig_.Run(0.5);
  EXPECT_EQ(api_.current_room(), "Lobby");
  EXPECT_EQ(rig_.events.client.back(), "enters Lobby");
}

TEST_F(SimSessionTest, FailedSignOnShowsAnErrorToDismiss) {
  api_.SetSignedOffAtStart();
  api_.knobs().signon_failures = 1;
  api_.Launch();
  EXPECT_FALSE(SignedOnAsSeen());
  rig_.Click(SignOnButton("Sign On"));
  rig_.Run(5);
  EXPECT_FALSE(api_.signed_on());
  std::string text = ModalText();
  EXPECT_EQ(text.find("Step "), std::string::npos);
  Hwnd modal = api_.FindWindow("_AOL_Modal", nullptr);
  rig_.Click(api_.FindWindowEx(modal, 0, "_AOL_Icon", nullptr));
  EXPECT_FALSE(api_.IsWindow(modal));
  rig_.Click(SignOnButton("Sign On"));
  rig_.Run(5);
  EXPECT_TRUE(SignedOnAsSeen());
  EXPECT_EQ(rig_.events.client, std::vector<std::string>{"signs on"});
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
  EXPECT_EQ(rig_.Frame(), 0u);
  EXPECT_EQ(rig_.events.client,
            (std::vector<std::string>{"signs off", "closes"}));

  api_.Start();
  api_.Start();  // one copy only
  EXPECT_EQ(rig_.events.client.back(), "starts");
  rig_.Run(api_.knobs().start_time + 0.1);
  Hwnd again = rig_.Frame();
  ASSERT_NE(again, 0u);
  EXPECT_NE(again, frame);
  EXPECT_NE(api_.process_id(), old_pid);
  EXPECT_NE(rig_.Doc("Sign On"), 0u);
  EXPECT_EQ(std::count(rig_.events.client.begin(), rig_.events.client.end(),
                       "starts"),
            1);
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
  EXPECT_EQ(api_.FindWindow("#32768", nullptr), 0u);

  // Written offline, a mail can wait but not go now.
  rig_.Click(rig_.ToolbarIcon(2));
  rig_.Run(3);
  Hwnd write = rig_.Doc("Write Mail");
  ASSERT_NE(write, 0u);
  rig_.SetText(rig_.Nth(write, "_AOL_Edit", 1), "Ann");
  rig_.Click(rig_.Nth(write, "_AOL_Icon", 16));
  rig_.Run(2);
  EXPECT_TRUE(api_.IsWindow(write));
  EXPECT_TRUE(rig_.events.mails.empty());
  rig_.Click(rig_.Nth(write, "_AOL_Icon", 17));
  EXPECT_FALSE(api_.IsWindow(write));
  EXPECT_EQ(api_.WaitingCount(), 1);
}

TEST_F(SimSessionTest, PreferencePagesRememberTheirCheckBoxes) {
  api_.Launch();
  rig_.Keyword("Preferences");
  rig_.Run(0.2);
  Hwnd prefs = rig_.Doc("Preferences");
  ASSERT_NE(prefs, 0u);
  auto open_mail_page = [&] {
    rig_.Click(rig_.Nth(prefs, "_AOL_Icon", 3));  // Mail
    rig_.Run(0.2);
    return api_.FindWindow("_aol_modal", "Mail Preferences");
  };
  Hwnd page = open_mail_page();
  ASSERT_NE(page, 0u);
  const char* confirm = "Confirm mail after it has been sent";
  Hwnd box = api_.FindWindowEx(page, 0, "_aol_checkbox", confirm);
  ASSERT_NE(box, 0u);
  EXPECT_EQ(api_.SendMessage(box, 240, 0, 0), 1);  // BM_GETCHECK
  rig_.Click(box);                                 // a click toggles
  EXPECT_EQ(api_.SendMessage(box, 240, 0, 0), 0);
  // Cancel forgets, OK keeps.
  rig_.Click(rig_.Nth(page, "_AOL_Icon", 2));
  EXPECT_EQ(api_.Preference(confirm), 1);
  page = open_mail_page();
  box = api_.FindWindowEx(page, 0, "_AOL_Checkbox", confirm);
  api_.SendMessage(box, 241, 0, 0);  // BM_SETCHECK
  rig_.Click(rig_.Nth(page, "_AOL_icon", 1));
  EXPECT_FALSE(api_.IsWindow(page));
  EXPECT_EQ(api_.Preference(confirm), 0);
  page = open_mail_page();
  EXPECT_EQ(
      api_.SendMessage(api_.FindWindowEx(page, 0, "_AOL_Checkbox", confirm),
                       240, 0, 0),
      0);
}

}  // namespace
}  // namespace quorvex
