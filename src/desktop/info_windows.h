// The informational windows: frmAbout, frmCredits and the splash window,
// each a title bar over a few lines of text.
#pragma once

#include <functional>
#include <utility>

#include "desktop/window.h"

namespace quorvex::desktop {

class InfoWindow : public SmallWindow {
 public:
  // `exit` hands lblExit to the core (none: the window only goes).
  explicit InfoWindow(std::function<void()> exit = nullptr)
      : exit_(std::move(exit)) {}

  // `with_exit`: the splash window has no lblExit. `at` is where it opens
  // unless the desktop places it.
  void Open(const wchar_t* class_name, const std::string& caption,
            const std::string& text, POINT at = {}, bool with_exit = true);

 protected:
  void lblExit_Click() override {
    if (exit_) exit_();
    Destroy();
  }

 private:
  std::function<void()> exit_;
};

// The splash window's text.
std::string SplashText();

}  // namespace quorvex::desktop
