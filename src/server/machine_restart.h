// Restarting the whole machine and resuming afterwards. The state goes to
// RestartSettings.INI, a copy of the program to C:\Windows\z.exe, and
// Win.INI's "load" names the copy so that Windows starts it at the next
// log-on; the copy starts the installed program, which finds the state,
// restores it, cleans up, restarts the client and serves again.
#pragma once

#include <string>

#include "client/client_context.h"
#include "ports/host.h"
#include "ports/machine.h"
#include "ports/profile_file.h"
#include "server/frm_main.h"

namespace quorvex {

class ServeEngine;

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
void SaveRestartState(FrmMain& frm);
// The room name, the session counter, and the pending and banned lists
// (each only when its stored total is a number: 0 or more for the queue,
// above 0 for the banned list).
void LoadRestartState(FrmMain& frm);

// Stops serving, saves everything, closes the client, registers and writes
// the restart copy (progress on the status strip) and reboots. Returns
// only when the machine does not reboot.
void CPURestart(FrmMain& frm, const ClientContext& c);

// What the splash window decided at start-up.
enum class StartupKind {
  kStartedInstalled,  // started as the restart copy: the program ends
  kResume,            // the installed program after a machine restart
  kNormal,            // the splash was shown for a second
};
// The splash window's load: as z.exe with a saved state it starts the
// stored program and the caller ends; otherwise the main window follows
// (at once on a resume, after a second's splash on a normal start).
StartupKind frmSplash_Load(Machine& machine, const ProfileFile& profiles,
                           Host& host);

// Whether the main window's load takes the resume branch.
bool RestartPending(const Machine& machine);
// The resume branch of the main window's load: the saved state restored,
// ten seconds for Windows to settle, the copy, the state file and the
// start-up entry removed, the client restarted, and serving started.
void ResumeServing(ServeEngine& engine, FrmMain& frm, const ClientContext& c);

}  // namespace quorvex
