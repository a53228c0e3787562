#include "scenario/runner.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "app/program.h"
#include "app/quorvex_app.h"
#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "ports/scripted_prompter.h"
#include "ports/virtual_host.h"
#include "scenario/interrupt.h"
#include "scenario/program_events.h"
#include "scenario/room_stage.h"
#include "server/machine_restart.h"
#include "server/serve_engine.h"
#include "sim/faulty_ports.h"
#include "sim/file_registry.h"
#include "sim/folder_machine.h"
#include "sim/ini_profile_file.h"
#include "sim/sim_client.h"
#include "sim/sim_observer.h"
#include "sim/sim_world.h"

namespace quorvex::scenario {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace {

// A folder removed when the run ends, unless the user named it.
class RootFolder {
 public:
  explicit RootFolder(const std::string& root) {
    if (!root.empty()) {
      path_ = root;
      fs::create_directories(path_);
      return;
    }
    std::random_device rd;
    for (int i = 0; i < 100; ++i) {
      fs::path p = fs::temp_directory_path() /
                   ("quorvex-sim-" + std::to_string(rd()) + std::to_string(i));
      if (fs::create_directory(p)) {
        path_ = p;
        temporary_ = true;
        return;
      }
    }
    throw std::runtime_error("cannot make a temporary folder");
  }
  ~RootFolder() {
    std::error_code ec;
    if (temporary_) fs::remove_all(path_, ec);
  }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
  bool temporary_ = false;
};

ordered_json FinalState(QuorvexApp& app, const Registry& registry,
                        const ProfileFile& profiles,
                        const FolderMachine& machine, const SimClient& client) {
  ordered_json state = ProgramFinalState(app, registry, profiles, machine);
  AddClientMail(state, client.Mailboxes(), client.Waiting());
  // The client's mail preferences as saved: what the program set, or left.
  ordered_json preferences = ordered_json::object();
  for (const auto& [label, checked] : client.MailPreferences())
    preferences[label] = checked;
  state["preferences"] = preferences;
  return state;
}

// Thrown from a timed "start" line to start the ended program again.
struct UserStartsProgram {};

// Thrown from the press that ends the program (lblExit), once its exit is
// done: whatever tick or wait it was pressed in ends there, as the desktop
// program's process ends where it stands; nothing more is typed or sent.
struct ProgramExited {};

// The installed program's file: enough bytes for the restart copy to show
// its progress.
void WriteProgramFile(const FolderMachine& machine) {
  const fs::path file = machine.HostPath(ProgramPath(machine));
  if (fs::exists(file)) return;
  fs::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  const std::string block(FolderMachine::kCopyChunk, 'q');
  for (int i = 0; i < 3; ++i) out << block;
}

}  // namespace

ControlCatalogue Controls() {
  ControlCatalogue c;
  c.pressable = &QuorvexApp::CanPress;
  c.selectable = &QuorvexApp::CanSelect;
  c.settable = &QuorvexApp::CanSet;
  return c;
}

int RunScenario(const Scenario& sc, const RunOptions& options,
                std::ostream& out) {
  RootFolder root(options.root);
  CivilTime start{sc.year, sc.month, sc.day, sc.hour, sc.minute, sc.second, 0};
  VirtualHost host(start);
  Transcript transcript(
      out, options.format, [&host] { return host.Elapsed(); },
      [&host] { return host.Clock(); });
  // Whenever time moves: a signal ends the run here, and a real-time run
  // waits for the wall clock.
  const bool realtime = options.realtime;
  const auto wall0 = std::chrono::steady_clock::now();
  host.SetPacer([realtime, wall0](double, double to) {
    ThrowIfInterrupted();
    if (realtime)
      std::this_thread::sleep_until(
          wall0 + std::chrono::microseconds(static_cast<long long>(to * 1e6)));
  });

  FileRegistry registry(root.path() / "registry.json");
  IniProfileFile profiles;
  FolderMachine machine(root.path());
  ScriptedPrompter prompter;
  SimWorld world;
  SimClient client(host, world, sc.seed);
  TranscriptObserver observer(transcript);
  // The program's own doors to its files go through ports that fail when
  // the scenario asks for faults; the set-up and the final state use the
  // files themselves.
  FaultDice dice(
      {sc.registry_write_faults, sc.profile_write_faults, sc.disk_full_faults,
       sc.vanish_faults},
      sc.seed ^ 0x5eedfa17ULL,
      [&transcript](const std::string& kind, const std::string& what) {
        transcript.Write("fault", {{"kind", kind}, {"what", what}});
      });
  FaultyRegistry app_registry(registry, dice);
  FaultyProfileFile app_profiles(profiles, dice);
  FaultyMachine app_machine(machine, dice);

  // Set-up: stored values first, then the client as it stands at time 0.
  // A signal ends the run between the steps as it does once time runs.
  ThrowIfInterrupted();
  StageRegistry(sc, registry);
  // Each profile file written once, its lines in order.
  std::map<std::string, std::vector<ProfileEntry>> ini_lines;
  for (const SetupValue& v : sc.ini)
    ini_lines[v.file].push_back({v.section, v.key, v.value});
  for (const auto& [file, entries] : ini_lines) {
    ThrowIfInterrupted();
    profiles.WriteEntries(machine.HostPath(ProfilePath(machine, file)),
                          entries);
  }
  InstallClient(machine, profiles, sc);
  ThrowIfInterrupted();
  StageClient(sc, client);
  ThrowIfInterrupted();
  client.knobs().lost_click_chance = sc.lost_clicks;
  for (const auto& [name, value] : sc.knobs)
    SetKnob(&client.knobs(), name, value);
  client.Launch();
  client.SetObserver(&observer);

  WatchPrompts(prompter, transcript);

  // Every program made (one more after each machine restart) is watched
  // from before its main window loads.
  bool first_app = true;
  auto watch_app = [&](QuorvexApp& app) {
    WatchProgram(app, transcript);
    if (!std::exchange(first_app, false)) return;
    FrmMain& frm = app.frm();
    // The mailbox's titles stand in lstMails from the start, as if read,
    // so that requests can be made before the server is started; starting
    // reads the mailbox again. As the start reads it: other servers' list
    // mails left out, and each title's place in the mailbox kept.
    for (std::size_t i = 0; i < sc.mails.size(); ++i)
      if (KeepsMailTitle(sc.mails[i], static_cast<int>(i), true,
                         &frm.lists.mail_positions))
        frm.lists.lstMails.Add(sc.mails[i]);
    frm.counts.lblMails.Set(kMailsCount(frm.lists.lstMails.Count()));
  };
  auto machine_event = [&transcript](const std::string& what) {
    transcript.Write("machine", {{"what", what}});
  };
  // A program started by Windows runs from its own file.
  auto become = [&machine](const std::string& path) {
    const size_t slash = path.find_last_of('\\');
    std::string name = path.substr(slash + 1);
    if (EqualsIgnoreCase(name.substr(name.size() >= 4 ? name.size() - 4 : 0),
                         ".exe"))
      name.resize(name.size() - 4);
    machine.SetAppPath(slash == std::string::npos ? "" : path.substr(0, slash));
    machine.SetExeName(name);
  };
  QuorvexProgram program(Ports{host, client, app_registry, app_profiles,
                               prompter, app_machine, sc.seed},
                         {watch_app, machine_event, become});

  // The machine: the client's program starts the simulated client; any
  // other program is started by the boot loop below, once the program
  // that asked for it has ended.
  machine.SetRunProgramHook([&](std::string_view path) {
    machine_event("starts " + std::string(path));
    std::string lower = LCase(path);
    auto ends_with = [&lower](std::string_view tail) {
      return lower.size() >= tail.size() &&
             lower.compare(lower.size() - tail.size(), tail.size(), tail) == 0;
    };
    if (ends_with("\\aol.exe") || ends_with("\\waol.exe")) {
      client.Start();
    } else {
      program.ProgramStarted(std::string(path));
    }
  });
  machine.SetRebootHook([] { throw MachineRebooted{}; });
  // The installed program's file, for the restart copy to copy.
  WriteProgramFile(machine);

  // Timed lines run from the message loop at their time, as a person's
  // actions do: inside whatever wait the program is in.
  for (const TimedLine& line : sc.timeline) {
    host.ScheduleAt(line.at, [&, line] {
      switch (line.verb) {
        case Verb::kSay:
          client.Say(line.name, line.text);
          break;
        case Verb::kJoin:
          client.Join(line.name);
          break;
        case Verb::kLeave:
          client.Leave(line.name);
          break;
        case Verb::kSignoff:
          client.SignOff();
          break;
        case Verb::kKill:
          client.Crash();
          break;
        case Verb::kAnswer:
        case Verb::kPress:
        case Verb::kSelect:
        case Verb::kSet:
          if (RunUserLine(line, program.app(), prompter)) throw ProgramExited{};
          break;
        case Verb::kStart:
          // The user starts the program again once it has ended: the run
          // unwinds to the loop below, which starts it on the same files.
          if (program.app().ended()) throw UserStartsProgram{};
          break;
      }
    });
  }

  host.SetEnd(sc.run_until);
  try {
    // Time 0 is the main window's load: the splash's second is not run,
    // nor when the user starts the program again.
    // The room goes on after the program has exited, until the user
    // starts it again or the run ends.
    auto run_on = [&host, &sc] {
      for (;;) {
        try {
          host.RunUntil(sc.run_until);
          return;
        } catch (const ProgramExited&) {
        }
      }
    };
    for (bool again = true; again;) {
      again = false;
      try {
        try {
          program.Run(false, run_on);
        } catch (const ProgramExited&) {
          run_on();  // it exited while it was starting
        }
      } catch (const UserStartsProgram&) {
        again = true;
      }
    }
  } catch (const RunEnded&) {
    // The power went off: the state stands as it is.
  }
  if (options.on_lost_log_lines && program.LostLogLines() > 0)
    options.on_lost_log_lines(program.LostLogLines());
  ordered_json final_state =
      FinalState(program.app(), registry, profiles, machine, client);
  if (options.on_final) options.on_final(final_state);
  ThrowIfInterrupted();
  transcript.Write("final", final_state);
  return transcript.events();
}

}  // namespace quorvex::scenario
