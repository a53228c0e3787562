#include "sim/room_stage.h"

#include <algorithm>
#include <vector>

#include "settings/settings.h"

namespace quorvex::sim {

void StageRegistry(const Scenario& sc, Registry& registry) {
  // One write for all the lines.
  std::vector<RegistryChange> changes;
  changes.reserve(sc.registry.size());
  for (const SetupValue& v : sc.registry)
    changes.push_back({v.section, v.key, v.value});
  registry.Write(kApp, changes);
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
    if (line.verb != "say" && line.verb != "join" && line.verb != "leave")
      continue;
    last = std::max(last, line.at);
    host.Schedule(offset + line.at, [&client, line] {
      if (line.verb == "say") client.Say(line.name, line.text);
      if (line.verb == "join") client.Join(line.name);
      if (line.verb == "leave") client.Leave(line.name);
    });
  }
  return last;
}

}  // namespace quorvex::sim
