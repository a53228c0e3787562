#include "client/client_menus.h"

#include "client/client_tree.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

// The tool bar's icon row.
Hwnd FindToolbarRow(WindowApi& api, Hwnd frame) {
  return FindChild(api, FindChild(api, frame, aol::kToolbarFrameClass),
                   aol::kToolbarClass);
}

// The pop-up menu, once it shows.
Hwnd VisibleMenu(WindowApi& api) {
  const Hwnd menu = api.FindWindowA(aol::kPopupMenuClass, nullptr);
  return menu != 0 && api.IsWindowVisible(menu) ? menu : 0;
}

// The wait for a tool-bar menu has no limit while the client runs: the
// member sees the client and can help it. A click the busy client lost is
// made again, at a pace. A client that is gone (killed, crashed, never
// come back from a restart) shows no menu: the wait ends, and the job
// finds it signed off.
WaitOptions MenuClickedAgain(WindowApi& api, Hwnd frame, Hwnd icon) {
  return AskingAgain(Gone(api, frame),
                     [&api, icon] { PostClickIcon(api, icon); });
}

}  // namespace

void RunClientMenu(WindowApi& api, int submenu, int item) {
  const Hwnd frame = FindFrame(api);
  const std::uint32_t id =
      api.GetMenuItemID(api.GetSubMenu(api.GetMenu(frame), submenu), item);
  api.SendMessageA(frame, win::kWmCommand, id, 0);
}

void RunToolbarMenu(const ClientContext& c, int icon_number, char letter) {
  const Hwnd frame = FindFrame(c.api);
  const Hwnd first =
      FindChild(c.api, FindToolbarRow(c.api, frame), aol::kIconClass);
  const Hwnd icon = NextSibling(c.api, first, icon_number - 1);
  PostClickIcon(c.api, icon);

  Hwnd menu = 0;
  WaitUntil(
      c.host, [&] { return (menu = VisibleMenu(c.api)) != 0; },
      MenuClickedAgain(c.api, frame, icon));
  Pause(c.host, 0.5);
  c.api.PostMessageA(menu, win::kWmChar, static_cast<unsigned char>(letter), 0);
}

void OpenOfflineMailbox(const ClientContext& c) {
  const Hwnd frame = FindFrame(c.api);
  const Hwnd row = FindToolbarRow(c.api, frame);
  const Hwnd mail_icon =
      FindNthChild(c.api, row, aol::kIconClass, aol::kToolbarMailIcon);

  const Point saved = c.api.GetCursorPos();
  const Point corner = c.api.ScreenSize();
  c.api.SetCursorPos(corner.x, corner.y);
  PostClickIcon(c.api, mail_icon);

  Hwnd menu = 0;
  WaitUntil(
      c.host, [&] { return (menu = VisibleMenu(c.api)) != 0; },
      MenuClickedAgain(c.api, frame, mail_icon));
  // Up twice, Right into the submenu, Return. The second Up has no key up;
  // the menu does not mind and it has always been sent so.
  PostKey(c.api, menu, win::kVkUp);
  c.api.PostMessageA(menu, win::kWmKeyDown, win::kVkUp, 0);
  PostKey(c.api, menu, win::kVkRight);
  PostKey(c.api, menu, win::kVkReturn);
  c.api.SetCursorPos(saved.x, saved.y);
}

void Keyword(WindowApi& api, std::string_view address) {
  const Hwnd row = FindToolbarRow(api, FindFrame(api));
  const Hwnd edit =
      FindChild(api, FindChild(api, row, aol::kComboClass), "Edit");
  SetText(api, edit, address);
  api.SendMessageA(edit, win::kWmChar, win::kVkSpace, 0);
  api.SendMessageA(edit, win::kWmChar, win::kVkReturn, 0);
}

}  // namespace quorvex
