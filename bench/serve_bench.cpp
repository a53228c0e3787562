// One virtual hour of serving: a room of 100 people asking for mails,
// ranges, lists and finds from a mailbox of 1000 mails, through the
// serving loop and its real jobs against the simulated client.
//
// Reported: wall and CPU seconds for the hour, forwards made, virtual
// seconds per forward, and the serve overhead: virtual seconds per
// forward divided by what a forward cannot do without (the client's own
// latencies on the forward's path, and the pauses the job must take).
#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "app/frm_main.h"
#include "client/client_context.h"
#include "ports/memory_registry.h"
#include "ports/scripted_prompter.h"
#include "ports/virtual_host.h"
#include "requests/request_parser.h"
#include "server/serve_engine.h"
#include "sim/folder_machine.h"
#include "sim/ini_profile_file.h"
#include "sim/sim_client.h"
#include "sim/sim_observer.h"
#include "sim/sim_world.h"

namespace quorvex {
namespace {

constexpr int kMails = 1000;
constexpr int kPeople = 100;
constexpr int kLists = 4;
constexpr double kHour = 3600;
constexpr double kMeanRequestGap = 60;  // seconds between one person's lines

// Counts the mails the client takes for sending while a job runs.
struct MailCounter : SimObserver {
  void OnMail(const std::string&, const std::string&, const std::string&,
              const std::string&, bool) override {
    ++mails;
  }
  int mails = 0;
};

struct ServeRoom {
  explicit ServeRoom(bool only_sends, float mail_speed)
      : root(std::filesystem::temp_directory_path() /
             ("qv-serve-bench-" + std::to_string(std::random_device{}()))),
        machine(MakeRoot(root)) {
    sim.SetUserName("Host User");
    sim.SetRoomName("Lobby");
    sim.SetObserver(&counter);
    for (int k = 1; k <= kLists; ++k)
      sim.AddMail(" quorvex list number " + std::to_string(k) + " ");
    for (int i = 1; i <= kMails; ++i)
      sim.AddMail("song " + std::to_string(i) + " by artist " +
                  std::to_string(i % 37));
    for (int p = 1; p <= kPeople; ++p) sim.AddPerson(Person(p));
    Settings& s = frm.settings;
    s.Handle = "srv";
    s.MailResize = false;
    s.MailSpeed = mail_speed;
    s.ListSpeed = mail_speed;
    s.FindSpeed = mail_speed;
    s.AOLRestart = 0;  // a client restart is another benchmark
    s.CPURestart = 0;
    s.SentRestart = 0;
    frm.forms.frmBanning.cmbMails.text = "2000";
    if (only_sends) {
      // Nothing but forwards and the fixed announcements.
      s.BotScroll = 30000;
      s.ListAdvertise = 30000;
    }
    sim.Launch();

    // The mail job timed in virtual seconds, with the forwards it made.
    ServeJobs jobs = MakeServeJobs(frm, c);
    auto mail = jobs.mail;
    jobs.mail = [this, mail] {
      const int before = counter.mails;
      const double start = host.Elapsed();
      mail();
      if (counter.mails > before) {
        forwards += counter.mails - before;
        forward_seconds += host.Elapsed() - start;
      }
    };
    engine = std::make_unique<ServeEngine>(MakeServeContext(frm), c, jobs);
    ScheduleRequests(only_sends);
  }
  ~ServeRoom() {
    engine.reset();
    std::error_code ec;
    std::filesystem::remove_all(root, ec);
  }

  static std::string Person(int p) { return "Person " + std::to_string(p); }
  static std::filesystem::path MakeRoot(const std::filesystem::path& p) {
    std::filesystem::create_directories(p);
    return p;
  }

  // Every person speaks at random moments all hour long.
  void ScheduleRequests(bool only_sends) {
    std::mt19937_64 rng(42);
    std::exponential_distribution<double> gap(1 / kMeanRequestGap);
    std::uniform_int_distribution<int> mail(1, kMails + kLists);
    std::uniform_int_distribution<int> kind(0, 99);
    for (int p = 1; p <= kPeople; ++p) {
      for (double at = gap(rng); at < kHour; at += gap(rng)) {
        const int k = only_sends ? 0 : kind(rng);
        std::string line;
        if (k < 80) {
          line = "/srv send " + std::to_string(mail(rng));
        } else if (k < 85) {
          const int x = mail(rng);
          line = "/srv send " + std::to_string(x) + "-" + std::to_string(x + 2);
        } else if (k < 90) {
          line = "/srv send list";
        } else if (k < 95) {
          line = "/srv find artist " + std::to_string(mail(rng) % 37);
        } else {
          line = k % 2 ? "/srv send status" : "/srv thanks";
        }
        host.ScheduleAt(
            at, [this, p, line] { HandleChatLine(requests, Person(p), line); });
      }
    }
  }

  std::filesystem::path root;
  VirtualHost host{CivilTime{2004, 5, 1, 12, 0, 0, 0}};
  SimWorld world;
  SimClient sim{host, world, 7};
  MailCounter counter;
  MemoryRegistry registry;
  IniProfileFile profiles;
  FolderMachine machine;
  ScriptedPrompter prompter;
  FrmMain frm{Ports{host, sim, registry, profiles, prompter, machine, 1}};
  ClientContext c{sim, host, frm.settings, nullptr};
  RequestContext requests = MakeRequestContext(frm);
  std::unique_ptr<ServeEngine> engine;
  int forwards = 0;
  double forward_seconds = 0;
};

double CpuSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Arg 0: the whole mix of requests at the default mail speed. Arg 1: only
// single sends at speed 0, where a forward owes nothing but the client's
// latencies, for the overhead figure.
void BM_ServeOneHour(benchmark::State& state) {
  const bool only_sends = state.range(0) == 1;
  const float speed = only_sends ? 0.0f : 0.1345f;
  double wall = 0, cpu = 0;
  std::unique_ptr<ServeRoom> room;
  for (auto _ : state) {
    state.PauseTiming();
    room = std::make_unique<ServeRoom>(only_sends, speed);
    state.ResumeTiming();
    const auto wall_start = std::chrono::steady_clock::now();
    const double cpu_start = CpuSeconds();

    room->engine->cmdStart_Click();
    room->host.RunUntil(kHour);

    cpu = CpuSeconds() - cpu_start;
    wall = std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                         wall_start)
               .count();
    state.PauseTiming();
    if (!room->frm.serving.ServerOn)
      state.SkipWithError("the server did not start");
    state.ResumeTiming();
  }
  const SimKnobs& k = room->sim.knobs();
  // Open the mail, open the forward window, the window fills, the send.
  const double client_latency = 3 * k.latency + k.send_time;
  const double per_forward =
      room->forwards ? room->forward_seconds / room->forwards : 0;
  state.counters["wall_s"] = wall;
  state.counters["cpu_s"] = cpu;
  state.counters["forwards"] = room->forwards;
  state.counters["virtual_s_per_forward"] = per_forward;
  state.counters["client_latency_s"] = client_latency;
  // At speed 0 a forward owes nothing but the client's latencies; at the
  // default speed the job's polls pause on a clock rounded to the whole
  // second (as the pause has always done), so there the figure is only
  // the time per forward.
  if (only_sends) state.counters["overhead"] = per_forward / client_latency;
  state.counters["pending_left"] = room->frm.lstPending().Count();
}
BENCHMARK(BM_ServeOneHour)
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace
}  // namespace quorvex
