// Every client operation the serving loop uses, run through the Win32
// binding against the stand-in client in another process.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "client/chat_room.h"
#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/instant_messages.h"
#include "client/mail_send.h"
#include "client/mailbox.h"
#include "client/room_buster.h"
#include "client/session.h"
#include "client/window_ops.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/client_windows.h"
#include "settings/settings.h"
#include "standin_checks.h"
#include "standin_process.h"
#include "win32/win32_host.h"
#include "win32/win32_machine.h"
#include "win32/win32_profile_file.h"
#include "win32/win32_window_api.h"
#include "windows_folder.h"

namespace quorvex {
namespace {

constexpr char kRoomFullText[] =
    "You are unable to enter this room because it is full.";

// `speed` runs both processes' clocks that many times faster.
class ClientOpsTest : public testing::Test {
 protected:
  explicit ClientOpsTest(double speed = 1)
      : host(speed),
        standin(
            "--user \"Joe Smith\" --room Lobby --mails 6 "
            "--people Ann,Averyveryverylongname --speed " +
            std::to_string(speed)) {}
  void SetUp() override { ASSERT_TRUE(standin.running()); }

  // Lets the other process work for a while, this one yielding.
  void Run(double seconds) {
    const double end = host.Clock() + seconds;
    while (host.Clock() < end) host.DoEvents(end);
  }
  // Waits, yielding, until `done` holds; false after `seconds`.
  bool WaitFor(const std::function<bool()>& done, double seconds = 10) {
    const double end = host.Clock() + seconds;
    while (!done()) {
      if (host.Clock() >= end) return false;
      host.DoEvents(std::min(end, host.Clock() + 0.02));
    }
    return true;
  }
  Hwnd ChatInput() {
    const Hwnd room = FindChatRoom(api);
    return api.FindWindowExA(room, FindChild(api, room, "RICHCNTL"), "RICHCNTL",
                             nullptr);
  }
  nlohmann::json MailboxOf(const std::string& name) {
    return test::MailboxOf(standin.State(), name);
  }
  // The client's windows as it sees them, "class:caption" (top-level
  // windows and the frame's documents).
  bool ClientShows(const std::string& window) {
    for (const auto& w : standin.State()["windows"])
      if (w == window) return true;
    return false;
  }
  bool MenuShowing() {
    const Hwnd menu = api.FindWindowA(aol::kPopupMenuClass, nullptr);
    return menu != 0 && api.IsWindowVisible(menu);
  }

  win32::Win32Host host;
  win32::Win32WindowApi api;
  Settings settings;
  ClientContext c{api, host, settings, nullptr};
  test::StandInProcess standin;
};

TEST_F(ClientOpsTest, FindsTheClientsWindowsAndTheUser) {
  const Hwnd frame = FindFrame(api);
  ASSERT_NE(frame, 0u);
  EXPECT_TRUE(IsSignedOn(api));
  EXPECT_EQ(GetUserSN(api), "Joe Smith");
  std::uint32_t pid = 0;
  api.GetWindowThreadProcessId(frame, &pid);
  EXPECT_EQ(pid, standin.pid());
  // The tool bar's icons in their sibling order, found by walking.
  const Hwnd first = FindToolbarIcon(api, 1);
  ASSERT_NE(first, 0u);
  EXPECT_EQ(NextSibling(api, first, 2), FindToolbarIcon(api, 3));
  EXPECT_NE(FindChildByClass(api, FindChatRoom(api), "_aol_listbox"), 0u);
}

TEST_F(ClientOpsTest, ChatSendTypesTheMarkUpInTheClientsCodePage) {
  settings.ChatFont = "Arial";
  settings.LAscii = "°·";
  settings.RAscii = "²•";
  SetText(api, ChatInput(), "half typ");
  EXPECT_EQ(GetChatInputText(api), "half typ");
  ChatSend(c, "hi there");
  EXPECT_EQ(GetText(api, ChatInput()), "half typ");
  EXPECT_TRUE(api.IsWindowVisible(ChatInput()));
  const auto lines = standin.State()["lines"];
  ASSERT_FALSE(lines.empty());
  // The room heard the line as typed; the client's display shows it as a
  // person reads it, the font tag rendered away, the decorations in the
  // client's code page kept.
  EXPECT_EQ(standin.State()["heard"].back(),
            "Joe Smith:\t<font color=#003377 face=\"Arial\">°·hi there²•");
  EXPECT_EQ(lines.back(), "Joe Smith:\t°·hi there²•");
}

TEST_F(ClientOpsTest, RoomPeopleAreReadFromTheClientsMemory) {
  ListBox unique("lstPeople");
  GetRoomPeople(api, unique, true);
  GetRoomPeople(api, unique, true);
  EXPECT_EQ(unique.Items(),
            (std::vector<std::string>{"Joe Smith", "Ann", "Averyveryverylon"}));
  ListBox all("people");
  GetRoomPeople(api, all, false);
  GetRoomPeople(api, all, false);
  ASSERT_EQ(all.Count(), 6);
  EXPECT_EQ(all.Item(3), "joe smith");

  // Someone joins: a new record in the other process.
  standin.Command("join Zed");
  ASSERT_TRUE(WaitFor([&] {
    ListBox now("now");
    GetRoomPeople(api, now, true);
    return now.Count() == 4;
  }));
}

TEST_F(ClientOpsTest, MailboxIsLoadedAndAMailForwarded) {
  ListBox mails("lstMails");
  StatusStrip status;
  LoadMailbox(c, mails, false, status);
  ASSERT_EQ(mails.Count(), 6);
  EXPECT_EQ(mails.Item(0), "mail 1");
  EXPECT_EQ(GetMailCount(api), 6);
  EXPECT_EQ(GetMailTitle(api, 5), "mail 6");

  OpenMail(c, 1);
  // A window is there before its controls, and its icons before their
  // texts: wait for the Forward icon to be ready.
  ASSERT_TRUE(WaitFor([&] {
    return GetText(api, FindNthChild(api, FindOpenMail(api), "_AOL_Icon", 8)) ==
           "Forward";
  }));
  ClickIcon(api, FindNthChild(api, FindOpenMail(api), "_AOL_Icon", 8));
  ASSERT_TRUE(WaitFor([&] { return FindComposeWindow(api) != 0; }));
  ForwardMailNow(c, "(Ann)", FindComposeWindow(api), "here °");
  ASSERT_TRUE(WaitFor([&] { return MailboxOf("Ann").size() == 1; }));
  const auto mail = MailboxOf("Ann")[0];
  EXPECT_EQ(mail["forward_of"], "mail 2");
  EXPECT_EQ(mail["body"], "here °");
}

TEST_F(ClientOpsTest, MailIsWrittenAndSentNow) {
  // Twice: the second waits for the first one's window to go.
  WriteMailNow(c, "Ann, Averyveryverylongname", "hello °", "the body");
  WriteMailNow(c, "Ann", "again", "more");
  ASSERT_TRUE(WaitFor([&] { return MailboxOf("Ann").size() == 2; }));
  const auto box = MailboxOf("Ann");
  EXPECT_EQ(box[0]["subject"], "hello °");
  EXPECT_EQ(box[0]["body"], "the body");
  EXPECT_EQ(box[1]["subject"], "again");
  EXPECT_EQ(MailboxOf("Averyveryverylongname").size(), 1u);
  EXPECT_TRUE(WaitFor([&] { return FindWriteMail(api) == 0; }));
}

TEST_F(ClientOpsTest, KeywordEntersARoomAndAFullRoomsBoxIsPressedByKeys) {
  Keyword(api, "aol://2719:2-2-Den");
  EXPECT_TRUE(WaitFor([&] { return standin.State()["room"] == "Den"; }));

  // A real message box of the client's, its text in a "Static" and its
  // "Button".
  standin.Command("refuse Lobby|1");
  Keyword(api, "aol://2719:2-2-Lobby");
  Hwnd box = 0;
  ASSERT_TRUE(
      WaitFor([&] { return (box = FindClientBox(api, kRoomFullText)) != 0; }));
  std::uint32_t pid = 0;
  api.GetWindowThreadProcessId(box, &pid);
  EXPECT_EQ(pid, standin.pid());
  // Pressed by the keyboard, as the program does: the box goes in both
  // the platform and the client.
  PressButton(api, FindDialogButton(api, box, "OK"));
  EXPECT_TRUE(WaitFor([&] {
    return !api.IsWindow(box) && !ClientShows("#32770:America Online");
  }));
  EXPECT_EQ(standin.State()["room"], "Den");
}

TEST_F(ClientOpsTest, ThePopUpMenuRunsAnItemByItsLetter) {
  // By a letter: "Mail Waiting to &be Sent". (The offline mailbox, by
  // Up, Up, Right, Return, opens in the client's restart below.)
  RunToolbarMenu(c, aol::kToolbarMailIcon, 'b');
  ASSERT_TRUE(WaitFor([&] { return FindDocument(api, kMailWaiting) != 0; }));
  EXPECT_TRUE(WaitFor([&] { return !MenuShowing(); }));
  EXPECT_FALSE(ClientShows("#32768:"));
}

TEST_F(ClientOpsTest, InstantMessagesGoOffAndOnThroughTheClientsBox) {
  auto settled = [&](bool on) {
    auto s = standin.State();
    for (const auto& w : s["windows"])
      if (w == "#32770:America Online" ||
          w == std::string("AOL Child:") + kSendIm)
        return false;
    return s["ims_on"] == on;
  };
  IMsOff(c);
  EXPECT_TRUE(WaitFor([&] { return settled(false); })) << standin.State();
  EXPECT_EQ(api.FindWindowA(aol::kDialogClass, kClientBoxCaption), 0u);
  IMsOn(c);
  EXPECT_TRUE(WaitFor([&] { return settled(true); })) << standin.State();
}

TEST_F(ClientOpsTest, TheRoomBusterPressesThroughAFullRoomsBoxes) {
  standin.Command("refuse Den|2");
  Form window{"frmRoomBuster"};
  RoomBuster buster(window, c, nullptr);
  buster.Form_Load();
  buster.txtRoom.Set("Den");
  buster.cmdStart_Click();
  ASSERT_TRUE(WaitFor([&] { return !buster.busting(); }, 40));
  const auto state = standin.State();
  EXPECT_EQ(state["room"], "Den");
  bool said = false;
  for (const auto& line : state["lines"])
    said = said || line.get<std::string>().find(
                       "quorvex busted Den in 3 tries") != std::string::npos;
  EXPECT_TRUE(said) << state["lines"].dump(1);
  EXPECT_EQ(api.FindWindowA(aol::kDialogClass, nullptr), 0u);
}

// The restart's pauses add up to half a minute: both clocks run faster.
class RestartTest : public ClientOpsTest {
 protected:
  RestartTest() : ClientOpsTest(4) {}
};

TEST_F(RestartTest, TheClientIsRestartedPastASignOnErrorAndBackInTheRoom) {
  const DWORD first = standin.pid();
  standin.Command("knob signon_failures 1");
  // The client's install folder, where the real Win.INI says: the
  // stand-in's own program is its AOL.exe.
  test::WindowsFolder folder;
  win32::Win32Machine machine;
  win32::Win32ProfileFile profiles;
  test::NameStandInInWinIni();
  StatusStrip status;
  Form window{"frmRoomBuster"};
  RoomBuster buster(window, c, nullptr);
  const std::string room = "Lobby";
  // Closes the client (its process ends), starts its program again (a new
  // process, the same world), signs on (the first try ends in the error
  // modal), turns IMs off (a box), opens the offline mailbox (the pop-up
  // menu), sets the mail preferences and busts back into the room.
  AOLRestart({c, machine, profiles, status, buster, room});
  const auto state = standin.State();
  EXPECT_NE(standin.pid(), first);
  EXPECT_TRUE(state["signed_on"]);
  EXPECT_FALSE(state["ims_on"]);
  EXPECT_EQ(state["room"], "Lobby");
  EXPECT_EQ(status.text(), "status: idle");
  EXPECT_NE(FindDocument(api, kIncomingMail), 0u);
  EXPECT_EQ(api.FindWindowA(aol::kDialogClass, nullptr), 0u);
  EXPECT_FALSE(MenuShowing());
  // The people and the mailbox came along with the client's world.
  ListBox people("people");
  GetRoomPeople(api, people, true);
  EXPECT_EQ(people.Count(), 3);
  EXPECT_EQ(GetMailCount(api), 6);
}

TEST_F(ClientOpsTest, MenuCommandsByPosition) {
  const Hmenu menu = api.GetMenu(FindFrame(api));
  EXPECT_NE(menu, 0u);
  // Menus stay inside their process under Wine: looking up a submenu of
  // another process's menu fails there, unlike Windows.
  if (api.GetSubMenu(menu, 2) == 0)
    GTEST_SKIP() << "GetSubMenu of another process's menu: not under Wine";
  EXPECT_NE(api.GetMenuItemID(api.GetSubMenu(menu, 2), 7), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace quorvex
