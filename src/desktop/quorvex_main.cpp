// quorvex.exe: the desktop program. It drives the chat client through the
// Win32 binding of the ports; "--simulate" serves an in-process simulated
// client with a lively room instead, in real time. Both run on the one
// Win32 host and its message loop.
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "app/quorvex_app.h"
#include "desktop/control_ids.h"
#include "desktop/desktop.h"
#include "desktop/dialog_prompter.h"
#include "desktop/info_windows.h"
#include "desktop/main_window.h"
#include "desktop/simulation.h"
#include "server/machine_restart.h"
#include "win32/tick_count.h"
#include "win32/win32_host.h"
#include "win32/win32_machine.h"
#include "win32/win32_profile_file.h"
#include "win32/win32_registry.h"
#include "win32/win32_window_api.h"

namespace {

namespace fs = std::filesystem;
using namespace quorvex;
using namespace quorvex::desktop;

struct Options {
  bool simulate = false;
  double speed = 1;
  fs::path root;
};

Options ParseOptions(int argc, char** argv) {
  Options o;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--simulate") o.simulate = true;
    if (arg == "--speed" && i + 1 < argc) o.speed = std::atof(argv[++i]);
    if (arg == "--root" && i + 1 < argc) o.root = argv[++i];
  }
  if (o.root.empty()) o.root = fs::temp_directory_path() / "quorvex-simulate";
  return o;
}

// The ports the program runs on, but for the host and the prompter.
struct Outside {
  WindowApi& api;
  Registry& registry;
  ProfileFile& profiles;
  Machine& machine;
  std::uint64_t seed;
};

// The splash window's decision, then the main window until the program
// ends. `on_loaded` runs once the main window is up.
int RunProgram(win32::Win32Host& host, const Outside& out,
               const std::function<void()>& on_loaded) {
  DialogPrompter prompter;
  Desktop::RegisterClasses();
  StartupKind kind;
  {
    // Shown on a normal start only, once the decision has read what it
    // reads: its second is the pause alone, and nothing loads behind it.
    InfoWindow splash;
    kind = frmSplash_Load(out.machine, out.profiles, host, [&splash] {
      splash.Open(kSplashClass, "quorvex", SplashText(), {200, 160}, false);
    });
  }
  if (kind == StartupKind::kStartedInstalled) return 0;

  QuorvexApp app(Ports{host, out.api, out.registry, out.profiles, prompter,
                       out.machine, out.seed});
  Desktop desktop(app, host, prompter);
  prompter.SetOwner(desktop.main().hwnd());
  if (on_loaded) on_loaded();
  desktop.Post([&app] { app.Load(); });
  const int code = host.Run();
  if (!app.ended()) app.Unload();
  return code;
}

int RunSimulated(const Options& o) {
  win32::Win32Host host;
  host.SetSpeed(o.speed);
  Simulation sim(host, o.root);
  return RunProgram(
      host, {sim.api(), sim.registry(), sim.profiles(), sim.machine(), 7},
      [&sim] { sim.StartTalk(); });
}

int RunOnClient() {
  win32::Win32Host host;
  win32::Win32WindowApi api;
  win32::Win32Registry registry;
  win32::Win32ProfileFile profiles;
  win32::Win32Machine machine;
  // A test stands in for Windows: with QUORVEX_REBOOT_FILE set, the
  // restart of the machine is asked of it by writing that file (the
  // ExitWindowsEx flags) instead of Windows, and the program goes on until
  // the test ends it, as Windows would. The programs it starts (the
  // restart copy, the installed program) inherit the setting.
  if (const char* file = std::getenv("QUORVEX_REBOOT_FILE"); file && *file)
    machine.SetExitWindows([path = std::string(file)](unsigned flags) {
      std::ofstream(path, std::ios::trunc) << flags << "\n";
      return true;
    });
  return RunProgram(
      host, {api, registry, profiles, machine, win32::TickCount64()}, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  const Options o = ParseOptions(argc, argv);
  return o.simulate ? RunSimulated(o) : RunOnClient();
}
