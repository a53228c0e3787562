// A small window over one of the core's forms (banning options, room
// people, room buster, serve-and-chat): the desktop opens it beside the
// main window when the form's model opens, and destroys it when the model
// closes; its lblExit hands the form's exit to the core before the window
// goes.
#pragma once

#include "desktop/window.h"

namespace quorvex::desktop {

class Desktop;

class FormWindow : public SmallWindow {
 public:
  // `exit_control` names the form's exit in the core ("frmRoom.lblExit").
  FormWindow(Desktop& desktop, const char* exit_control)
      : desktop_(desktop), exit_control_(exit_control) {}
  virtual void Open() = 0;

 protected:
  void lblExit_Click() override;

  Desktop& desktop_;

 private:
  const char* exit_control_;
};

}  // namespace quorvex::desktop
