#include "client/window_ops.h"

#include "testing/test_client.h"

namespace quorvex {
namespace {

class WindowOpsTest : public ClientTest {
 protected:
  Hwnd Row() {
    return FindChild(api, FindChild(api, FindFrame(api), "AOL Toolbar"),
                     "_AOL_Toolbar");
  }
};

TEST_F(WindowOpsTest, ChildByClassAndTitleAreCaseBlindSubstrings) {
  Launch();
  const Hwnd frame = FindFrame(api);
  EXPECT_EQ(FindChildByClass(api, frame, "toolbar"),
            FindChild(api, frame, "AOL Toolbar"));
  EXPECT_EQ(FindChildByClass(api, frame, "mdiclient"), FindMdiClient(api));
  EXPECT_EQ(FindChildByClass(api, frame, "RICHCNTL"), 0u);  // children only
  const Hwnd welcome = FindChildByTitle(api, FindMdiClient(api), "welcome, ");
  EXPECT_EQ(GetCaption(api, welcome), "Welcome, Joe Smith!");
  EXPECT_EQ(FindChildByTitle(api, FindMdiClient(api), "JOE SMITH"), welcome);
  EXPECT_EQ(FindChildByTitle(api, FindMdiClient(api), "Goodbye"), 0u);
}

TEST_F(WindowOpsTest, NthChildCountsByPositionAndStopsWhereTheIconsEnd) {
  Launch();
  const Hwnd row = Row();
  EXPECT_EQ(GetText(api, FindNthChild(api, row, "_aol_icon", 3)),
            "Mail Center");
  // 14 icons: the count stops there, it does not start again from the
  // first (a window still being made would pass an early icon off as a
  // later one).
  EXPECT_EQ(GetText(api, FindNthChild(api, row, "_AOL_Icon", 14)), "Go");
  EXPECT_EQ(FindNthChild(api, row, "_AOL_Icon", 15), 0u);
  EXPECT_EQ(FindNthChild(api, row, "_AOL_Icon", 16), 0u);
  const Hwnd first = FindNthChild(api, row, "_AOL_Icon", 1);
  EXPECT_EQ(NextSibling(api, first, 2), FindNthChild(api, row, "_AOL_Icon", 3));
  EXPECT_EQ(FindNthChildAfter(api, row, first, "_AOL_Icon", 2),
            FindNthChild(api, row, "_AOL_Icon", 3));
}

TEST_F(WindowOpsTest, TextsKeysAndPostedClicks) {
  Launch();
  const Hwnd edit =
      FindChild(api, FindChild(api, Row(), "_AOL_Combobox"), "Edit");
  SetText(api, edit, "keyword");
  SendChar(api, edit, 's');
  EXPECT_EQ(GetText(api, edit), "keywords");
  // No message at all to a window that is gone.
  api.messages.clear();
  SendChar(api, 0xDEAD, 's');
  EXPECT_TRUE(api.messages.empty());

  // A posted click reaches the client only when the program yields.
  PostClickIcon(api, FindNthChild(api, Row(), "_AOL_Icon", 2));
  EXPECT_EQ(FindDocument(api, kWriteMail), 0u);
  Run(1);
  EXPECT_NE(FindDocument(api, kWriteMail), 0u);
}

}  // namespace
}  // namespace quorvex
