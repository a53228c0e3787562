#include "desktop/room_window.h"

#include "desktop/control_ids.h"
#include "desktop/desktop.h"

namespace quorvex::desktop {

void RoomWindow::Open() {
  // Open already, it follows the room the core reads again.
  if (open()) return;
  CreateSmall(kRoomClass, "room people", 0, 0, 240, 220);
  Child(L"LISTBOX", "",
        LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_BORDER | WS_TABSTOP,
        6, 26, 228, 188, kIdLstRoom);
  BindList(Item(kIdLstRoom), desktop_.app().frm().forms.frmRoom.lstRoom, subs_);
  ShowWindow(hwnd(), SW_SHOW);
}

void RoomWindow::OnControl(int id, int code, HWND control) {
  if (id != kIdLstRoom || code != LBN_DBLCLK) return;
  const int sel = static_cast<int>(SendMessageW(control, LB_GETCURSEL, 0, 0));
  QuorvexApp& app = desktop_.app();
  desktop_.Post([&app, sel] {
    app.Select("frmRoom.lstRoom", sel);
    app.Press("frmRoom.lstRoom");
  });
}

}  // namespace quorvex::desktop
