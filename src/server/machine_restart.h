// Restarting the whole machine and resuming afterwards. The state goes to
// RestartSettings.INI, a copy of the program to C:\Windows\z.exe, and
// Win.INI's "load" names the copy so that Windows starts it at the next
// log-on; the copy starts the installed program, which finds the state,
// restores it, cleans up, restarts the client and serves again.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "client/client_context.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/host.h"
#include "ports/machine.h"
#include "ports/profile_file.h"
#include "ports/registry.h"
#include "requests/pending_queue.h"
#include "requests/serve_counters.h"
#include "settings/messages.h"
#include "settings/settings.h"

namespace quorvex {

class ServeEngine;

// What a machine restart saves and the resume after it restores.
struct RestartContext {
  Machine& machine;
  ProfileFile& profiles;
  Registry& registry;
  // Saved to the registry before the machine goes down.
  const Settings& settings;
  const MessageControls& messages;
  PendingQueue& pending;
  Label& lblPending;
  ListBox& lstBanned;
  Label& lblBanned;
  ServeCounters& counters;  // the session count goes along
  Label& lblSession;
  std::string& room_name;  // the room to return to
  // The serving clocks, stopped before the client is closed.
  std::unique_ptr<HostTimer>& Timer1;
  std::unique_ptr<HostTimer>& Timer2;
  StatusStrip& status;
  const bool& ended;
};

// Fixed paths, used as they stand whatever the Windows folder is.
inline constexpr const char* kRestartStateFile =
    "C:\\Windows\\RestartSettings.INI";
inline constexpr const char* kRestartCopy = "C:\\Windows\\z.exe";
inline constexpr const char* kWinIni = "C:\\Windows\\Win.INI";
inline constexpr const char* kRestartSection = "Quorvex";

// The running executable: program folder + "\" + name + ".exe".
std::string ProgramPath(const Machine& machine);

// RestartSettings.INI: ChatName, QuorvexDirectory, TotalPending,
// TotalBanned, TotalSent, then "Pending 0"... and "Banned 0"... Keys of an
// earlier, longer save are left in place.
void SaveRestartState(const RestartContext& r);
// The room name, the session counter, and the pending and banned lists
// (each only when its stored total is a number: 0 or more for the queue,
// above 0 for the banned list).
void LoadRestartState(const RestartContext& r);

// Stops serving, saves everything, closes the client, registers and writes
// the restart copy and reboots. Returns
// only when the machine does not reboot.
void CPURestart(const RestartContext& r, const ClientContext& c);

// What the splash window decided at start-up.
enum class StartupKind {
  kStartedInstalled,  // started as the restart copy: the program ends
  kResume,            // the installed program after a machine restart
  kNormal,            // the splash was shown for a second
};
// The splash window's load: as z.exe with a saved state it starts the
// stored program and the caller ends; otherwise the main window follows
// (at once on a resume, after a second's splash on a normal start).
// `show_splash`, when set, shows the splash: only on a normal start, once
// everything the decision reads has been read, right before its second.
StartupKind frmSplash_Load(Machine& machine, const ProfileFile& profiles,
                           Host& host,
                           const std::function<void()>& show_splash = {});

// Whether the main window's load takes the resume branch.
bool RestartPending(const Machine& machine);
// The resume branch of the main window's load: the saved state restored,
// ten seconds for Windows to settle, the copy, the state file and the
// start-up entry removed, the client restarted, and serving started.
void ResumeServing(ServeEngine& engine, const RestartContext& r,
                   const ClientContext& c);

}  // namespace quorvex
