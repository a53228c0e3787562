// The stand-in client running in processes of its own (AOL.exe in the
// client's install folder; a new process each time the client's program
// is started again), driven by the tests through its control window.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace quorvex::test {

class StandInProcess {
 public:
  // Starts the client set up by `args` (the stand-in's set-up options,
  // see standin_main.cpp), running and signed on, and waits for its
  // control window (the client's windows exist by then). A test still
  // running `limit_seconds` later (a wait that never ends) is failed:
  // where the client stands is printed, the client is stopped and this
  // process ends with exit code 1.
  explicit StandInProcess(const std::string& args, double limit_seconds = 60);
  // The same for a client staged by the test: `client` is the
  // SimClient::SaveState of a client set up and not launched.
  StandInProcess(const nlohmann::json& client, double speed,
                 double limit_seconds);
  ~StandInProcess();
  StandInProcess(const StandInProcess&) = delete;
  StandInProcess& operator=(const StandInProcess&) = delete;

  // The client's program is running now (its control window is there).
  bool running();
  // The process id of the client's program now, 0 when none runs.
  DWORD pid();
  // One command (see standin_main.cpp) to the client's program. While no
  // program runs (closed or killed, not started again yet) commands wait
  // and go, in order, to the next one.
  void Command(const std::string& line);
  // Sends what waits, when a program runs again; call now and then.
  void Pump();
  // Ends the client's program outright, as a crash does; true when one
  // was running.
  bool Kill();
  // The client now: when a program runs, as it sees itself ("signed_on",
  // "room", "lines", "windows", ...); always "running", "mailboxes"
  // (name -> mails), "waiting" (the client's mail waiting to be sent) and
  // "heard" (every line the room showed, "NAME:\tTEXT", across programs).
  nlohmann::json State();
  // Every event of the client so far, across its programs, each with "t":
  // seconds of the test's clock since `since_wall` (wall seconds, as
  // WallSeconds), times `speed`.
  std::vector<nlohmann::json> Events(double since_wall, double speed) const;

  // What the test is doing, printed by the watchdog if it fires.
  void Note(const std::string& text);
  // Copies the client's state file and its event log into `folder` (a
  // Windows path), under their own names.
  void CopyFilesTo(const std::string& folder) const;

  // The Windows path of the client's install folder (holding AOL.exe).
  static std::string InstallFolder();
  // Seconds of the wall clock the stand-in's event log counts in.
  static double WallSeconds();

 private:
  void Launch(const std::string& args);
  HWND Control();
  void StartWatchdog();
  static DWORD WINAPI Watchdog(void* self);

  HANDLE done_ = nullptr;  // set when the test ends within its limit
  HANDLE watchdog_ = nullptr;
  DWORD limit_ms_ = 0;
  HWND control_ = nullptr;
  std::string state_path_;
  std::string dump_path_;
  std::vector<std::string> waiting_;  // commands for the next program
  CRITICAL_SECTION note_lock_;
  std::string note_;
};

// The titles of the mails forwarded to `sn` in a State(), in order.
std::vector<std::string> ForwardsReceived(const nlohmann::json& state,
                                          const std::string& sn);

}  // namespace quorvex::test
