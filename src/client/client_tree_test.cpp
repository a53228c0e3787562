#include "client/client_tree.h"

#include "client/chat_room.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

using ClientTreeTest = ClientTest;

TEST_F(ClientTreeTest, ClientChildFallsBackToTheTopmostContainingTheText) {
  EXPECT_FALSE(IsSignedOn(api));  // no client at all
  Launch();
  EXPECT_EQ(GetUserSN(api), "Joe Smith");  // from the welcome window
  EXPECT_EQ(FindClientChild(api, "Lobby"), FindChatRoom(api));
  Keyword(api, "aol://9293:Ann");
  Run(1);
  const Hwnd im = FindDocument(api, kSendIm);
  ASSERT_NE(im, 0u);
  // No window is captioned "Instant", but the topmost one contains it.
  EXPECT_EQ(FindClientChild(api, "Instant"), im);
  // The welcome window is not the topmost: only an exact caption finds it.
  EXPECT_EQ(FindClientChild(api, "Welcome"), 0u);
  EXPECT_NE(FindClientChild(api, "Welcome, Joe Smith!"), 0u);
  sim.SignOff();
  EXPECT_TRUE(SignedOff(api)());
  EXPECT_EQ(GetUserSN(api), "");
}

// Walking the client's windows one after the other, the next of a window
// that closed meanwhile is none. The walk must not end there: the welcome
// window after it would be missed, and the user taken for signed off.
TEST_F(ClientTreeTest, AWindowClosingMidWalkHidesNoneAfterIt) {
  Launch();
  Keyword(api, "aol://9293:Ann");
  Run(1);
  const Hwnd im = FindDocument(api, kSendIm);
  ASSERT_NE(im, 0u);
  ASSERT_EQ(api.GetWindow(FindMdiClient(api), win::kGwChild), im);
  int closings = 0;
  api.before_get_window = [&](Hwnd h, unsigned cmd) {
    if (h == im && cmd == win::kGwHwndNext && api.IsWindow(im)) {
      ++closings;
      api.SendMessageA(im, win::kWmClose, 0, 0);
    }
  };
  EXPECT_TRUE(IsSignedOn(api));
  EXPECT_EQ(closings, 1);
  EXPECT_EQ(FindDocument(api, kSendIm), 0u);
  // A walk that finds nothing still ends.
  EXPECT_EQ(FindChildByTitle(api, FindMdiClient(api), "Goodbye"), 0u);
}

// The same with the walks that ask FindWindowExA for the window after the
// last: the chat room below a window that closes just then is still found
// (a line said at that moment once went unsaid), and so is the welcome
// window the screen name is read from.
TEST_F(ClientTreeTest, AWindowClosingMidFindHidesNoneAfterIt) {
  Launch();
  const Hwnd mdi = FindMdiClient(api);
  Hwnd im = 0;
  auto open_im_on_top = [&] {
    Keyword(api, "aol://9293:Ann");
    Run(1);
    im = FindDocument(api, kSendIm);
    ASSERT_NE(im, 0u);
    ASSERT_EQ(FindChild(api, mdi, aol::kChildClass), im);
  };
  int closings = 0;
  api.before_find_window = [&](Hwnd parent, Hwnd after) {
    if (parent == mdi && after == im && api.IsWindow(im)) {
      ++closings;
      api.SendMessageA(im, win::kWmClose, 0, 0);
    }
  };

  open_im_on_top();
  ChatSend(c, "still heard");
  EXPECT_EQ(closings, 1);
  ASSERT_FALSE(chats.empty());
  EXPECT_EQ(chats.back(), ChatLine(c, "still heard"));

  open_im_on_top();
  EXPECT_EQ(GetUserSN(api), "Joe Smith");
  EXPECT_EQ(closings, 2);

  // A walk that finds nothing still ends.
  open_im_on_top();
  EXPECT_EQ(FindClientChildWhere(api, [](Hwnd) { return false; }), 0u);
  EXPECT_EQ(closings, 3);
}

TEST_F(ClientTreeTest, WaitForClientChildWithinOneSecond) {
  Launch();
  const Hwnd room = FindChatRoom(api);
  EXPECT_EQ(WaitForClientChild(c, "Lobby"), room);
  // It first sends Escape to the chat display.
  const auto keys = api.To(FindChild(api, room, "RICHCNTL"));
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
  Launch();
  EXPECT_EQ(GetCaption(api, FindChatRoom(api)), "Lobby");
  // The chat room has two rich-text controls: it is no open mail.
  EXPECT_EQ(FindOpenMail(api), 0u);
  EXPECT_EQ(FindComposeWindow(api), 0u);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
  RunToolbarMenu(c, 3, 'S');
  Run(1);
  EXPECT_NE(FindTabbedMailbox(api), 0u);
}

TEST_F(ClientTreeTest, MailWindowSearchesPassOverTheRoom) {
  // A plain room (no style boxes) named as the mail window is captioned.
  sim.knobs().room_style_controls = false;
  sim.SetRoomName(kWriteMail);
  Launch();
  const Hwnd room = FindChatRoom(api);
  ASSERT_NE(room, 0u);
  EXPECT_TRUE(IsChatRoom(api, room));
  EXPECT_EQ(FindWriteMail(api), 0u);
  EXPECT_EQ(FindOpenMail(api), 0u);
  PostClickIcon(api, FindToolbarIcon(api, 2));
  Run(1);
  const Hwnd write = FindWriteMail(api);
  ASSERT_NE(write, 0u);
  EXPECT_NE(write, room);
  EXPECT_FALSE(IsChatRoom(api, write));
  EXPECT_EQ(FindComposeWindow(api), write);
  // Back on top, the room is still passed over.
  api.SetWindowPos(room, 0, 0, 0, 0, 0, win::kSwpNoSize | win::kSwpNoMove);
  EXPECT_EQ(FindWriteMail(api), write);
}

TEST_F(ClientTreeTest, OfflineMailboxThroughTheMailMenuKeys) {
  Launch();
  api.SetCursorPos(100, 200);
  api.messages.clear();
  OpenOfflineMailbox(c);
  EXPECT_EQ(api.GetCursorPos().x, 100);
  EXPECT_EQ(api.GetCursorPos().y, 200);
  std::vector<std::pair<unsigned, std::uintptr_t>> keys;
  for (const auto& m : api.messages)
    if (m.posted && (m.msg == win::kWmKeyDown || m.msg == win::kWmKeyUp))
      keys.emplace_back(m.msg, m.wparam);
  // The second Up has no key up.
  const std::vector<std::pair<unsigned, std::uintptr_t>> expected = {
      {win::kWmKeyDown, 38}, {win::kWmKeyUp, 38}, {win::kWmKeyDown, 38},
      {win::kWmKeyDown, 39}, {win::kWmKeyUp, 39}, {win::kWmKeyDown, 13},
      {win::kWmKeyUp, 13}};
  EXPECT_EQ(keys, expected);
  Run(1);
  EXPECT_NE(FindDocument(api, kIncomingMail), 0u);
}

// A tool-bar menu is waited for without a limit while the client runs;
// a killed client shows none, and the wait must end, or the job that
// asked would wait for ever.
TEST_F(ClientTreeTest, AToolbarMenuOfAClientThatIsGoneIsNotWaitedFor) {
  Launch();
  sim.Crash();
  host.SetEnd(host.Elapsed() + 600);
  EXPECT_NO_THROW(OpenOfflineMailbox(c));
  EXPECT_NO_THROW(RunToolbarMenu(c, 3, 'S'));
  EXPECT_EQ(FindDocument(api, kIncomingMail), 0u);
}

}  // namespace
}  // namespace quorvex
