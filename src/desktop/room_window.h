// frmRoom: the people in the room who are not banned yet; a double click
// bans one.
#pragma once

#include "desktop/window.h"

namespace quorvex::desktop {

class Desktop;

class RoomWindow : public SmallWindow {
 public:
  explicit RoomWindow(Desktop& desktop) : desktop_(desktop) {}
  // Shows the room as the core read it when the window loaded.
  void Open(POINT at);

 protected:
  void lblExit_Click() override;
  void OnControl(int id, int code, HWND control) override;

 private:
  Desktop& desktop_;
};

}  // namespace quorvex::desktop
