// frmRoomBuster: the room to enter, start and stop, and the count of busts.
#pragma once

#include "desktop/control_ids.h"
#include "desktop/form_window.h"

namespace quorvex::desktop {

class BusterWindow : public FormWindow {
 public:
  explicit BusterWindow(Desktop& desktop)
      : FormWindow(desktop, "frmRoomBuster.lblExit") {}
  void Open() override;

 protected:
  void OnControl(int id, int code, HWND control) override;
  // Return in the room's name starts (or stops) the busting.
  int DefaultButton() const override { return kIdBusterStart; }

 private:
  // txtRoom is disabled while busting.
  void Refresh();
};

}  // namespace quorvex::desktop
