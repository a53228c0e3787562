// A scenario file run twice: once in the simulator (virtual time, the
// simulated client in this process) and once through the real binding
// (binding_run.h: the Win32 ports here, the stand-in client as real
// windows in processes of its own, both clocks at the same faster pace).
// Both transcripts are read the same way, and what does not depend on
// timing is compared:
//   - what the client took for each person: the mails in their mailbox
//     and those waiting in the client's outgoing queue for them (a mail
//     whose every Send Now click was lost goes out with Send Later; which
//     clicks are lost is the client's dice), as subjects in any order;
//   - the program's questions and the answers given, in order;
//   - the user's distinct lines in the room, but for the periodic
//     advertisement, with the name left out of the mail lines (who asked
//     first decides it) and the count out of the status answers;
//   - the final lists (pending, banned, mails, reply queue, mistakes).
// Both summaries are printed; the exit code is 0 when they match, 1 when
// they do not.
//
//   qv_win32_scenario.exe FILE.scn [--speed F (5)] [--settle S]
//                         [--transcript FILE (the binding's, written)]
//                         [--watch S (waits woken by the client's windows
//                         changing, polling every S s; 0: every 10 ms)]
//                         [--anchor] [--throughput]
//
// Both runs end S seconds after the last timed line, past the file's end
// if need be; without --settle, 20 s after it or where the file ends them
// if sooner. The binding's run ends sooner when it stands where the
// simulator's ended. The clocks run F times the wall clock. With
// --anchor, an exit, a sign-off or a kill the file times to land inside
// a job lands there in both runs: the binding's comes when its status
// strip stands where the simulator's stood at that moment (the same
// text, shown as often), sooner or later than the line's time. With
// --throughput (a flood, where how many mails go out is the machine's speed)
// mailboxes are compared as sets and a client restart's lines are left out.
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "binding_run.h"
#include "scenario/runner.h"
#include "scenario/scenario.h"

namespace quorvex {
namespace {

using nlohmann::json;

// The user's periodic lines (the advertisement) carry counts that depend
// on how many rounds came before the end, and whether one came at all
// before the end is a matter of timing.
bool Periodic(const std::string& text) {
  return text.find(" pending; ") != std::string::npos ||
         text.find("quorvex serving ") != std::string::npos ||
         text.find("</B> send <U>") != std::string::npos;
}

// A status answer counts what the person and the room have pending when
// it is given, which timing decides: the counts are left out.
std::string Uncounted(std::string text) {
  for (const auto& [head, tail] :
       {std::pair<std::string, std::string>{" you have <U>", "</U> pending"},
        {"there is <U>", "</U> total pending"}}) {
    const std::size_t at = text.find(head);
    if (at == std::string::npos) continue;
    const std::size_t from = at + head.size(), to = text.find(tail, from);
    if (to != std::string::npos) text.replace(from, to - from, "#");
  }
  return text;
}

// A mail, list or find line names the first of the people the mail went
// to, and who asked before it was taken is a matter of timing (two
// requests for one mail, or two finds of one word, go out together when
// the second came before the first was taken): the name between "[" and
// " mail <U>", " list <U>", " results for <U>" or " no results for <U>"
// is left out. What each person got is compared through the mailboxes.
std::string Ungrouped(const std::string& text) {
  for (const char* marker :
       {" mail <U>", " list <U>", " no results for <U>", " results for <U>"}) {
    const std::size_t at = text.find(marker);
    if (at == std::string::npos) continue;
    const std::size_t open = text.rfind('[', at);
    if (open == std::string::npos) return text;
    return text.substr(0, open + 1) + "*" + text.substr(at);
  }
  return text;
}

// The requesters of a mail in the client's outgoing queue, "(a)(b)".
std::vector<std::string> Recipients(const std::string& to) {
  std::vector<std::string> out;
  for (std::size_t at = to.find('('); at != std::string::npos;
       at = to.find('(', at + 1)) {
    const std::size_t close = to.find(')', at);
    if (close == std::string::npos) break;
    out.push_back(to.substr(at + 1, close - at - 1));
  }
  if (out.empty() && !to.empty()) out.push_back(to);
  return out;
}

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(c));
  return s;
}

const char* kLists[] = {"lstPending", "lstBanned", "lstMails", "ReplyQueue",
                        "MistakeList"};

// The client restart that a count of mails brings: the sent mail
// deleted, the client closed and started, the room busted back into.
bool RestartCycle(const std::string& text) {
  for (const char* part :
       {"please be patient", "please hold requests and be patient",
        "deleting <B><U>sent", "deleted <B><U>sent", "restarting <B><U>aol",
        "restarted <B><U>aol", "quorvex busted ", "stopped busting "})
    if (text.find(part) != std::string::npos) return true;
  return false;
}

// What a transcript tells that timing does not decide. With `throughput`,
// how many mails go out in the file's time is the machine's speed, not
// the program's: each person's mails are compared as the subjects they
// got, not how often, and the restart cycle a count of mails brings is
// left out.
json Summary(const std::string& transcript, const std::string& user,
             bool throughput) {
  std::map<std::string, std::vector<std::string>> taken;
  json prompts = json::array();
  std::set<std::string> user_lines;
  json lists = json::object();
  std::istringstream in(transcript);
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) continue;
    const json ev = json::parse(line);
    if (ev["ev"] == "prompt") {
      prompts.push_back(ev.value("title", "") + "|" + ev.value("prompt", "") +
                        "|" + ev.value("answer", ""));
    } else if (ev["ev"] == "chat" && ev["sn"] == user &&
               !Periodic(ev["text"]) &&
               !(throughput && RestartCycle(ev["text"]))) {
      user_lines.insert(Uncounted(Ungrouped(ev["text"].get<std::string>())));
    } else if (ev["ev"] == "final") {
      for (const auto& [name, box] : ev["mailboxes"].items())
        for (const json& m : box) taken[Lower(name)].push_back(m["subject"]);
      for (const json& m : ev.value("waiting", json::array()))
        for (const std::string& sn : Recipients(m["to"]))
          taken[Lower(sn)].push_back(m["subject"]);
      for (const char* l : kLists)
        if (ev["lists"].contains(l))
          lists[l] = ev["lists"][l];
        else if (ev.contains(l))
          lists[l] = ev[l];
    }
  }
  json mailboxes = json::object();
  for (auto& [name, subjects] : taken) {
    std::sort(subjects.begin(), subjects.end());
    if (throughput)
      subjects.erase(std::unique(subjects.begin(), subjects.end()),
                     subjects.end());
    mailboxes[name] = subjects;
  }
  return {{"mailboxes", mailboxes},
          {"prompts", prompts},
          {"user_lines", user_lines},
          {"lists", lists}};
}

// The events of a transcript but its final state, in order.
std::vector<json> Events(const std::string& transcript) {
  std::vector<json> events;
  std::istringstream in(transcript);
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) continue;
    json ev = json::parse(line);
    if (ev["ev"] != "final") events.push_back(std::move(ev));
  }
  return events;
}

// An event as a short line: its moment, its kind, what it says.
std::string Brief(const json& ev) {
  char at[32];
  std::snprintf(at, sizeof at, "%9.3f ", ev.value("t", 0.0));
  std::string out = at + ev.value("ev", std::string());
  for (const char* field : {"sn", "name", "op", "to", "subject", "what"})
    if (ev.contains(field) && ev[field].is_string())
      out += " " + ev[field].get<std::string>();
  for (const char* field : {"item", "text"})
    if (ev.contains(field) && ev[field].is_string())
      out += " | " + ev[field].get<std::string>();
  return out;
}

// The user's line as the summary writes it.
bool IsUserLine(const json& ev, const std::string& user,
                const std::string& line) {
  return ev["ev"] == "chat" && ev["sn"] == user &&
         Uncounted(Ungrouped(ev["text"].get<std::string>())) == line;
}

// Prints the events from `from` on, labels left out, `count` of them.
void PrintEvents(const std::vector<json>& events, std::size_t from, int count) {
  for (std::size_t i = from; i < events.size() && count > 0; ++i) {
    if (events[i]["ev"] == "label") continue;
    std::printf("    %s\n", Brief(events[i]).c_str());
    --count;
  }
}

// The events around where `line` was said in one run: three before it,
// itself and two after, labels left out.
void PrintAround(const std::vector<json>& events, const std::string& user,
                 const std::string& line) {
  for (std::size_t i = 0; i < events.size(); ++i) {
    if (!IsUserLine(events[i], user, line)) continue;
    std::size_t from = i;
    for (int before = 0; from > 0 && before < 3;)
      if (events[--from]["ev"] != "label") ++before;
    PrintEvents(events, from, 6);
    return;
  }
}

// What a difference in the user's lines is: each line one run said and
// the other did not, with its neighbours where it was said and, in the
// other run, what came after the user line before it (said in both).
void ExplainLines(const json& want, const json& got,
                  const std::vector<json>& simulated,
                  const std::vector<json>& bound, const std::string& user) {
  const auto in_sim = want.get<std::set<std::string>>();
  const auto in_binding = got.get<std::set<std::string>>();
  auto explain = [&](const std::set<std::string>& lines,
                     const std::set<std::string>& other,
                     const std::vector<json>& said,
                     const std::vector<json>& not_said, const char* where,
                     const char* elsewhere) {
    for (const std::string& line : lines) {
      if (other.count(line)) continue;
      std::printf("said only in the %s: %s\n  around it there:\n", where,
                  line.c_str());
      PrintAround(said, user, line);
      // The last line before it that both runs said.
      std::string before;
      for (const json& ev : said) {
        if (ev["ev"] != "chat" || ev["sn"] != user) continue;
        const std::string text =
            Uncounted(Ungrouped(ev["text"].get<std::string>()));
        if (text == line) break;
        if (other.count(text)) before = text;
      }
      if (before.empty()) continue;
      std::printf("  in the %s, after the line before it (%s):\n", elsewhere,
                  before.c_str());
      for (std::size_t i = not_said.size(); i-- > 0;)
        if (IsUserLine(not_said[i], user, before)) {
          PrintEvents(not_said, i, 8);
          break;
        }
    }
  };
  explain(in_sim, in_binding, simulated, bound, "simulator", "binding");
  explain(in_binding, in_sim, bound, simulated, "binding", "simulator");
}

// Where the binding's run stood when it ended, and its last timed line.
void ExplainEnd(const scenario::Scenario& sc, const std::string& path,
                const std::vector<json>& bound, double latest_line) {
  std::printf("the binding's run ended at %.1f s; its last events:\n",
              sc.run_until);
  std::size_t from = bound.size();
  for (int n = 0; from > 0 && n < 5;)
    if (bound[--from]["ev"] != "label") ++n;
  PrintEvents(bound, from, 5);
  const scenario::TimedLine* last = nullptr;
  for (const scenario::TimedLine& line : sc.timeline)
    if (!last || line.at >= last->at) last = &line;
  if (!last) return;
  std::ifstream file(path);
  std::string text;
  for (int n = 0; n < last->line && std::getline(file, text);) ++n;
  std::printf(
      "its last timed line, line %d (%s); the latest timed line ran %.2f s "
      "of the wall clock late\n",
      last->line, text.c_str(), latest_line);
}

// A failed comparison's files are kept in a folder of their own, named by
// the file, the moment and this process, that a retry does not overwrite:
// both transcripts, the client's state and event log, the program's log.
constexpr const char* kFailures = "scenario-failures";

std::string FailureFolder(const std::string& scenario_path) {
  std::string name =
      scenario_path.substr(scenario_path.find_last_of("\\/") + 1);
  name = name.substr(0, name.rfind('.'));
  SYSTEMTIME now;
  ::GetLocalTime(&now);
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, "-%04u%02u%02u-%02u%02u%02u-%lu",
                now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                now.wSecond,
                static_cast<unsigned long>(::GetCurrentProcessId()));
  ::CreateDirectoryA(kFailures, nullptr);
  const std::string folder = std::string(kFailures) + "\\" + name + stamp;
  ::CreateDirectoryA(folder.c_str(), nullptr);
  char full[MAX_PATH];
  const DWORD n = ::GetFullPathNameA(folder.c_str(), MAX_PATH, full, nullptr);
  return n > 0 && n < MAX_PATH ? std::string(full, n) : folder;
}

// Where the simulator's run stood when each of the timeline's exits,
// sign-offs and kills came: the status strip's text then, and how often
// it had shown it.
std::map<std::size_t, test::BindingOptions::Anchor> Anchors(
    const scenario::Scenario& sc, const std::string& transcript) {
  std::vector<std::pair<double, std::string>> statuses;
  std::istringstream in(transcript);
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) continue;
    const json ev = json::parse(line);
    if (ev["ev"] == "status") statuses.emplace_back(ev["t"], ev["text"]);
  }
  std::map<std::size_t, test::BindingOptions::Anchor> anchors;
  for (std::size_t i = 0; i < sc.timeline.size(); ++i) {
    const scenario::TimedLine& line = sc.timeline[i];
    using scenario::Verb;
    const bool exit = line.verb == Verb::kPress && line.name == "lblExit";
    if (!exit && line.verb != Verb::kSignoff && line.verb != Verb::kKill)
      continue;
    std::map<std::string, int> shown;
    std::string text;
    for (const auto& [t, status] : statuses) {
      if (t > line.at) break;
      ++shown[status];
      text = status;
    }
    if (!text.empty()) anchors[i] = {text, shown[text]};
  }
  return anchors;
}

int Run(const std::string& path, double speed, double settle, double watch,
        bool anchor, bool throughput, const std::string& transcript_file) {
  scenario::Scenario sc = scenario::LoadScenario(path, scenario::Controls());
  // Both runs end `settle` seconds after the last timed line, when the
  // scenario runs longer: the rest is the periodic lines, left out anyway.
  // A settle given runs that long even past the file's end: the binding
  // may need it to finish what the simulator finished in time.
  double last = 0;
  for (const scenario::TimedLine& line : sc.timeline)
    last = std::max(last, line.at);
  sc.run_until = settle > 0 ? last + settle : std::min(sc.run_until, last + 20);

  std::stringstream simulated;
  scenario::RunScenario(sc, {}, simulated);
  const json want = Summary(simulated.str(), sc.user, throughput);
  test::BindingOptions options;
  options.speed = speed;
  options.watch = watch;
  if (anchor) options.anchors = Anchors(sc, simulated.str());
  // The binding's run ends as soon as it stands where the simulator's
  // ended, once every timed line has run: no line remains to change the
  // program's course, and the rest would be waiting. A run that never
  // gets there goes on to the end and is compared there.
  options.done = [&](const std::string& so_far) {
    return Summary(so_far, sc.user, throughput) == want;
  };
  double latest_line = 0;
  options.latest_line = &latest_line;
  std::string kept;  // where a failure's files went
  options.keep = [&](const std::string& transcript) {
    if (Summary(transcript, sc.user, throughput) == want) return std::string();
    kept = FailureFolder(path);
    return kept;
  };
  const std::string bound = test::RunThroughBinding(sc, options);
  if (!transcript_file.empty())
    std::ofstream(transcript_file, std::ios::binary) << bound;
  if (!kept.empty()) {
    std::ofstream(kept + "\\simulator.jsonl", std::ios::binary)
        << simulated.str();
    std::ofstream(kept + "\\binding.jsonl", std::ios::binary) << bound;
  }

  const json got = Summary(bound, sc.user, throughput);
  auto text = [](const json& j) {
    return j.dump(-1, ' ', false, json::error_handler_t::replace);
  };
  std::printf("simulator: %s\nbinding:   %s\n", text(want).c_str(),
              text(got).c_str());
  for (const auto& [key, value] : want.items())
    if (got[key] != value)
      std::printf("differs: %s\n  simulator %s\n  binding   %s\n", key.c_str(),
                  text(value).c_str(), text(got[key]).c_str());
  if (want == got) return 0;
  const std::vector<json> bound_events = Events(bound);
  if (want["user_lines"] != got["user_lines"])
    ExplainLines(want["user_lines"], got["user_lines"], Events(simulated.str()),
                 bound_events, sc.user);
  ExplainEnd(sc, path, bound_events, latest_line);
  if (!kept.empty())
    std::printf(
        "both transcripts, the client's state and event log and the "
        "program's log are kept in %s\n",
        kept.c_str());
  return 1;
}

}  // namespace
}  // namespace quorvex

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr,
                 "usage: qv_win32_scenario FILE.scn [--speed F] [--settle S] "
                 "[--transcript FILE] [--watch S] [--anchor] "
                 "[--throughput]\n");
    return 2;
  }
  double speed = 5, settle = 0, watch = 0;
  bool anchor = false, throughput = false;
  std::string transcript;
  for (int i = 2; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--anchor") anchor = true;
    if (arg == "--throughput") throughput = true;
    if (i + 1 == argc) break;
    if (arg == "--speed") speed = std::stod(argv[i + 1]);
    if (arg == "--settle") settle = std::stod(argv[i + 1]);
    if (arg == "--transcript") transcript = argv[i + 1];
    if (arg == "--watch") watch = std::stod(argv[i + 1]);
  }
  // The build passes host paths; under Wine the host's root is drive Z:.
  std::string path = argv[1];
  if (!path.empty() && path[0] == '/') path = "Z:" + path;
  try {
    return quorvex::Run(path, speed, settle, watch, anchor, throughput,
                        transcript);
  } catch (const std::exception& e) {
    std::printf("error: %s\n", e.what());
    return 1;
  }
}
