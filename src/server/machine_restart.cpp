#include "server/machine_restart.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "client/chat_room.h"
#include "client/client_tree.h"
#include "client/wait.h"
#include "model/text_util.h"
#include "ports/profile_section.h"
#include "server/serve_engine.h"
#include "server/server_common.h"
#include "settings/messages.h"
#include "settings/settings_store.h"

namespace quorvex {

namespace {

// WM_CLOSE is posted again after this many polls of 0.4 seconds.
constexpr std::int64_t kClosePolls = 100;

std::string StatePath(const Machine& machine) {
  return machine.HostPath(kRestartStateFile);
}

}  // namespace

std::string ProgramPath(const Machine& machine) {
  return machine.AppPath() + "\\" + machine.ExeName() + ".exe";
}

void SaveRestartState(const RestartContext& r) {
  // One rewrite of the file for all the keys, in the order they are listed.
  std::vector<std::pair<std::string, std::string>> values;
  auto put = [&](std::string key, const std::string& value) {
    values.emplace_back(std::move(key), ProfileQuote(value));
  };
  const ListBox& pending = r.pending.list();
  put("ChatName", r.room_name);
  put("QuorvexDirectory", ProgramPath(r.machine));
  put("TotalPending", std::to_string(pending.Count()));
  put("TotalBanned", std::to_string(r.lstBanned.Count()));
  put("TotalSent", std::to_string(r.counters.session));
  for (int i = 0; i < pending.Count(); ++i)
    put("Pending " + std::to_string(i), pending.Item(i));
  for (int i = 0; i < r.lstBanned.Count(); ++i)
    put("Banned " + std::to_string(i), r.lstBanned.Item(i));
  r.profiles.WriteStrings(StatePath(r.machine), kRestartSection, values);
}

void LoadRestartState(const RestartContext& r) {
  // The state file's keys, read once (a profile read per key would pass
  // over the file once per line).
  const ProfileSection state(r.profiles.Dump(StatePath(r.machine)),
                             kRestartSection);
  r.room_name = state.Get("ChatName");

  double sent = RoundHalfEven(Val(state.Get("TotalSent")));
  r.counters.session =
      SaturatingAdd(0, static_cast<std::int64_t>(std::clamp(sent, -3e9, 3e9)));
  r.lblSession.Set(kSessionCount(r.counters.session));

  // Each label shows the lines loaded, which a damaged count may overstate.
  const std::string pending = state.Get("TotalPending");
  if (IsNumeric(pending) && Val(pending) >= 0) {
    std::vector<std::string> lines = state.Numbered("Pending ", pending);
    r.lblPending.Set(kPendingCount(lines.size()));
    for (std::string& line : lines) r.pending.Append(std::move(line));
  }
  const std::string banned = state.Get("TotalBanned");
  if (IsNumeric(banned) && Val(banned) > 0) {
    std::vector<std::string> names = state.Numbered("Banned ", banned);
    r.lblBanned.Set(kBannedCount(names.size()));
    for (std::string& name : names) r.lstBanned.Add(std::move(name));
  }
}

void CPURestart(const RestartContext& r, const ClientContext& c) {
  if (r.Timer1) r.Timer1->SetEnabled(false);
  if (r.Timer2) r.Timer2->SetEnabled(false);

  SaveSettings(r.settings, r.registry);
  SaveMessages(r.messages, r.registry);
  SaveRestartState(r);

  // The client may ignore a close; it is asked again every 40 seconds.
  while (Hwnd frame = FindFrame(c.api)) {
    r.status.Draw("status: closing aol");
    c.api.PostMessageA(frame, win::kWmClose, 0, 0);
    WaitUntil(c.host, [&c] { return FindFrame(c.api) == 0; },
              {.speed = 0.4f, .rounds = kClosePolls});
  }

  r.profiles.WriteString(r.machine.HostPath(kWinIni), "Windows", "load",
                         std::string(kRestartCopy));

  // The status names the copy without a share: the person is told to be
  // patient, then that Windows restarts.
  r.status.Draw("status: copying quorvex(be patient)");
  r.machine.CopyFileBytes(ProgramPath(r.machine), kRestartCopy, nullptr);

  r.status.Draw("status: restarting windows");
  r.machine.Reboot();
}

StartupKind frmSplash_Load(Machine& machine, const ProfileFile& profiles,
                           Host& host,
                           const std::function<void()>& show_splash) {
  const std::string stored = CutProfileValue(profiles.GetString(
      StatePath(machine), kRestartSection, "QuorvexDirectory", ""));
  const bool state = machine.FileExists(kRestartStateFile);
  if (LCase(machine.ExeName()) == "z" && state) {
    machine.RunProgram(stored);
    return StartupKind::kStartedInstalled;
  }
  if (state && LCase(ProgramPath(machine)) == LCase(stored))
    return StartupKind::kResume;
  if (show_splash) show_splash();
  PauseSeconds(host, 1);
  return StartupKind::kNormal;
}

bool RestartPending(const Machine& machine) {
  return machine.FileExists(kRestartStateFile);
}

void ResumeServing(ServeEngine& engine, const RestartContext& r,
                   const ClientContext& c) {
  LoadRestartState(r);

  r.status.Draw("status: pausing 10 secs");
  PauseSeconds(c.host, 10);
  if (r.ended) return;

  // One file on Windows under either spelling.
  for (const char* file : {kRestartCopy, "C:\\Windows\\RestartSettings.ini"})
    if (r.machine.FileExists(file)) r.machine.RemoveFile(file);
  r.profiles.WriteString(r.machine.HostPath(kWinIni), "Windows", "load",
                         std::string());

  if (engine.aol_restart) engine.aol_restart();
  PauseSeconds(c.host, 1);
  Say(c, r.ended, "quorvex restarted <B><U>cpu</B></U>");
  PauseSeconds(c.host, kAfterReply);
  if (r.ended) return;
  engine.cmdStart_Click();
}

}  // namespace quorvex
