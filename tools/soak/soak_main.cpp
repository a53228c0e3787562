// quorvex-soak: runs seeded random rooms through the whole program, in
// virtual time, with faults, and checks after each run that it ended
// normally and that every accepted request is accounted for. A failing
// run prints its seed and writes the scenario that reproduces it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <random>
#include <sstream>

#include "app/job_log.h"
#include "ports/virtual_host.h"
#include "scenario/runner.h"
#include "scenario/scenario.h"
#include "soak/invariants.h"
#include "soak/soak_room.h"

namespace {

// The text of every Quorvex.log under the run's folder, each folder's
// older file first (a restart may run the program from another folder).
std::string ReadLogs(const std::filesystem::path& root) {
  namespace fs = std::filesystem;
  std::vector<fs::path> logs;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(root, ec);
       !ec && it != fs::recursive_directory_iterator(); it.increment(ec))
    if (it->path().filename() == quorvex::kLogName) logs.push_back(it->path());
  std::sort(logs.begin(), logs.end());
  std::string text;
  for (const fs::path& log : logs)
    for (fs::path file :
         {fs::path(log.string() + quorvex::kOldLogSuffix), log}) {
      std::ifstream in(file, std::ios::binary);
      text.append(std::istreambuf_iterator<char>(in),
                  std::istreambuf_iterator<char>());
    }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quorvex;
  CLI::App cli{"Soak runs of the Quorvex mail server on random rooms"};
  int runs = 50;
  std::uint64_t first = 1;
  std::vector<std::string> exclude;
  std::string fail_dir = "soak-failures";
  bool keep_going = true;
  soak::RoomOptions room;
  cli.add_option("--runs", runs, "how many runs (seeds FIRST, FIRST+1, ...)");
  cli.add_option("--seed", first, "the first seed");
  cli.add_option("--exclude", exclude,
                 "fault kinds never to inject (repeatable): lost-click, "
                 "signoff, kill, full-room, full-mailbox, dead-mail, slow, "
                 "registry-write, profile-write, disk-full, vanish");
  cli.add_option("--fail-dir", fail_dir,
                 "where the scenarios of failing runs are written");
  cli.add_option("--max-seconds", room.max_seconds,
                 "the longest busy stretch of a run, in virtual seconds");
  cli.add_flag("!--stop", keep_going, "stop at the first failing run");
  std::vector<std::string> without;
  cli.add_option("--without", without,
                 "draws to leave out (repeatable): floods (flood stretches), "
                 "files (damaged queue and restart files), early (requests "
                 "during a start)")
      ->check(CLI::IsMember({"floods", "files", "early"}));
  bool print = false;
  cli.add_flag("--print", print,
               "print the scenario of the first seed and run nothing");
  CLI11_PARSE(cli, argc, argv);
  for (const std::string& kind : exclude) {
    if (!soak::kFaultKinds.count(kind)) {
      std::cerr << "quorvex-soak: unknown fault kind '" << kind << "'\n";
      return 2;
    }
    room.faults.erase(kind);
  }
  for (const std::string& draw : without) {
    if (draw == "floods") room.flood_stretches = false;
    if (draw == "files") room.damaged_files = false;
    if (draw == "early") room.start_requests = false;
  }
  room.min_seconds = std::min(room.min_seconds, room.max_seconds);
  if (print) {
    std::cout << soak::MakeRoom(first, room);
    return 0;
  }

  namespace fs = std::filesystem;
  const fs::path work =
      (fs::is_directory("/dev/shm") ? fs::path("/dev/shm")
                                    : fs::temp_directory_path()) /
      ("quorvex-soak-" + std::to_string(std::random_device{}()));
  const auto wall0 = std::chrono::steady_clock::now();
  int failed = 0;
  std::int64_t accepted = 0, delivered = 0, excused = 0, still_pending = 0,
               waiting = 0, deleted_waiting = 0, banned = 0, flood_asks = 0,
               early_requests = 0, restored_lines = 0, log_lines = 0,
               log_matched = 0;
  double flood_wait_max = 0;
  std::pair<double, std::uint64_t> quiet_max{0, 0};  // seconds, seed
  std::map<std::string, int> faults, endings;
  // The client's faults, drawn into the rooms rather than logged as they
  // strike: rooms that lose clicks, sign-offs, full mailboxes, dead mails
  // and slow clients.
  std::map<std::string, int> client_faults;
  std::map<std::string, int> violations;  // by first words
  for (int i = 0; i < runs; ++i) {
    const std::uint64_t seed = first + static_cast<std::uint64_t>(i);
    const std::string text = soak::MakeRoom(seed, room);
    const std::string name = "soak-" + std::to_string(seed) + ".scn";
    std::vector<std::string> bad;
    soak::RunFigures fig;
    try {
      const scenario::Scenario sc =
          scenario::ParseScenario(name, text, scenario::Controls());
      if (sc.lost_clicks > 0) ++client_faults["rooms losing clicks"];
      for (const scenario::TimedLine& t : sc.timeline) {
        if (t.verb == scenario::Verb::kSignoff) ++client_faults["sign-offs"];
        if (t.verb == scenario::Verb::kKill) ++client_faults["kills"];
      }
      client_faults["full rooms"] += static_cast<int>(sc.full_rooms.size());
      client_faults["full mailboxes"] +=
          static_cast<int>(sc.full_mailboxes.size());
      client_faults["dead mails"] += static_cast<int>(sc.dead_mails.size());
      if (sc.latency_ms > 50) ++client_faults["slow clients"];
      std::ostringstream transcript;
      scenario::RunOptions options;
      // Every save is flushed to disk: a memory file system keeps a run
      // from waiting on it.
      options.root = (work / std::to_string(seed)).string();
      std::filesystem::remove_all(options.root);
      scenario::RunScenario(sc, options, transcript);
      const std::string log = ReadLogs(options.root);
      std::filesystem::remove_all(options.root);
      bad = soak::CheckRun(sc, transcript.str(), &fig, &log);
    } catch (const std::exception& e) {
      bad.push_back(std::string("the run did not end normally: ") + e.what());
    }
    accepted += fig.accepted, delivered += fig.delivered;
    excused += fig.excused;
    still_pending += fig.still_pending;
    waiting += fig.waiting, deleted_waiting += fig.deleted_waiting;
    banned += fig.banned;
    flood_asks += fig.flood_asks;
    flood_wait_max = std::max(flood_wait_max, fig.flood_wait_max);
    if (fig.quiet_max > quiet_max.first) quiet_max = {fig.quiet_max, seed};
    early_requests += fig.early_requests;
    restored_lines += fig.restored_lines;
    log_lines += fig.log_lines, log_matched += fig.log_matched;
    for (const auto& [kind, n] : fig.faults) faults[kind] += n;
    for (const auto& [why, n] : fig.endings) endings[why] += n;
    if ((i + 1) % 50 == 0)
      std::cout << "  ... " << i + 1 << " runs, " << failed << " failed"
                << std::endl;
    if (bad.empty()) continue;
    ++failed;
    std::filesystem::create_directories(fail_dir);
    const std::filesystem::path file = std::filesystem::path(fail_dir) / name;
    std::ofstream(file, std::ios::binary) << text;
    std::cout << "seed " << seed << ": FAILED (" << bad.size()
              << " violations; quorvex-sim " << file.string() << ")\n";
    for (std::size_t k = 0; k < bad.size() && k < 5; ++k)
      std::cout << "  " << bad[k] << "\n";
    for (const std::string& b : bad) {
      const auto colon = b.find(':');
      ++violations[b.rfind("the run", 0) == 0
                       ? b.substr(0, 60)
                       : b.substr(colon == std::string::npos ? 0 : colon + 2,
                                  24)];
    }
    if (!keep_going) break;
  }
  std::error_code ec;
  std::filesystem::remove_all(work, ec);
  const double wall =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - wall0)
          .count();
  int injected = 0;
  for (const auto& [kind, n] : faults) injected += n;
  std::cout << "soak: " << runs << " runs from seed " << first << ", " << failed
            << " failed, " << wall << " s\n"
            << "  requests: " << accepted << " mail requests accepted, "
            << delivered << " forwarded mails received, " << still_pending
            << " still pending at the end, " << waiting
            << " handed to the client, waiting to be sent, " << deleted_waiting
            << " waiting and deleted by the sent-mail check (by design), "
            << banned << " removed by a ban, " << excused
            << " ended otherwise:";
  const char* sep = " ";
  for (const auto& [why, n] : endings) {
    std::cout << sep << why << " " << n;
    sep = ", ";
  }
  std::cout << "\n  beside flooders: " << flood_asks
            << " mails asked for and checked against the bound, the longest "
               "wait "
            << flood_wait_max << " s; " << early_requests
            << " requests said during a start; " << restored_lines
            << " lines restored from damaged files";
  std::cout << "\n  serving: the longest the program owed progress without "
               "any "
            << quiet_max.first << " s (seed " << quiet_max.second << ")";
  std::cout << "\n  log: " << log_lines << " lines read, " << log_matched
            << " deliveries, bans and other endings found in it as accounted";
  std::cout << "\n  faults injected: " << injected;
  for (const auto& [kind, n] : faults) std::cout << ", " << kind << " " << n;
  std::cout << "\n  client faults drawn:";
  sep = " ";
  for (const auto& [kind, n] : client_faults) {
    std::cout << sep << kind << " " << n;
    sep = ", ";
  }
  std::cout << "\n";
  for (const auto& [what, n] : violations)
    std::cout << "  violation '" << what << "': " << n << "\n";
  return failed ? 1 : 0;
}
