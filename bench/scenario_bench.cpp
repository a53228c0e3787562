// Ten virtual minutes of quorvex-sim, as a person runs it: start, stop and
// start again, two sign-offs with their client restarts, and requests of
// every kind, against a client that takes 50 ms or 2 s to open a window.
// A slow client must cost no more CPU than a quick one (within a factor of
// two): the program waits for it, it does not ask it again and again.
//
// Reported: CPU per run, and the mails the run sent: every request the
// client shows is served at both latencies (a line said while the slow
// client is still signing on again is not seen, so it sends one mail less).
#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

#include "scenario/runner.h"
#include "scenario/scenario.h"

namespace quorvex::scenario {
namespace {

std::string TenMinutes(int latency_ms) {
  std::ostringstream s;
  s << "latency " << latency_ms << "\n"
    << "person bob\nperson amy\nperson cal\nperson dan\n"
    << "mails 40 song\n"
    << "at 0.5 answer yes\n"
    << "at 1 press cmdStart\n"
    << "at 100 press cmdStart\n"
    << "at 130 press cmdStart\n";
  const char* const kLines[] = {
      "bob: /host send 2",      "amy: /host send 5-7",
      "cal: /host find song 1", "dan: /host send list",
      "bob: /host send status", "amy: /host find 3&4"};
  int n = 0;
  for (int t = 200; t < 580; t += 20) {
    // Two sign-offs: the client is restarted while people keep asking.
    if (t == 260 || t == 460) s << "at " << t - 10 << " signoff\n";
    s << "at " << t << " say " << kLines[n++ % 6] << "\n";
  }
  s << "run 600\n";
  return s.str();
}

void BM_TenMinutes(benchmark::State& state) {
  const Scenario sc = ParseScenario(
      "ten-minutes", TenMinutes(static_cast<int>(state.range(0))), Controls());
  int mails = 0;
  for (auto _ : state) {
    std::ostringstream out;
    RunScenario(sc, {}, out);
    const std::string transcript = out.str();
    mails = 0;
    for (auto at = transcript.find("\"ev\":\"mail\""); at != std::string::npos;
         at = transcript.find("\"ev\":\"mail\"", at + 1))
      ++mails;
  }
  state.counters["mails"] = mails;
}
BENCHMARK(BM_TenMinutes)
    ->ArgName("latency_ms")
    ->Arg(50)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

}  // namespace
}  // namespace quorvex::scenario
