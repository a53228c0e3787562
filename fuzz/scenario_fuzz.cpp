// Any text as a scenario file: the parser either gives a scenario whose
// timed lines are in time order and end no later than the run, or refuses
// with "FILE:LINE: ..." — never anything else.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "scenario/runner.h"
#include "scenario/scenario.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  using namespace quorvex::scenario;
  static const ControlCatalogue controls = Controls();
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    Scenario s = ParseScenario("fuzz.scn", text, controls);
    double last = 0;
    for (const TimedLine& t : s.timeline) {
      if (t.at < last || t.at > s.run_until) {
        std::fprintf(stderr, "scenario: line %d out of order\n", t.line);
        std::abort();
      }
      last = t.at;
    }
  } catch (const ScenarioError& e) {
    if (std::string(e.what()).rfind("fuzz.scn:", 0) != 0) {
      std::fprintf(stderr, "scenario: error without a place: %s\n", e.what());
      std::abort();
    }
  }
  return 0;
}
