// The program from power-on to power-off: the splash window's start-up
// decision, the main window's load, and what a machine restart does to the
// running program (it ends where it stands; Windows then starts what
// Win.INI's "load" names, which may be the restart copy that starts the
// installed program, which resumes). A front end constructs the ports,
// hands them here and runs its message loop inside Run.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/frm_splash.h"
#include "app/quorvex_app.h"

namespace quorvex {

// Thrown out of the running program by the machine's reboot: whatever tick
// or wait the program is in ends there, as when the power goes.
struct MachineRebooted {};

class QuorvexProgram {
 public:
  // `on_app` hears of every program made, before its main window loads
  // (views and transcripts subscribe to its models there); `on_machine`
  // hears what the machine does at a reboot ("reboots", "starts PATH",
  // "cannot find PATH", "ends PATH").
  struct Hooks {
    std::function<void(QuorvexApp&)> on_app;
    std::function<void(const std::string&)> on_machine;
    // Makes the machine's running program the one at this Windows path
    // (its folder and executable name) before it starts.
    std::function<void(const std::string& path)> become;
  };

  QuorvexProgram(Ports ports, Hooks hooks);
  QuorvexProgram(const QuorvexProgram&) = delete;
  QuorvexProgram& operator=(const QuorvexProgram&) = delete;
  ~QuorvexProgram();

  // Starts the program, then runs `loop` (the front end's message loop);
  // after each reboot the program starts anew and the loop runs again.
  // `splash` false brings the main window up at once, as a resume start
  // does (a front end whose time 0 is the main window's load).
  void Run(bool splash, const std::function<void()>& loop);

  // The machine started a program that is not the chat client: after a
  // reboot it is this program at that path (the restart copy starts the
  // installed one this way).
  void ProgramStarted(const std::string& path);

  // The running program, or the last one when it has ended.
  QuorvexApp& app() { return *app_; }
  const QuorvexApp& app() const { return *app_; }
  FrmSplash& splash() { return splash_; }
  // Lines of Quorvex.log that could not be written, by every start of the
  // program so far.
  int LostLogLines() const {
    return earlier_lost_log_lines_ + (app_ ? app_->log().failures() : 0);
  }

 private:
  void MakeApp();
  // The splash decision, then the main window; false when this start only
  // started another program and ended.
  bool Start(bool splash);
  void Reboot();

  Ports ports_;
  Hooks hooks_;
  FrmSplash splash_;
  std::unique_ptr<QuorvexApp> app_;
  std::string to_start_;
  int earlier_lost_log_lines_ = 0;
};

}  // namespace quorvex
