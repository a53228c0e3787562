// What a transcript hears of the program itself, its questions, and the
// final state: shared by quorvex-sim and by the runs of a scenario through
// the real Win32 binding, so that both write the same transcript.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "app/quorvex_app.h"
#include "ports/machine.h"
#include "ports/profile_file.h"
#include "ports/registry.h"
#include "ports/scripted_prompter.h"
#include "scenario/scenario.h"
#include "scenario/transcript.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"

namespace quorvex::scenario {

// The profile files a scenario can name ("Quorvex.INI",
// "RestartSettings.INI", "Win.INI"), by their Windows paths.
std::string ProfilePath(const Machine& machine, const std::string& file);

// An object from a map's unique keys in one pass: ordered_json's
// operator[] looks each new key up from the first, which made the dump of
// a big section quadratic.
template <typename Map, typename ToJson>
nlohmann::ordered_json ObjectOf(const Map& map, ToJson to_json) {
  nlohmann::ordered_json::object_t object;
  object.reserve(map.size());
  for (const auto& [key, value] : map) object.push_back({key, to_json(value)});
  return object;
}

// Writes the program's labels, status strip, lists, collections and small
// windows' opening and closing as they change. Call before the main
// window loads.
void WatchProgram(QuorvexApp& app, Transcript& t);

// Does what a timed line of the program's user does: answers the next
// question (answer) or works a control (press, select, set). Returns true
// when a press ended the running program. Other verbs do nothing here.
bool RunUserLine(const TimedLine& line, QuorvexApp& app,
                 ScriptedPrompter& prompter);

// Writes each question the program asks, with its answer (a message box:
// its title and text only).
void WatchPrompts(ScriptedPrompter& prompter, Transcript& t);

// The program's part of the final state: lists, collections, labels, the
// texts of open windows, status, menus, the registry and the profile files
// that exist.
nlohmann::ordered_json ProgramFinalState(QuorvexApp& app,
                                         const Registry& registry,
                                         const ProfileFile& profiles,
                                         const Machine& machine);

// The client's part of the final state: each person's mailbox and, only
// when the client holds some, the mail waiting to be sent later.
void AddClientMail(
    nlohmann::ordered_json& state,
    const std::map<std::string, std::vector<ReceivedMail>>& mailboxes,
    const std::vector<SimClient::WaitingMail>& waiting);

}  // namespace quorvex::scenario
