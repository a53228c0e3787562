// The world around the simulated client: people (in a room or not) with
// mailboxes that record every mail delivered to them, and the chat rooms
// with the people in them. Names are matched as the service matches
// screen names: case and spaces do not count.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorvex {

struct ReceivedMail {
  std::string from;
  std::string subject;
  std::string body;
  std::string forward_of;  // title of the mail forwarded, "" for a new mail
};

struct SimPerson {
  std::string name;  // as first written
  bool full_mailbox = false;
  std::vector<ReceivedMail> mailbox;
};

struct SimRoom {
  std::string name;                 // as first written
  std::vector<std::string> people;  // in order of arrival; not the user
  // Their ScreenNameKey, to tell at once whether someone is in.
  std::unordered_set<std::string> keys;
  int capacity = 0;  // 0: no limit
  int refusals = 0;  // entries still refused as full
};

class SimWorld {
 public:
  // The person of that name, made when new.
  SimPerson& AddPerson(std::string_view name);
  SimPerson* FindPerson(std::string_view name);
  const SimPerson* FindPerson(std::string_view name) const;
  const std::deque<SimPerson>& people() const { return people_; }

  void SetFullMailbox(std::string_view name, bool full = true);
  // Puts a mail in the person's mailbox (making the person when new);
  // false, and nothing stored, when the mailbox is full.
  bool Deliver(std::string_view to, ReceivedMail mail);
  // Screen name -> the mails received, for everyone known.
  std::map<std::string, std::vector<ReceivedMail>> Mailboxes() const;

  // The room of that name, made when new.
  SimRoom& Room(std::string_view name);
  SimRoom* FindRoom(std::string_view name);
  const std::deque<SimRoom>& rooms() const { return rooms_; }
  void SetRoomCapacity(std::string_view room, int capacity);
  // The room is reported full for the next `times` tries to enter it.
  void RefuseRoom(std::string_view room, int times);
  // One try of the user to enter: false when full (a refusal is used up).
  bool TryEnterRoom(std::string_view room);

  // A person arrives in or leaves a room; false when nothing changed.
  bool Join(std::string_view room, std::string_view person);
  bool Leave(std::string_view room, std::string_view person);
  bool InRoom(std::string_view room, std::string_view person) const;

 private:
  std::deque<SimPerson> people_;
  std::unordered_map<std::string, std::size_t> person_index_;
  std::deque<SimRoom> rooms_;
  std::unordered_map<std::string, std::size_t> room_index_;
};

}  // namespace quorvex
