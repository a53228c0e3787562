// qv_win32_soak: the soak's seeded random rooms run through the real Win32
// binding (binding_run.h: the program on the Win32 ports, the stand-in
// client in processes of its own, killed, closed and started again for
// real), checked after each run with the accounting invariants of
// quorvex-soak: every accepted request accounted for, nobody mailed what
// they did not ask for, the total shown equal to the one stored.
//
//   qv_win32_soak [--runs N (3)] [--seed S (1)] [--speed F (5)]
//                 [--max-seconds M (120)] [--drain D (120)]
//                 [--exclude KIND]... [--fail-dir DIR] [--keep-dir DIR]
//
// A failing run writes its scenario (which quorvex-sim runs as it stands)
// and the binding's transcript to the fail DIR; --keep-dir writes every
// run's. Exit 0 when every run is clean.
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "binding_run.h"
#include "scenario/runner.h"
#include "scenario/scenario.h"
#include "soak/invariants.h"
#include "soak/soak_room.h"

namespace {

using namespace quorvex;

int Usage() {
  std::fprintf(stderr,
               "usage: qv_win32_soak [--runs N] [--seed S] [--speed F] "
               "[--max-seconds M] [--drain D] [--exclude KIND]... "
               "[--fail-dir DIR] [--keep-dir DIR]\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 3;
  std::uint64_t first = 1;
  double speed = 5;
  std::string fail_dir = "win32-soak-failures", keep_dir;
  soak::RoomOptions room;
  room.max_seconds = 120;
  room.drain_seconds = 120;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (i + 1 >= argc) return Usage();
    const std::string v = argv[++i];
    if (arg == "--runs") {
      runs = std::stoi(v);
    } else if (arg == "--seed") {
      first = std::stoull(v);
    } else if (arg == "--speed") {
      speed = std::stod(v);
    } else if (arg == "--max-seconds") {
      room.max_seconds = std::stoi(v);
    } else if (arg == "--drain") {
      room.drain_seconds = std::stoi(v);
    } else if (arg == "--fail-dir") {
      fail_dir = v;
    } else if (arg == "--keep-dir") {
      keep_dir = v;
    } else if (arg == "--exclude") {
      if (!soak::kFaultKinds.count(v)) {
        std::fprintf(stderr, "qv_win32_soak: unknown fault kind '%s'\n",
                     v.c_str());
        return 2;
      }
      room.faults.erase(v);
    } else {
      return Usage();
    }
  }
  room.min_seconds = std::min(room.min_seconds, room.max_seconds);

  const auto wall0 = std::chrono::steady_clock::now();
  int failed = 0;
  soak::RunFigures total;
  std::pair<double, std::uint64_t> latest{0, 0};  // lateness, seed
  std::map<std::string, int> drawn;
  for (int i = 0; i < runs; ++i) {
    const std::uint64_t seed = first + static_cast<std::uint64_t>(i);
    const std::string text = soak::MakeRoom(seed, room);
    const std::string name = "soak-" + std::to_string(seed);
    const auto run0 = std::chrono::steady_clock::now();
    std::vector<std::string> bad;
    std::string transcript;
    soak::RunFigures fig;
    double late = 0;  // the latest a timed line ran, wall seconds
    try {
      const scenario::Scenario sc =
          scenario::ParseScenario(name + ".scn", text, scenario::Controls());
      if (sc.lost_clicks > 0) ++drawn["rooms losing clicks"];
      for (const scenario::TimedLine& t : sc.timeline) {
        if (t.verb == scenario::Verb::kSignoff) ++drawn["sign-offs"];
        if (t.verb == scenario::Verb::kKill) ++drawn["kills"];
      }
      drawn["full rooms"] += static_cast<int>(sc.full_rooms.size());
      drawn["full mailboxes"] += static_cast<int>(sc.full_mailboxes.size());
      drawn["dead mails"] += static_cast<int>(sc.dead_mails.size());
      if (sc.latency_ms > 50) ++drawn["slow clients"];
      test::BindingOptions options;
      options.speed = speed;
      options.latest_line = &late;
      transcript = test::RunThroughBinding(sc, options);
      // The room is read four times a second of the program's clock, but
      // Wine's timers tick at most every 55 ms of the wall clock, a read
      // during a start waits for each title, and on a loaded machine a
      // call into the client's busy process holds the program for up to
      // a second: a request is heard within two seconds of the wall clock
      // after the room showed it. What a user's action does takes up to
      // 5 ms of the wall clock after it. A forward through the real
      // windows takes 4 to 5 s of the clock at ten times the pace where
      // the simulator's takes 3, and every reply said in the room a
      // round of calls too: serving goes at about half the pace, and on
      // a loaded machine at a tenth of it (every call into the client
      // waits for its process): the flood bound counts the forwards ahead
      // at the pace this room's went.
      soak::Allowances allow;
      allow.heard_within = std::max(10.0, 2 * speed);
      allow.acted_within = 0.005 * speed;
      allow.serving_pace = 2;
      allow.pace_from_run = true;
      bad = soak::CheckRun(sc, transcript, &fig, nullptr, allow);
    } catch (const std::exception& e) {
      bad.push_back(std::string("the run did not end normally: ") + e.what());
    }
    total.accepted += fig.accepted;
    total.delivered += fig.delivered;
    total.still_pending += fig.still_pending;
    total.waiting += fig.waiting;
    total.deleted_waiting += fig.deleted_waiting;
    total.banned += fig.banned;
    total.excused += fig.excused;
    total.flood_asks += fig.flood_asks;
    total.flood_wait_max = std::max(total.flood_wait_max, fig.flood_wait_max);
    for (const auto& [why, n] : fig.endings) total.endings[why] += n;
    for (const auto& [kind, n] : fig.faults) total.faults[kind] += n;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - run0)
            .count();
    // A timed line more than a few tenths of a second late means the
    // program's loop was held: the machine was too loaded for the pace.
    std::printf(
        "seed %llu: %s in %.0f s (%d accepted, %d received; timed lines up "
        "to %.2f s late)\n",
        static_cast<unsigned long long>(seed), bad.empty() ? "clean" : "FAILED",
        seconds, fig.accepted, fig.delivered, late);
    if (late > latest.first) latest = {late, seed};
    std::fflush(stdout);
    auto keep = [&](const std::string& dir) {
      ::CreateDirectoryA(dir.c_str(), nullptr);
      std::ofstream(dir + "\\" + name + ".scn", std::ios::binary) << text;
      std::ofstream(dir + "\\" + name + ".binding.jsonl", std::ios::binary)
          << transcript;
    };
    if (!keep_dir.empty()) keep(keep_dir);
    if (bad.empty()) continue;
    ++failed;
    keep(fail_dir);
    for (std::size_t k = 0; k < bad.size() && k < 5; ++k)
      std::printf("  %s\n", bad[k].c_str());
  }
  const double wall =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - wall0)
          .count();
  std::printf(
      "win32 soak: %d runs from seed %llu at %.0fx, %d failed, %.0f s\n"
      "  requests: %d mail requests accepted, %d forwarded mails received, "
      "%d still pending at the end, %d waiting to be sent, %d deleted "
      "waiting by design, %d removed by a ban, %d ended otherwise:",
      runs, static_cast<unsigned long long>(first), speed, failed, wall,
      total.accepted, total.delivered, total.still_pending, total.waiting,
      total.deleted_waiting, total.banned, total.excused);
  const char* sep = " ";
  for (const auto& [why, n] : total.endings) {
    std::printf("%s%s %d", sep, why.c_str(), n);
    sep = ", ";
  }
  std::printf(
      "\n  beside flooders: %d mails asked for and checked against the "
      "bound, the longest wait %.1f s",
      total.flood_asks, total.flood_wait_max);
  std::printf("\n  faults injected:");
  sep = " ";
  for (const auto& [kind, n] : total.faults) {
    std::printf("%s%s %d", sep, kind.c_str(), n);
    sep = ", ";
  }
  std::printf(
      "\n  the latest a timed line ran: %.2f s of the wall clock "
      "(seed %llu)",
      latest.first, static_cast<unsigned long long>(latest.second));
  std::printf("\n  client faults drawn:");
  sep = " ";
  for (const auto& [kind, n] : drawn) {
    std::printf("%s%s %d", sep, kind.c_str(), n);
    sep = ", ";
  }
  std::printf("\n");
  return failed ? 1 : 0;
}
