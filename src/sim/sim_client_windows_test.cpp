// The window tree and the message plumbing, walked as the program walks
// them.
#include "sim/sim_client_fixture.h"

namespace quorvex {
namespace {

class SimWindowsTest : public SimClientTest {
 protected:
  void SetUp() override { api_.Launch(); }
};

TEST_F(SimWindowsTest, TreeHasTheClassesCaptionsAndPositionsReliedOn) {
  Hwnd frame = api_.FindWindowA("AOL Frame25", nullptr);
  // Class names ignore case.
  EXPECT_EQ(api_.FindWindowExA(frame, 0, "MDICLIENT", nullptr),
            FindMdiClient(api_));
  EXPECT_EQ(GetText(api_, FindToolbarIcon(api_, 2)), "Write");

  // Signed on: the welcome window holds the name; the room is on top.
  Hwnd top = api_.FindWindowExA(FindMdiClient(api_), 0, "AOL Child", nullptr);
  EXPECT_EQ(api_.GetWindowTextA(top, 100), "Lobby");
  Hwnd welcome = FindDocument(api_, "Welcome, Host!");
  EXPECT_EQ(api_.GetWindowTextLengthA(welcome), 14);
  EXPECT_EQ(api_.GetWindowTextA(welcome, 10), "Welcome, ");  // cut to 9
  EXPECT_EQ(GetText(api_, api_.FindWindowExA(top, 0, "_AOL_Static", nullptr)),
            "Lobby");
  // The room holds its style and font boxes, as a mail being written does:
  // only its people list tells it apart.
  EXPECT_NE(api_.FindWindowExA(top, 0, "_AOL_Combobox", nullptr), 0u);
  EXPECT_NE(api_.FindWindowExA(top, 0, "_AOL_FontCombo", nullptr), 0u);
  EXPECT_NE(api_.FindWindowExA(top, 0, "_AOL_Listbox", nullptr), 0u);
  EXPECT_EQ(api_.GetClassNameA(top, 4), "AOL");
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
  Hwnd room = api_.FindWindowExA(FindMdiClient(api_), 0, "AOL Child", nullptr);
  Hwnd input = FindNthChild(api_, room, "RICHCNTL", 2);
  api_.ShowWindow(room, win::kSwHide);
  EXPECT_FALSE(api_.IsWindowVisible(input));
  // The screen size comes in display units beyond the pixels.
  Point screen = api_.ScreenSize();
  EXPECT_GT(screen.x, 1024);
  api_.SetCursorPos(screen.x, screen.y);
  EXPECT_EQ(api_.GetCursorPos().x, 1023);
  EXPECT_EQ(api_.GetCursorPos().y, 767);
}

}  // namespace
}  // namespace quorvex
