// The WindowApi port: exactly the window, message, menu, cursor and
// process-memory operations the client automation uses, in the shape of
// user32 and kernel32. The Linux implementation is the simulated client;
// a Windows build binds the real functions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quorvex {

using Hwnd = std::uint32_t;   // 0: no window
using Hmenu = std::uint32_t;  // 0: no menu
using ProcessHandle = std::uintptr_t;

// Window messages and other numbers, as the platform defines them.
namespace win {
constexpr unsigned kWmDestroy = 2;
constexpr unsigned kWmSetText = 12;
constexpr unsigned kWmGetText = 13;
constexpr unsigned kWmGetTextLength = 14;
constexpr unsigned kWmClose = 16;
constexpr unsigned kWmNcLButtonDown = 161;
constexpr unsigned kEmSetSel = 177;
constexpr unsigned kEmLineIndex = 187;
constexpr unsigned kEmLineLength = 193;
constexpr unsigned kEmGetLine = 196;
constexpr unsigned kWmKeyDown = 256;
constexpr unsigned kWmKeyUp = 257;
constexpr unsigned kWmChar = 258;
constexpr unsigned kBmGetCheck = 240;
constexpr unsigned kBmSetCheck = 241;
constexpr unsigned kWmCommand = 273;
constexpr unsigned kLbSetCurSel = 390;
constexpr unsigned kLbGetCurSel = 392;
constexpr unsigned kLbGetText = 393;
constexpr unsigned kLbGetTextLen = 394;
constexpr unsigned kLbGetCount = 395;
constexpr unsigned kLbGetItemData = 409;
constexpr unsigned kLbFindStringExact = 418;
constexpr unsigned kWmLButtonDown = 513;
constexpr unsigned kWmLButtonUp = 514;
constexpr unsigned kWmClear = 771;

constexpr unsigned kGwHwndNext = 2;
constexpr unsigned kGwChild = 5;

constexpr int kSwHide = 0;
constexpr int kSwShow = 5;
constexpr int kSwMinimize = 6;

constexpr int kHwndTopmost = -1;
constexpr int kHwndNoTopmost = -2;
constexpr unsigned kSwpNoSize = 1;
constexpr unsigned kSwpNoMove = 2;

constexpr int kVkReturn = 13;
constexpr int kVkEscape = 27;
constexpr int kVkSpace = 32;
constexpr int kVkUp = 38;
constexpr int kVkRight = 39;

constexpr std::uint32_t kProcessVmReadStd = 0xF0010;
// What a list box answers for no item (LB_ERR).
constexpr std::intptr_t kLbErr = -1;
}  // namespace win

struct Point {
  int x = 0;
  int y = 0;
};

struct OsVersion {
  std::uint32_t platform_id = 2;  // 2: NT
  std::uint32_t major = 5;
  std::uint32_t minor = 0;
};

class WindowApi {
 public:
  virtual ~WindowApi() = default;

  // FindWindowA / FindWindowExA; a null class or caption matches any.
  // Class names match ignoring case; captions match exactly.
  virtual Hwnd FindWindowA(const char* class_name, const char* caption) = 0;
  virtual Hwnd FindWindowExA(Hwnd parent, Hwnd child_after,
                             const char* class_name, const char* caption) = 0;
  virtual Hwnd GetWindow(Hwnd hwnd, unsigned cmd) = 0;
  // GetClassNameA into a buffer of `max_chars` (the text is cut to
  // max_chars - 1).
  virtual std::string GetClassNameA(Hwnd hwnd, int max_chars) = 0;
  virtual int GetWindowTextLengthA(Hwnd hwnd) = 0;
  // GetWindowTextA with a buffer of `max_chars` (cut to max_chars - 1).
  virtual std::string GetWindowTextA(Hwnd hwnd, int max_chars) = 0;
  virtual bool IsWindow(Hwnd hwnd) = 0;
  virtual bool IsWindowVisible(Hwnd hwnd) = 0;

  // SendMessageA with plain numbers.
  virtual std::intptr_t SendMessageA(Hwnd hwnd, unsigned msg,
                                     std::uintptr_t wparam,
                                     std::intptr_t lparam) = 0;
  // SendMessageA whose lParam is a buffer the window fills (WM_GETTEXT,
  // LB_GETTEXT, EM_GETLINE): `buffer_chars` is the buffer's size; the
  // result is the message's result and `*out` the text written.
  virtual std::intptr_t SendMessageGetText(Hwnd hwnd, unsigned msg,
                                           std::uintptr_t wparam,
                                           std::string* out,
                                           std::size_t buffer_chars) = 0;
  // SendMessageA whose lParam points at a text (WM_SETTEXT).
  virtual std::intptr_t SendMessageSetText(Hwnd hwnd, unsigned msg,
                                           std::uintptr_t wparam,
                                           std::string_view text) = 0;
  // PostMessageA: queued; delivered when the program next yields.
  virtual bool PostMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                            std::intptr_t lparam) = 0;

  virtual Hmenu GetMenu(Hwnd hwnd) = 0;
  virtual Hmenu GetSubMenu(Hmenu menu, int position) = 0;
  virtual std::uint32_t GetMenuItemID(Hmenu menu, int position) = 0;

  virtual Point GetCursorPos() = 0;
  virtual void SetCursorPos(int x, int y) = 0;
  // The screen's size in the program's own display units.
  virtual Point ScreenSize() = 0;

  virtual void ShowWindow(Hwnd hwnd, int cmd) = 0;
  virtual void SetWindowPos(Hwnd hwnd, std::intptr_t insert_after, int x, int y,
                            int cx, int cy, unsigned flags) = 0;
  virtual void ReleaseCapture() = 0;

  virtual std::uint32_t GetWindowThreadProcessId(Hwnd hwnd,
                                                 std::uint32_t* process_id) = 0;
  virtual ProcessHandle OpenProcess(std::uint32_t access, bool inherit,
                                    std::uint32_t process_id) = 0;
  virtual bool ReadProcessMemory(ProcessHandle process, std::uint32_t address,
                                 void* buffer, std::size_t size,
                                 std::size_t* bytes_read) = 0;
  virtual void CloseHandle(ProcessHandle handle) = 0;

  // GetVersionExA.
  virtual OsVersion GetVersionExA() = 0;
};

}  // namespace quorvex
