#include "sim/popup_menu.h"

#include <gtest/gtest.h>

#include "client/window_api.h"

namespace quorvex {
namespace {

std::vector<MenuItem> Items() {
  return {{"&Read Mail", 1, {}},
          {"&Sent Mail", 2, {}},
          {"Mail Waiting to &be Sent", 3, {}},
          {"Read &Offline Mail",
           0,
           {{"&Incoming/Saved Mail", 4, {}}, {"Mail I've Sen&t", 5, {}}}},
          {"Mail &Preferences", 6, {}}};
}

TEST(PopupMenuTest, KeysWalkIntoTheSubmenu) {
  PopupMenu m(Items());
  using R = PopupMenu::Result;
  EXPECT_EQ(m.KeyDown(win::kVkUp), R::kNone);  // from none: the last
  EXPECT_EQ(m.selected(0), 4);
  EXPECT_EQ(m.KeyDown(win::kVkUp), R::kNone);
  EXPECT_EQ(m.selected(0), 3);
  EXPECT_EQ(m.KeyDown(win::kVkRight), R::kNone);
  ASSERT_EQ(m.depth(), 2);
  EXPECT_EQ(m.selected(1), 0);
  EXPECT_EQ(m.KeyDown(win::kVkReturn), R::kChosen);
  EXPECT_EQ(m.chosen(), 4);
  EXPECT_EQ(m.depth(), 0);

  // Right on an item without a submenu does nothing; Escape closes a
  // level at a time.
  PopupMenu n(Items());
  n.KeyDown(win::kVkUp);
  EXPECT_EQ(n.KeyDown(win::kVkRight), R::kNone);
  EXPECT_EQ(n.depth(), 1);
  n.KeyDown(win::kVkUp);
  n.KeyDown(win::kVkRight);
  EXPECT_EQ(n.KeyDown(win::kVkEscape), R::kNone);
  EXPECT_EQ(n.depth(), 1);
  EXPECT_EQ(n.KeyDown(win::kVkEscape), R::kClosed);
}

TEST(PopupMenuTest, LettersPickTheUnderlinedEntry) {
  PopupMenu m(Items());
  EXPECT_EQ(m.Char('x'), PopupMenu::Result::kNone);
  EXPECT_EQ(m.Char('S'), PopupMenu::Result::kChosen);  // case ignored
  EXPECT_EQ(m.chosen(), 2);
  PopupMenu n(Items());
  EXPECT_EQ(n.Char('b'), PopupMenu::Result::kChosen);
  EXPECT_EQ(n.chosen(), 3);
  PopupMenu o(Items());
  EXPECT_EQ(o.Char('o'), PopupMenu::Result::kNone);  // opens the submenu
  EXPECT_EQ(o.Char('t'), PopupMenu::Result::kChosen);
  EXPECT_EQ(o.chosen(), 5);
  EXPECT_EQ(PopupMenu::Mnemonic("Fish && &Chips"), 'c');
}

}  // namespace
}  // namespace quorvex
