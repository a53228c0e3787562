// The WindowApi port on the real user32 and kernel32: the client's windows
// reached through the 8-bit ("A") functions, texts converted between the
// core's UTF-8 and the client's code page, Windows-1252.
#pragma once

#include "ports/window_api.h"

namespace quorvex::win32 {

class Win32WindowApi : public WindowApi {
 public:
  Hwnd FindWindowA(const char* class_name, const char* caption) override;
  Hwnd FindWindowExA(Hwnd parent, Hwnd child_after, const char* class_name,
                     const char* caption) override;
  Hwnd GetWindow(Hwnd hwnd, unsigned cmd) override;
  std::string GetClassNameA(Hwnd hwnd, int max_chars) override;
  int GetWindowTextLengthA(Hwnd hwnd) override;
  std::string GetWindowTextA(Hwnd hwnd, int max_chars) override;
  bool IsWindow(Hwnd hwnd) override;
  bool IsWindowVisible(Hwnd hwnd) override;
  std::intptr_t SendMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                             std::intptr_t lparam) override;
  // LB_GETTEXT goes as the wide message and is converted: an 8-bit send
  // to another process's list box comes back as UTF-16 on some platforms.
  std::intptr_t SendMessageGetText(Hwnd hwnd, unsigned msg,
                                   std::uintptr_t wparam, std::string* out,
                                   std::size_t buffer_chars) override;
  std::intptr_t SendMessageSetText(Hwnd hwnd, unsigned msg,
                                   std::uintptr_t wparam,
                                   std::string_view text) override;
  bool PostMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                    std::intptr_t lparam) override;
  Hmenu GetMenu(Hwnd hwnd) override;
  Hmenu GetSubMenu(Hmenu menu, int position) override;
  std::uint32_t GetMenuItemID(Hmenu menu, int position) override;
  Point GetCursorPos() override;
  void SetCursorPos(int x, int y) override;
  // In twips, the classic runtime's screen units.
  Point ScreenSize() override;
  void ShowWindow(Hwnd hwnd, int cmd) override;
  void SetWindowPos(Hwnd hwnd, std::intptr_t insert_after, int x, int y, int cx,
                    int cy, unsigned flags) override;
  void ReleaseCapture() override;
  std::uint32_t GetWindowThreadProcessId(Hwnd hwnd,
                                         std::uint32_t* process_id) override;
  ProcessHandle OpenProcess(std::uint32_t access, bool inherit,
                            std::uint32_t process_id) override;
  bool ReadProcessMemory(ProcessHandle process, std::uint32_t address,
                         void* buffer, std::size_t size,
                         std::size_t* bytes_read) override;
  void CloseHandle(ProcessHandle handle) override;
  OsVersion GetVersionExA() override;
};

}  // namespace quorvex::win32
