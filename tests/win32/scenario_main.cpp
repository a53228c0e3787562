// A scenario file run twice: once in the simulator (virtual time, the
// simulated client in this process) and once through the real binding
// (the Win32 ports here, the stand-in client as real windows in another
// process, both clocks at the same faster pace). What does not depend on
// timing is compared:
//   - what reached each person's mailbox (subjects, in any order),
//   - the program's questions and the answers given, in order,
//   - the user's distinct lines in the room, but for the periodic ones
//     that count (how many pending, sent and served), and with the name
//     left out of the mail lines (who asked first decides it),
//   - the final lists (pending, banned, mails, reply queue, mistakes).
// Both summaries are printed; the exit code is 0 when they match, 1 when
// they do not, 77 when the scenario needs what the stand-in cannot set up.
//
//   qv_win32_scenario.exe FILE.scn [--speed F (5)] [--settle S (20)]
//
// Both runs end S seconds after the last timed line (or where the file
// ends them, if sooner); the clocks run F times the wall clock.
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "app/frm_main.h"
#include "app/program.h"
#include "app/quorvex_app.h"
#include "client/mailbox.h"
#include "ports/scripted_prompter.h"
#include "settings/settings.h"
#include "sim/room_stage.h"
#include "sim/runner.h"
#include "sim/scenario.h"
#include "standin_process.h"
#include "win32/win32_host.h"
#include "win32/win32_machine.h"
#include "win32/win32_profile_file.h"
#include "win32/win32_registry.h"
#include "win32/win32_window_api.h"

namespace quorvex {
namespace {

using nlohmann::json;

constexpr int kUnsupported = 77;

// The user's periodic lines carry counts that depend on how many rounds
// came before the end.
bool Periodic(const std::string& text) {
  return text.find(" pending; ") != std::string::npos ||
         text.find("quorvex serving ") != std::string::npos;
}

// A mail line names the first of the people the forward went to, and who
// asked before a mail was taken is a matter of timing (two requests for
// one mail go out together when the second came before the first was
// taken): the name before " mail <U>" is left out. What each person got
// is compared through the mailboxes.
std::string Ungrouped(const std::string& text) {
  const std::size_t mail = text.find(" mail <U>");
  if (mail == std::string::npos) return text;
  std::size_t name = mail;
  while (name > 0 &&
         std::isalnum(static_cast<unsigned char>(text[name - 1])) != 0)
    --name;
  return text.substr(0, name) + "*" + text.substr(mail);
}

struct Summary {
  json mailboxes = json::object();  // name -> sorted subjects
  json prompts = json::array();     // "title|prompt|answer"
  std::set<std::string> user_lines;
  json lists = json::object();

  json ToJson() const {
    return {{"mailboxes", mailboxes},
            {"prompts", prompts},
            {"user_lines", user_lines},
            {"lists", lists}};
  }
};

const char* kLists[] = {"lstPending", "lstBanned", "lstMails", "ReplyQueue",
                        "MistakeList"};

void AddMailbox(Summary& s, const std::string& name, const json& box) {
  std::vector<std::string> subjects;
  for (const auto& m : box) subjects.push_back(m["subject"]);
  std::sort(subjects.begin(), subjects.end());
  s.mailboxes[name] = subjects;
}

std::string PromptKey(const std::string& title, const std::string& prompt,
                      const std::string& answer) {
  return title + "|" + prompt + "|" + answer;
}

// The simulator's run, read back from its transcript.
Summary SimulatorSummary(const sim::Scenario& sc) {
  std::stringstream out;
  sim::RunScenario(sc, {}, out);
  Summary s;
  for (std::string line; std::getline(out, line);) {
    const json ev = json::parse(line);
    if (ev["ev"] == "prompt") {
      s.prompts.push_back(PromptKey(ev["title"], ev["prompt"],
                                    ev.value("answer", std::string())));
    } else if (ev["ev"] == "chat" && ev["sn"] == sc.user &&
               !Periodic(ev["text"])) {
      s.user_lines.insert(Ungrouped(ev["text"].get<std::string>()));
    } else if (ev["ev"] == "final") {
      for (const auto& [name, box] : ev["mailboxes"].items())
        if (!box.empty()) AddMailbox(s, name, box);
      for (const char* l : kLists)
        if (ev["lists"].contains(l))
          s.lists[l] = ev["lists"][l];
        else if (ev.contains(l))
          s.lists[l] = ev[l];
    }
  }
  return s;
}

// The lists as the program holds them now.
json ProgramLists(QuorvexApp& app) {
  json lists = json::object();
  for (const ListBox* l : app.OpenLists()) lists[l->name()] = l->Items();
  lists["ReplyQueue"] = app.frm().ReplyQueue.Items();
  lists["MistakeList"] = app.frm().MistakeList.Items();
  json kept = json::object();
  for (const char* l : kLists)
    if (lists.contains(l)) kept[l] = lists[l];
  return kept;
}

// What the scenario sets up that the stand-in cannot (yet); "" if none.
std::string Unsupported(const sim::Scenario& sc) {
  if (!sc.ini.empty()) return "profile files";
  if (sc.signed_off) return "a client signed off at the start";
  if (!sc.full_rooms.empty()) return "full rooms";
  if (sc.lost_clicks > 0 || sc.registry_write_faults > 0 ||
      sc.profile_write_faults > 0 || sc.disk_full_faults > 0 ||
      sc.vanish_faults > 0)
    return "faults";
  for (const auto& [name, value] : sc.knobs)
    if (name == "lost_click_chance")
      return "lost clicks (the client's dice fall otherwise)";
  for (const sim::TimedLine& line : sc.timeline)
    if (line.verb == "start" || line.verb == "signoff")
      return "the timed line '" + line.verb + "'";
  return "";
}

std::string Join(const std::vector<std::string>& names) {
  std::string out;
  for (const std::string& n : names) out += (out.empty() ? "" : ",") + n;
  return out;
}

int Run(const std::string& path, double speed, double settle) {
  sim::Scenario sc = sim::LoadScenario(path, sim::Controls());
  // Both runs end `settle` seconds after the last timed line, when the
  // scenario runs longer: the rest is the periodic lines, left out anyway.
  double last = 0;
  for (const sim::TimedLine& line : sc.timeline) last = std::max(last, line.at);
  sc.run_until = std::min(sc.run_until, last + settle);
  if (const std::string why = Unsupported(sc); !why.empty()) {
    std::printf("unsupported: %s\n", why.c_str());
    return kUnsupported;
  }
  const Summary expected = SimulatorSummary(sc);

  // The stand-in's own mails are replaced by the scenario's.
  test::StandInProcess standin(
      "--user \"" + sc.user + "\" --room \"" + sc.room +
          "\" --mails 0 --speed " + std::to_string(speed) +
          (sc.people.empty() ? "" : " --people \"" + Join(sc.people) + "\""),
      sc.run_until / speed + 60);
  if (!standin.running()) {
    std::printf("the stand-in client did not start\n");
    return 1;
  }
  standin.Command("knob latency " + std::to_string(sc.latency_ms / 1000.0));
  for (const std::string& m : sc.mails) standin.Command("mail " + m);
  for (const std::string& n : sc.full_mailboxes) standin.Command("full " + n);
  for (int n : sc.dead_mails) standin.Command("dead " + std::to_string(n));
  standin.Command("knob signon_failures " + std::to_string(sc.signon_failures));
  for (const auto& [name, value] : sc.knobs)
    standin.Command("knob " + name + " " + value);

  win32::Win32Host host(speed);
  win32::Win32WindowApi api;
  // A registry key of the runner's own, so that a user's settings stay.
  win32::Win32Registry registry("Software\\Quorvex Scenario Runner");
  registry.DeleteApp(kApp);
  sim::StageRegistry(sc, registry);
  win32::Win32ProfileFile profiles;
  win32::Win32Machine machine;
  // The queue a run leaves at its end would be the next run's start.
  const std::string queue_file = machine.AppPath() + "\\Quorvex.INI";
  ::DeleteFileA(queue_file.c_str());
  // Nothing may restart this machine.
  machine.SetExitWindows([](unsigned) { return false; });
  ScriptedPrompter prompter;
  Summary actual;
  prompter.SetObserver([&actual](const PromptRecord& r) {
    actual.prompts.push_back(PromptKey(r.title, r.prompt, r.answer));
  });

  // As in the simulator: the mailbox's titles stand in the mail list from
  // the start, as if read.
  bool first_app = true;
  auto watch_app = [&](QuorvexApp& app) {
    if (!std::exchange(first_app, false)) return;
    FrmMain& frm = app.frm();
    for (std::size_t i = 0; i < sc.mails.size(); ++i) {
      if (IsForeignListTitle(sc.mails[i])) continue;
      frm.lstMails.Add(sc.mails[i]);
      frm.mail_positions.push_back(static_cast<int>(i));
    }
    frm.lblMails.Set("mails: " + std::to_string(frm.lstMails.Count()));
  };
  QuorvexProgram program(
      Ports{host, api, registry, profiles, prompter, machine, sc.seed},
      {watch_app, nullptr, nullptr});

  json state;
  program.Run(false, [&] {
    const double t0 = host.Clock();
    for (const sim::TimedLine& line : sc.timeline) {
      host.Schedule(line.at, [&, line] {
        if (line.verb == "say") {
          standin.Command("say " + line.name + "|" + line.text);
        } else if (line.verb == "join" || line.verb == "leave") {
          standin.Command(line.verb + " " + line.name);
        } else if (line.verb == "answer") {
          prompter.QueueAnswer(line.text);
        } else if (line.verb == "press") {
          program.app().Press(line.name, line.index);
        } else if (line.verb == "select") {
          program.app().Select(line.name, line.index);
        } else if (line.verb == "set") {
          program.app().Set(line.name, line.text);
        }
      });
    }
    const double end = t0 + sc.run_until;
    while (host.Clock() < end && !program.app().ended())
      host.DoEvents(std::min(end, host.Clock() + 0.1));
    state = standin.State();
    actual.lists = ProgramLists(program.app());
    program.app().End();
  });

  for (const auto& [name, box] : state["mailboxes"].items())
    if (!box.empty()) AddMailbox(actual, name, box);
  const std::string prefix = sc.user + ":\t";
  for (const auto& line : state["heard"]) {
    const std::string text = line;
    if (text.rfind(prefix, 0) == 0 && !Periodic(text.substr(prefix.size())))
      actual.user_lines.insert(Ungrouped(text.substr(prefix.size())));
  }
  registry.DeleteApp(kApp);
  ::DeleteFileA(queue_file.c_str());

  const json want = expected.ToJson(), got = actual.ToJson();
  std::printf("simulator: %s\nbinding:   %s\n", want.dump().c_str(),
              got.dump().c_str());
  for (const auto& [key, value] : want.items())
    if (got[key] != value)
      std::printf("differs: %s\n  simulator %s\n  binding   %s\n", key.c_str(),
                  value.dump().c_str(), got[key].dump().c_str());
  return want == got ? 0 : 1;
}

}  // namespace
}  // namespace quorvex

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: qv_win32_scenario FILE.scn [--speed F]\n");
    return 2;
  }
  double speed = 5, settle = 20;
  for (int i = 2; i + 1 < argc; ++i) {
    if (std::string(argv[i]) == "--speed") speed = std::stod(argv[i + 1]);
    if (std::string(argv[i]) == "--settle") settle = std::stod(argv[i + 1]);
  }
  // The build passes host paths; under Wine the host's root is drive Z:.
  std::string path = argv[1];
  if (!path.empty() && path[0] == '/') path = "Z:" + path;
  try {
    return quorvex::Run(path, speed, settle);
  } catch (const std::exception& e) {
    std::printf("error: %s\n", e.what());
    return 1;
  }
}
