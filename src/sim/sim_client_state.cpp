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

std::string Text(const json& j, const char* key) {
  return j.contains(key) && j[key].is_string() ? j[key].get<std::string>()
                                               : std::string();
}

}  // namespace

json SimClient::SaveState() const {
  json j;
  j["user"] = user_name_;
  j["room"] = room_name_;
  j["signed_off_at_start"] = signed_off_at_start_;
  j["setup_people"] = setup_people_;
  json knobs = json::object();
  for (const std::string& name : KnobNames())
    knobs[name] = KnobValue(knobs_, name);
  j["knobs"] = knobs;
  j["incoming"] = json::array();
  for (const MailItem& m : incoming_)
    j["incoming"].push_back({{"date", m.date},
                             {"sender", m.sender},
                             {"title", m.title},
                             {"body", m.body},
                             {"dead", m.dead}});
  j["dead_numbers"] = dead_numbers_;
  auto out_mails = [](const std::vector<OutMail>& mails) {
    json a = json::array();
    for (const OutMail& m : mails)
      a.push_back({{"date", m.date},
                   {"to", m.to},
                   {"cc", m.cc},
                   {"subject", m.subject},
                   {"body", m.body},
                   {"forward_of", m.forward_of},
                   {"dead", m.dead}});
    return a;
  };
  j["waiting"] = out_mails(waiting_);
  j["sent"] = out_mails(sent_);
  j["preferences"] = preferences_;
  j["sizes"] = json::array();
  for (const auto& [kind, size] : remembered_sizes_)
    j["sizes"].push_back({static_cast<int>(kind), size.x, size.y});
  json people = json::array();
  for (const SimPerson& p : world_.people()) {
    json box = json::array();
    for (const ReceivedMail& m : p.mailbox) box.push_back(MailToJson(m));
    people.push_back(
        {{"name", p.name}, {"full", p.full_mailbox}, {"mailbox", box}});
  }
  json rooms = json::array();
  for (const SimRoom& r : world_.rooms())
    rooms.push_back({{"name", r.name},
                     {"people", r.people},
                     {"capacity", r.capacity},
                     {"refusals", r.refusals}});
  j["world"] = {{"people", people}, {"rooms", rooms}};
  return j;
}

void SimClient::RestoreState(const json& j) {
  if (!j.is_object()) return;
  // The world first: people keep the case they were first written in.
  if (j.contains("world")) {
    for (const json& p : j["world"].value("people", json::array())) {
      SimPerson& person = world_.AddPerson(Text(p, "name"));
      person.full_mailbox = p.value("full", false);
      person.mailbox.clear();
      for (const json& m : p.value("mailbox", json::array()))
        person.mailbox.push_back(MailFromJson(m));
    }
    for (const json& r : j["world"].value("rooms", json::array())) {
      SimRoom& room = world_.Room(Text(r, "name"));
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
  SetUserName(Text(j, "user"));
  room_name_ = Text(j, "room");
  signed_off_at_start_ = j.value("signed_off_at_start", false);
  setup_people_.clear();
  for (const json& p : j.value("setup_people", json::array()))
    setup_people_.push_back(p.get<std::string>());
  const json knobs = j.value("knobs", json::object());
  for (const auto& [name, value] : knobs.items())
    if (value.is_string()) SetKnob(&knobs_, name, value.get<std::string>());
  incoming_.clear();
  for (const json& m : j.value("incoming", json::array())) {
    MailItem item;
    item.id = next_mail_id_++;
    item.date = Text(m, "date");
    item.sender = Text(m, "sender");
    item.title = Text(m, "title");
    item.body = Text(m, "body");
    item.dead = m.value("dead", false);
    incoming_.push_back(std::move(item));
  }
  dead_numbers_.clear();
  for (const json& n : j.value("dead_numbers", json::array()))
    dead_numbers_.insert(n.get<int>());
  auto out_mails = [](const json& a, std::vector<OutMail>* mails) {
    mails->clear();
    for (const json& m : a) {
      OutMail out;
      out.date = Text(m, "date");
      out.to = Text(m, "to");
      out.cc = Text(m, "cc");
      out.subject = Text(m, "subject");
      out.body = Text(m, "body");
      out.forward_of = Text(m, "forward_of");
      out.dead = m.value("dead", false);
      mails->push_back(std::move(out));
    }
  };
  out_mails(j.value("waiting", json::array()), &waiting_);
  out_mails(j.value("sent", json::array()), &sent_);
  preferences_.clear();
  const json preferences = j.value("preferences", json::object());
  for (const auto& [label, checked] : preferences.items())
    preferences_[label] = checked.get<int>();
  remembered_sizes_.clear();
  for (const json& s : j.value("sizes", json::array()))
    if (s.is_array() && s.size() == 3)
      remembered_sizes_[static_cast<Kind>(s[0].get<int>())] =
          Point{s[1].get<int>(), s[2].get<int>()};
}

}  // namespace quorvex
