// Scenario files for quorvex-sim: one directive a line, set-up first, then
// timed lines, then `run T`. Parsing checks everything before anything
// runs; a bad line gives "FILE:LINE: what is wrong".
#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace quorvex::scenario {

struct ScenarioError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct SetupValue {
  std::string
      file;  // ini only: "Quorvex.INI", "RestartSettings.INI", "Win.INI"
  std::string section;
  std::string key;
  std::string value;
};

// What a timed line does, read once from its word by the parser.
enum class Verb {
  kSay,      // say NAME: TEXT
  kPress,    // press CONTROL [INDEX]
  kSelect,   // select LIST INDEX, select LIST "TEXT"
  kSet,      // set CONTROL = VALUE
  kAnswer,   // answer TEXT: the next prompt's answer
  kSignoff,  // the client signs off
  kKill,     // the client's process ends at once
  kJoin,     // join NAME
  kLeave,    // leave NAME
  kStart,    // the user starts the ended program again
};

struct TimedLine {
  int line = 0;  // line number in the file
  double at = 0;
  Verb verb = Verb::kSay;
  std::string name{};  // speaker, control, list, person
  std::string text{};  // said text, answer, value; select: the item's text
  int index = 0;       // press: preset item (0 none); select: item
};

struct Scenario {
  std::string file;
  int hour = 12, minute = 0, second = 0;
  int year = 2000, month = 1, day = 1;
  unsigned long long seed = 1;
  std::string user = "Host";
  std::string room = "Lobby";
  std::vector<std::string> people;
  std::vector<std::string> mails;  // titles, in mailbox order
  std::vector<SetupValue> registry;
  std::vector<SetupValue> ini;
  std::vector<std::string> full_mailboxes;
  std::vector<int> dead_mails;
  int latency_ms = 50;
  bool signed_off = false;
  int signon_failures = 0;  // the next sign-ons that fail
  // Rooms that refuse the user's next tries (room name, tries).
  std::vector<std::pair<std::string, int>> full_rooms;
  // Faults, as chances from 0 to 1: the client losing a click that lands
  // while it is busy, and the ports' faults (see sim/faulty_ports.h).
  double lost_clicks = 0;
  double registry_write_faults = 0;
  double profile_write_faults = 0;
  double disk_full_faults = 0;
  double vanish_faults = 0;
  // The simulated client's knobs (name, value), set after everything else.
  std::vector<std::pair<std::string, std::string>> knobs;
  std::vector<TimedLine> timeline;
  double run_until = 0;
};

// Tells whether a control name can be pressed / selected / set; the
// parser refuses unknown names so that a typo never runs.
struct ControlCatalogue {
  std::function<bool(const std::string& control, int index)> pressable;
  std::function<bool(const std::string& list)> selectable;
  std::function<bool(const std::string& control)> settable;
};

Scenario ParseScenario(const std::string& file_name, const std::string& text,
                       const ControlCatalogue& controls);
Scenario LoadScenario(const std::string& path,
                      const ControlCatalogue& controls);

}  // namespace quorvex::scenario
