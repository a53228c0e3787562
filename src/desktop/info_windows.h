// The informational windows: frmAbout, frmCredits and the splash window,
// each a title bar over a few lines of text.
#pragma once

#include "desktop/window.h"

namespace quorvex::desktop {

class InfoWindow : public SmallWindow {
 public:
  // `with_exit`: the splash window has no lblExit.
  void Open(const wchar_t* class_name, const std::string& caption,
            const std::string& text, POINT at, bool with_exit = true);

 protected:
  void lblExit_Click() override { Destroy(); }
};

// The texts of the windows, and of the contact-info message (the web
// address is the "[web]" insert's).
std::string AboutText();
std::string CreditsText();
std::string SplashText();
inline constexpr const char* kContactInfo = "aol: kestrin qx\r\naim: kestrinqx";

}  // namespace quorvex::desktop
