#include "client/error_boxes.h"

#include "client/client_tree.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"

namespace quorvex {

Hwnd FindDialog(WindowApi& api, const char* caption) {
  return api.FindWindowA(aol::kDialogClass, caption);
}

Hwnd FindClientBox(WindowApi& api, std::string_view static_text) {
  const std::string text(static_text);
  for (Hwnd box = api.FindWindowExA(0, 0, aol::kDialogClass, kClientBoxCaption);
       box;
       box = api.FindWindowExA(0, box, aol::kDialogClass, kClientBoxCaption)) {
    // Only once it shows: a box is made and filled in before it shows, and
    // a key it takes before then is undone as it takes the focus.
    if (api.IsWindowVisible(box) &&
        api.FindWindowExA(box, 0, "Static", text.c_str()))
      return box;
  }
  return 0;
}

Hwnd FindDialogButton(WindowApi& api, Hwnd box, const char* caption) {
  return api.FindWindowExA(box, 0, "Button", caption);
}

Hwnd FindErrorWindow(WindowApi& api) { return FindDocument(api, "Error"); }

std::string GetErrorText(WindowApi& api, Hwnd error_window) {
  return GetText(api, FindChild(api, error_window, aol::kViewClass));
}

void DismissErrorWindow(WindowApi& api, Hwnd error_window) {
  ClickIcon(api, FindChild(api, error_window, aol::kIconClass));
}

Hwnd FindModalButton(WindowApi& api, const char* caption) {
  for (Hwnd modal = api.FindWindowExA(0, 0, aol::kModalClass, nullptr); modal;
       modal = api.FindWindowExA(0, modal, aol::kModalClass, nullptr)) {
    if (Hwnd button = api.FindWindowExA(modal, 0, aol::kButtonClass, caption))
      return button;
  }
  return 0;
}

void PressButton(WindowApi& api, Hwnd button) {
  api.SendMessageA(button, win::kWmKeyDown, win::kVkSpace, 0);
  api.SendMessageA(button, win::kWmKeyUp, win::kVkSpace, 0);
}

}  // namespace quorvex
