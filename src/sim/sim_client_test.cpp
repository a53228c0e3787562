// The simulated client's own windows, found and clicked as the program
// finds and clicks them: the message plumbing, the boxes that hold their
// owners, the room's display and people, signing off, the preference
// pages, and a client started again or crashed.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "client/chat_room.h"
#include "client/error_boxes.h"
#include "model/list_box.h"
#include "testing/sim_rig.h"

namespace quorvex {
namespace {

// Opens a "Write Mail" window from the tool bar, waits `seconds` for it
// and addresses it to `to`; 0 when it did not come.
Hwnd WriteMail(SimRig& rig, const std::string& to, double seconds = 1) {
  ClickIcon(rig.client, FindToolbarIcon(rig.client, 2));
  rig.Run(seconds);
  const Hwnd write = FindDocument(rig.client, "Write Mail");
  if (write)
    SetText(rig.client, FindNthChild(rig.client, write, "_AOL_Edit", 1), to);
  return write;
}

class SimClientTest : public ::testing::Test {
 protected:
  SimClientTest() {
    api_.SetUserName("Host");
    api_.SetRoomName("Lobby");
    api_.AddPerson("Ann");
  }
  Hwnd Icon(Hwnd window, int n) {
    return FindNthChild(api_, window, "_AOL_Icon", n);
  }
  Hwnd Room() {
    return api_.FindWindowExA(FindMdiClient(api_), 0, "AOL Child", "Lobby");
  }
  Hwnd Display() { return FindNthChild(api_, Room(), "RICHCNTL", 1); }

  SimRig rig_;
  SimClient& api_ = rig_.client;
};

class SimWindowsTest : public SimClientTest {
 protected:
  void SetUp() override { api_.Launch(); }
};

TEST_F(SimWindowsTest, TextsAreCutToTheBufferLeavingRoomForItsEnd) {
  const Hwnd welcome = FindDocument(api_, "Welcome, Host!");
  EXPECT_EQ(api_.GetWindowTextLengthA(welcome), 14);
  EXPECT_EQ(api_.GetWindowTextA(welcome, 10), "Welcome, ");
  EXPECT_EQ(api_.GetWindowTextA(welcome, 100), "Welcome, Host!");
  EXPECT_EQ(api_.GetClassNameA(welcome, 4), "AOL");
}

TEST_F(SimWindowsTest, AWindowMovedIsRaisedUnlessToldToKeepItsPlace) {
  constexpr unsigned kSwpNoZOrder = 4;
  const Hwnd buddies = FindDocument(api_, "Buddy List Window");
  auto top = [&] {
    return api_.FindWindowExA(FindMdiClient(api_), 0, "AOL Child", nullptr);
  };
  api_.SetWindowPos(buddies, 0, 0, 0, 1, 1, win::kSwpNoMove | kSwpNoZOrder);
  EXPECT_EQ(top(), Room());
  api_.SetWindowPos(buddies, 0, 0, 0, 1, 1, win::kSwpNoMove);
  EXPECT_EQ(top(), buddies);
}

TEST_F(SimWindowsTest, WindowsOpenAfterTheLatencyWithNewHandles) {
  api_.SetLatency(0.5);
  PostClickIcon(api_, FindToolbarIcon(api_, 2));
  rig_.Run(0.4);
  EXPECT_EQ(FindDocument(api_, "Write Mail"), 0u);
  rig_.Run(0.2);
  Hwnd write = FindDocument(api_, "Write Mail");
  ASSERT_NE(write, 0u);
  // A new document window is the first "AOL Child".
  EXPECT_EQ(api_.FindWindowExA(FindMdiClient(api_), 0, "AOL Child", nullptr),
            write);

  api_.SendMessageA(write, win::kWmClose, 0, 0);
  ClickIcon(api_, FindToolbarIcon(api_, 2));
  rig_.Run(0.6);
  Hwnd again = FindDocument(api_, "Write Mail");
  EXPECT_NE(again, write);
  // A message posted to a window that is gone is refused.
  EXPECT_FALSE(api_.PostMessageA(write, win::kWmClose, 0, 0));
  EXPECT_TRUE(api_.PostMessageA(again, win::kWmClose, 0, 0));
  EXPECT_TRUE(api_.IsWindow(again));  // until the program yields
  rig_.Run(0.01);
  EXPECT_FALSE(api_.IsWindow(again));
}

TEST_F(SimWindowsTest, ClicksWhileBusyAreLostAndHalfClicksDoNothing) {
  api_.knobs().lost_click_chance = 1.0;
  api_.knobs().busy = 10;
  rig_.Run(1);  // the launch's own busy time is over
  ClickIcon(api_, FindToolbarIcon(api_, 2));
  rig_.Run(1);
  ASSERT_NE(FindDocument(api_, "Write Mail"), 0u);
  // The window's opening keeps the client busy: the next click is lost.
  ClickIcon(api_, FindToolbarIcon(api_, 1));
  rig_.Run(1);
  EXPECT_EQ(FindDocument(api_, "Host's Online Mailbox"), 0u);
  rig_.Run(10);
  ClickIcon(api_, FindToolbarIcon(api_, 1));
  rig_.Run(1);
  EXPECT_NE(FindDocument(api_, "Host's Online Mailbox"), 0u);

  api_.knobs().lost_click_chance = 0;
  api_.SendMessageA(FindToolbarIcon(api_, 2), win::kWmLButtonUp, 0, 0);
  api_.SendMessageA(FindToolbarIcon(api_, 2), win::kWmLButtonDown, 0, 0);
  rig_.Run(1);
  Hwnd write = FindDocument(api_, "Write Mail");
  EXPECT_EQ(
      api_.FindWindowExA(FindMdiClient(api_), write, "AOL Child", "Write Mail"),
      0u);
}

TEST_F(SimWindowsTest, HiddenParentsHideAndThePointerStopsInTheCorner) {
  const Hwnd input = FindNthChild(api_, Room(), "RICHCNTL", 2);
  api_.ShowWindow(Room(), win::kSwHide);
  EXPECT_FALSE(api_.IsWindowVisible(input));
  // The screen size comes in display units beyond the pixels.
  Point screen = api_.ScreenSize();
  EXPECT_GT(screen.x, 1024);
  api_.SetCursorPos(screen.x, screen.y);
  EXPECT_EQ(api_.GetCursorPos().x, 1023);
  EXPECT_EQ(api_.GetCursorPos().y, 767);
}

using SimModalTest = SimClientTest;

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

using SimRoomTest = SimWindowsTest;

TEST_F(SimRoomTest, DisplayKeepsOnlyItsLastLines) {
  api_.knobs().display_lines = 3;
  for (int i = 1; i <= 5; ++i) api_.Say("Ann", "line " + std::to_string(i));
  EXPECT_EQ(GetText(api_, Display()),
            "Ann:\tline 3\r\nAnn:\tline 4\r\nAnn:\tline 5");
  EXPECT_EQ(rig_.events.chats.size(), 5u);  // every line was seen
  // Emptied like any rich edit, it goes on with the lines said after.
  api_.SendMessageSetText(Display(), win::kWmSetText, 0, "");
  api_.Say("Ann", "line 6");
  EXPECT_EQ(GetText(api_, Display()), "Ann:\tline 6");
}

TEST_F(SimRoomTest, PeopleAreReadFromTheClientsMemory) {
  api_.Say("Bob", "hey");  // joins first
  ListBox people("lstPeople");
  GetRoomPeople(api_, people, true);
  EXPECT_EQ(people.Items(), (std::vector<std::string>{"Host", "Ann", "Bob"}));
  Hwnd count = FindNthChild(api_, Room(), "_AOL_Static", 2);
  EXPECT_EQ(GetText(api_, count), "3");
  // Without the right to read, or for another process, nothing opens.
  EXPECT_EQ(api_.OpenProcess(0x0400, false, api_.process_id()), 0u);
  EXPECT_EQ(api_.OpenProcess(0xF0010, false, api_.process_id() + 1), 0u);
  // A stale item address reads nothing once its person has left.
  Hwnd list = api_.FindWindowExA(Room(), 0, "_AOL_Listbox", nullptr);
  auto ann_item = static_cast<std::uint32_t>(
      api_.SendMessageA(list, win::kLbGetItemData, 1, 0));
  api_.Leave("ANN");
  EXPECT_EQ(GetText(api_, count), "2");
  ProcessHandle p = api_.OpenProcess(0xF0010, false, api_.process_id());
  char buf[4];
  std::size_t read = 99;
  EXPECT_FALSE(api_.ReadProcessMemory(p, ann_item + 24, buf, 4, &read));
  EXPECT_EQ(read, 0u);
}

TEST(SimClientStateTest, AClientStartedAgainKeepsItsWorldAndPendingFaults) {
  SimRig first;
  SimClient& a = first.client;
  a.SetUserName("Host");
  a.SetRoomName("Town Square");
  a.AddPerson("Ann");
  a.AddMail("one");
  a.AddMail("two");
  a.SetDeadMail(2);
  a.SetDeadMail(5);  // before its mail came
  a.SetFullMailbox("Cal");
  a.SetErrorLine("Cal", "Cal-full");
  a.knobs().signon_failures = 1;
  a.knobs().latency = 0.4;
  a.Launch();
  a.RefuseRoom("Town Square", 2);
  a.world().Deliver("Ann", {"Host", "Fwd: one", "body", "one"});
  // A mail written offline waits to be sent.
  a.SignOff();
  const Hwnd write = WriteMail(first, "Bob", 3);
  ASSERT_NE(write, 0u);
  ClickIcon(a, FindNthChild(a, write, "_AOL_Icon", 17));
  ASSERT_EQ(a.WaitingCount(), 1);
  a.SetPreference("Perform a spell check before sending mail", 1);

  // Written as text and read back, as a new process would.
  const nlohmann::json saved = nlohmann::json::parse(a.SaveState().dump());
  SimRig second;
  SimClient& b = second.client;
  b.RestoreState(saved);
  b.Start();
  second.Run(5);
  ASSERT_NE(FindDocument(b, "Sign On"), 0u);
  EXPECT_EQ(b.user_name(), "Host");
  EXPECT_EQ(b.IncomingTitles(), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(b.Mailboxes().at("Ann").at(0).subject, "Fwd: one");
  EXPECT_EQ(b.WaitingCount(), 1);
  EXPECT_EQ(b.Waiting()[0].to, "Bob");
  EXPECT_EQ(b.knobs().latency, 0.4);
  EXPECT_EQ(b.knobs().signon_failures, 1);
  EXPECT_EQ(b.Preference("Perform a spell check before sending mail"), 1);
  EXPECT_TRUE(b.world().FindPerson("cal")->full_mailbox);
  EXPECT_EQ(saved["error_lines"]["cal"], "Cal-full");
  EXPECT_EQ(b.world().FindRoom("townsquare")->refusals, 2);
  EXPECT_TRUE(b.world().InRoom("Town Square", "Ann"));
  // Its saved state is the one it came from: nothing was lost on the way.
  EXPECT_EQ(b.SaveState(), saved);

  // The mail added later takes the dead number set before it came.
  b.AddMail("three");
  b.AddMail("four");
  b.AddMail("five");
  EXPECT_EQ(b.SaveState()["incoming"][4]["dead"], true);
  EXPECT_EQ(b.SaveState()["incoming"][2]["dead"], false);
}

TEST(SimClientStateTest, AStagedClientLaunchesAsSetUp) {
  SimRig first;
  first.client.SetUserName("Host");
  first.client.SetRoomName("Lobby");
  first.client.AddPerson("Ann");
  first.client.SetSignedOffAtStart(false);
  SimRig second;
  second.client.RestoreState(first.client.SaveState());
  second.client.Launch();
  EXPECT_TRUE(second.client.signed_on());
  EXPECT_EQ(second.client.current_room(), "Lobby");
  EXPECT_TRUE(second.world.InRoom("Lobby", "Ann"));
}

TEST(SimClientStateTest, ACrashTakesTheWindowsAtOnceAndAStartUnderWay) {
  SimRig rig;
  SimClient& c = rig.client;
  c.Launch();
  ASSERT_TRUE(c.running());
  c.Crash();
  EXPECT_FALSE(c.running());
  EXPECT_EQ(FindFrame(c), 0u);
  EXPECT_EQ(rig.events.client,
            (std::vector<std::string>{"signs off", "closes"}));
  // Nothing more comes of a dead client.
  c.Crash();
  EXPECT_EQ(rig.events.client.size(), 2u);

  // A crash while the program is starting: no "Sign On" ever comes, and
  // the next start does.
  c.Start();
  rig.Run(0.5);
  c.Crash();
  rig.Run(5);
  EXPECT_FALSE(c.running());
  c.Start();
  rig.Run(5);
  EXPECT_NE(FindDocument(c, "Sign On"), 0u);

  // A crash while the client is closing: the close never completes twice.
  c.SendMessageA(FindFrame(c), win::kWmClose, 0, 0);
  c.Crash();
  rig.Run(3);
  EXPECT_EQ(std::count(rig.events.client.begin(), rig.events.client.end(),
                       std::string("closes")),
            3);
}

}  // namespace
}  // namespace quorvex
