// For tests and benchmarks: the window port of a simulated client, with
// every message recorded, and optionally a chat display that can be
// emptied with WM_SETTEXT as a rich-text control can (the simulated
// client's display ignores it).
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "client/client_tree.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"
#include "sim/sim_client.h"

namespace quorvex {

struct RecordedMessage {
  Hwnd hwnd;
  unsigned msg;
  std::uintptr_t wparam;
  bool posted;
};

class RecordingApi : public WindowApi, public SimObserver {
 public:
  explicit RecordingApi(SimClient& sim) : sim_(sim) { sim_.SetObserver(this); }

  // The display keeps the lines said since it was last emptied.
  void SetClearableDisplay(bool on) {
    clearable_ = on;
    lines_.clear();
  }
  void SetObserver(SimObserver* observer) { observer_ = observer; }

  std::vector<RecordedMessage> messages;
  // Run before each GetWindow and each FindWindowExA (with its parent and
  // "after"): let a test close a window mid-walk, as the client does
  // whenever it likes.
  std::function<void(Hwnd, unsigned)> before_get_window;
  std::function<void(Hwnd, Hwnd)> before_find_window;
  // The messages sent or posted to one window.
  std::vector<RecordedMessage> To(Hwnd hwnd) const {
    std::vector<RecordedMessage> out;
    for (const auto& m : messages)
      if (m.hwnd == hwnd) out.push_back(m);
    return out;
  }

  // SimObserver: passed on.
  void OnChat(const std::string& sn, const std::string& text) override {
    lines_.push_back(sn + ":\t" + text);
    while (static_cast<int>(lines_.size()) > sim_.knobs().display_lines)
      lines_.pop_front();
    if (observer_) observer_->OnChat(sn, text);
  }
  void OnMail(const std::string& from, const std::string& to,
              const std::string& subject, const std::string& body,
              bool now) override {
    if (observer_) observer_->OnMail(from, to, subject, body, now);
  }
  void OnIm(const std::string& to, const std::string& text) override {
    if (observer_) observer_->OnIm(to, text);
  }
  void OnClient(const std::string& what) override {
    if (observer_) observer_->OnClient(what);
  }

  // WindowApi.
  Hwnd FindWindowA(const char* c, const char* t) override {
    return sim_.FindWindowA(c, t);
  }
  Hwnd FindWindowExA(Hwnd p, Hwnd a, const char* c, const char* t) override {
    if (before_find_window) before_find_window(p, a);
    return sim_.FindWindowExA(p, a, c, t);
  }
  Hwnd GetWindow(Hwnd h, unsigned cmd) override {
    if (before_get_window) before_get_window(h, cmd);
    return sim_.GetWindow(h, cmd);
  }
  std::string GetClassNameA(Hwnd h, int n) override {
    return sim_.GetClassNameA(h, n);
  }
  int GetWindowTextLengthA(Hwnd h) override {
    return sim_.GetWindowTextLengthA(h);
  }
  std::string GetWindowTextA(Hwnd h, int n) override {
    return sim_.GetWindowTextA(h, n);
  }
  bool IsWindow(Hwnd h) override { return sim_.IsWindow(h); }
  bool IsWindowVisible(Hwnd h) override { return sim_.IsWindowVisible(h); }
  std::intptr_t SendMessageA(Hwnd h, unsigned msg, std::uintptr_t w,
                             std::intptr_t l) override {
    messages.push_back({h, msg, w, false});
    if (IsClearedDisplay(h) && msg == win::kWmGetTextLength)
      return static_cast<std::intptr_t>(DisplayText().size());
    return sim_.SendMessageA(h, msg, w, l);
  }
  std::intptr_t SendMessageGetText(Hwnd h, unsigned msg, std::uintptr_t w,
                                   std::string* out,
                                   std::size_t chars) override {
    messages.push_back({h, msg, w, false});
    if (IsClearedDisplay(h) && msg == win::kWmGetText) {
      *out = DisplayText().substr(0, chars ? chars - 1 : 0);
      return static_cast<std::intptr_t>(out->size());
    }
    return sim_.SendMessageGetText(h, msg, w, out, chars);
  }
  std::intptr_t SendMessageSetText(Hwnd h, unsigned msg, std::uintptr_t w,
                                   std::string_view text) override {
    messages.push_back({h, msg, w, false});
    if (IsClearedDisplay(h) && msg == win::kWmSetText && text.empty()) {
      lines_.clear();
      return 1;
    }
    return sim_.SendMessageSetText(h, msg, w, text);
  }
  bool PostMessageA(Hwnd h, unsigned msg, std::uintptr_t w,
                    std::intptr_t l) override {
    messages.push_back({h, msg, w, true});
    return sim_.PostMessageA(h, msg, w, l);
  }
  Hmenu GetMenu(Hwnd h) override { return sim_.GetMenu(h); }
  Hmenu GetSubMenu(Hmenu m, int p) override { return sim_.GetSubMenu(m, p); }
  std::uint32_t GetMenuItemID(Hmenu m, int p) override {
    return sim_.GetMenuItemID(m, p);
  }
  Point GetCursorPos() override { return sim_.GetCursorPos(); }
  void SetCursorPos(int x, int y) override { sim_.SetCursorPos(x, y); }
  Point ScreenSize() override { return sim_.ScreenSize(); }
  void ShowWindow(Hwnd h, int cmd) override { sim_.ShowWindow(h, cmd); }
  void SetWindowPos(Hwnd h, std::intptr_t after, int x, int y, int cx, int cy,
                    unsigned flags) override {
    sim_.SetWindowPos(h, after, x, y, cx, cy, flags);
  }
  void ReleaseCapture() override { sim_.ReleaseCapture(); }
  std::uint32_t GetWindowThreadProcessId(Hwnd h, std::uint32_t* pid) override {
    return sim_.GetWindowThreadProcessId(h, pid);
  }
  ProcessHandle OpenProcess(std::uint32_t access, bool inherit,
                            std::uint32_t pid) override {
    return sim_.OpenProcess(access, inherit, pid);
  }
  bool ReadProcessMemory(ProcessHandle p, std::uint32_t address, void* buffer,
                         std::size_t size, std::size_t* read) override {
    return sim_.ReadProcessMemory(p, address, buffer, size, read);
  }
  void CloseHandle(ProcessHandle p) override { sim_.CloseHandle(p); }
  OsVersion GetVersionExA() override { return sim_.GetVersionExA(); }

 private:
  bool IsClearedDisplay(Hwnd h) {
    return clearable_ && h != 0 &&
           h == FindChild(sim_, FindChatRoom(sim_), aol::kRichTextClass);
  }
  std::string DisplayText() const {
    std::string all;
    for (const auto& line : lines_) {
      if (!all.empty()) all += "\r\n";
      all += line;
    }
    return all;
  }

  SimClient& sim_;
  SimObserver* observer_ = nullptr;
  bool clearable_ = false;
  std::deque<std::string> lines_;
};

}  // namespace quorvex
