// The stand-in client: a test program that shows the simulated client as
// real windows of its own process, for the Win32 binding to operate from
// another process. It is built as AOL.exe in a folder of its own, the
// client's install folder that Win.INI names, so that the program's
// client restart closes it, starts it again and signs it on for real.
//
//   AOL.exe --launch [--user NAME] [--room ROOM] [--mails N] [--people A,B]
//           [--speed F]   a client set up by these options, running and
//                         signed on in its room (F: its clock F times the
//                         wall clock)
//   AOL.exe --staged [--speed F]
//                         the client a test staged in the state file
//                         (SimClient::SaveState of a client not launched)
//   AOL.exe               the client's program run again (by the program's
//                         restart, or by a test after a kill): the saved
//                         client comes up as just started, its "Sign On"
//                         window after the start time
//
// What outlives the process (the world, the mailbox, the faults still to
// come, the speed) is kept in the state file named by the environment's
// QV_STANDIN_STATE (default %TEMP%\qv_standin.state), saved whenever it
// changes (CBOR: the room's texts are bytes, not always UTF-8, and come
// back exactly); a client killed outright loses at most the last 20 ms.
// When the client's frame has closed, the process saves and ends, as the
// real client's does. Every line the room shows, every mail and instant
// message sent and every change of the session is appended to the state
// file's event log (the same name + ".events"), one JSON object a line
// with the wall clock's seconds ("w", QueryPerformanceCounter), across
// processes.
//
// A hidden window of class "QuorvexStandInControl" takes commands as
// WM_COPYDATA texts (UTF-8), one per message:
//   say NAME|TEXT   join NAME   leave NAME   signoff   full NAME (a full
//   mailbox)   mail TITLE   dead N (mail N is dead)   knob NAME VALUE
//   (SimKnobs)   refuse ROOM|TIMES   capacity ROOM|N   dump PATH (the
//   client as it stands now, as JSON, its incoming mailbox left out)   quit
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "mirror.h"
#include "sim/sim_client.h"
#include "sim/sim_knobs.h"
#include "sim/sim_world.h"
#include "win32/win32_host.h"

namespace quorvex::standin {
namespace {

using nlohmann::json;

double WallSeconds() {
  LARGE_INTEGER f, c;
  ::QueryPerformanceFrequency(&f);
  ::QueryPerformanceCounter(&c);
  return static_cast<double>(c.QuadPart) / static_cast<double>(f.QuadPart);
}

std::string StatePath() {
  char buf[MAX_PATH] = "";
  const DWORD n = ::GetEnvironmentVariableA("QV_STANDIN_STATE", buf, MAX_PATH);
  if (n > 0 && n < MAX_PATH) return buf;
  char dir[MAX_PATH] = "";
  ::GetTempPathA(MAX_PATH, dir);
  return std::string(dir) + "qv_standin.state";
}

// Written whole or not at all: a kill never leaves half a state.
void WriteWhole(const std::string& path, const std::string& text) {
  const std::string tmp = path + ".tmp";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    out << text;
    if (!out) return;
  }
  ::MoveFileExA(tmp.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING);
}

// The session's events, appended a line each as they happen.
class EventLog : public SimObserver {
 public:
  explicit EventLog(std::string path) : path_(std::move(path)) {}
  void OnChat(const std::string& sn, const std::string& text) override {
    Write({{"ev", "chat"}, {"sn", sn}, {"text", text}});
  }
  void OnMail(const std::string& from, const std::string& to,
              const std::string& subject, const std::string& body,
              bool send_now) override {
    Write({{"ev", "mail"},
           {"from", from},
           {"to", to},
           {"subject", subject},
           {"body", body},
           {"send", send_now ? "now" : "later"}});
  }
  void OnIm(const std::string& to, const std::string& text) override {
    Write({{"ev", "im"}, {"to", to}, {"text", text}});
  }
  void OnClient(const std::string& what) override {
    Write({{"ev", "client"}, {"what", what}});
  }
  // The stand-in itself failed: no client event, a fault of the test.
  void OnCrash(const std::string& what) {
    Write({{"ev", "standin-crash"}, {"what", what}});
  }

 private:
  void Write(json e) {
    e["w"] = WallSeconds();
    // One write a line, flushed at once: the next process appends after it.
    const std::string line =
        e.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
    if (FILE* f = std::fopen(path_.c_str(), "ab")) {
      std::fwrite(line.data(), 1, line.size(), f);
      std::fclose(f);
    }
  }
  std::string path_;
};

struct App {
  App(double speed, const std::string& state_path)
      : host(speed),
        speed(speed),
        state_path(state_path),
        log(state_path + ".events") {
    sim.SetObserver(&log);
  }
  win32::Win32Host host;
  double speed;
  std::string state_path;
  SimWorld world;
  SimClient sim{host, world, 7};
  EventLog log;
  Mirror* mirror = nullptr;
  HWND control = nullptr;
  std::string saved;  // the state as last written
  bool ending = false;

  // Saves the client's state when it changed since the last save. The
  // timer's saves (`routine`) leave the client twenty times as long as
  // the last save took: a client holding 50 000 mails takes a tenth of a
  // second to save, and a message the program sends meanwhile waits for
  // it (saved every 20 ms, such a client answered a mail title in 20 ms).
  // A command, a quit and the end save at once.
  void Save(bool routine = false) {
    const double start = WallSeconds();
    if (routine && start < next_routine_save) return;
    const std::vector<std::uint8_t> bytes =
        json::to_cbor(json{{"speed", speed}, {"client", sim.SaveState()}});
    const std::string now(bytes.begin(), bytes.end());
    if (now != saved) {
      WriteWhole(state_path, now);
      saved = now;
    }
    const double end = WallSeconds();
    next_routine_save = end + 20 * (end - start);
  }
  double next_routine_save = 0;
};
App* g_app = nullptr;

void Dump(const std::string& path) {
  json j;
  j["running"] = true;
  j["signed_on"] = g_app->sim.signed_on();
  j["ims_on"] = g_app->sim.ims_on();
  j["room"] = g_app->sim.current_room();
  j["lines"] = json::array();
  for (const auto& line : g_app->sim.DisplayLines()) j["lines"].push_back(line);
  // Captions of the client's windows: top-level ones and documents.
  j["windows"] = json::array();
  const WindowTree& tree = g_app->sim.tree();
  for (Hwnd top : tree.Children(0)) {
    const SimWindow* w = tree.Get(top);
    j["windows"].push_back(w->class_name + ":" + w->text);
    if (w->class_name != "AOL Frame25") continue;
    const Hwnd mdi = tree.Find(top, 0, "MDIClient", nullptr);
    for (Hwnd doc : tree.Children(mdi))
      j["windows"].push_back("AOL Child:" + tree.Get(doc)->text);
  }
  // Without the mailbox being served: the tests ask for what the client
  // sent and holds, and the test that serves 50 000 mails asks every few
  // seconds (writing and reading them took a second each time).
  j["client"] = g_app->sim.SaveState();
  j["client"].erase("incoming");
  WriteWhole(path, j.dump(-1, ' ', false, json::error_handler_t::replace));
}

void Command(const std::string& line) {
  const std::size_t sp = line.find(' ');
  const std::string verb = line.substr(0, sp);
  const std::string arg = sp == std::string::npos ? "" : line.substr(sp + 1);
  SimClient& sim = g_app->sim;
  if (verb == "say") {
    const std::size_t bar = arg.find('|');
    sim.Say(arg.substr(0, bar),
            bar == std::string::npos ? "" : arg.substr(bar + 1));
  } else if (verb == "join") {
    sim.Join(arg);
  } else if (verb == "leave") {
    sim.Leave(arg);
  } else if (verb == "signoff") {
    sim.SignOff();
  } else if (verb == "knob") {
    const std::size_t space = arg.find(' ');
    SetKnob(&sim.knobs(), arg.substr(0, space),
            space == std::string::npos ? "" : arg.substr(space + 1));
  } else if (verb == "refuse" || verb == "capacity") {
    const std::size_t bar = arg.find('|');
    const int n = bar == std::string::npos ? 0 : std::stoi(arg.substr(bar + 1));
    if (verb == "refuse")
      sim.RefuseRoom(arg.substr(0, bar), n);
    else
      sim.SetRoomCapacity(arg.substr(0, bar), n);
  } else if (verb == "full") {
    sim.SetFullMailbox(arg);
  } else if (verb == "dead") {
    sim.SetDeadMail(std::stoi(arg));
  } else if (verb == "mail") {
    sim.AddMail(arg);
  } else if (verb == "dump") {
    Dump(arg);
  } else if (verb == "quit") {
    g_app->Save();
    g_app->host.Quit();
  }
}

LRESULT CALLBACK ControlProc(HWND h, UINT msg, WPARAM w, LPARAM l) {
  if (msg == WM_COPYDATA && g_app) {
    const auto* cd = reinterpret_cast<const COPYDATASTRUCT*>(l);
    // Run after the sender is released: a command may open windows.
    std::string line(static_cast<const char*>(cd->lpData), cd->cbData);
    g_app->host.Schedule(0, [line] {
      Command(line);
      // A dump changes nothing to save (a save of 50 000 mails takes a
      // tenth of a second on a quiet machine).
      if (line.starts_with("dump ")) return;
      if (g_app->mirror) g_app->mirror->Sync();
      g_app->Save();
    });
    return 1;
  }
  return ::DefWindowProcW(h, msg, w, l);
}

std::vector<std::string> Split(const std::string& s) {
  std::vector<std::string> out;
  std::size_t pos = 0;
  while (pos <= s.size()) {
    std::size_t comma = s.find(',', pos);
    if (comma == std::string::npos) comma = s.size();
    if (comma > pos) out.push_back(s.substr(pos, comma - pos));
    pos = comma + 1;
  }
  return out;
}

json ReadState(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return json::from_cbor(ss.str(), true, false);
}

// The client's frame has closed (or never came): the process ends, as the
// real client's does. The control window goes first, so that a command
// sent from now on waits for the next process instead of being lost here.
void EndWhenClosed() {
  if (g_app->ending || g_app->sim.running() || g_app->sim.starting()) return;
  g_app->ending = true;
  ::DestroyWindow(g_app->control);
  g_app->control = nullptr;
  // Commands already taken run before the last save.
  g_app->host.DoEvents();
  g_app->Save();
  g_app->host.Quit();
}

}  // namespace
}  // namespace quorvex::standin

int main(int argc, char** argv) {
  using namespace quorvex::standin;
  enum class Mode { kRestart, kLaunch, kStaged } mode = Mode::kRestart;
  std::string user = "Host", room = "Lobby", people;
  int mails = 5;
  double speed = 0;
  for (int i = 1; i < argc; ++i) {
    const std::string k = argv[i];
    const std::string v = i + 1 < argc ? argv[i + 1] : "";
    if (k == "--launch") mode = Mode::kLaunch;
    if (k == "--staged") mode = Mode::kStaged;
    if (k == "--user") user = v, ++i;
    if (k == "--room") room = v, ++i;
    if (k == "--mails") mails = std::stoi(v), ++i;
    if (k == "--people") people = v, ++i;
    if (k == "--speed") speed = std::stod(v), ++i;
  }
  const std::string state_path = StatePath();
  json saved;
  if (mode != Mode::kLaunch) {
    saved = ReadState(state_path);
    if (!saved.is_object() || !saved.contains("client")) return 5;
    if (speed <= 0) speed = saved.value("speed", 1.0);
  }
  if (speed <= 0) speed = 1;
  App app(speed, state_path);
  g_app = &app;
  // A fault of the stand-in must not pass for a client that crashed: the
  // test reads this line and fails.
  std::set_terminate([] {
    std::string what = "terminated";
    try {
      if (std::current_exception())
        std::rethrow_exception(std::current_exception());
    } catch (const std::exception& e) {
      what = e.what();
    } catch (...) {
    }
    if (g_app) g_app->log.OnCrash(what);
    std::abort();
  });
  if (mode == Mode::kLaunch) {
    app.sim.SetUserName(user);
    app.sim.SetRoomName(room);
    for (const std::string& p : Split(people)) app.sim.AddPerson(p);
    for (int i = 1; i <= mails; ++i)
      app.sim.AddMail("mail " + std::to_string(i));
  } else {
    app.sim.RestoreState(saved["client"]);
  }
  Mirror mirror(app.sim, app.host);
  app.mirror = &mirror;
  if (!mirror.memory_ok()) return 3;
  if (mode == Mode::kRestart)
    app.sim.Start();
  else
    app.sim.Launch();
  mirror.Sync();
  app.Save();

  WNDCLASSW wc{};
  wc.lpfnWndProc = ControlProc;
  wc.hInstance = ::GetModuleHandleW(nullptr);
  wc.lpszClassName = L"QuorvexStandInControl";
  ::RegisterClassW(&wc);
  // Created last: a test that finds it knows the client's windows exist.
  app.control = ::CreateWindowExW(0, wc.lpszClassName, L"", 0, 0, 0, 0, 0,
                                  nullptr, nullptr, wc.hInstance, nullptr);
  if (!app.control) return 4;
  // Keep the real windows in line with the client as it changes by itself
  // (windows opening after a latency, people speaking), and the state
  // file with the client.
  auto sync = app.host.CreateTimer([&] {
    mirror.Sync();
    app.Save(/*routine=*/true);
    EndWhenClosed();
  });
  sync->SetInterval(20);
  sync->SetEnabled(true);
  const int rc = app.host.Run();
  if (app.control) ::DestroyWindow(app.control);
  return rc;
}
