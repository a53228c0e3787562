// Pop-up menus built from the core's menu tree each time they open, so
// that captions, check marks and greyed entries are always the model's.
#pragma once

#include <windows.h>

#include <string>

#include "model/menu.h"

namespace quorvex::desktop {

// Shows the children of `parent` at the screen point and returns the name
// of the entry picked ("" when none).
std::string TrackMenu(const MenuModel& menus, const std::string& parent,
                      HWND owner, POINT at);

// A menu entry's command id and back ("" for an id that is no entry).
int MenuCommandId(const MenuModel& menus, const std::string& name);
std::string MenuEntryName(const MenuModel& menus, int id);

// "mnuMSpeed(5)" -> ("mnuMSpeed", 5); a plain name -> (name, 0).
std::pair<std::string, int> SplitGroupItem(const std::string& name);

}  // namespace quorvex::desktop
