#include "scenario/scenario.h"

#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "sim/sim_knobs.h"

namespace quorvex::scenario {

namespace {

// The timed lines' words.
constexpr std::pair<std::string_view, Verb> kVerbWords[] = {
    {"say", Verb::kSay},       {"press", Verb::kPress},
    {"select", Verb::kSelect}, {"set", Verb::kSet},
    {"answer", Verb::kAnswer}, {"signoff", Verb::kSignoff},
    {"kill", Verb::kKill},     {"join", Verb::kJoin},
    {"leave", Verb::kLeave},   {"start", Verb::kStart},
};

std::optional<Verb> FindVerb(std::string_view word) {
  for (const auto& [w, verb] : kVerbWords)
    if (w == word) return verb;
  return std::nullopt;
}

class LineParser {
 public:
  LineParser(const std::string& file, int line) : file_(file), line_(line) {}

  [[noreturn]] void Fail(const std::string& what) const {
    throw ScenarioError(file_ + ":" + std::to_string(line_) + ": " + what);
  }

  double Seconds(const std::string& word, const char* what) const {
    double v = 0;
    auto [p, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
    if (ec != std::errc() || p != word.data() + word.size() ||
        !std::isfinite(v) || v < 0)
      Fail(std::string("expected ") + what + " (seconds, not negative), got '" +
           word + "'");
    return v;
  }

  long long Whole(const std::string& word, const char* what, long long lo,
                  long long hi) const {
    long long v = 0;
    auto [p, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
    if (ec != std::errc() || p != word.data() + word.size() || v < lo || v > hi)
      Fail(std::string("expected ") + what + " (a whole number from " +
           std::to_string(lo) + " to " + std::to_string(hi) + "), got '" +
           word + "'");
    return v;
  }

 private:
  const std::string& file_;
  int line_;
};

// Splits off the first blank-separated word; `rest` is what follows the
// single blank after it, kept exactly.
std::string TakeWord(std::string_view& s) {
  size_t b = s.find_first_not_of(' ');
  if (b == std::string_view::npos) {
    s = {};
    return {};
  }
  s.remove_prefix(b);
  size_t e = s.find(' ');
  std::string word(s.substr(0, e));
  s = e == std::string_view::npos ? std::string_view{} : s.substr(e + 1);
  return word;
}

std::string TrimBlanks(std::string_view s) {
  size_t b = s.find_first_not_of(" \t");
  if (b == std::string_view::npos) return {};
  size_t e = s.find_last_not_of(" \t\r");
  return std::string(s.substr(b, e - b + 1));
}

// "SECTION KEY = VALUE": SECTION a single word, KEY up to the first " = ".
SetupValue KeyValue(std::string_view rest, const LineParser& p) {
  SetupValue v;
  v.section = TakeWord(rest);
  size_t eq = rest.find(" = ");
  if (v.section.empty() || eq == std::string_view::npos)
    p.Fail("expected SECTION KEY = VALUE");
  v.key = std::string(rest.substr(0, eq));
  v.value = std::string(rest.substr(eq + 3));
  if (v.key.empty()) p.Fail("the key is empty");
  return v;
}

}  // namespace

Scenario ParseScenario(const std::string& file_name, const std::string& text,
                       const ControlCatalogue& controls) {
  Scenario sc;
  sc.file = file_name;
  std::istringstream in(text);
  std::string raw;
  int line_no = 0;
  bool timed_started = false, have_run = false;
  double last_time = 0;
  while (std::getline(in, raw)) {
    ++line_no;
    if (!raw.empty() && raw.back() == '\r') raw.pop_back();
    LineParser p(file_name, line_no);
    std::string trimmed = TrimBlanks(raw);
    if (trimmed.empty() || trimmed[0] == '#') continue;
    if (have_run) p.Fail("nothing may follow the run line");
    std::string_view rest = raw;
    std::string verb = TakeWord(rest);

    if (verb == "at") {
      TimedLine t;
      t.line = line_no;
      std::string when = TakeWord(rest);
      t.at = p.Seconds(when, "a time after 'at'");
      if (t.at < last_time)
        p.Fail("time " + when + " is earlier than the timed line before it");
      last_time = t.at;
      timed_started = true;
      const std::string word = TakeWord(rest);
      if (word.empty()) p.Fail("expected a directive after the time");
      const std::optional<Verb> found = FindVerb(word);
      if (!found) p.Fail("unknown timed directive '" + word + "'");
      t.verb = *found;
      switch (t.verb) {
        case Verb::kSay: {
          size_t colon = rest.find(": ");
          if (colon == std::string_view::npos)
            p.Fail("expected 'say NAME: TEXT'");
          t.name = std::string(rest.substr(0, colon));
          t.text = std::string(rest.substr(colon + 2));
          if (TrimBlanks(t.name).empty()) p.Fail("the speaker's name is empty");
          break;
        }
        case Verb::kPress: {
          t.name = TakeWord(rest);
          std::string idx = TakeWord(rest);
          if (t.name.empty()) p.Fail("expected 'press CONTROL [INDEX]'");
          if (!idx.empty())
            t.index = static_cast<int>(p.Whole(idx, "an item index", 1, 99));
          if (!TrimBlanks(rest).empty())
            p.Fail("unexpected text after the index");
          if (controls.pressable && !controls.pressable(t.name, t.index))
            p.Fail("unknown control to press: '" + t.name +
                   (t.index ? " " + std::to_string(t.index) : std::string()) +
                   "'");
          break;
        }
        case Verb::kSelect: {
          t.name = TakeWord(rest);
          const std::string item = TrimBlanks(rest);
          if (item.size() >= 2 && item.front() == '"' && item.back() == '"') {
            // An item by its text, as the user would pick it.
            t.text = item.substr(1, item.size() - 2);
            if (t.text.empty()) p.Fail("the item's text is empty");
          } else {
            std::string idx = TakeWord(rest);
            if (t.name.empty() || idx.empty() || !TrimBlanks(rest).empty())
              p.Fail("expected 'select LIST INDEX' or 'select LIST \"TEXT\"'");
            t.index =
                static_cast<int>(p.Whole(idx, "a 0-based item", 0, 1000000000));
          }
          if (controls.selectable && !controls.selectable(t.name))
            p.Fail("unknown list to select in: '" + t.name + "'");
          break;
        }
        case Verb::kSet: {
          size_t eq = rest.find(" = ");
          size_t eq_end = eq + 3;
          if (eq == std::string_view::npos && rest.size() >= 2 &&
              rest.substr(rest.size() - 2) == " =") {
            eq = rest.size() - 2;
            eq_end = rest.size();
          }
          if (eq == std::string_view::npos)
            p.Fail("expected 'set CONTROL = VALUE'");
          t.name = TrimBlanks(rest.substr(0, eq));
          t.text = std::string(rest.substr(eq_end));
          if (controls.settable && !controls.settable(t.name))
            p.Fail("unknown control to set: '" + t.name + "'");
          break;
        }
        case Verb::kAnswer:
          t.text = std::string(rest);
          break;
        case Verb::kSignoff:
        case Verb::kStart:
        case Verb::kKill:
          if (!TrimBlanks(rest).empty()) p.Fail("'" + word + "' takes nothing");
          break;
        case Verb::kJoin:
        case Verb::kLeave:
          t.name = std::string(rest);
          if (TrimBlanks(t.name).empty())
            p.Fail("expected '" + word + " NAME'");
          break;
      }
      sc.timeline.push_back(std::move(t));
      continue;
    }

    if (verb == "run") {
      double t = p.Seconds(TakeWord(rest), "the end time after 'run'");
      if (!TrimBlanks(rest).empty())
        p.Fail("unexpected text after the run time");
      if (t < last_time) p.Fail("the run ends before the last timed line");
      sc.run_until = t;
      have_run = true;
      continue;
    }

    if (timed_started) p.Fail("set-up line '" + verb + "' after a timed line");

    if (verb == "clock") {
      std::string hms = TakeWord(rest), ymd = TakeWord(rest);
      int h, m, s;
      char c1, c2;
      std::istringstream t(hms);
      if (!(t >> h >> c1 >> m >> c2 >> s) || c1 != ':' || c2 != ':' || h < 0 ||
          h > 23 || m < 0 || m > 59 || s < 0 || s > 59 || !t.eof())
        p.Fail("expected 'clock HH:MM:SS [YYYY-MM-DD]'");
      sc.hour = h, sc.minute = m, sc.second = s;
      if (!ymd.empty()) {
        int y, mo, d;
        std::istringstream dt(ymd);
        if (!(dt >> y >> c1 >> mo >> c2 >> d) || c1 != '-' || c2 != '-' ||
            y < 1601 || y > 9999 || mo < 1 || mo > 12 || d < 1 || d > 31 ||
            !dt.eof())
          p.Fail("expected the date as YYYY-MM-DD");
        sc.year = y, sc.month = mo, sc.day = d;
      }
    } else if (verb == "seed") {
      sc.seed = static_cast<unsigned long long>(
          p.Whole(TakeWord(rest), "a seed", 0, (1LL << 62)));
    } else if (verb == "user" || verb == "room" || verb == "person" ||
               verb == "full-mailbox") {
      std::string name = TrimBlanks(rest);
      if (name.empty()) p.Fail("expected '" + verb + " NAME'");
      if (verb == "user") sc.user = name;
      if (verb == "room") sc.room = name;
      if (verb == "person") sc.people.push_back(name);
      if (verb == "full-mailbox") sc.full_mailboxes.push_back(name);
    } else if (verb == "mail") {
      std::string title(rest);
      if (TrimBlanks(title).empty()) p.Fail("expected 'mail TITLE'");
      sc.mails.push_back(title);
    } else if (verb == "mails") {
      long long n = p.Whole(TakeWord(rest), "a number of mails", 1, 100000);
      std::string prefix = TrimBlanks(rest);
      if (prefix.empty()) prefix = "mail";
      for (long long i = 1; i <= n; ++i)
        sc.mails.push_back(prefix + " " + std::to_string(i));
    } else if (verb == "registry") {
      sc.registry.push_back(KeyValue(rest, p));
    } else if (verb == "ini") {
      std::string file = TakeWord(rest);
      static const char* kFiles[] = {"Quorvex.INI", "RestartSettings.INI",
                                     "Win.INI"};
      bool known = false;
      for (const char* f : kFiles) known = known || file == f;
      if (!known)
        p.Fail("unknown profile file '" + file +
               "' (Quorvex.INI, RestartSettings.INI or Win.INI)");
      SetupValue v = KeyValue(rest, p);
      v.file = file;
      sc.ini.push_back(v);
    } else if (verb == "dead-mail") {
      sc.dead_mails.push_back(static_cast<int>(
          p.Whole(TakeWord(rest), "a mail number", 1, 1000000)));
    } else if (verb == "latency") {
      sc.latency_ms =
          static_cast<int>(p.Whole(TakeWord(rest), "milliseconds", 0, 600000));
    } else if (verb == "fault") {
      const std::string kind = TakeWord(rest);
      double* chance = kind == "lost-click"       ? &sc.lost_clicks
                       : kind == "registry-write" ? &sc.registry_write_faults
                       : kind == "profile-write"  ? &sc.profile_write_faults
                       : kind == "disk-full"      ? &sc.disk_full_faults
                       : kind == "vanish"         ? &sc.vanish_faults
                                                  : nullptr;
      if (!chance)
        p.Fail(
            "expected 'fault KIND PERCENT', KIND one of lost-click, "
            "registry-write, profile-write, disk-full, vanish");
      *chance = p.Whole(TakeWord(rest), "a percentage", 0, 100) / 100.0;
    } else if (verb == "signed-off") {
      sc.signed_off = true;
    } else if (verb == "signon-fails") {
      sc.signon_failures = static_cast<int>(
          p.Whole(TakeWord(rest), "a number of sign-ons", 0, 1000));
    } else if (verb == "room-full") {
      // ROOM may hold blanks: the number is the last word.
      std::string line = TrimBlanks(rest);
      size_t blank = line.find_last_of(' ');
      if (blank == std::string::npos) p.Fail("expected 'room-full ROOM N'");
      std::string room = TrimBlanks(line.substr(0, blank));
      if (room.empty()) p.Fail("expected 'room-full ROOM N'");
      sc.full_rooms.emplace_back(
          room, static_cast<int>(p.Whole(line.substr(blank + 1),
                                         "a number of tries", 1, 1000000)));
    } else if (verb == "knob") {
      std::string name = TakeWord(rest);
      std::string value = TakeWord(rest);
      if (name.empty() || value.empty()) p.Fail("expected 'knob NAME VALUE'");
      if (const std::string wrong = SetKnob(nullptr, name, value);
          !wrong.empty())
        p.Fail(wrong);
      sc.knobs.emplace_back(name, value);
    } else {
      p.Fail("unknown directive '" + verb + "'");
    }
    if (verb == "seed" || verb == "dead-mail" || verb == "latency" ||
        verb == "clock" || verb == "signed-off" || verb == "signon-fails" ||
        verb == "fault" || verb == "knob") {
      if (!TrimBlanks(rest).empty())
        p.Fail("unexpected text after '" + verb + "'");
    }
  }
  if (!have_run)
    throw ScenarioError(file_name + ":" + std::to_string(line_no) +
                        ": the scenario has no 'run T' line");
  return sc;
}

Scenario LoadScenario(const std::string& path,
                      const ControlCatalogue& controls) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ScenarioError(path + ":0: cannot read the file");
  std::ostringstream all;
  all << in.rdbuf();
  return ParseScenario(path, all.str(), controls);
}

}  // namespace quorvex::scenario
