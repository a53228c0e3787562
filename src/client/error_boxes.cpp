#include "client/error_boxes.h"

#include "client/client_tree.h"
#include "client/window_ops.h"

namespace quorvex {

Hwnd FindDialog(WindowApi& api, const char* caption) {
  return api.FindWindowA("#32770", caption);
}

Hwnd FindClientBox(WindowApi& api, std::string_view static_text) {
  const std::string text(static_text);
  for (Hwnd box = api.FindWindowExA(0, 0, "#32770", kClientBoxCaption); box;
       box = api.FindWindowExA(0, box, "#32770", kClientBoxCaption)) {
    if (api.FindWindowExA(box, 0, "Static", text.c_str())) return box;
  }
  return 0;
}

Hwnd FindDialogButton(WindowApi& api, Hwnd box, const char* caption) {
  return api.FindWindowExA(box, 0, "Button", caption);
}

Hwnd FindErrorWindow(WindowApi& api) { return FindDocument(api, "Error"); }

std::string GetErrorText(WindowApi& api, Hwnd error_window) {
  return GetText(api, FindChild(api, error_window, "_AOL_View"));
}

void DismissErrorWindow(WindowApi& api, Hwnd error_window) {
  ClickIcon(api, FindChild(api, error_window, "_AOL_Icon"));
}

Hwnd FindModalButton(WindowApi& api, const char* caption) {
  for (Hwnd modal = api.FindWindowExA(0, 0, "_AOL_Modal", nullptr); modal;
       modal = api.FindWindowExA(0, modal, "_AOL_Modal", nullptr)) {
    if (Hwnd button = api.FindWindowExA(modal, 0, "_AOL_Button", caption))
      return button;
  }
  return 0;
}

void PressButton(WindowApi& api, Hwnd button) {
  api.SendMessageA(button, win::kWmKeyDown, win::kVkSpace, 0);
  api.SendMessageA(button, win::kWmKeyUp, win::kVkSpace, 0);
}

}  // namespace quorvex
