#include "binding_run.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "app/frm_main.h"
#include "app/job_log.h"
#include "app/program.h"
#include "app/quorvex_app.h"
#include "client/mailbox.h"
#include "line_clock.h"
#include "model/text_util.h"
#include "ports/scripted_prompter.h"
#include "ports/virtual_host.h"
#include "scenario/program_events.h"
#include "scenario/room_stage.h"
#include "scenario/transcript.h"
#include "settings/settings.h"
#include "sim/faulty_ports.h"
#include "sim/sim_client.h"
#include "sim/sim_knobs.h"
#include "standin_process.h"
#include "win32/code_page.h"
#include "win32/win32_host.h"
#include "win32/win32_machine.h"
#include "win32/win32_profile_file.h"
#include "win32/win32_registry.h"
#include "win32/win32_window_api.h"
#include "windows_folder.h"

namespace quorvex::test {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

// A registry key of the runs' own, so that a user's settings stay.
constexpr const char* kRegistryRoot = "Software\\Quorvex Scenario Runner";

bool EndsWithIgnoreCase(std::string_view text, std::string_view tail) {
  return text.size() >= tail.size() &&
         EqualsIgnoreCase(text.substr(text.size() - tail.size()), tail);
}

// The machine of a run: real files and the client's real program. Another
// program the machine starts (the restart copy, the installed program) is
// this program at that path, started again in this process once the
// running one has ended, as quorvex-sim does; a reboot ends the client's
// program, as Windows ends every program, and unwinds the running one.
class BindingMachine : public Machine {
 public:
  BindingMachine(win32::Win32Machine& real, StandInProcess& client)
      : real_(real), client_(client) {}

  std::function<void(const std::string&)> on_start;  // a started program
  std::function<void(const std::string&)> on_other;  // not the client's

  // The running program is the one at this Windows path.
  void Become(const std::string& path) {
    const std::size_t slash = path.find_last_of('\\');
    app_path_ = slash == std::string::npos ? "" : path.substr(0, slash);
    std::string name = path.substr(slash + 1);
    if (EndsWithIgnoreCase(name, ".exe")) name.resize(name.size() - 4);
    exe_name_ = name;
    became_ = true;
  }

  std::string AppPath() const override {
    return became_ ? app_path_ : real_.AppPath();
  }
  std::string ExeName() const override {
    return became_ ? exe_name_ : real_.ExeName();
  }
  std::string WindowsDirectory() const override {
    return real_.WindowsDirectory();
  }
  std::string HostPath(std::string_view p) const override {
    return real_.HostPath(p);
  }
  bool FileExists(std::string_view p) const override {
    return real_.FileExists(p);
  }
  void RemoveFile(std::string_view p) override { real_.RemoveFile(p); }
  std::int64_t FileLength(std::string_view p) const override {
    return real_.FileLength(p);
  }
  bool CopyFileBytes(std::string_view from, std::string_view to,
                     const std::function<void(std::int64_t, std::int64_t)>&
                         progress) override {
    return real_.CopyFileBytes(from, to, progress);
  }
  bool AppendToFile(std::string_view p, std::string_view text) override {
    return real_.AppendToFile(p, text);
  }
  bool MoveFileOver(std::string_view from, std::string_view to) override {
    return real_.MoveFileOver(from, to);
  }
  void RunProgram(std::string_view path) override {
    if (on_start) on_start(std::string(path));
    if (EndsWithIgnoreCase(path, "\\aol.exe") ||
        EndsWithIgnoreCase(path, "\\waol.exe"))
      real_.RunProgram(path);
    else if (on_other)
      on_other(std::string(path));
  }
  void Reboot() override {
    client_.Kill();
    throw MachineRebooted{};
  }

 private:
  win32::Win32Machine& real_;
  StandInProcess& client_;
  bool became_ = false;
  std::string app_path_, exe_name_;
};

// The client's event as a transcript line: "t", "ev", then its fields in
// the order quorvex-sim writes them.
ordered_json ClientEvent(const json& e) {
  ordered_json out{{"t", e.value("t", 0.0)}, {"ev", e.value("ev", "")}};
  for (const char* field :
       {"sn", "from", "to", "subject", "body", "send", "text", "what"})
    if (e.contains(field)) out[field] = e[field];
  return out;
}

}  // namespace

std::string RunThroughBinding(const scenario::Scenario& sc,
                              const BindingOptions& o) {
  WindowsFolder folder;
  // The client as the scenario sets it up, staged for the stand-in.
  VirtualHost staging_host;
  SimWorld staging_world;
  SimClient staged(staging_host, staging_world, sc.seed);
  scenario::StageClient(sc, staged);
  staged.knobs().lost_click_chance = sc.lost_clicks;
  for (const auto& [name, value] : sc.knobs)
    SetKnob(&staged.knobs(), name, value);

  win32::Win32Host host(o.speed);
  if (o.watch > 0) host.WakeOnWindowChanges(o.watch);
  win32::Win32WindowApi api;
  win32::Win32Registry registry(kRegistryRoot);
  registry.DeleteApp(kApp);
  scenario::StageRegistry(sc, registry);
  win32::Win32ProfileFile profiles;
  win32::Win32Machine real_machine;

  // The machine's files as the scenario has them: none of the program's,
  // the scenario's profile values, and the client installed where
  // Win.INI says unless the scenario says where.
  for (const char* file :
       {"C:\\Windows\\RestartSettings.INI", "C:\\Windows\\z.exe"})
    ::DeleteFileA(file);
  ::DeleteFileA(WindowsFolder::QueueFile().c_str());
  // The files the run starts without are written whole, as they stand
  // on the disk: Wine's profile writer garbles a value of 100 KB, which
  // a damaged file may hold. Win.INI's values go through it.
  bool names_client = false;
  // path: section: its lines
  std::map<std::string, std::map<std::string, std::string>> whole;
  for (const scenario::SetupValue& v : sc.ini) {
    const std::string path = scenario::ProfilePath(real_machine, v.file);
    if (v.file == "Win.INI") {
      profiles.WriteString(path, v.section, v.key, v.value);
      names_client |= EqualsIgnoreCase(v.section, "WAOL");
    } else {
      whole[path][v.section] += v.key + "=" + v.value + "\r\n";
    }
  }
  for (const auto& [path, sections] : whole) {
    std::string text;
    for (const auto& [section, lines] : sections)
      text += "[" + section + "]\r\n" + lines;
    std::ofstream(path, std::ios::binary) << win32::Utf8ToCp1252(text);
  }
  if (!names_client)
    profiles.WriteString(scenario::ProfilePath(real_machine, "Win.INI"), "WAOL",
                         "AppPath", StandInProcess::InstallFolder());

  std::ostringstream program_out;
  double t0 = host.Clock();
  // A timed line runs when the message loop comes to it, a little after
  // its time; what it does is written at its time, as the simulator
  // writes it (the soak's accounting matches a clear or a start to the
  // line's moment), and what the program does meanwhile in the order it
  // happened (line_clock.h).
  LineClock lines;
  // How often the status strip has shown each text; the anchored lines
  // waiting for it, by their place in the timeline (each says whether it
  // is now on its way).
  std::map<std::string, int> shown;
  std::map<std::size_t, std::function<bool()>> waiting;
  // A start of the program loads its settings and queue and greets the
  // room before anything else, in no time in the simulator: what it
  // writes until it comes to its message loop is written at the start's
  // moment (or for a minute of its clock at the most).
  double frozen_at = -1, frozen_until = 0;
  scenario::Transcript transcript(
      program_out, scenario::TranscriptFormat::kJsonl,
      [&] {
        if (frozen_at >= 0 && host.Clock() < frozen_until) return frozen_at;
        return lines.At(host.Clock() - t0);
      },
      [&] { return host.Timer(); });
  FaultDice dice({sc.registry_write_faults, sc.profile_write_faults,
                  sc.disk_full_faults, sc.vanish_faults},
                 sc.seed ^ 0x5eedfa17ULL,
                 [&transcript](const std::string& kind, const std::string& w) {
                   transcript.Write("fault", {{"kind", kind}, {"what", w}});
                 });
  FaultyRegistry app_registry(registry, dice);
  FaultyProfileFile app_profiles(profiles, dice);

  StandInProcess client(staged.SaveState(), o.speed,
                        sc.run_until / o.speed + 120);
  if (!client.running())
    throw std::runtime_error("the stand-in client did not start");
  BindingMachine machine(real_machine, client);
  FaultyMachine app_machine(machine, dice);

  ScriptedPrompter prompter;
  scenario::WatchPrompts(prompter, transcript);

  // As in the simulator: the mailbox's titles stand in the mail list from
  // the start, as if read.
  bool first_app = true;
  auto watch_app = [&](QuorvexApp& app) {
    scenario::WatchProgram(app, transcript);
    app.frm().controls.status.Subscribe([&](const StatusStrip& s) {
      client.Note("at " + std::to_string(host.Clock() - t0) +
                  " s the program's " + s.text());
      ++shown[s.text()];
      for (auto it = waiting.begin(); it != waiting.end();)
        it = it->second() ? waiting.erase(it) : std::next(it);
    });
    if (!std::exchange(first_app, false)) return;
    FrmMain& frm = app.frm();
    for (std::size_t i = 0; i < sc.mails.size(); ++i) {
      if (IsForeignListTitle(sc.mails[i])) continue;
      frm.lists.lstMails.Add(sc.mails[i]);
      frm.lists.mail_positions.push_back(static_cast<int>(i));
    }
    frm.counts.lblMails.Set("mails: " +
                            std::to_string(frm.lists.lstMails.Count()));
  };
  auto machine_event = [&transcript](const std::string& what) {
    transcript.Write("machine", {{"what", what}});
  };
  QuorvexProgram program(
      Ports{host, api, app_registry, app_profiles, prompter, app_machine,
            sc.seed},
      {watch_app, machine_event,
       [&machine](const std::string& path) { machine.Become(path); }});
  machine.on_start = [&machine_event](const std::string& path) {
    machine_event("starts " + path);
  };
  machine.on_other = [&program](const std::string& path) {
    program.ProgramStarted(path);
  };

  // The client's death, as the simulated client tells it.
  auto kill = [&] {
    const json before = client.State();
    if (!client.Kill()) return;
    if (before.value("signed_on", false))
      transcript.Write("client", {{"what", kClientSignsOff}});
    transcript.Write("client", {{"what", kClientCloses}});
  };

  // Timed lines run from the message loop at their time, as a person's
  // actions do: inside whatever wait the program is in. Time 0 is the
  // main window's load.
  // Thrown from a timed `start` line: the ended program is started again
  // at once, out of whatever wait it was ending in, as in the simulator.
  struct StartAgain {
    double at;
  };
  // Thrown from a timed press that ends the program: it stops there, out
  // of whatever it was doing, as the desktop program's process ends.
  struct ProgramExited {};
  t0 = host.Clock();
  const double w0 = StandInProcess::WallSeconds();
  auto run_line = [&](const scenario::TimedLine& line) {
    lines.Begin(line.at, host.Clock() - t0);
    struct Done {
      LineClock& lines;
      ~Done() { lines.End(); }
    } done{lines};
    using scenario::Verb;
    switch (line.verb) {
      case Verb::kSay:
        client.Command("say " + line.name + "|" + line.text);
        break;
      case Verb::kJoin:
        client.Command("join " + line.name);
        break;
      case Verb::kLeave:
        client.Command("leave " + line.name);
        break;
      case Verb::kSignoff:
        client.Command("signoff");
        break;
      case Verb::kKill:
        kill();
        break;
      case Verb::kAnswer:
      case Verb::kPress:
      case Verb::kSelect:
      case Verb::kSet:
        if (scenario::RunUserLine(line, program.app(), prompter))
          throw ProgramExited{};
        break;
      case Verb::kStart:
        // The user starts the program again once it has ended.
        if (program.app().ended()) throw StartAgain{line.at};
        break;
    }
  };
  // An anchored line runs as soon as the status strip comes where it
  // names, before its time or after it (a minute past it at the most).
  // The timeline keeps its order: a line whose time comes while an
  // anchored line before it has not run is held, and runs after it.
  std::set<std::size_t> unrun;  // anchored lines not run yet
  double latest_line = 0;       // of the others, in the program's clock
  std::map<std::size_t, scenario::TimedLine> held;
  std::function<void()> release = [&] {
    if (held.empty()) return;
    if (!unrun.empty() && *unrun.begin() < held.begin()->first) return;
    const scenario::TimedLine line = held.begin()->second;
    held.erase(held.begin());
    if (!held.empty()) host.Schedule(0, release);
    run_line(line);
  };
  auto run_anchored = [&](std::size_t i, const scenario::TimedLine& line) {
    if (!unrun.erase(i)) return;
    waiting.erase(i);
    host.Schedule(0, release);
    run_line(line);
  };
  for (std::size_t i = 0; i < sc.timeline.size(); ++i) {
    const scenario::TimedLine& line = sc.timeline[i];
    const auto anchor = o.anchors.find(i);
    if (anchor == o.anchors.end()) {
      lines.Schedule(line.at);
      host.Schedule(line.at, [&, i, line] {
        lines.Unschedule(line.at);
        latest_line = std::max(latest_line, host.Clock() - t0 - line.at);
        if (!unrun.empty() && *unrun.begin() < i)
          held[i] = line;
        else
          run_line(line);
      });
      continue;
    }
    unrun.insert(i);
    waiting[i] = [&, i, line, a = anchor->second] {
      if (shown[a.text] < a.count) return false;
      host.Schedule(0, [&, i, line] { run_anchored(i, line); });
      return true;
    };
    host.Schedule(line.at + 60, [&, i, line] { run_anchored(i, line); });
  }
  const double end = t0 + sc.run_until;
  double last_line = 0;
  for (const scenario::TimedLine& line : sc.timeline)
    last_line = std::max(last_line, line.at);

  // The transcript as it stands: the program's events and the client's,
  // in time order, then the final state (the program's, the client's
  // mailboxes and the mail it holds to send later).
  auto transcript_now = [&] {
    const json state = client.State();
    ordered_json final_state =
        scenario::ProgramFinalState(program.app(), registry, profiles, machine);
    // The stand-in's mail, read into the simulated client's own records.
    auto text = [](const json& m, const char* key) {
      return m[key].get<std::string>();
    };
    std::map<std::string, std::vector<ReceivedMail>> mailboxes;
    for (const auto& [sn, box] : state["mailboxes"].items()) {
      std::vector<ReceivedMail>& mails = mailboxes[sn];
      for (const json& m : box)
        mails.push_back(
            {text(m, "from"), text(m, "subject"), text(m, "body"), ""});
    }
    std::vector<SimClient::WaitingMail> held;
    for (const json& m : state["waiting"])
      held.push_back({text(m, "to"), text(m, "subject"), text(m, "body")});
    scenario::AddClientMail(final_state, mailboxes, held);
    std::vector<ordered_json> events;
    std::istringstream in(program_out.str());
    for (std::string line; std::getline(in, line);)
      if (!line.empty()) events.push_back(ordered_json::parse(line));
    for (const json& e : client.Events(w0, o.speed)) {
      if (e.value("ev", "") == "standin-crash")
        throw std::runtime_error("the stand-in client failed: " +
                                 e.value("what", ""));
      events.push_back(ClientEvent(e));
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const ordered_json& a, const ordered_json& b) {
                       return a["t"].get<double>() < b["t"].get<double>();
                     });
    ordered_json final_event{{"t", sc.run_until}, {"ev", "final"}};
    for (const auto& [k, v] : final_state.items()) final_event[k] = v;
    events.push_back(std::move(final_event));
    std::string out;
    for (const ordered_json& e : events) out += scenario::JsonDump(e) + "\n";
    return out;
  };

  // `run T` ends the run where the program stands, as the power going
  // off does: out of whatever wait it is in (a client restart waits
  // without end for a client that never comes). So does `done` once
  // every timed line has run.
  struct PowerOff {};
  // Commands for a client that is being started again go as soon as it
  // runs, whatever wait the program is in.
  double next_progress = 0, next_done = 0;
  auto pump = host.CreateTimer([&] {
    client.Pump();
    const double now = host.Clock();
    if (o.progress && now >= next_progress) {
      next_progress = now + 0.5 * o.speed;
      o.progress(now - t0, program.app().frm().controls.status.text());
    }
    if (o.done && now - t0 > last_line && now >= next_done) {
      // Asking the client for its state costs most with a big mailbox:
      // the next question waits four times as long as this one took.
      const bool done = o.done(transcript_now());
      next_done = host.Clock() + std::max(o.speed, 4 * (host.Clock() - now));
      if (done) throw PowerOff{};
    }
  });
  pump->SetInterval(50);
  pump->SetEnabled(true);
  host.Schedule(sc.run_until, [] { throw PowerOff{}; });
  try {
    // The room goes on after the program has exited, until the user
    // starts it again or the run ends.
    auto run_on = [&] {
      for (;;) {
        try {
          for (;;) host.DoEvents(end + 1);
        } catch (const ProgramExited&) {
        }
      }
    };
    for (bool again = true; again;) {
      again = false;
      try {
        try {
          program.Run(false, [&] {
            frozen_at = -1;
            run_on();
          });
        } catch (const ProgramExited&) {
          run_on();  // it exited while it was starting
        }
      } catch (const StartAgain& start) {
        again = true;
        // The start-up is written at the start's moment.
        frozen_at = start.at;
        frozen_until = host.Clock() + 60;
      }
    }
  } catch (const PowerOff&) {
  }
  pump->SetEnabled(false);
  if (o.latest_line) *o.latest_line = latest_line / o.speed;
  std::string out = transcript_now();
  if (o.keep) {
    const std::string folder = o.keep(out);
    if (!folder.empty()) {
      client.CopyFilesTo(folder);
      const std::string log = machine.AppPath() + "\\" + kLogName;
      ::CopyFileA(log.c_str(), (folder + "\\" + kLogName).c_str(), FALSE);
    }
  }
  program.app().End();
  registry.DeleteApp(kApp);
  return out;
}

}  // namespace quorvex::test
