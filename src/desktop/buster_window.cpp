#include "desktop/buster_window.h"

#include "desktop/control_ids.h"
#include "desktop/desktop.h"

namespace quorvex::desktop {

void BusterWindow::Open() {
  if (open()) return;
  CreateSmall(kBusterClass, desktop_.Title("mnuRoomBuster"), 0, 0, 250, 104);
  FrmRoomBuster& buster = *desktop_.app().frm().forms.frmRoomBuster;
  Child(L"EDIT", buster.txtRoom.text, ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP,
        8, 28, 234, 22, kIdTxtRoom);
  Child(L"BUTTON", "", BS_PUSHBUTTON | WS_TABSTOP, 8, 56, 90, 24,
        kIdBusterStart);
  Child(L"STATIC", "", SS_LEFT, 108, 61, 134, 18, kIdLblBusts);
  BindLabel(Item(kIdBusterStart), buster.cmdStart, subs_);
  BindLabel(Item(kIdLblBusts), buster.lblBusts, subs_);
  subs_.Add(buster.cmdStart, [this](const Label&) { Refresh(); });
  Refresh();
  ShowWindow(hwnd(), SW_SHOW);
}

void BusterWindow::Refresh() {
  HWND room = Item(kIdTxtRoom);
  const bool enabled =
      desktop_.app().frm().forms.frmRoomBuster->txtRoom.enabled;
  // The keys go on to the button while the room's name cannot take them.
  if (!enabled && GetFocus() == room) SetFocus(Item(kIdBusterStart));
  EnableWindow(room, enabled);
}

void BusterWindow::OnControl(int id, int code, HWND control) {
  QuorvexApp& app = desktop_.app();
  if (id == kIdTxtRoom && code == EN_CHANGE) {
    const std::string text = WindowText(control);
    desktop_.Post([&app, text] { app.Set("frmRoomBuster.txtRoom", text); });
  } else if (id == kIdBusterStart && code == BN_CLICKED) {
    desktop_.Post([this, &app] {
      app.Press("frmRoomBuster.cmdStart");
      if (open()) Refresh();
    });
  }
}

}  // namespace quorvex::desktop
