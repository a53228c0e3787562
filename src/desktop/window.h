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
  // The button Return presses wherever the focus is (0: none).
  virtual int DefaultButton() const { return 0; }

  // The models this window shows; unsubscribed when it goes away.
  Subscriptions subs_;

 private:
  static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
  HWND hwnd_ = nullptr;
  HBRUSH back_ = CreateSolidBrush(kBackColour);
  // The control that had the focus when the window was last left.
  HWND focus_ = nullptr;
};

class SmallWindow : public Window {
 protected:
  // The window with its title bar across the top and lblExit at its right
  // end (unless `with_exit` is false).
  void CreateSmall(const wchar_t* class_name, const std::string& caption, int x,
                   int y, int w, int h, bool with_exit = true);
  // WM_CLOSE (Alt+F4, the task bar) does what Escape does: the core's
  // model closes with its window.
  LRESULT Handle(UINT msg, WPARAM wp, LPARAM lp) override;
  void OnCommand(int id, int code, HWND control) override;
  virtual void lblExit_Click() {}
  // Escape: what lblExit does, in a window that has it.
  virtual void Escape() {
    if (with_exit_) lblExit_Click();
  }
  virtual void OnControl(int /*id*/, int /*code*/, HWND /*control*/) {}

 private:
  bool with_exit_ = true;
};

// Where a small window opens, given the window (made, not yet shown): the
// desktop sets it so that a new window never covers one already open.
void SetSmallWindowPlacer(std::function<POINT(HWND opening)> placer);

// The keyboard of a window of the program, for a message the loop took:
// Alt+letter presses the control whose caption underlines the letter (with
// two such controls it moves the focus from one to the next, as Windows
// does), and the dialog keys do what they do in a Windows form: Tab and
// Shift+Tab move through the controls, Return presses the default button,
// Escape closes a small window. True when the message was handled.
bool WindowKeyboard(HWND window, MSG& msg);

// Calls `on_key(key)` before a control handles WM_CHAR; when it returns
// true the key is swallowed.
void OnChar(HWND control, std::function<bool(wchar_t)> on_key);
// Calls `on_mouse(msg)` for button-down messages of a control, after the
// control has handled them (so a list box has moved its selection).
void OnMouseDown(HWND control, std::function<void(UINT)> on_mouse);
// A tool tip shown over `control`.
void AddToolTip(HWND owner, HWND control, const std::string& tip);

}  // namespace quorvex::desktop
