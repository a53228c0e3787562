// The simulated client's chat room: the room window with its display,
// input and people list (whose records lie in the client's memory), entry
// into rooms through the keyword box, full rooms, and instant messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sim/sim_client_prefs.h"
#include "sim/sim_client_session.h"
#include "sim/sim_client_shell.h"

namespace quorvex {

class SimClientRoom : public SimClientPart {
 public:
  SimClientRoom(SimClientShell& shell, SimClientSession& session,
                SimClientPreferences& preferences);

  void SetRoomName(std::string name) { room_name_ = std::move(name); }
  // Someone in the user's room; before the launch, kept until then.
  void Join(std::string_view name);
  void Leave(std::string_view name);
  // A line from someone in the room; the person joins first when absent.
  void Say(std::string_view name, std::string_view text);

  // At the launch: the people set up join the room in the world, ...
  void SeatSetupPeople();
  // ... and, signed on, the user is in the room (no entry to report).
  void ShowAtLaunch();

  // What the keyword box runs: "aol://9293:" an instant message,
  // "preferences", "aol://2719:2-2-" a room.
  void RunKeyword(const std::string& address);
  void SendChatInput();
  void ClickIcon(const ClientWindow& window, int icon);

  // The display: its text as set or left by a deletion (its lines follow
  // it), and its selection in characters (code points).
  void SetDisplayText(SimWindow& display, std::string text);
  void SelectDisplay(std::intptr_t from, std::intptr_t to);
  void ClearDisplaySelection(SimWindow& display);
  // A list message to the people list, an owner-data list whose items are
  // addresses in the client's memory.
  std::intptr_t PeopleListMessage(SimWindow& list, unsigned msg,
                                  std::uintptr_t wparam) const;

  // The room the user is in, "" when none.
  const std::string& current_room() const { return current_room_; }
  const std::deque<std::string>& display_lines() const {
    return display_lines_;
  }

  void SaveTo(nlohmann::json& j) const;
  void RestoreFrom(const nlohmann::json& j);

 private:
  struct PeopleEntry {
    std::string name;
    std::uint32_t item = 0;  // the list item's data: its record's address
    std::uint32_t name_block = 0;
  };

  void EnterRoom(const std::string& name);
  void BuildRoomWindow();
  void AddPeopleEntry(const std::string& name);
  void FreePeopleEntry(const PeopleEntry& e);
  void UpdatePeopleCount();
  void AppendChatLine(const std::string& sn, const std::string& text);
  // After a refusal: someone leaves the full room in a while.
  void FreePlaceLater(const std::string& room);
  void OpenIm(const std::string& to);
  void SendIm(Hwnd im);
  void OnWindowGone(const SimWindow& w);

  SimClientSession& session_;
  SimClientPreferences& preferences_;

  // The room to return to, and the people in it set up before the launch.
  std::string room_name_ = "Lobby";
  std::vector<std::string> setup_people_;
  // The room the user is in.
  std::string current_room_;
  Hwnd room_ = 0, display_ = 0, input_ = 0, people_list_ = 0, count_static_ = 0;
  std::deque<std::string> display_lines_;
  std::size_t display_sel_start_ = 0, display_sel_end_ = 0;
  std::vector<PeopleEntry> people_entries_;
  // Full rooms someone is about to leave (by ScreenNameKey).
  std::set<std::string> freeing_rooms_;
};

}  // namespace quorvex
