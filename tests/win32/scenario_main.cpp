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
//
// Both runs end S seconds after the last timed line, past the file's end
// if need be; without --settle, 20 s after it or where the file ends them
// if sooner. The clocks run F times the wall clock.
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
#include "sim/runner.h"
#include "sim/scenario.h"

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

// What a transcript tells that timing does not decide.
json Summary(const std::string& transcript, const std::string& user) {
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
               !Periodic(ev["text"])) {
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
    mailboxes[name] = subjects;
  }
  return {{"mailboxes", mailboxes},
          {"prompts", prompts},
          {"user_lines", user_lines},
          {"lists", lists}};
}

int Run(const std::string& path, double speed, double settle, double watch,
        const std::string& transcript_file) {
  sim::Scenario sc = sim::LoadScenario(path, sim::Controls());
  // Both runs end `settle` seconds after the last timed line, when the
  // scenario runs longer: the rest is the periodic lines, left out anyway.
  // A settle given runs that long even past the file's end: the binding
  // may need it to finish what the simulator finished in time.
  double last = 0;
  for (const sim::TimedLine& line : sc.timeline) last = std::max(last, line.at);
  sc.run_until = settle > 0 ? last + settle : std::min(sc.run_until, last + 20);

  std::stringstream simulated;
  sim::RunScenario(sc, {}, simulated);
  test::BindingOptions options;
  options.speed = speed;
  options.watch = watch;
  const std::string bound = test::RunThroughBinding(sc, options);
  if (!transcript_file.empty())
    std::ofstream(transcript_file, std::ios::binary) << bound;

  const json want = Summary(simulated.str(), sc.user);
  const json got = Summary(bound, sc.user);
  auto text = [](const json& j) {
    return j.dump(-1, ' ', false, json::error_handler_t::replace);
  };
  std::printf("simulator: %s\nbinding:   %s\n", text(want).c_str(),
              text(got).c_str());
  for (const auto& [key, value] : want.items())
    if (got[key] != value)
      std::printf("differs: %s\n  simulator %s\n  binding   %s\n", key.c_str(),
                  text(value).c_str(), text(got[key]).c_str());
  return want == got ? 0 : 1;
}

}  // namespace
}  // namespace quorvex

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr,
                 "usage: qv_win32_scenario FILE.scn [--speed F] [--settle S] "
                 "[--transcript FILE] [--watch S]\n");
    return 2;
  }
  double speed = 5, settle = 0, watch = 0;
  std::string transcript;
  for (int i = 2; i + 1 < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--speed") speed = std::stod(argv[i + 1]);
    if (arg == "--settle") settle = std::stod(argv[i + 1]);
    if (arg == "--transcript") transcript = argv[i + 1];
    if (arg == "--watch") watch = std::stod(argv[i + 1]);
  }
  // The build passes host paths; under Wine the host's root is drive Z:.
  std::string path = argv[1];
  if (!path.empty() && path[0] == '/') path = "Z:" + path;
  try {
    return quorvex::Run(path, speed, settle, watch, transcript);
  } catch (const std::exception& e) {
    std::printf("error: %s\n", e.what());
    return 1;
  }
}
