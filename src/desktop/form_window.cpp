#include "desktop/form_window.h"

#include "desktop/desktop.h"

namespace quorvex::desktop {

void FormWindow::lblExit_Click() {
  QuorvexApp& app = desktop_.app();
  const char* exit = exit_control_;
  desktop_.Post([&app, exit] { app.Press(exit); });
  Destroy();
}

}  // namespace quorvex::desktop
