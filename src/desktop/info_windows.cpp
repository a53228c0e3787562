#include "desktop/info_windows.h"

#include "desktop/control_ids.h"
#include "settings/settings.h"

namespace quorvex::desktop {

void InfoWindow::Open(const wchar_t* class_name, const std::string& caption,
                      const std::string& text, POINT at, bool with_exit) {
  if (open()) return;
  CreateSmall(class_name, caption, at.x, at.y, 260, 130, with_exit);
  Child(L"STATIC", text, SS_CENTER, 8, 30, 244, 92, kIdLblText);
  ShowWindow(hwnd(), SW_SHOW);
  UpdateWindow(hwnd());
}

std::string SplashText() {
  return std::string("quorvex mail server v") + kVersion +
         "\r\ncoded for america online 5.0\r\n\r\nloading...";
}

}  // namespace quorvex::desktop
