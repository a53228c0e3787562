// Runs a scenario: the whole program, headless, in virtual time, against
// the simulated client and machine, writing the transcript.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "scenario/scenario.h"
#include "scenario/transcript.h"

namespace quorvex::scenario {

struct RunOptions {
  TranscriptFormat format = TranscriptFormat::kJsonl;
  std::string root;       // keeps the machine's files; "" = a fresh temp folder
  bool realtime = false;  // pace virtual time to the wall clock
  // Hears the final state before it is written (the demo's summary).
  std::function<void(const nlohmann::ordered_json&)> on_final;
  // Hears how many lines of Quorvex.log could not be written, when any.
  std::function<void(int)> on_lost_log_lines;
};

// The names quorvex-sim accepts for press, select and set.
ControlCatalogue Controls();

// Runs the scenario to its end and writes the transcript; returns the
// number of events written.
int RunScenario(const Scenario& scenario, const RunOptions& options,
                std::ostream& out);

}  // namespace quorvex::scenario
