// frmRoomBuster: the room to enter, start and stop, and the count of busts.
#pragma once

#include "desktop/window.h"

namespace quorvex::desktop {

class Desktop;

class BusterWindow : public SmallWindow {
 public:
  explicit BusterWindow(Desktop& desktop) : desktop_(desktop) {}
  void Open(POINT at);

 protected:
  void lblExit_Click() override;
  void OnControl(int id, int code, HWND control) override;

 private:
  // txtRoom is disabled while busting.
  void Refresh();

  Desktop& desktop_;
};

}  // namespace quorvex::desktop
