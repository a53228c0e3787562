// frmBanning: the banning options. The controls show the options' model
// when the window opens, every edit goes to the model, and lblExit saves
// the options and closes the window.
#pragma once

#include "desktop/window.h"

namespace quorvex::desktop {

class Desktop;

class BanningWindow : public SmallWindow {
 public:
  explicit BanningWindow(Desktop& desktop) : desktop_(desktop) {}
  void Open(POINT at);

 protected:
  void lblExit_Click() override;
  void OnControl(int id, int code, HWND control) override;

 private:
  Desktop& desktop_;
};

}  // namespace quorvex::desktop
