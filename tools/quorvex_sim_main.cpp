// quorvex-sim: runs the program headless, in virtual time, against the
// simulated client and machine, and writes what happened.
#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>

#include "sim/runner.h"
#include "sim/scenario.h"

int main(int argc, char** argv) {
  using namespace quorvex::sim;
  CLI::App cli{"Runs the Quorvex mail server on a simulated chat client"};
  std::string scenario_path, out_path, format = "jsonl", root;
  bool realtime = false;
  cli.add_option("scenario", scenario_path, "the scenario file")->required();
  cli.add_option("--out", out_path, "write the transcript to this file");
  cli.add_option("--format", format, "jsonl (default) or text")
      ->check(CLI::IsMember({"jsonl", "text"}));
  cli.add_option("--root", root,
                 "keep the simulated machine's files in this folder");
  cli.add_flag("--realtime", realtime, "pace virtual time to the wall clock");
  CLI11_PARSE(cli, argc, argv);

  Scenario scenario;
  try {
    scenario = LoadScenario(scenario_path, Controls());
  } catch (const ScenarioError& e) {
    std::cerr << e.what() << "\n";
    return 2;
  }
  RunOptions options;
  options.format = format == "text" ? TranscriptFormat::kText : TranscriptFormat::kJsonl;
  options.root = root;
  options.realtime = realtime;
  try {
    if (!out_path.empty()) {
      std::ofstream out(out_path, std::ios::binary);
      if (!out) {
        std::cerr << out_path << ": cannot write the transcript\n";
        return 1;
      }
      RunScenario(scenario, options, out);
    } else {
      RunScenario(scenario, options, std::cout);
    }
  } catch (const std::exception& e) {
    std::cerr << "quorvex-sim: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
