// quorvex-sim: runs the program headless, in virtual time, against the
// simulated client and machine, and writes what happened.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>

#include "app/job_log.h"
#include "scenario/demo.h"
#include "scenario/interrupt.h"
#include "scenario/runner.h"
#include "scenario/scenario.h"

int main(int argc, char** argv) {
  using namespace quorvex::scenario;
  CLI::App cli{"Runs the Quorvex mail server on a simulated chat client"};
  // Options are spelled the same everywhere: on Windows a path such as
  // /work/x.scn must stay a path, not become an option.
  cli.allow_windows_style_options(false);
  std::string scenario_path, out_path, format = "jsonl", root;
  bool realtime = false, demo = false;
  auto* scenario_option =
      cli.add_option("scenario", scenario_path, "the scenario file");
  cli.add_flag("--demo", demo,
               "run the built-in demo room and print a summary at the end");
  cli.add_option("--out", out_path, "write the transcript to this file");
  cli.add_option("--format", format, "jsonl (default) or text")
      ->check(CLI::IsMember({"jsonl", "text"}));
  cli.add_option("--root", root,
                 "keep the simulated machine's files in this folder");
  cli.add_flag("--realtime", realtime, "pace virtual time to the wall clock");
  CLI11_PARSE(cli, argc, argv);
  if (!demo && scenario_option->count() == 0) {
    std::cerr << "quorvex-sim: a scenario file or --demo is required\n";
    return 2;
  }

  Scenario scenario;
  try {
    scenario = demo ? ParseScenario(kDemoName, kDemoScenario, Controls())
                    : LoadScenario(scenario_path, Controls());
  } catch (const ScenarioError& e) {
    std::cerr << e.what() << "\n";
    return 2;
  }
  RunOptions options;
  // The demo is for reading: text unless a format was asked for.
  if (demo && cli.count("--format") == 0) format = "text";
  options.format =
      format == "text" ? TranscriptFormat::kText : TranscriptFormat::kJsonl;
  std::string summary;
  if (demo) {
    options.on_final = [&summary, &scenario](const nlohmann::ordered_json& f) {
      summary = DemoSummary(f, scenario.user);
    };
  }
  options.root = root;
  options.realtime = realtime;
  // The log is not part of the transcript: its losses are told apart.
  int lost_log_lines = 0;
  options.on_lost_log_lines = [&lost_log_lines](int n) { lost_log_lines = n; };
  InstallInterruptHandlers();
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
    // A signal that came while the last of the transcript was written.
    ThrowIfInterrupted();
  } catch (const RunInterrupted& e) {
    // The run has unwound: its temporary folder is gone.
    EndBySignal(e.signal);
  } catch (const std::exception& e) {
    std::cerr << "quorvex-sim: " << e.what() << "\n";
    return 1;
  }
  if (demo) std::cout << summary << std::flush;
  if (lost_log_lines > 0)
    std::cerr << "quorvex-sim: " << quorvex::LostLinesNotice(lost_log_lines)
              << "\n";
  return 0;
}
