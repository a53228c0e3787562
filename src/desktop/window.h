// The plain Win32 pattern every window of the program follows: one window
// class per window, and a window procedure that only hands each message
// to the object's handler. SmallWindow adds what every small window has:
// the drawn title bar (picTitle) and the close label (lblExit).
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "desktop/binding.h"

namespace quorvex::desktop {

// The colours of the program's windows.
inline constexpr COLORREF kBackColour = RGB(24, 40, 56);
inline constexpr COLORREF kForeColour = RGB(230, 238, 245);
inline constexpr COLORREF kTitleBase = RGB(68, 136, 187);

class Window {
 public:
  Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window();

  static void Register(HINSTANCE instance, const wchar_t* class_name);

  HWND hwnd() const { return hwnd_; }
  bool open() const { return hwnd_ != nullptr; }
  void Destroy();

 protected:
  // A top-level, borderless, always-on-top window.
  void CreateTopLevel(const wchar_t* class_name, const std::string& caption,
                      int x, int y, int w, int h);
  HWND Child(const wchar_t* class_name, const std::string& text, DWORD style,
             int x, int y, int w, int h, int id, DWORD ex_style = 0);
  HWND Item(int id) const { return GetDlgItem(hwnd_, id); }

  virtual LRESULT Handle(UINT msg, WPARAM wp, LPARAM lp);
  virtual void OnCommand(int /*id*/, int /*code*/, HWND /*control*/) {}
  virtual void OnDestroyed() {}

  // The models this window shows; unsubscribed when it goes away.
  Subscriptions subs_;

 private:
  static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
  HWND hwnd_ = nullptr;
  HBRUSH back_ = CreateSolidBrush(kBackColour);
};

class SmallWindow : public Window {
 protected:
  // The window with its title bar across the top and lblExit at its right
  // end (unless `with_exit` is false).
  void CreateSmall(const wchar_t* class_name, const std::string& caption, int x,
                   int y, int w, int h, bool with_exit = true);
  void OnCommand(int id, int code, HWND control) override;
  virtual void lblExit_Click() {}
  virtual void OnControl(int /*id*/, int /*code*/, HWND /*control*/) {}
};

// Where a small window opens, given the window (made, not yet shown): the
// desktop sets it so that a new window never covers one already open.
void SetSmallWindowPlacer(std::function<POINT(HWND opening)> placer);

// Calls `on_key(key)` before a control handles WM_CHAR; when it returns
// true the key is swallowed.
void OnChar(HWND control, std::function<bool(wchar_t)> on_key);
// Calls `on_mouse(msg)` for button-down messages of a control, after the
// control has handled them (so a list box has moved its selection).
void OnMouseDown(HWND control, std::function<void(UINT)> on_mouse);
// A tool tip shown over `control`.
void AddToolTip(HWND owner, HWND control, const std::string& tip);

}  // namespace quorvex::desktop
