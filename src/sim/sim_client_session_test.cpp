// Signing off, and the preference pages.
#include "sim/sim_client_fixture.h"

namespace quorvex {
namespace {

using SimSessionTest = SimClientTest;

TEST_F(SimSessionTest, SignOffClosesTheOnlineWindowsAndKeywordsWait) {
  api_.Launch();
  // The welcome window only goes down to an icon.
  api_.SendMessageA(FindDocument(api_, "Welcome, Host!"), win::kWmClose, 0, 0);
  EXPECT_TRUE(IsSignedOn(api_));

  api_.SignOffAfter(5);
  rig_.Run(4);
  EXPECT_TRUE(api_.signed_on());
  rig_.Run(2);
  EXPECT_FALSE(IsSignedOn(api_));
  EXPECT_EQ(FindDocument(api_, "Lobby"), 0u);
  EXPECT_EQ(rig_.events.client, std::vector<std::string>{"signs off"});
  // Keywords do nothing while signed off.
  Keyword(api_, "aol://2719:2-2-Lobby");
  rig_.Run(1);
  EXPECT_EQ(FindDocument(api_, "Lobby"), 0u);
}

TEST_F(SimSessionTest, SignOffDropsWhatWasUnderWay) {
  api_.SetLatency(1);
  api_.Launch();
  ClickIcon(api_, FindToolbarIcon(api_, 2));
  api_.SignOff();
  rig_.Run(2);
  // Write Mail was asked for before the sign-off: it never opens.
  EXPECT_EQ(FindDocument(api_, "Write Mail"), 0u);

  // Written offline, a mail can wait but not go now.
  const Hwnd write = WriteMail(rig_, "Ann", 3);
  ASSERT_NE(write, 0u);
  ClickIcon(api_, Icon(write, 16));
  rig_.Run(2);
  EXPECT_TRUE(rig_.events.mails.empty());
  ClickIcon(api_, Icon(write, 17));
  EXPECT_FALSE(api_.IsWindow(write));
  EXPECT_EQ(api_.WaitingCount(), 1);
}

TEST_F(SimSessionTest, PreferencePagesRememberTheirCheckBoxes) {
  constexpr unsigned kBmGetCheck = 240, kBmSetCheck = 241;
  const char* confirm = "Confirm mail after it has been sent";
  api_.Launch();
  Keyword(api_, "Preferences");
  rig_.Run(0.2);
  Hwnd prefs = FindDocument(api_, "Preferences");
  ASSERT_NE(prefs, 0u);
  Hwnd page = 0, box = 0;
  auto open_mail_page = [&] {
    ClickIcon(api_, Icon(prefs, 3));  // Mail
    rig_.Run(0.2);
    page = api_.FindWindowA("_aol_modal", "Mail Preferences");
    box = api_.FindWindowExA(page, 0, "_aol_checkbox", confirm);
  };
  open_mail_page();
  ASSERT_NE(box, 0u);
  EXPECT_EQ(api_.SendMessageA(box, kBmGetCheck, 0, 0), 1);
  ClickIcon(api_, box);  // a click toggles
  EXPECT_EQ(api_.SendMessageA(box, kBmGetCheck, 0, 0), 0);
  // Cancel forgets, OK keeps.
  ClickIcon(api_, Icon(page, 2));
  EXPECT_EQ(api_.Preference(confirm), 1);
  open_mail_page();
  api_.SendMessageA(box, kBmSetCheck, 0, 0);
  ClickIcon(api_, FindNthChild(api_, page, "_AOL_icon", 1));
  EXPECT_FALSE(api_.IsWindow(page));
  EXPECT_EQ(api_.Preference(confirm), 0);
  open_mail_page();
  EXPECT_EQ(api_.SendMessageA(box, kBmGetCheck, 0, 0), 0);
}

}  // namespace
}  // namespace quorvex
