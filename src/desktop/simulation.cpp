#include "desktop/simulation.h"

#include <fstream>

#include "model/text_util.h"
#include "scenario/demo.h"
#include "scenario/room_stage.h"
#include "scenario/runner.h"

namespace quorvex::desktop {

namespace fs = std::filesystem;

namespace {

// A pause between two rounds of the room's talk.
constexpr double kTalkRest = 45;

}  // namespace

Simulation::Simulation(Host& host, const fs::path& root)
    : host_(host),
      room_(scenario::ParseScenario(
          scenario::kDemoName, scenario::kDemoScenario, scenario::Controls())),
      registry_((fs::create_directories(root), root / "registry.json")),
      machine_(root),
      client_(host, world_, room_.seed),
      log_(root / "room.txt", kRoomLogLimit, [&host] { return host.Timer(); }) {
  client_.SetObserver(&log_.observer());
  machine_.SetAppPath("C:\\Program Files\\Quorvex");
  machine_.SetExeName("quorvex");
  if (!fs::exists(registry_.path()) || fs::file_size(registry_.path()) < 3)
    scenario::StageRegistry(room_, registry_);
  scenario::StageClient(room_, client_);
  // A client restart starts the simulated client again; the simulated
  // machine is never rebooted.
  machine_.SetRunProgramHook([this](std::string_view path) {
    const std::string lower = LCase(path);
    if (lower.size() >= 8 &&
        lower.compare(lower.size() - 8, 8, "\\aol.exe") == 0)
      client_.Start();
  });
  machine_.SetRebootHook([] {});
  scenario::InstallClient(machine_, profiles_, room_);
  client_.Launch();
}

void Simulation::StartTalk() {
  const double last = scenario::ScheduleRoomTalk(room_, host_, client_);
  host_.Schedule(last + kTalkRest, [this] { StartTalk(); });
}

}  // namespace quorvex::desktop
