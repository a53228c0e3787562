// Costs that must stay linear in the size of what they handle:
//  - saving the message texts (5 000 and 10 000 messages) to the settings
//    file, as the editor's save does;
//  - quorvex-sim's set-up of 10 000 and 40 000 `ini`, `registry` and
//    `person` lines (a run of one second, so the set-up is nearly all);
//  - quorvex-sim's final state of a saved queue of 80 000 and 320 000
//    entries (four people each asking for a range; the exit saves them).
// Each runs at two sizes: work in proportion to the size grows with it,
// a regression to quadratic work grows with its square.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <sstream>
#include <string>

#include "scenario/runner.h"
#include "scenario/scenario.h"
#include "settings/messages.h"
#include "sim/file_registry.h"

namespace quorvex::scenario {
namespace {

namespace fs = std::filesystem;

fs::path TempPath(const std::string& name) {
  return fs::temp_directory_path() /
         (name + std::to_string(std::random_device{}()));
}

void BM_SaveMessages(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const fs::path folder = TempPath("qv-messages-bench-");
  fs::create_directories(folder);
  {
    FileRegistry registry(folder / "registry.json");
    MessageControls form;
    for (int i = 0; i < n; ++i) {
      form.lstChat.Add("chat message number " + std::to_string(i));
      form.lstThankyou.Add("thank you number " + std::to_string(i));
    }
    for (auto _ : state) SaveMessages(form, registry);
    state.counters["messages"] = 2 * n;
  }
  fs::remove_all(folder);
}
BENCHMARK(BM_SaveMessages)
    ->ArgName("per_list")
    ->Arg(2500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);

enum SetUp { kIni, kRegistry, kPerson };

std::string SetUpLines(SetUp kind, int n) {
  std::ostringstream s;
  for (int i = 0; i < n; ++i) {
    switch (kind) {
      case kIni:
        s << "ini Win.INI Section" << i % 100 << " Key " << i << " = " << i
          << "\n";
        break;
      case kRegistry:
        s << "registry Section" << i % 100 << " Key " << i << " = " << i
          << "\n";
        break;
      case kPerson:
        s << "person someone " << i << "\n";
        break;
    }
  }
  s << "run 1\n";
  return s.str();
}

void BM_SimSetUp(benchmark::State& state) {
  const auto kind = static_cast<SetUp>(state.range(0));
  const Scenario sc = ParseScenario(
      "set-up", SetUpLines(kind, static_cast<int>(state.range(1))), Controls());
  for (auto _ : state) {
    std::ostringstream out;
    RunScenario(sc, {}, out);
  }
}
BENCHMARK(BM_SimSetUp)
    ->ArgNames({"ini_registry_person", "lines"})
    ->ArgsProduct({{kIni, kRegistry, kPerson}, {10000, 40000}})
    ->Unit(benchmark::kMillisecond);

void BM_SimSavedQueue(benchmark::State& state) {
  const int per_person = static_cast<int>(state.range(0)) / 4;
  std::ostringstream s;
  s << "registry Settings Handle = srv\n"
    << "registry Settings BlockMax = 0\n"
    << "registry Banning MailsPending = 0\n"
    << "mails " << per_person << "\n";
  for (int p = 0; p < 4; ++p)
    s << "at " << p + 1 << " say p" << p << ": /srv send 1-" << per_person
      << "\n";
  s << "at 6 press lblExit\nrun 7\n";
  const Scenario sc = ParseScenario("saved-queue", s.str(), Controls());
  std::size_t saved = 0;
  for (auto _ : state) {
    std::ostringstream out;
    RunScenario(sc, {},
                out);  // the transcript too: every entry is an event
    saved = out.str().size();
  }
  state.counters["transcript_mb"] = static_cast<double>(saved) / 1e6;
}
BENCHMARK(BM_SimSavedQueue)
    ->ArgName("entries")
    ->Arg(80000)
    ->Arg(320000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorvex::scenario
