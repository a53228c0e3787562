#include "desktop/remote.h"

#include <chrono>
#include <thread>
#include <vector>

#include "desktop/control_ids.h"
#include "desktop/menu_popup.h"
#include "desktop/wide_text.h"
#include "model/menu.h"
#include "settings/menu_tree.h"

namespace quorvex::desktop::remote {

bool WaitFor(const std::function<bool()>& done, double seconds) {
  const auto end = std::chrono::steady_clock::now() +
                   std::chrono::milliseconds(static_cast<int>(seconds * 1000));
  while (true) {
    if (done()) return true;
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

namespace {

struct Search {
  const wchar_t* class_name;
  const wchar_t* title;
  DWORD process_id;
  HWND found;
};

BOOL CALLBACK Visit(HWND w, LPARAM lp) {
  auto* s = reinterpret_cast<Search*>(lp);
  wchar_t cls[64];
  GetClassNameW(w, cls, 64);
  if (lstrcmpiW(cls, s->class_name) != 0 || !IsWindowVisible(w)) return TRUE;
  if (s->title && Utf8(std::wstring(s->title)) != Text(w)) return TRUE;
  DWORD pid = 0;
  GetWindowThreadProcessId(w, &pid);
  if (s->process_id && pid != s->process_id) return TRUE;
  s->found = w;
  return FALSE;
}

}  // namespace

HWND WaitWindow(const wchar_t* class_name, const wchar_t* title, double seconds,
                DWORD process_id) {
  Search s{class_name, title, process_id, nullptr};
  WaitFor(
      [&] {
        s.found = nullptr;
        EnumWindows(Visit, reinterpret_cast<LPARAM>(&s));
        return s.found != nullptr;
      },
      seconds);
  return s.found;
}

bool Showing(const wchar_t* class_name) {
  HWND w = FindWindowW(class_name, nullptr);
  return w && IsWindowVisible(w);
}

std::string Text(HWND window) {
  const LRESULT n = SendMessageW(window, WM_GETTEXTLENGTH, 0, 0);
  std::wstring text(static_cast<std::size_t>(n) + 1, L'\0');
  SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(n) + 1,
               reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(n));
  return Utf8(text);
}

void SetText(HWND window, const std::string& text) {
  SendMessageW(window, WM_SETTEXT, 0,
               reinterpret_cast<LPARAM>(Wide(text).c_str()));
}

int ListCount(HWND list) {
  return static_cast<int>(SendMessageW(list, LB_GETCOUNT, 0, 0));
}

std::string ListItem(HWND list, int index) {
  const LRESULT n = SendMessageW(list, LB_GETTEXTLEN, index, 0);
  if (n == LB_ERR) return "";
  std::wstring text(static_cast<std::size_t>(n) + 1, L'\0');
  SendMessageW(list, LB_GETTEXT, index, reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(n));
  return Utf8(text);
}

void Click(HWND control) {
  wchar_t cls[32];
  GetClassNameW(control, cls, 32);
  if (lstrcmpiW(cls, L"Button") == 0) {
    PostMessageW(control, BM_CLICK, 0, 0);
    return;
  }
  PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
  PostMessageW(control, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
}

void RightClick(HWND control) {
  PostMessageW(control, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(2, 2));
  PostMessageW(control, WM_RBUTTONUP, 0, MAKELPARAM(2, 2));
}

void DoubleClickItem(HWND list, int index) {
  SendMessageW(list, LB_SETCURSEL, index, 0);
  PostMessageW(GetParent(list), WM_COMMAND,
               MAKEWPARAM(GetDlgCtrlID(list), LBN_DBLCLK),
               reinterpret_cast<LPARAM>(list));
}

void PressReturn(HWND edit) { PostMessageW(edit, WM_CHAR, L'\r', 0); }

void PickMenu(HWND main, const std::string& entry) {
  MenuModel menus;
  BuildMenuTree(menus);
  PostMessageW(main, kMsgMenuCommand,
               static_cast<WPARAM>(MenuCommandId(menus, entry)), 0);
}

namespace {

INPUT KeyInput(WORD key, bool up) {
  INPUT in{};
  in.type = INPUT_KEYBOARD;
  in.ki.wVk = key;
  in.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
  return in;
}

}  // namespace

void PressKey(WORD key, bool shift, bool alt) {
  std::vector<INPUT> keys;
  if (shift) keys.push_back(KeyInput(VK_SHIFT, false));
  if (alt) keys.push_back(KeyInput(VK_MENU, false));
  keys.push_back(KeyInput(key, false));
  keys.push_back(KeyInput(key, true));
  if (alt) keys.push_back(KeyInput(VK_MENU, true));
  if (shift) keys.push_back(KeyInput(VK_SHIFT, true));
  SendInput(static_cast<UINT>(keys.size()), keys.data(), sizeof(INPUT));
  // The program takes its keys in its own time.
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
}

void TypeKeys(const std::string& text) {
  for (char c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    PressKey(static_cast<WORD>(c == ' ' ? VK_SPACE : c));
  }
}

bool ToFront(HWND window) {
  return WaitFor(
      [&] {
        SetForegroundWindow(window);
        return GetForegroundWindow() == window;
      },
      10);
}

HWND Focus(HWND window) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
  return info.hwndFocus;
}

HWND WaitDialog(const std::string& title, double seconds) {
  return WaitWindow(L"#32770", Wide(title).c_str(), seconds);
}

namespace {

// A callback of the system's own calling convention (a lambda has the
// C++ one, which differs in a 32-bit program).
BOOL CALLBACK FindPrompt(HWND child, LPARAM lp) {
  wchar_t cls[32];
  GetClassNameW(child, cls, 32);
  const std::string text = Text(child);
  // The icon of a message box is a static without text.
  if (lstrcmpiW(cls, L"Static") == 0 && !text.empty()) {
    *reinterpret_cast<std::string*>(lp) = text;
    return FALSE;
  }
  return TRUE;
}

}  // namespace

std::string DialogPrompt(HWND dialog) {
  std::string prompt;
  EnumChildWindows(dialog, FindPrompt, reinterpret_cast<LPARAM>(&prompt));
  return prompt;
}

void PressDialogButton(HWND dialog, int id) {
  PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

}  // namespace quorvex::desktop::remote
