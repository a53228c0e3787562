#include "scenario/room_stage.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "model/text_util.h"
#include "scenario/program_events.h"
#include "settings/settings.h"

namespace quorvex::scenario {

void StageRegistry(const Scenario& sc, Registry& registry) {
  // One write for all the lines.
  std::vector<RegistryChange> changes;
  changes.reserve(sc.registry.size());
  for (const SetupValue& v : sc.registry)
    changes.push_back({v.section, v.key, v.value});
  registry.Write(kApp, changes);
}

namespace {

// Where the simulated client is installed, unless the scenario's Win.INI
// lines say.
constexpr const char* kClientFolder = "C:\\Program Files\\AOL";

}  // namespace

void InstallClient(const FolderMachine& machine, ProfileFile& profiles,
                   const Scenario& sc) {
  for (const SetupValue& v : sc.ini)
    if (v.file == "Win.INI" && EqualsIgnoreCase(v.section, "WAOL")) return;
  const std::string win_ini = machine.HostPath(ProfilePath(machine, "Win.INI"));
  if (!profiles.GetString(win_ini, "WAOL", "AppPath", "").empty()) return;
  profiles.WriteString(win_ini, "WAOL", "AppPath", std::string(kClientFolder));
  const std::filesystem::path program =
      machine.HostPath(std::string(kClientFolder) + "\\AOL.exe");
  std::filesystem::create_directories(program.parent_path());
  std::ofstream(program, std::ios::binary) << "MZ";
}

void StageClient(const Scenario& sc, SimClient& client) {
  client.SetUserName(sc.user);
  client.SetRoomName(sc.room);
  for (const std::string& p : sc.people) client.AddPerson(p);
  for (const std::string& m : sc.mails) client.AddMail(m);
  for (const std::string& n : sc.full_mailboxes) client.SetFullMailbox(n);
  for (int n : sc.dead_mails) client.SetDeadMail(n);
  client.SetLatency(sc.latency_ms / 1000.0);
  client.SetSignedOffAtStart(sc.signed_off);
  client.knobs().signon_failures = sc.signon_failures;
  for (const auto& [room, tries] : sc.full_rooms)
    client.RefuseRoom(room, tries);
}

double ScheduleRoomTalk(const Scenario& sc, Host& host, SimClient& client,
                        double offset) {
  double last = 0;
  for (const TimedLine& line : sc.timeline) {
    std::function<void()> talk;
    switch (line.verb) {
      case Verb::kSay:
        talk = [&client, line] { client.Say(line.name, line.text); };
        break;
      case Verb::kJoin:
        talk = [&client, line] { client.Join(line.name); };
        break;
      case Verb::kLeave:
        talk = [&client, line] { client.Leave(line.name); };
        break;
      default:  // what the program's user does is not the room's
        continue;
    }
    last = std::max(last, line.at);
    host.Schedule(offset + line.at, std::move(talk));
  }
  return last;
}

}  // namespace quorvex::scenario
