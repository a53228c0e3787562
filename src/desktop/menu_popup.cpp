#include "desktop/menu_popup.h"

#include <algorithm>

#include "desktop/control_ids.h"
#include "desktop/wide_text.h"

namespace quorvex::desktop {

namespace {

HMENU Build(const MenuModel& menus, const std::string& parent) {
  HMENU menu = CreatePopupMenu();
  for (const std::string& name : menus.Children(parent)) {
    const MenuEntry& e = menus.Get(name);
    if (e.caption == "-") {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
      continue;
    }
    UINT flags = MF_STRING;
    if (e.checked) flags |= MF_CHECKED;
    if (!e.enabled) flags |= MF_GRAYED;
    const std::wstring caption = Wide(e.caption);
    if (!menus.Children(name).empty()) {
      AppendMenuW(menu, flags | MF_POPUP,
                  reinterpret_cast<UINT_PTR>(Build(menus, name)),
                  caption.c_str());
    } else {
      AppendMenuW(menu, flags,
                  static_cast<UINT_PTR>(MenuCommandId(menus, name)),
                  caption.c_str());
    }
  }
  return menu;
}

}  // namespace

int MenuCommandId(const MenuModel& menus, const std::string& name) {
  const auto& order = menus.Order();
  const auto it = std::find(order.begin(), order.end(), name);
  if (it == order.end()) return 0;
  return kMenuBase + static_cast<int>(it - order.begin());
}

std::string MenuEntryName(const MenuModel& menus, int id) {
  const int index = id - kMenuBase;
  const auto& order = menus.Order();
  if (index < 0 || index >= static_cast<int>(order.size())) return "";
  return order[static_cast<std::size_t>(index)];
}

std::pair<std::string, int> SplitGroupItem(const std::string& name) {
  const std::size_t open = name.find('(');
  if (open == std::string::npos || name.back() != ')') return {name, 0};
  return {name.substr(0, open),
          std::atoi(name.substr(open + 1, name.size() - open - 2).c_str())};
}

std::string TrackMenu(const MenuModel& menus, const std::string& parent,
                      HWND owner, POINT at) {
  HMENU menu = Build(menus, parent);
  SetForegroundWindow(owner);
  const int id = TrackPopupMenu(
      menu, TPM_RETURNCMD | TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON,
      at.x, at.y, 0, owner, nullptr);
  DestroyMenu(menu);
  return id ? MenuEntryName(menus, id) : std::string();
}

}  // namespace quorvex::desktop
