#include "client/window_ops.h"

#include "client/client_tree.h"
#include "client/test_client.h"

namespace quorvex {
namespace {

using WindowOpsTest = ClientTest;

TEST_F(WindowOpsTest, ChildByClassAndTitleAreCaseBlindSubstrings) {
  Launch();
  const Hwnd frame = FindFrame(api);
  const Hwnd strip = FindChild(api, frame, "AOL Toolbar");
  ASSERT_NE(strip, 0u);
  EXPECT_EQ(FindChildByClass(api, frame, "toolbar"), strip);
  EXPECT_EQ(FindChildByClass(api, frame, "mdiclient"), FindMdiClient(api));
  EXPECT_EQ(FindChildByClass(api, strip, "_aol_tool"),
            FindChild(api, strip, "_AOL_Toolbar"));
  EXPECT_EQ(FindChildByClass(api, frame, "RICHCNTL"), 0u);

  const Hwnd welcome = FindChildByTitle(api, FindMdiClient(api), "welcome, ");
  ASSERT_NE(welcome, 0u);
  EXPECT_EQ(GetCaption(api, welcome), "Welcome, Joe Smith!");
  EXPECT_EQ(FindChildByTitle(api, FindMdiClient(api), "JOE SMITH"), welcome);
  EXPECT_EQ(FindChildByTitle(api, FindMdiClient(api), "Goodbye"), 0u);
}

TEST_F(WindowOpsTest, NthChildCountsByPositionAndWrapsLikeFindWindowEx) {
  Launch();
  const Hwnd row = FindChild(api, FindChild(api, FindFrame(api), "AOL Toolbar"),
                             "_AOL_Toolbar");
  EXPECT_EQ(GetText(api, FindNthChild(api, row, "_AOL_Icon", 2)), "Write");
  EXPECT_EQ(GetText(api, FindNthChild(api, row, "_aol_icon", 3)),
            "Mail Center");
  // 14 icons: the 15th search starts from the first again.
  EXPECT_EQ(GetText(api, FindNthChild(api, row, "_AOL_Icon", 14)), "Go");
  EXPECT_EQ(FindNthChild(api, row, "_AOL_Icon", 15), 0u);
  EXPECT_EQ(FindNthChild(api, row, "_AOL_Icon", 16),
            FindNthChild(api, row, "_AOL_Icon", 1));
  const Hwnd first = FindNthChild(api, row, "_AOL_Icon", 1);
  EXPECT_EQ(NextSibling(api, first, 2), FindNthChild(api, row, "_AOL_Icon", 3));
  EXPECT_EQ(FindNthChildAfter(api, row, first, "_AOL_Icon", 2),
            FindNthChild(api, row, "_AOL_Icon", 3));
}

TEST_F(WindowOpsTest, TextsKeysAndShowing) {
  Launch();
  const Hwnd row = FindChild(api, FindChild(api, FindFrame(api), "AOL Toolbar"),
                             "_AOL_Toolbar");
  const Hwnd edit =
      FindChild(api, FindChild(api, row, "_AOL_Combobox"), "Edit");
  SetText(api, edit, "keyword");
  EXPECT_EQ(GetText(api, edit), "keyword");
  SendChar(api, edit, 's');
  EXPECT_EQ(GetText(api, edit), "keywords");

  // No message at all to a window that is gone.
  api.messages.clear();
  SendChar(api, 0xDEAD, 's');
  EXPECT_TRUE(api.messages.empty());

  const Hwnd room = FindChatRoom(api);
  HideWindow(api, room);
  EXPECT_FALSE(api.IsWindowVisible(room));
  ShowWindowNormal(api, room);
  EXPECT_TRUE(api.IsWindowVisible(room));
  ShrinkWindow(api, room);
  EXPECT_EQ(sim.WindowSize(room).x, 1);
  EXPECT_EQ(sim.WindowSize(room).y, 1);

  // A posted click reaches the client only when the program yields.
  PostClickIcon(api, FindNthChild(api, row, "_AOL_Icon", 2));
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);
  Run(1);
  EXPECT_NE(FindDocument(api, kWriteMail), 0u);
  CloseWindow(api, FindDocument(api, kWriteMail));
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);
}

}  // namespace
}  // namespace quorvex
