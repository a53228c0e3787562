// The stand-in client running in a process of its own, driven by the
// tests through its control window.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>
#include <string>

namespace quorvex::test {

class StandInProcess {
 public:
  // Starts qv_standin.exe with these arguments and waits for its control
  // window (the client's windows exist by then). A test still running
  // `limit_seconds` later (a wait that never ends) is failed: the stand-in
  // is stopped and this process ends with exit code 1.
  explicit StandInProcess(const std::string& args, double limit_seconds = 60);
  ~StandInProcess();
  StandInProcess(const StandInProcess&) = delete;
  StandInProcess& operator=(const StandInProcess&) = delete;

  bool running() const { return control_ != nullptr; }
  DWORD pid() const { return pid_; }
  // One command (see standin_main.cpp).
  void Command(const std::string& line);
  // The room and the mailboxes as the stand-in sees them now.
  nlohmann::json State();

 private:
  static DWORD WINAPI Watchdog(void* self);
  HANDLE process_ = nullptr;
  HANDLE done_ = nullptr;  // set when the test ends within its limit
  HANDLE watchdog_ = nullptr;
  DWORD limit_ms_ = 0;
  DWORD pid_ = 0;
  HWND control_ = nullptr;
  std::string dump_path_;
};

}  // namespace quorvex::test
