// frmBanning: the banning options. The controls show the options' model
// when the window opens, every edit goes to the model, and lblExit saves
// the options and closes the window.
#pragma once

#include "desktop/form_window.h"

namespace quorvex::desktop {

class BanningWindow : public FormWindow {
 public:
  explicit BanningWindow(Desktop& desktop)
      : FormWindow(desktop, "frmBanning.lblExit") {}
  void Open(POINT at) override;

 protected:
  void OnControl(int id, int code, HWND control) override;
};

}  // namespace quorvex::desktop
