// The stand-in client: a test program that shows the simulated client as
// real windows of its own process, for the Win32 binding to operate from
// another process.
//
//   qv_standin.exe [--user NAME] [--room ROOM] [--mails N] [--people A,B]
//                  [--speed F (the client's clock F times the wall clock)]
//
// A hidden window of class "QuorvexStandInControl" takes commands as
// WM_COPYDATA texts (UTF-8), one per message:
//   say NAME|TEXT   join NAME   leave NAME   signoff   start (the client's
//   program is run)   full NAME (a full mailbox)   mail TITLE
//   knob NAME VALUE (SimKnobs)   refuse ROOM|TIMES   capacity ROOM|N
//   dump PATH (the room's display and every line it showed, the mailboxes
//   and the open windows as JSON)   quit
#include <windows.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "mirror.h"
#include "sim/sim_client.h"
#include "sim/sim_knobs.h"
#include "sim/sim_world.h"
#include "win32/win32_host.h"

namespace quorvex::standin {
namespace {

// Every line the room showed, in order: the program may empty the
// display itself as it reads it.
struct Heard : SimObserver {
  void OnChat(const std::string& sn, const std::string& text) override {
    lines.push_back(sn + ":\t" + text);
  }
  std::vector<std::string> lines;
};

struct App {
  explicit App(double speed) : host(speed) { sim.SetObserver(&heard); }
  win32::Win32Host host;
  SimWorld world;
  SimClient sim{host, world, 7};
  Heard heard;
  Mirror* mirror = nullptr;
};
App* g_app = nullptr;

void Dump(const std::string& path) {
  nlohmann::json j;
  j["signed_on"] = g_app->sim.signed_on();
  j["ims_on"] = g_app->sim.ims_on();
  j["room"] = g_app->sim.current_room();
  j["lines"] = nlohmann::json::array();
  for (const auto& line : g_app->sim.DisplayLines()) j["lines"].push_back(line);
  j["heard"] = g_app->heard.lines;
  // Captions of the client's windows: top-level ones and documents.
  j["windows"] = nlohmann::json::array();
  const WindowTree& tree = g_app->sim.tree();
  for (Hwnd top : tree.Children(0)) {
    const SimWindow* w = tree.Get(top);
    j["windows"].push_back(w->class_name + ":" + w->text);
    if (w->class_name != "AOL Frame25") continue;
    const Hwnd mdi = tree.Find(top, 0, "MDIClient", nullptr);
    for (Hwnd doc : tree.Children(mdi))
      j["windows"].push_back("AOL Child:" + tree.Get(doc)->text);
  }
  j["mailboxes"] = nlohmann::json::object();
  for (const auto& [name, mails] : g_app->sim.Mailboxes()) {
    auto& box = j["mailboxes"][name];
    box = nlohmann::json::array();
    for (const ReceivedMail& m : mails)
      box.push_back({{"from", m.from},
                     {"subject", m.subject},
                     {"body", m.body},
                     {"forward_of", m.forward_of}});
  }
  std::ofstream tmp(path + ".tmp", std::ios::binary);
  tmp << j.dump();
  tmp.close();
  ::MoveFileExA((path + ".tmp").c_str(), path.c_str(),
                MOVEFILE_REPLACE_EXISTING);
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
  } else if (verb == "start") {
    sim.Start();
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
  } else if (verb == "mail") {
    sim.AddMail(arg);
  } else if (verb == "dump") {
    Dump(arg);
  } else if (verb == "quit") {
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
      if (g_app->mirror) g_app->mirror->Sync();
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

}  // namespace
}  // namespace quorvex::standin

int main(int argc, char** argv) {
  using namespace quorvex::standin;
  std::string user = "Host", room = "Lobby", people;
  int mails = 5;
  double speed = 1;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string k = argv[i], v = argv[i + 1];
    if (k == "--user") user = v;
    if (k == "--room") room = v;
    if (k == "--mails") mails = std::stoi(v);
    if (k == "--people") people = v;
    if (k == "--speed") speed = std::stod(v);
  }
  App app(speed);
  g_app = &app;
  app.sim.SetUserName(user);
  app.sim.SetRoomName(room);
  for (const std::string& p : Split(people)) app.sim.AddPerson(p);
  for (int i = 1; i <= mails; ++i) app.sim.AddMail("mail " + std::to_string(i));
  Mirror mirror(app.sim, app.host);
  app.mirror = &mirror;
  if (!mirror.memory_ok()) return 3;
  app.sim.Launch();
  mirror.Sync();

  WNDCLASSW wc{};
  wc.lpfnWndProc = ControlProc;
  wc.hInstance = ::GetModuleHandleW(nullptr);
  wc.lpszClassName = L"QuorvexStandInControl";
  ::RegisterClassW(&wc);
  // Created last: a test that finds it knows the client's windows exist.
  HWND control = ::CreateWindowExW(0, wc.lpszClassName, L"", 0, 0, 0, 0, 0,
                                   nullptr, nullptr, wc.hInstance, nullptr);
  if (!control) return 4;
  // Keep the real windows in line with the client as it changes by itself
  // (windows opening after a latency, people speaking).
  auto sync = app.host.CreateTimer([&] { mirror.Sync(); });
  sync->SetInterval(20);
  sync->SetEnabled(true);
  const int rc = app.host.Run();
  ::DestroyWindow(control);
  return rc;
}
