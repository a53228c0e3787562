// What of the simulated client outlives its process, as JSON: a client
// whose program is started again (by the machine, or after a crash) comes
// back to the same world, mailbox and pending faults.
#include "sim/recipients.h"
#include "sim/sim_client.h"
#include "sim/sim_knobs.h"

namespace quorvex {

namespace {

using nlohmann::json;

json MailToJson(const ReceivedMail& m) {
  return {{"from", m.from},
          {"subject", m.subject},
          {"body", m.body},
          {"forward_of", m.forward_of}};
}

ReceivedMail MailFromJson(const json& j) {
  return {j.value("from", ""), j.value("subject", ""), j.value("body", ""),
          j.value("forward_of", "")};
}

}  // namespace

json SimClient::SaveState() const {
  json j;
  session_.SaveTo(j);
  room_.SaveTo(j);
  json knobs = json::object();
  for (const std::string& name : KnobNames())
    knobs[name] = KnobValue(shell_.knobs, name);
  j["knobs"] = knobs;
  mail_.SaveTo(j);
  preferences_.SaveTo(j);
  j["sizes"] = json::array();
  for (const auto& [kind, size] : shell_.remembered_sizes)
    j["sizes"].push_back({static_cast<int>(kind), size.x, size.y});
  json people = json::array();
  for (const SimPerson& p : shell_.world.people()) {
    json box = json::array();
    for (const ReceivedMail& m : p.mailbox) box.push_back(MailToJson(m));
    people.push_back(
        {{"name", p.name}, {"full", p.full_mailbox}, {"mailbox", box}});
  }
  json rooms = json::array();
  for (const SimRoom& r : shell_.world.rooms())
    rooms.push_back({{"name", r.name},
                     {"people", r.people},
                     {"capacity", r.capacity},
                     {"refusals", r.refusals}});
  j["world"] = {{"people", people}, {"rooms", rooms}};
  return j;
}

void SimClient::RestoreState(const json& j) {
  if (!j.is_object()) return;
  SimWorld& world = shell_.world;
  // The world first: people keep the case they were first written in.
  if (j.contains("world")) {
    for (const json& p : j["world"].value("people", json::array())) {
      SimPerson& person = world.AddPerson(JsonText(p, "name"));
      person.full_mailbox = p.value("full", false);
      person.mailbox.clear();
      for (const json& m : p.value("mailbox", json::array()))
        person.mailbox.push_back(MailFromJson(m));
    }
    for (const json& r : j["world"].value("rooms", json::array())) {
      SimRoom& room = world.Room(JsonText(r, "name"));
      room.people.clear();
      room.keys.clear();
      for (const json& name : r.value("people", json::array())) {
        room.people.push_back(name.get<std::string>());
        room.keys.insert(ScreenNameKey(room.people.back()));
      }
      room.capacity = r.value("capacity", 0);
      room.refusals = r.value("refusals", 0);
    }
  }
  session_.RestoreFrom(j);
  room_.RestoreFrom(j);
  const json knobs = j.value("knobs", json::object());
  for (const auto& [name, value] : knobs.items())
    if (value.is_string())
      SetKnob(&shell_.knobs, name, value.get<std::string>());
  mail_.RestoreFrom(j);
  preferences_.RestoreFrom(j);
  shell_.remembered_sizes.clear();
  for (const json& s : j.value("sizes", json::array()))
    if (s.is_array() && s.size() == 3)
      shell_.remembered_sizes[static_cast<SimWindowKind>(s[0].get<int>())] =
          Point{s[1].get<int>(), s[2].get<int>()};
}

}  // namespace quorvex
