// frmRoom: the people in the room who are not banned yet; a double click
// bans one.
#pragma once

#include "desktop/form_window.h"

namespace quorvex::desktop {

class RoomWindow : public FormWindow {
 public:
  explicit RoomWindow(Desktop& desktop)
      : FormWindow(desktop, "frmRoom.lblExit") {}
  // Shows the room as the core read it, and follows it.
  void Open() override;

 protected:
  void OnControl(int id, int code, HWND control) override;
};

}  // namespace quorvex::desktop
