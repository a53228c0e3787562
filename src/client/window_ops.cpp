#include "client/window_ops.h"

#include <algorithm>

#include "model/text_util.h"

namespace quorvex {

namespace {

// The client opens and closes windows while we walk its children: the
// next of a window that has just closed is none, whether asked with
// GetWindow or FindWindowExA, which would end the walk before the windows
// after it (the welcome window, and the user would be taken for signed
// off; the chat room, and a line to say would be dropped). A walk cut
// short that way starts again from the first child, a few times at the
// most.
constexpr int kWalks = 4;

// The walk of FindChildByClass and FindChildByTitle. The old runtime held
// the walked handle in a 16-bit number and stopped with an overflow above
// 32767; handles stay whole here.
template <typename Text>
Hwnd FindChildContaining(WindowApi& api, Hwnd parent, std::string_view wanted,
                         Text text_of) {
  const std::string needle = UCase(wanted);
  for (int walk = 0; walk < kWalks; ++walk) {
    Hwnd last = 0;
    for (Hwnd child = api.GetWindow(parent, win::kGwChild); child != 0;
         child = api.GetWindow(child, win::kGwHwndNext)) {
      if (UCase(text_of(child)).find(needle) != std::string::npos) return child;
      last = child;
    }
    if (last == 0 || api.IsWindow(last)) break;  // walked to the true end
  }
  return 0;
}

}  // namespace

Hwnd FindChildByClass(WindowApi& api, Hwnd parent,
                      std::string_view class_name) {
  return FindChildContaining(api, parent, class_name,
                             [&](Hwnd h) { return api.GetClassNameA(h, 250); });
}

Hwnd FindChildByTitle(WindowApi& api, Hwnd parent, std::string_view text) {
  return FindChildContaining(api, parent, text, [&](Hwnd h) {
    return api.GetWindowTextA(h, api.GetWindowTextLengthA(h) + 1);
  });
}

Hwnd FindChildWhere(WindowApi& api, Hwnd parent, const char* class_name,
                    const char* caption,
                    const std::function<bool(Hwnd)>& test) {
  for (int walk = 0; walk < kWalks; ++walk) {
    Hwnd last = 0;
    for (Hwnd child = api.FindWindowExA(parent, 0, class_name, caption);
         child != 0;
         child = api.FindWindowExA(parent, child, class_name, caption)) {
      if (test(child)) return child;
      last = child;
    }
    if (last == 0 || api.IsWindow(last)) break;  // walked to the true end
  }
  return 0;
}

Hwnd FindNthChild(WindowApi& api, Hwnd parent, const char* class_name, int n) {
  return FindNthChildAfter(api, parent, 0, class_name, n);
}

Hwnd FindNthChildAfter(WindowApi& api, Hwnd parent, Hwnd after,
                       const char* class_name, int n) {
  // In a window the client is still making fewer controls may follow yet:
  // the count stops where they end instead of going round again from the
  // first one (a search after none starts at the first child).
  Hwnd found = after;
  for (int i = 0; i < n; ++i) {
    found = api.FindWindowExA(parent, found, class_name, nullptr);
    if (found == 0) return 0;
  }
  return found;
}

Hwnd NextSibling(WindowApi& api, Hwnd hwnd, int steps) {
  for (int i = 0; i < steps; ++i) hwnd = api.GetWindow(hwnd, win::kGwHwndNext);
  return hwnd;
}

Hwnd FindChild(WindowApi& api, Hwnd parent, const char* class_name) {
  return api.FindWindowExA(parent, 0, class_name, nullptr);
}

std::string GetCaption(WindowApi& api, Hwnd hwnd) {
  const int length = api.GetWindowTextLengthA(hwnd);
  return api.GetWindowTextA(hwnd, std::max(length, 0) + 1);
}

std::string GetText(WindowApi& api, Hwnd hwnd) {
  const auto length = api.SendMessageA(hwnd, win::kWmGetTextLength, 0, 0);
  const auto buffer =
      static_cast<std::size_t>(std::max<std::intptr_t>(length, 0) + 1);
  std::string text;
  api.SendMessageGetText(hwnd, win::kWmGetText, buffer, &text, buffer);
  return text;
}

void SetText(WindowApi& api, Hwnd hwnd, std::string_view text) {
  api.SendMessageSetText(hwnd, win::kWmSetText, 0, text);
}

void CloseWindow(WindowApi& api, Hwnd hwnd) {
  api.SendMessageA(hwnd, win::kWmClose, 0, 0);
}

void ClickIcon(WindowApi& api, Hwnd icon) {
  api.SendMessageA(icon, win::kWmLButtonDown, 0, 0);
  api.SendMessageA(icon, win::kWmLButtonUp, 0, 0);
}

void PostClickIcon(WindowApi& api, Hwnd icon) {
  api.PostMessageA(icon, win::kWmLButtonDown, 0, 0);
  api.PostMessageA(icon, win::kWmLButtonUp, 0, 0);
}

void SendChar(WindowApi& api, Hwnd hwnd, int char_code) {
  if (api.IsWindow(hwnd))
    api.SendMessageA(hwnd, win::kWmChar, static_cast<std::uintptr_t>(char_code),
                     0);
}

void PostKey(WindowApi& api, Hwnd hwnd, int virtual_key) {
  const auto key = static_cast<std::uintptr_t>(virtual_key);
  api.PostMessageA(hwnd, win::kWmKeyDown, key, 0);
  api.PostMessageA(hwnd, win::kWmKeyUp, key, 0);
}

void HideWindow(WindowApi& api, Hwnd hwnd) {
  api.ShowWindow(hwnd, win::kSwHide);
}

void ShowWindowNormal(WindowApi& api, Hwnd hwnd) {
  api.ShowWindow(hwnd, win::kSwShow);
}

void MinimizeWindow(WindowApi& api, Hwnd hwnd) {
  api.ShowWindow(hwnd, win::kSwMinimize);
}

void ShrinkWindow(WindowApi& api, Hwnd hwnd) {
  api.SetWindowPos(hwnd, 0, 0, 0, 1, 1, win::kSwpNoMove);
}

}  // namespace quorvex
