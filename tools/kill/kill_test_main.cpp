// quorvex-kill-test: starts quorvex-kill-saver again and again on one
// folder and kills it (SIGKILL) at a random moment each time. After each
// kill, every file must hold, whole, the last state saved before the kill
// or the one being saved when it came: never a torn file, never an older
// state than one already saved.
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <optional>
#include <random>
#include <string>

#include "saved_state.h"

namespace {

using Step = std::optional<std::int64_t>;

std::string Show(const Step& s) {
  return s ? std::to_string(*s) : std::string("missing");
}

// Runs the saver from step `first`, kills it after `delay_us`, and returns
// the last step it reported saved (nullopt: none).
Step RunAndKill(const std::string& saver, const std::string& folder,
                std::int64_t first, int delay_us) {
  int fds[2];
  if (::pipe(fds) != 0) throw std::runtime_error("pipe failed");
  pid_t pid = ::fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    ::dup2(fds[1], 1);
    ::close(fds[0]);
    ::close(fds[1]);
    const std::string from = std::to_string(first);
    ::execl(saver.c_str(), saver.c_str(), folder.c_str(), from.c_str(),
            static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::close(fds[1]);
  ::usleep(static_cast<useconds_t>(delay_us));
  ::kill(pid, SIGKILL);
  int status = 0;
  ::waitpid(pid, &status, 0);
  if (WIFEXITED(status))
    throw std::runtime_error("the saver ended by itself with status " +
                             std::to_string(WEXITSTATUS(status)));
  std::string out;
  char buf[4096];
  for (ssize_t n; (n = ::read(fds[0], buf, sizeof buf)) > 0;)
    out.append(buf, static_cast<std::size_t>(n));
  ::close(fds[0]);
  Step last;
  std::size_t start = 0;
  for (std::size_t nl; (nl = out.find('\n', start)) != std::string::npos;
       start = nl + 1)
    last = std::stoll(out.substr(start, nl - start));
  return last;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App cli{"Kills a saving program at random moments and checks its files"};
  std::string saver, folder;
  int runs = 300, max_delay_us = 20000;
  unsigned seed = 1;
  bool verbose = false;
  cli.add_option("--saver", saver, "the quorvex-kill-saver program")
      ->required();
  cli.add_option("--folder", folder, "the folder the files are saved in")
      ->required();
  cli.add_option("--runs", runs, "how many kills");
  cli.add_option("--seed", seed, "seed of the kill moments");
  cli.add_option("--max-delay-us", max_delay_us,
                 "the latest kill moment after the start, in microseconds");
  cli.add_flag("--verbose", verbose, "print what each run left");
  CLI11_PARSE(cli, argc, argv);

  namespace fs = std::filesystem;
  std::error_code ec;
  fs::remove_all(folder, ec);
  fs::create_directories(folder);
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> delay(0, max_delay_us);

  quorvex::kill::ReadBack before;  // all missing at first
  std::int64_t saves = 0, early = 0;
  for (int run = 1; run <= runs; ++run) {
    const std::int64_t first =
        std::max({before.queue.value_or(0), before.restart.value_or(0),
                  before.settings.value_or(0)}) +
        1;
    const int wait = delay(rng);
    Step acked;
    try {
      acked = RunAndKill(saver, folder, first, wait);
    } catch (const std::exception& e) {
      std::cerr << "kill test: run " << run << ": " << e.what() << "\n";
      return 1;
    }
    if (acked) {
      saves += *acked - first + 1;
    } else {
      ++early;
    }
    const quorvex::kill::ReadBack now = quorvex::kill::ReadSteps(folder);
    // Each file holds the last state saved (acked, or what it held before
    // this run when nothing was acked) or the next one, being saved.
    auto check = [&](const char* name, const Step& was, const Step& is) {
      const Step floor = acked ? acked : was;
      const std::int64_t next = acked ? *acked + 1 : first;
      const bool ok =
          (is && *is >= 0 && (is == floor || *is == next)) || (!is && !floor);
      if (!ok)
        std::cerr << "kill test: run " << run << " (seed " << seed
                  << ", killed after " << wait << " us): " << name << " holds "
                  << Show(is) << ", expected " << Show(floor) << " or " << next
                  << (now.problem.empty() ? "" : " — " + now.problem) << "\n";
      return ok;
    };
    if (!check("Quorvex.INI", before.queue, now.queue) ||
        !check("RestartSettings.INI", before.restart, now.restart) ||
        !check("registry.json", before.settings, now.settings))
      return 1;
    if (verbose)
      std::cerr << run << ": first " << first << " acked " << Show(acked)
                << " q " << Show(now.queue) << " r " << Show(now.restart)
                << " s " << Show(now.settings) << "\n";
    before = now;
  }
  std::cout << "kill test: " << runs << " kills, " << saves
            << " steps saved whole before a kill, " << early
            << " kills before the first save of a run, no torn or lost state"
            << std::endl;
  fs::remove_all(folder, ec);
  return 0;
}
