#include "sim/sim_world.h"

#include <algorithm>

#include "sim/recipients.h"

namespace quorvex {

SimPerson& SimWorld::AddPerson(std::string_view name) {
  std::string key = ScreenNameKey(name);
  auto it = person_index_.find(key);
  if (it != person_index_.end()) return people_[it->second];
  person_index_.emplace(key, people_.size());
  people_.push_back(SimPerson{std::string(name), false, {}});
  return people_.back();
}

SimPerson* SimWorld::FindPerson(std::string_view name) {
  auto it = person_index_.find(ScreenNameKey(name));
  return it == person_index_.end() ? nullptr : &people_[it->second];
}

const SimPerson* SimWorld::FindPerson(std::string_view name) const {
  auto it = person_index_.find(ScreenNameKey(name));
  return it == person_index_.end() ? nullptr : &people_[it->second];
}

void SimWorld::SetFullMailbox(std::string_view name, bool full) {
  AddPerson(name).full_mailbox = full;
}

bool SimWorld::Deliver(std::string_view to, ReceivedMail mail) {
  SimPerson& p = AddPerson(to);
  if (p.full_mailbox) return false;
  p.mailbox.push_back(std::move(mail));
  return true;
}

std::map<std::string, std::vector<ReceivedMail>> SimWorld::Mailboxes() const {
  std::map<std::string, std::vector<ReceivedMail>> out;
  for (const SimPerson& p : people_) out[p.name] = p.mailbox;
  return out;
}

SimRoom& SimWorld::Room(std::string_view name) {
  std::string key = ScreenNameKey(name);
  auto it = room_index_.find(key);
  if (it != room_index_.end()) return rooms_[it->second];
  room_index_.emplace(key, rooms_.size());
  rooms_.push_back(SimRoom{std::string(name), {}, {}, 0, 0});
  return rooms_.back();
}

SimRoom* SimWorld::FindRoom(std::string_view name) {
  auto it = room_index_.find(ScreenNameKey(name));
  return it == room_index_.end() ? nullptr : &rooms_[it->second];
}

void SimWorld::SetRoomCapacity(std::string_view room, int capacity) {
  Room(room).capacity = std::max(capacity, 0);
}

void SimWorld::RefuseRoom(std::string_view room, int times) {
  Room(room).refusals = std::max(times, 0);
}

bool SimWorld::TryEnterRoom(std::string_view room) {
  SimRoom& r = Room(room);
  if (r.refusals > 0) {
    --r.refusals;
    return false;
  }
  return r.capacity == 0 || static_cast<int>(r.people.size()) < r.capacity;
}

bool SimWorld::Join(std::string_view room, std::string_view person) {
  if (InRoom(room, person)) return false;
  AddPerson(person);
  SimRoom& r = Room(room);
  r.people.emplace_back(person);
  r.keys.insert(ScreenNameKey(person));
  return true;
}

bool SimWorld::Leave(std::string_view room, std::string_view person) {
  SimRoom* r = FindRoom(room);
  if (!r) return false;
  std::string key = ScreenNameKey(person);
  auto it = std::find_if(
      r->people.begin(), r->people.end(),
      [&](const std::string& p) { return ScreenNameKey(p) == key; });
  if (it == r->people.end()) return false;
  r->people.erase(it);
  r->keys.erase(key);
  return true;
}

bool SimWorld::InRoom(std::string_view room, std::string_view person) const {
  auto it = room_index_.find(ScreenNameKey(room));
  if (it == room_index_.end()) return false;
  return rooms_[it->second].keys.count(ScreenNameKey(person)) > 0;
}

}  // namespace quorvex
