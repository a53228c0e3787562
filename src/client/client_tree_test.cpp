#include "client/client_tree.h"

#include "client/client_menus.h"
#include "client/mailbox.h"
#include "client/test_client.h"
#include "client/window_ops.h"

namespace quorvex {
namespace {

using ClientTreeTest = ClientTest;

TEST_F(ClientTreeTest, ScreenNameAndSignOnFromTheWelcomeWindow) {
  EXPECT_FALSE(IsSignedOn(api));  // no client at all
  EXPECT_EQ(GetUserSN(api), "");
  Launch();
  EXPECT_TRUE(IsSignedOn(api));
  EXPECT_EQ(GetUserSN(api), "Joe Smith");
  sim.SignOff();
  EXPECT_FALSE(IsSignedOn(api));
  EXPECT_EQ(GetUserSN(api), "");
  EXPECT_TRUE(SignedOff(api)());
}

TEST_F(ClientTreeTest, ClientChildFallsBackToTheTopmostContainingTheText) {
  Launch();
  const Hwnd room = FindClientChild(api, "Lobby");
  EXPECT_EQ(room, FindChatRoom(api));
  Keyword(api, "aol://9293:Ann");
  Run(1);
  const Hwnd im = FindDocument(api, kSendIm);
  ASSERT_NE(im, 0u);
  // No window is captioned "Instant", but the topmost one contains it.
  EXPECT_EQ(FindClientChild(api, "Instant"), im);
  // The welcome window is not the topmost: only an exact caption finds it.
  EXPECT_EQ(FindClientChild(api, "Welcome"), 0u);
  EXPECT_NE(FindClientChild(api, "Welcome, Joe Smith!"), 0u);
}

TEST_F(ClientTreeTest, WaitForClientChildWithinOneSecond) {
  Launch();
  const Hwnd room = FindChatRoom(api);
  const Hwnd display = FindChild(api, room, "RICHCNTL");
  EXPECT_EQ(WaitForClientChild(c, "Lobby"), room);
  const auto keys = api.To(display);
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_TRUE(keys[0].posted);
  EXPECT_EQ(keys[0].msg, win::kWmKeyDown);
  EXPECT_EQ(keys[0].wparam, static_cast<std::uintptr_t>(win::kVkEscape));
  EXPECT_EQ(keys[1].msg, win::kWmKeyUp);

  // Missing: gives up when the budget from the rounded second is spent.
  const double start = host.Elapsed();  // clock 12:00:00 and a little
  EXPECT_EQ(WaitForClientChild(c, "Nowhere"), 0u);
  EXPECT_GT(host.Elapsed() - start, 0.9);
  EXPECT_LT(host.Elapsed() - start, 1.5);
}

TEST_F(ClientTreeTest, DocumentWindowsByTheirChildren) {
  AddMails(3);
  Launch();
  const Hwnd room = FindChatRoom(api);
  ASSERT_NE(room, 0u);
  EXPECT_EQ(GetCaption(api, room), "Lobby");
  // The chat room has two rich-text controls: it is no open mail.
  EXPECT_EQ(FindOpenMail(api), 0u);
  EXPECT_EQ(FindComposeWindow(api), 0u);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);

  OpenOfflineMailbox(c);
  Run(1);
  OpenMail(c, 1);
  Run(1);
  const Hwnd mail = FindOpenMail(api);
  ASSERT_NE(mail, 0u);
  EXPECT_EQ(GetCaption(api, mail), "mail 1");
  EXPECT_EQ(FindChatRoom(api), room);

  ClickIcon(api, FindNthChild(api, mail, "_AOL_Icon", 8));
  Run(1);
  const Hwnd forward = FindComposeWindow(api);
  ASSERT_NE(forward, 0u);
  EXPECT_EQ(GetCaption(api, forward), "Fwd: mail 1");

  RunToolbarMenu(c, 3, 'S');
  Run(1);
  EXPECT_NE(FindTabbedMailbox(api), 0u);
}

}  // namespace
}  // namespace quorvex
