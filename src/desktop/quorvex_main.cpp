// quorvex.exe: the desktop program. "--simulate" serves an in-process
// simulated client with a lively room, in real time.
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/quorvex_app.h"
#include "desktop/control_ids.h"
#include "desktop/desktop.h"
#include "desktop/dialog_prompter.h"
#include "desktop/info_windows.h"
#include "desktop/main_window.h"
#include "desktop/message_pump.h"
#include "desktop/simulation.h"
#include "ports/virtual_host.h"
#include "server/machine_restart.h"

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

CivilTime LocalNow() {
  SYSTEMTIME t;
  GetLocalTime(&t);
  return {t.wYear,   t.wMonth,  t.wDay,         t.wHour,
          t.wMinute, t.wSecond, t.wMilliseconds};
}

int RunSimulated(const Options& o) {
  VirtualHost host(LocalNow());
  MessagePump pump(host, o.speed);
  Simulation sim(host, o.root);
  DialogPrompter prompter;
  Desktop::RegisterClasses();

  // The splash window decides first.
  StartupKind kind;
  {
    InfoWindow splash;
    splash.Open(kSplashClass, "quorvex", SplashText(), {200, 160}, false);
    kind = frmSplash_Load(sim.machine(), sim.profiles(), host);
  }
  if (kind == StartupKind::kStartedInstalled) return 0;

  QuorvexApp app(Ports{host, sim.api(), sim.registry(), sim.profiles(),
                       prompter, sim.machine(), 7});
  Desktop desktop(app, pump, prompter);
  prompter.SetOwner(desktop.main().hwnd());
  sim.StartTalk();
  pump.Post([&app] { app.Load(); });
  pump.Run();
  if (!app.ended()) app.Unload();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const Options o = ParseOptions(argc, argv);
  if (o.simulate) return RunSimulated(o);
  // The real client is driven through the Win32 binding of the ports,
  // which this build does not have yet.
  MessageBoxW(nullptr,
              L"This build of quorvex cannot drive the chat client yet.\n"
              L"Run \"quorvex.exe --simulate\" to watch it serve a simulated "
              L"room.",
              L"quorvex", MB_OK | MB_ICONINFORMATION);
  return 2;
}
