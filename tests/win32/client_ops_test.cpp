// Every client operation the serving loop uses, run through the Win32
// binding against the stand-in client in another process.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "client/chat_room.h"
#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mail_send.h"
#include "client/mailbox.h"
#include "client/window_ops.h"
#include "model/label.h"
#include "model/list_box.h"
#include "settings/settings.h"
#include "standin_process.h"
#include "win32/win32_host.h"
#include "win32/win32_window_api.h"

namespace quorvex {
namespace {

class ClientOpsTest : public testing::Test {
 protected:
  ClientOpsTest()
      : standin(
            "--user \"Joe Smith\" --room Lobby --mails 6 "
            "--people Ann,Averyveryverylongname") {}

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
    auto state = standin.State();
    return state["mailboxes"].contains(name) ? state["mailboxes"][name]
                                             : nlohmann::json::array();
  }

  win32::Win32Host host;
  win32::Win32WindowApi api;
  Settings settings;
  ClientContext c{api, host, settings, nullptr};
  test::StandInProcess standin;
};

TEST_F(ClientOpsTest, FindsTheClientsWindowsAndTheUser) {
  ASSERT_TRUE(standin.running());
  const Hwnd frame = FindFrame(api);
  ASSERT_NE(frame, 0u);
  EXPECT_NE(FindMdiClient(api), 0u);
  EXPECT_NE(FindChatRoom(api), 0u);
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
  ASSERT_TRUE(standin.running());
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
  EXPECT_EQ(lines.back(),
            "Joe Smith:\t<font color=#003377 face=\"Arial\">°·hi there²•");
}

TEST_F(ClientOpsTest, RoomPeopleAreReadFromTheClientsMemory) {
  ASSERT_TRUE(standin.running());
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
  ASSERT_TRUE(standin.running());
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

TEST_F(ClientOpsTest, KeywordEntersARoom) {
  ASSERT_TRUE(standin.running());
  Keyword(api, "aol://2719:2-2-Den");
  EXPECT_TRUE(WaitFor([&] { return standin.State()["room"] == "Den"; }));
}

TEST_F(ClientOpsTest, MenuCommandsByPosition) {
  ASSERT_TRUE(standin.running());
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
