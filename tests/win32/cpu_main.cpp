// qv_win32_cpu: what serving through the real binding costs the program,
// in CPU of its own process (GetProcessTimes), against the stand-in
// client at several window latencies. For each latency: the program
// starts serving, idles for a while (nobody talking), then people ask for
// mails one after another and each is forwarded. Printed per latency: the
// idle share of a core, CPU seconds per forwarded mail, and of those what
// the mail cost above idle serving (the chat is read all the while, and a
// slower mail takes longer). A benchmark: nothing is checked against a
// limit.
//
//   qv_win32_cpu [--latency MS]... (50, 400, 2000) [--mails N (6)]
//                [--idle S (30)] [--speed F (2)] [--watch S]...
//
// Each --watch S is one way of waiting (default: 0, then what quorvex.exe
// runs with): 0, waits poll the client every 10 ms; S > 0, they sleep
// until the client's windows change (Win32Host::WakeOnWindowChanges) and
// poll every S seconds for what changes without an event.
// S and the latencies are seconds of the program's clock, which runs F
// times the wall clock; the figures are per second of that clock, that is
// what they would be at the real pace.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "app/program.h"
#include "ports/ports.h"
#include "ports/scripted_prompter.h"
#include "settings/settings.h"
#include "standin_process.h"
#include "win32/win32_host.h"
#include "win32/win32_machine.h"
#include "win32/win32_profile_file.h"
#include "win32/win32_registry.h"
#include "win32/win32_window_api.h"
#include "windows_folder.h"

namespace {

using namespace quorvex;
using nlohmann::json;

double CpuSeconds() {
  FILETIME created, exited, kernel, user;
  if (!::GetProcessTimes(::GetCurrentProcess(), &created, &exited, &kernel,
                         &user))
    return 0;
  auto secs = [](const FILETIME& f) {
    return ((static_cast<unsigned long long>(f.dwHighDateTime) << 32) |
            f.dwLowDateTime) /
           1e7;
  };
  return secs(kernel) + secs(user);
}

int Forwards(const json& state) {
  int n = 0;
  for (const auto& [name, box] : state["mailboxes"].items())
    for (const json& m : box) n += !m["forward_of"].get<std::string>().empty();
  return n;
}

// The binding, counting its calls (a call into the client's windows is
// most of what a wait costs).
class CountingApi : public win32::Win32WindowApi {
 public:
  long long calls = 0;
  Hwnd FindWindowA(const char* c, const char* t) override {
    ++calls;
    return Win32WindowApi::FindWindowA(c, t);
  }
  Hwnd FindWindowExA(Hwnd p, Hwnd a, const char* c, const char* t) override {
    ++calls;
    return Win32WindowApi::FindWindowExA(p, a, c, t);
  }
  Hwnd GetWindow(Hwnd h, unsigned cmd) override {
    ++calls;
    return Win32WindowApi::GetWindow(h, cmd);
  }
  std::string GetClassNameA(Hwnd h, int n) override {
    ++calls;
    return Win32WindowApi::GetClassNameA(h, n);
  }
  int GetWindowTextLengthA(Hwnd h) override {
    ++calls;
    return Win32WindowApi::GetWindowTextLengthA(h);
  }
  std::string GetWindowTextA(Hwnd h, int n) override {
    ++calls;
    return Win32WindowApi::GetWindowTextA(h, n);
  }
  bool IsWindow(Hwnd h) override {
    ++calls;
    return Win32WindowApi::IsWindow(h);
  }
  bool IsWindowVisible(Hwnd h) override {
    ++calls;
    return Win32WindowApi::IsWindowVisible(h);
  }
  std::intptr_t SendMessageA(Hwnd h, unsigned m, std::uintptr_t w,
                             std::intptr_t l) override {
    ++calls;
    return Win32WindowApi::SendMessageA(h, m, w, l);
  }
  std::intptr_t SendMessageGetText(Hwnd h, unsigned m, std::uintptr_t w,
                                   std::string* out, std::size_t n) override {
    ++calls;
    return Win32WindowApi::SendMessageGetText(h, m, w, out, n);
  }
  std::intptr_t SendMessageSetText(Hwnd h, unsigned m, std::uintptr_t w,
                                   std::string_view text) override {
    ++calls;
    return Win32WindowApi::SendMessageSetText(h, m, w, text);
  }
  bool PostMessageA(Hwnd h, unsigned m, std::uintptr_t w,
                    std::intptr_t l) override {
    ++calls;
    return Win32WindowApi::PostMessageA(h, m, w, l);
  }
};

struct Figures {
  double idle_share = 0;  // of a core, while serving with nobody talking
  double per_mail = 0;    // CPU seconds per forwarded mail
  double mail_clock = 0;  // seconds of the program's clock per mail
  double idle_calls = 0;  // calls into the client's windows per second
  double mail_calls = 0;  // the same per forwarded mail
  int mails = 0;
};

Figures Measure(int latency_ms, int mails, double idle, double speed,
                double watch) {
  test::WindowsFolder folder;
  win32::Win32Registry registry("Software\\Quorvex Cpu Bench");
  registry.DeleteApp(kApp);
  registry.Save(kApp, "Settings", "Handle", "srv");
  registry.Save(kApp, "Settings", "MailResize", "False");
  win32::Win32ProfileFile profiles;
  std::string people;
  for (int i = 0; i < mails; ++i)
    people += (i ? ",p" : "p") + std::to_string(i);
  test::StandInProcess client("--user Host --room Lobby --mails " +
                                  std::to_string(mails) + " --people " +
                                  people + " --speed " + std::to_string(speed),
                              (idle + mails * 60.0 + 120) / speed + 60);
  client.Command("knob latency " + std::to_string(latency_ms / 1000.0));
  client.Command(
      "mail  \xC2\xB7\xE2\x80\xA2[ quorvex list number 1 ]"
      "\xE2\x80\xA2\xC2\xB7");
  win32::Win32Host host(speed);
  if (watch > 0 && !host.WakeOnWindowChanges(watch))
    std::printf("(no window hook: waits poll every 10 ms)\n");
  CountingApi api;
  win32::Win32Machine machine;
  machine.SetExitWindows([](unsigned) { return false; });
  ScriptedPrompter prompter;
  QuorvexProgram program(
      Ports{host, api, registry, profiles, prompter, machine, 1}, {});
  Figures f;
  program.Run(false, [&] {
    // A forward is done when its mail has gone and the loop scans again:
    // watched in this process, so that watching costs nothing.
    int sent = 0;
    bool scanning = false;
    program.app().frm().controls.status.Subscribe([&](const StatusStrip& s) {
      if (s.text() == "status: sent mail") ++sent;
      scanning = s.text() == "status: scanning chat";
    });
    program.app().Press("cmdStart");
    // Idle: served, nobody talking.
    const double idle0 = host.Clock(), cpu0 = CpuSeconds();
    const long long calls0 = api.calls;
    const double idle_end = idle0 + idle;
    while (host.Clock() < idle_end) host.DoEvents(idle_end);
    f.idle_share = (CpuSeconds() - cpu0) / (host.Clock() - idle0);
    f.idle_calls = (api.calls - calls0) / (host.Clock() - idle0);
    const long long calls1 = api.calls;
    // One request at a time, each waited for.
    const double mail0 = host.Clock(), cpu1 = CpuSeconds();
    for (int i = 0; i < mails; ++i) {
      client.Command("say p" + std::to_string(i) + "|/srv send " +
                     std::to_string(i + 1));
      const double end = host.Clock() + 120;
      while (host.Clock() < end && !(sent > i && scanning)) host.DoEvents(end);
    }
    f.mails = Forwards(client.State());
    f.per_mail = (CpuSeconds() - cpu1) / std::max(f.mails, 1);
    f.mail_clock = (host.Clock() - mail0) / std::max(f.mails, 1);
    f.mail_calls =
        static_cast<double>(api.calls - calls1) / std::max(f.mails, 1);
    program.app().End();
  });
  registry.DeleteApp(kApp);
  return f;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> latencies;
  std::vector<double> watches;
  int mails = 6;
  double idle = 30, speed = 2;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string arg = argv[i];
    if (arg == "--latency") latencies.push_back(std::stoi(argv[i + 1]));
    if (arg == "--mails") mails = std::stoi(argv[i + 1]);
    if (arg == "--idle") idle = std::stod(argv[i + 1]);
    if (arg == "--speed") speed = std::stod(argv[i + 1]);
    if (arg == "--watch") watches.push_back(std::stod(argv[i + 1]));
  }
  if (latencies.empty()) latencies = {50, 400, 2000};
  if (watches.empty()) watches = {0, win32::Win32Host::kClientWatchPoll};
  for (double watch : watches) {
    if (watch > 0)
      std::printf("waits woken by the client's windows, polling every %g s\n",
                  watch);
    else
      std::printf("waits polling every 10 ms\n");
    std::printf("%-10s %-12s %-12s %-16s %-16s %-16s %-14s\n", "latency",
                "idle (core)", "idle calls/s", "CPU/mail (s)", "above idle (s)",
                "clock/mail (s)", "calls/mail");
    double first = 0;
    for (int latency : latencies) {
      const Figures f = Measure(latency, mails, idle, speed, watch);
      const double above = f.per_mail - f.idle_share * f.mail_clock;
      std::printf(
          "%-10s %-12s %-12.0f %-16.4f %-16.4f %-16.1f %-14.0f%s\n",
          (std::to_string(latency) + " ms").c_str(),
          (std::to_string(f.idle_share * 100).substr(0, 5) + " %").c_str(),
          f.idle_calls, f.per_mail, above, f.mail_clock, f.mail_calls,
          f.mails < mails ? "  (not every mail was served)" : "");
      if (first == 0)
        first = f.per_mail;
      else if (first > 0)
        std::printf("%-10s CPU per mail %.1f times the first latency's\n", "",
                    f.per_mail / first);
      std::fflush(stdout);
    }
  }
  return 0;
}
