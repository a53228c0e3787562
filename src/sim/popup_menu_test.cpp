// The menu's plain paths are driven by the mail tests; these are the rest.
#include "sim/popup_menu.h"

#include <gtest/gtest.h>

#include "client/window_api.h"

namespace quorvex {
namespace {

TEST(PopupMenuTest, SubmenusOpenAndCloseALevelAtATime) {
  using R = PopupMenu::Result;
  auto items = [] {
    return std::vector<MenuItem>{
        {"&Read Mail", 1, {}},
        {"Read &Offline Mail",
         0,
         {{"&Incoming/Saved Mail", 4, {}}, {"Mail I've Sen&t", 5, {}}}},
        {"Mail &Preferences", 6, {}}};
  };
  PopupMenu n(items());
  n.KeyDown(win::kVkUp);
  n.KeyDown(win::kVkRight);  // no submenu there: nothing
  EXPECT_EQ(n.depth(), 1);
  n.KeyDown(win::kVkUp);
  n.KeyDown(win::kVkRight);
  EXPECT_EQ(n.depth(), 2);
  EXPECT_EQ(n.KeyDown(win::kVkEscape), R::kNone);
  EXPECT_EQ(n.depth(), 1);
  EXPECT_EQ(n.KeyDown(win::kVkEscape), R::kClosed);

  PopupMenu o(items());
  EXPECT_EQ(o.Char('x'), R::kNone);
  EXPECT_EQ(o.Char('O'), R::kNone);  // opens the submenu, case ignored
  EXPECT_EQ(o.Char('t'), R::kChosen);
  EXPECT_EQ(o.chosen(), 5);
  EXPECT_EQ(PopupMenu::Mnemonic("Fish && &Chips"), 'c');
}

}  // namespace
}  // namespace quorvex
