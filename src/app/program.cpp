#include "app/program.h"

#include <utility>

#include "model/text_util.h"
#include "server/machine_restart.h"

namespace quorvex {

QuorvexProgram::QuorvexProgram(Ports ports, Hooks hooks)
    : ports_(ports), hooks_(std::move(hooks)) {}

QuorvexProgram::~QuorvexProgram() = default;

void QuorvexProgram::MakeApp() {
  if (app_) {
    app_->End();
    earlier_lost_log_lines_ += app_->log().failures();
    app_.reset();
  }
  app_ = std::make_unique<QuorvexApp>(ports_);
  if (hooks_.on_app) hooks_.on_app(*app_);
}

bool QuorvexProgram::Start(bool splash) {
  if (splash) {
    splash_.form.Open();
    const StartupKind kind =
        frmSplash_Load(ports_.machine, ports_.profiles, ports_.host);
    splash_.form.Close();
    if (kind == StartupKind::kStartedInstalled) return false;
  }
  MakeApp();
  app_->Load();
  return true;
}

void QuorvexProgram::ProgramStarted(const std::string& path) {
  to_start_ = path;
}

void QuorvexProgram::Reboot() {
  auto event = [this](const std::string& what) {
    if (hooks_.on_machine) hooks_.on_machine(what);
  };
  // Windows closes the running program through its unload handlers.
  event("reboots");
  if (app_) {
    app_->End();
    app_->Unload();
  }
  // At log-on Windows starts what Win.INI's "load" names; a program
  // started that way may start another one and end.
  to_start_ = ports_.profiles.GetString(ports_.machine.HostPath(kWinIni),
                                        "Windows", "load", "");
  if (!to_start_.empty()) event("starts " + to_start_);
  while (!to_start_.empty()) {
    const std::string path = std::exchange(to_start_, std::string());
    if (!ports_.machine.FileExists(path)) {
      event("cannot find " + path);
      break;
    }
    if (hooks_.become) hooks_.become(path);
    if (!Start(true)) event("ends " + path);
  }
}

void QuorvexProgram::Run(bool splash, const std::function<void()>& loop) {
  bool rebooted = false;
  try {
    Start(splash);
    loop();
  } catch (const MachineRebooted&) {
    rebooted = true;
  }
  while (rebooted) {
    rebooted = false;
    try {
      Reboot();
      loop();
    } catch (const MachineRebooted&) {
      rebooted = true;
    }
  }
}

}  // namespace quorvex
