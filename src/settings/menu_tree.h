// The menu bar of the main window and the message editor's pop-up menu, as
// designed: names, parents and design captions. The setting entries get
// their real captions from LoadSettings.
#pragma once

#include <string>

#include "model/menu.h"

namespace quorvex {

// The editor's menu shares the model with the main window's but not its
// names: its entries are "frmMessages.mnuInserts", "frmMessages.mnuDate"...
inline constexpr const char* kMessagesMenuPrefix = "frmMessages.";

// Adds every entry of frmMain's menu bar. Preset items are named
// "mnuMSpeed(1)".."mnuMSpeed(5)" and so on, separators included.
void BuildMainMenu(MenuModel& menus);
// Adds "frmMessages.mnuInserts" and its eleven insert items.
void BuildInsertsMenu(MenuModel& menus);
// Both of the above.
void BuildMenuTree(MenuModel& menus);

}  // namespace quorvex
