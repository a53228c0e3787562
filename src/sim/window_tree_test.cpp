#include "sim/window_tree.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(WindowTreeTest, FindsAndWalksChildrenInTheirOrder) {
  WindowTree t;
  Hwnd mdi = t.Create(0, "MDIClient", "");
  Hwnd a = t.Create(mdi, "AOL Child", "Incoming/Saved Mail", true);
  Hwnd b = t.Create(mdi, "AOL Child", "Welcome, Joe!", true);
  Hwnd i1 = t.Create(a, "_AOL_Icon", "Read");
  Hwnd s = t.Create(a, "_AOL_Static", "");
  Hwnd i2 = t.Create(a, "_AOL_Icon", "Help");

  // Class names match whole; captions exactly.
  EXPECT_EQ(t.Find(a, 0, "_AOL_Ico", nullptr), 0u);
  EXPECT_EQ(t.Find(mdi, 0, "AOL Child", "incoming/saved mail"), 0u);
  EXPECT_EQ(t.Find(mdi, 0, "AOL Child", "Incoming"), 0u);
  // A new document window goes on top; controls keep their order.
  EXPECT_EQ(t.Find(mdi, 0, "AOL Child", nullptr), b);
  EXPECT_EQ(t.Find(mdi, b, "AOL Child", nullptr), a);
  EXPECT_EQ(t.NthChild(a, "_AOL_Icon", 3), 0u);
  // "after" that is not a child of the parent finds nothing.
  EXPECT_EQ(t.Find(a, b, "_AOL_Icon", nullptr), 0u);

  EXPECT_EQ(t.Walk(a, 5), i1);
  EXPECT_EQ(t.Walk(s, 2), i2);
  EXPECT_EQ(t.Walk(i2, 2), 0u);
  EXPECT_EQ(t.Walk(i2, 3), s);
  t.BringToTop(a);
  EXPECT_EQ(t.Find(mdi, 0, "AOL Child", nullptr), a);
}

TEST(WindowTreeTest, DestroyRemovesTheSubtreeAndHandlesAreNeverReused) {
  WindowTree t;
  std::vector<Hwnd> destroyed;
  t.SetDestroyHook([&](const SimWindow& w) { destroyed.push_back(w.hwnd); });
  Hwnd top = t.Create(0, "#32770", "America Online");
  Hwnd st = t.Create(top, "Static", "text");
  Hwnd btn = t.Create(top, "Button", "OK");
  t.Destroy(top);
  EXPECT_EQ(destroyed, (std::vector<Hwnd>{st, btn, top}));
  EXPECT_EQ(t.size(), 0);
  Hwnd again = t.Create(0, "#32770", "America Online");
  EXPECT_TRUE(again != top && again != st && again != btn);
}

}  // namespace
}  // namespace quorvex
