#include "app/control_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "app/quorvex_app.h"
#include "model/menu.h"
#include "settings/menu_tree.h"

namespace quorvex {
namespace {

TEST(ControlTableTest, NamesAreUniqueAndEveryKindHasItsHandler) {
  std::set<std::string> names;
  for (const Control& c : ControlTable()) {
    EXPECT_TRUE(names.insert(c.name).second) << "twice: " << c.name;
    EXPECT_EQ(c.window, c.name.find('.') == std::string::npos
                            ? "frmMain"
                            : c.name.substr(0, c.name.find('.')))
        << c.name;
    switch (c.kind) {
      case ControlKind::kList:
        EXPECT_TRUE(c.list) << c.name;
        break;
      case ControlKind::kTextBox:
      case ControlKind::kCheckBox:
      case ControlKind::kComboBox:
        EXPECT_TRUE(c.set) << c.name;
        break;
      default:
        EXPECT_TRUE(c.press) << c.name;
    }
  }
}

TEST(ControlTableTest, PresetGroupsTakeExactlyTheirMenuItems) {
  MenuModel menus;
  BuildMenuTree(menus);
  for (const Control& c : ControlTable()) {
    if (c.kind != ControlKind::kMenu || c.max_index == 0) continue;
    // Items 1..N exist in the menu bar, item N+1 does not.
    EXPECT_TRUE(menus.Has(MenuModel::ItemName(c.name, c.max_index))) << c.name;
    EXPECT_FALSE(menus.Has(MenuModel::ItemName(c.name, c.max_index + 1)))
        << c.name;
    EXPECT_FALSE(QuorvexApp::CanPress(c.name, 0)) << c.name;
    EXPECT_TRUE(QuorvexApp::CanPress(c.name, 1)) << c.name;
    EXPECT_FALSE(QuorvexApp::CanPress(c.name, c.max_index + 1)) << c.name;
  }
  // Every insert item of the editor's pop-up can be clicked.
  for (const std::string& item : menus.Children("frmMessages.mnuInserts"))
    EXPECT_TRUE(QuorvexApp::CanPress(item, 0)) << item;
}

TEST(ControlTableTest, WhatEachVerbAccepts) {
  // Plain clicks take no index.
  EXPECT_TRUE(QuorvexApp::CanPress("cmdStart", 0));
  EXPECT_FALSE(QuorvexApp::CanPress("cmdStart", 1));
  EXPECT_TRUE(QuorvexApp::CanPress("mnuServeNChat", 0));
  EXPECT_TRUE(QuorvexApp::CanPress("frmChatroom.lblExit", 0));
  EXPECT_TRUE(QuorvexApp::CanPress("lblMinimize", 0));
  // The banned list: left click (0 or 1) and right click (2), no more.
  EXPECT_TRUE(QuorvexApp::CanPress("lstBanned", 2));
  EXPECT_FALSE(QuorvexApp::CanPress("lstBanned", 3));
  // The editor's tabs are 1 to 3.
  EXPECT_FALSE(QuorvexApp::CanPress("frmMessages.Tab", 0));
  EXPECT_TRUE(QuorvexApp::CanPress("frmMessages.Tab", 3));
  EXPECT_FALSE(QuorvexApp::CanPress("frmMessages.Tab", 4));
  // Return in a text box is its press; the array has members 0 to 2.
  EXPECT_TRUE(QuorvexApp::CanPress("frmChatroom.txtSend", 0));
  EXPECT_TRUE(QuorvexApp::CanPress("frmMessages.txtAdd(2)", 0));
  EXPECT_TRUE(QuorvexApp::CanPress("frmChatroom.txtSend", 13));
  EXPECT_FALSE(QuorvexApp::CanSet("frmMessages.txtAdd(3)"));
  // Lists are selected, labels are not; a window's name qualifies.
  EXPECT_TRUE(QuorvexApp::CanSelect("frmRoom.lstRoom"));
  EXPECT_FALSE(QuorvexApp::CanSelect("lstRoom"));
  EXPECT_FALSE(QuorvexApp::CanSelect("lblPending"));
  EXPECT_FALSE(QuorvexApp::CanSet("cmdStart"));
  EXPECT_FALSE(QuorvexApp::CanPress("mnuHandel", 0));
}

}  // namespace
}  // namespace quorvex
