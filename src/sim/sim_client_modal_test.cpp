// The client's modal boxes hold their owners until dismissed, and the mail
// preferences change how mail is sent.
#include "client/error_boxes.h"
#include "sim/sim_client_fixture.h"

namespace quorvex {
namespace {

using SimModalTest = SimClientTest;

TEST_F(SimModalTest, SignOnErrorHoldsTheSignOnWindowUntilDismissed) {
  api_.knobs().signon_failures = 1;
  api_.SetSignedOffAtStart();
  api_.Launch();
  const Hwnd sign_on_button =
      FindNthChild(api_, FindDocument(api_, "Sign On"), "_AOL_Icon", 2);
  ClickIcon(api_, sign_on_button);
  rig_.Run(10);
  const Hwnd error = api_.FindWindowA("_AOL_Modal", nullptr);
  ASSERT_NE(error, 0u);
  EXPECT_NE(
      GetText(api_, FindNthChild(api_, error, "_AOL_Static", 1)).find("failed"),
      std::string::npos);

  // Clicked again with the error standing, Sign On does nothing.
  ClickIcon(api_, sign_on_button);
  rig_.Run(10);
  EXPECT_FALSE(api_.signed_on());
  EXPECT_TRUE(api_.IsWindow(error));

  ClickIcon(api_, FindNthChild(api_, error, "_AOL_Icon", 1));
  EXPECT_FALSE(api_.IsWindow(error));
  ClickIcon(api_, sign_on_button);
  rig_.Run(10);
  EXPECT_TRUE(api_.signed_on());
}

TEST_F(SimModalTest, FullRoomBoxHoldsTheKeywordBoxAndTheToolBar) {
  api_.Launch();
  api_.RefuseRoom("Private", 1);
  Keyword(api_, "aol://2719:2-2-Private");
  rig_.Run(1);
  const Hwnd box = api_.FindWindowA("#32770", "America Online");
  ASSERT_NE(box, 0u);

  // The next try would get in, but the box lets nothing through.
  Keyword(api_, "aol://2719:2-2-Private");
  ClickIcon(api_, FindToolbarIcon(api_, 2));
  rig_.Run(1);
  EXPECT_EQ(api_.current_room(), "Lobby");
  EXPECT_EQ(FindDocument(api_, "Write Mail"), 0u);

  api_.SendMessageA(box, win::kWmClose, 0, 0);
  Keyword(api_, "aol://2719:2-2-Private");
  rig_.Run(1);
  EXPECT_EQ(api_.current_room(), "Private");
}

TEST_F(SimModalTest, MailPreferencesChangeHowMailIsSent) {
  api_.Launch();
  // As the client comes: confirm and close on, no spell check.
  Hwnd write = WriteMail(rig_, "Ann");
  ClickIcon(api_, Icon(write, 16));
  rig_.Run(1);
  EXPECT_FALSE(api_.IsWindow(write));
  const Hwnd sent_note = api_.FindWindowA("_AOL_Modal", "America Online");
  ASSERT_NE(sent_note, 0u);
  EXPECT_EQ(GetText(api_, FindNthChild(api_, sent_note, "_AOL_View", 1)),
            kMailSentNote);
  PressButton(api_, FindNthChild(api_, sent_note, "_AOL_Button", 1));
  EXPECT_FALSE(api_.IsWindow(sent_note));
  ASSERT_EQ(rig_.events.mails.size(), 1u);

  api_.SetPreference(kPrefConfirm, 0);
  api_.SetPreference(kPrefClose, 0);
  api_.SetPreference(kPrefSpellCheck, 1);
  write = WriteMail(rig_, "Ann");
  const Hwnd send_now = Icon(write, 16);
  ClickIcon(api_, send_now);
  rig_.Run(1);
  // The spelling is checked first, and the check holds the mail.
  const Hwnd spell = api_.FindWindowA("_AOL_Modal", "Spell Check");
  ASSERT_NE(spell, 0u);
  ClickIcon(api_, send_now);
  rig_.Run(1);
  EXPECT_EQ(rig_.events.mails.size(), 1u);
  PressButton(api_, FindNthChild(api_, spell, "_AOL_Button", 1));
  ClickIcon(api_, send_now);
  rig_.Run(1);
  EXPECT_EQ(rig_.events.mails.size(), 2u);
  EXPECT_EQ(api_.Mailboxes().at("Ann").size(), 2u);
  // Sent, the window stays open, and no note says so.
  EXPECT_TRUE(api_.IsWindow(write));
  EXPECT_EQ(api_.FindWindowA("_AOL_Modal", nullptr), 0u);

  const auto prefs = api_.MailPreferences();
  ASSERT_EQ(prefs.size(), 6u);
  EXPECT_EQ(prefs[0], std::make_pair(std::string(kPrefConfirm), 0));
  EXPECT_EQ(prefs[1], std::make_pair(std::string(kPrefClose), 0));
  EXPECT_EQ(prefs[5], std::make_pair(std::string(kPrefSpellCheck), 1));
}

}  // namespace
}  // namespace quorvex
