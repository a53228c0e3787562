// The client's menus and tool bar: the frame's menu bar, the pop-up menus
// of tool-bar icons, and the keyword box.
#pragma once

#include <string_view>

#include "client/client_context.h"

namespace quorvex {

// Runs item `item` of submenu `submenu` of the frame's menu (zero-based).
void RunClientMenu(WindowApi& api, int submenu, int item);
// Clicks tool-bar icon `icon_number` (from 1), waits without a limit for
// its pop-up menu, pauses half a second and picks the entry with the
// underlined `letter`.
void RunToolbarMenu(const ClientContext& c, int icon_number, char letter);
// Opens "Incoming/Saved Mail" through the Mail icon's menu with the keys,
// the pointer parked out of the menu's way meanwhile.
void OpenOfflineMailbox(const ClientContext& c);
// Runs an address ("aol://...") through the tool bar's keyword box.
void Keyword(WindowApi& api, std::string_view address);

}  // namespace quorvex
