#include "desktop/window.h"

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include <algorithm>
#include <vector>

#include "desktop/band.h"
#include "desktop/control_ids.h"
#include "desktop/wide_text.h"
#include "model/draw_status.h"
#include "model/text_util.h"

namespace quorvex::desktop {

Window::~Window() {
  Destroy();
  DeleteObject(back_);
}

void Window::Register(HINSTANCE instance, const wchar_t* class_name) {
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.lpfnWndProc = Proc;
  wc.hInstance = instance;
  wc.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  wc.hbrBackground = nullptr;
  wc.lpszClassName = class_name;
  // The program's icon (resource 1), for the task bar and Alt+Tab, each
  // at the size the system draws it.
  auto icon = [instance](int cx, int cy) {
    return static_cast<HICON>(LoadImageW(
        instance, MAKEINTRESOURCEW(1), IMAGE_ICON, GetSystemMetrics(cx),
        GetSystemMetrics(cy), LR_DEFAULTCOLOR | LR_SHARED));
  };
  wc.hIcon = icon(SM_CXICON, SM_CYICON);
  wc.hIconSm = icon(SM_CXSMICON, SM_CYSMICON);
  RegisterClassExW(&wc);
}

void Window::Destroy() {
  if (hwnd_) DestroyWindow(hwnd_);
}

void Window::CreateTopLevel(const wchar_t* class_name,
                            const std::string& caption, int x, int y, int w,
                            int h) {
  subs_.Clear();
  // The place is on the screen, in its pixels; the size grows with it.
  CreateWindowExW(WS_EX_TOPMOST, class_name, Wide(caption).c_str(),
                  WS_POPUP | WS_CLIPCHILDREN | WS_MINIMIZEBOX | WS_SYSMENU, x,
                  y, Scaled(w), Scaled(h), nullptr, nullptr,
                  GetModuleHandleW(nullptr), this);
}

HWND Window::Child(const wchar_t* class_name, const std::string& text,
                   DWORD style, int x, int y, int w, int h, int id,
                   DWORD ex_style) {
  HWND c = CreateWindowExW(ex_style, class_name, Wide(text).c_str(),
                           WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | style,
                           Scaled(x), Scaled(y), Scaled(w), Scaled(h), hwnd_,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           GetModuleHandleW(nullptr), nullptr);
  SendMessageW(c, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), TRUE);
  return c;
}

LRESULT Window::Handle(UINT msg, WPARAM wp, LPARAM lp) {
  switch (msg) {
    case WM_COMMAND:
      OnCommand(LOWORD(wp), HIWORD(wp), reinterpret_cast<HWND>(lp));
      return 0;
    case WM_ERASEBKGND: {
      RECT rc;
      GetClientRect(hwnd_, &rc);
      FillRect(reinterpret_cast<HDC>(wp), &rc, back_);
      return 1;
    }
    case DM_GETDEFID:
      return DefaultButton() ? MAKELRESULT(DefaultButton(), DC_HASDEFID) : 0;
    case WM_ACTIVATE:
      // The focus comes back to where it was, or to the first control.
      if (LOWORD(wp) == WA_INACTIVE) {
        HWND f = GetFocus();
        if (f && IsChild(hwnd_, f)) focus_ = f;
      } else {
        HWND f = focus_ && IsWindow(focus_) && IsChild(hwnd_, focus_)
                     ? focus_
                     : GetNextDlgTabItem(hwnd_, nullptr, FALSE);
        if (f) {
          SetFocus(f);
          return 0;
        }
      }
      break;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: {
      HDC dc = reinterpret_cast<HDC>(wp);
      SetTextColor(dc, kForeColour);
      SetBkColor(dc, kBackColour);
      return reinterpret_cast<LRESULT>(back_);
    }
  }
  return DefWindowProcW(hwnd_, msg, wp, lp);
}

LRESULT CALLBACK Window::Proc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  Window* self;
  if (msg == WM_NCCREATE) {
    self = static_cast<Window*>(
        reinterpret_cast<CREATESTRUCTW*>(lp)->lpCreateParams);
    self->hwnd_ = hwnd;
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  } else {
    self = reinterpret_cast<Window*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  }
  if (!self) return DefWindowProcW(hwnd, msg, wp, lp);
  if (msg == WM_NCDESTROY) {
    self->subs_.Clear();
    self->hwnd_ = nullptr;
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
    self->OnDestroyed();
    return DefWindowProcW(hwnd, msg, wp, lp);
  }
  return self->Handle(msg, wp, lp);
}

namespace {
std::function<POINT(HWND)>& Placer() {
  static std::function<POINT(HWND)> placer;
  return placer;
}
}  // namespace

void SetSmallWindowPlacer(std::function<POINT(HWND opening)> placer) {
  Placer() = std::move(placer);
}

void SmallWindow::CreateSmall(const wchar_t* class_name,
                              const std::string& caption, int x, int y, int w,
                              int h, bool with_exit) {
  CreateTopLevel(class_name, caption, x, y, w, h);
  with_exit_ = with_exit;
  if (Placer()) {
    const POINT at = Placer()(hwnd());
    SetWindowPos(hwnd(), nullptr, at.x, at.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  HWND title = CreateBand(hwnd(), kIdPicTitle, 0, 0, w, 20, true);
  SetBand(title, kBandColour, kWindowTitle);
  if (with_exit) {
    HWND exit = Child(L"STATIC", "x", SS_CENTER | SS_NOTIFY, w - 18, 3, 14, 14,
                      kIdLblExit);
    SetWindowPos(exit, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  }
}

LRESULT SmallWindow::Handle(UINT msg, WPARAM wp, LPARAM lp) {
  if (msg == WM_CLOSE) {
    Escape();
    return 0;
  }
  return Window::Handle(msg, wp, lp);
}

void SmallWindow::OnCommand(int id, int code, HWND control) {
  if (id == kIdLblExit && code == STN_CLICKED) return lblExit_Click();
  if (id == IDCANCEL && !control) return Escape();
  OnControl(id, code, control);
}

namespace {

struct Hook {
  WNDPROC original;
  std::function<bool(wchar_t)> on_key;
  std::function<void(UINT)> on_mouse;
};

LRESULT CALLBACK HookProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  auto* hook = reinterpret_cast<Hook*>(GetPropW(hwnd, L"quorvex.hook"));
  const WNDPROC original = hook->original;
  if (msg == WM_CHAR && hook->on_key && hook->on_key(static_cast<wchar_t>(wp)))
    return 0;
  // A control that takes Return itself keeps it from the window's default
  // button.
  if (msg == WM_GETDLGCODE && hook->on_key) {
    const auto* key = reinterpret_cast<const MSG*>(lp);
    const LRESULT code = CallWindowProcW(original, hwnd, msg, wp, lp);
    if (key && (key->message == WM_KEYDOWN || key->message == WM_CHAR) &&
        key->wParam == VK_RETURN)
      return code | DLGC_WANTMESSAGE;
    return code;
  }
  if (msg == WM_NCDESTROY) {
    RemovePropW(hwnd, L"quorvex.hook");
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original));
    delete hook;
    return CallWindowProcW(original, hwnd, msg, wp, lp);
  }
  const LRESULT r = CallWindowProcW(original, hwnd, msg, wp, lp);
  if ((msg == WM_LBUTTONDOWN || msg == WM_RBUTTONDOWN || msg == WM_RBUTTONUP) &&
      hook->on_mouse)
    hook->on_mouse(msg);
  return r;
}

Hook* HookOf(HWND control) {
  if (auto* h = reinterpret_cast<Hook*>(GetPropW(control, L"quorvex.hook")))
    return h;
  auto* h = new Hook{};
  h->original = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
      control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HookProc)));
  SetPropW(control, L"quorvex.hook", h);
  return h;
}

}  // namespace

namespace {

// Alt+letter: the visible, enabled control whose caption underlines the
// letter is pressed; with several, the focus moves to the next of them.
bool PressMnemonic(HWND window, wchar_t key) {
  if (key > 0x7F) return false;
  const char letter = LCase(std::string(1, static_cast<char>(key)))[0];
  std::vector<HWND> matches;
  for (HWND c = GetWindow(window, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT))
    if (IsWindowVisible(c) && IsWindowEnabled(c) &&
        UnderlinedLetter(WindowText(c)) == letter)
      matches.push_back(c);
  if (matches.empty()) return false;
  if (matches.size() > 1) {
    auto at = std::find(matches.begin(), matches.end(), GetFocus());
    SetFocus(at == matches.end() || at + 1 == matches.end() ? matches.front()
                                                            : *(at + 1));
    return true;
  }
  SetFocus(matches.front());
  SendMessageW(matches.front(), BM_CLICK, 0, 0);
  return true;
}

// Whether the class name `name` starts with `prefix` (ASCII, case
// ignored, as Windows compares class names).
bool ClassStarts(const wchar_t* name, const wchar_t* prefix) {
  auto lower = [](wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
  };
  for (; *prefix; ++name, ++prefix)
    if (lower(*name) != lower(*prefix)) return false;
  return true;
}

// An edit or rich-text control of several lines.
bool IsMultilineText(HWND control) {
  wchar_t name[32] = L"";
  GetClassNameW(control, name, 32);
  const bool text = (ClassStarts(name, L"Edit") && name[4] == 0) ||
                    ClassStarts(name, L"RichEdit");
  return text && (GetWindowLongW(control, GWL_STYLE) & ES_MULTILINE) != 0;
}

}  // namespace

bool WindowKeyboard(HWND window, MSG& msg) {
  if (msg.message < WM_KEYFIRST || msg.message > WM_KEYLAST) return false;
  if (msg.message == WM_SYSCHAR &&
      PressMnemonic(window, static_cast<wchar_t>(msg.wParam)))
    return true;
  // Return presses the button that has the focus, as in a form; elsewhere
  // the window's default button.
  HWND focus = GetFocus();
  if (msg.message == WM_KEYDOWN && msg.wParam == VK_RETURN && focus &&
      IsChild(window, focus) &&
      (SendMessageW(focus, WM_GETDLGCODE, 0, 0) & DLGC_UNDEFPUSHBUTTON)) {
    SendMessageW(focus, BM_CLICK, 0, 0);
    return true;
  }
  // Tab and Shift+Tab leave a text of several lines as they leave any
  // other control (Ctrl+Tab still types a tab in it).
  if (msg.message == WM_KEYDOWN && msg.wParam == VK_TAB && focus &&
      IsChild(window, focus) && GetKeyState(VK_CONTROL) >= 0 &&
      IsMultilineText(focus)) {
    if (HWND next = GetNextDlgTabItem(window, focus, GetKeyState(VK_SHIFT) < 0))
      SetFocus(next);
    return true;
  }
  return IsDialogMessageW(window, &msg) != FALSE;
}

void OnChar(HWND control, std::function<bool(wchar_t)> on_key) {
  HookOf(control)->on_key = std::move(on_key);
}

void OnMouseDown(HWND control, std::function<void(UINT)> on_mouse) {
  HookOf(control)->on_mouse = std::move(on_mouse);
}

void AddToolTip(HWND owner, HWND control, const std::string& tip) {
  static HWND tips = nullptr;
  if (!tips || !IsWindow(tips)) {
    tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                           WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner,
                           nullptr, GetModuleHandleW(nullptr), nullptr);
  }
  std::wstring text = Wide(tip);
  TOOLINFOW ti{};
  // The size the common controls of every Windows take (those of XP and
  // later without a manifest asking for version 6 refuse a larger one).
  ti.cbSize = TTTOOLINFOW_V2_SIZE;
  ti.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  ti.hwnd = owner;
  ti.uId = reinterpret_cast<UINT_PTR>(control);
  ti.lpszText = text.data();
  SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&ti));
}

}  // namespace quorvex::desktop
