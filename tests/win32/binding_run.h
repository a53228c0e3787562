// A scenario run through the real Win32 binding: the program on the Win32
// ports in this process (a registry key of its own, the real profile files
// of the prefix, the scenario's faults on them), the client the stand-in
// in processes of its own (closed, killed and started again for real),
// both clocks `speed` times the wall clock. Its transcript is written as
// quorvex-sim writes its own (jsonl: the program's events and the
// client's in time order, then the final state), so that whatever reads
// the simulator's reads it too.
//
// A machine restart is run as Windows would run it, in this process: the
// client's program is ended, then what Win.INI's "load" names is started
// (the restart copy on the prefix's drive C:, which starts the installed
// program, which resumes).
#pragma once

#include <functional>
#include <map>
#include <string>

#include "scenario/scenario.h"
#include "win32/win32_host.h"

namespace quorvex::test {

struct BindingOptions {
  // Both clocks run this many times the wall clock.
  double speed = 5;
  // 0: waits poll the client every 10 ms, as quorvex.exe's do; more:
  // they sleep until the client's windows change, polling every `watch`
  // seconds of the program's clock for what changes without an event.
  double watch = 0;
  // Called about twice a second of the wall clock with the scenario time,
  // the program's status strip and the client's events so far (for a
  // watch on a long run).
  std::function<void(double t, const std::string& status)> progress;
  // Asked about once a second of the wall clock (less often when the
  // question is slow to answer), once every timed line has run, with the
  // transcript as it stands: true ends the run there, as its `run T`
  // would.
  std::function<bool(const std::string& transcript)> done;
  // Timed lines that follow the program, by their place in the
  // scenario's timeline: such a line runs once the status strip has shown
  // `text` for the `count`th time, where the simulator's run stood when
  // the line came, before the line's time or after it (a minute of the
  // program's clock after it at the most).
  struct Anchor {
    std::string text;
    int count = 1;
  };
  std::map<std::size_t, Anchor> anchors;
  // When given: set to how late, in seconds of the wall clock, the latest
  // of the timed lines that run by their time came to run. A machine too
  // loaded for the run shows here (the program's loop held by a call into
  // a client whose process waits for the processor).
  double* latest_line = nullptr;
  // Asked at the end with the run's transcript, while the client's files
  // are still there: a folder (a Windows path, made already) to copy the
  // client's state file, its event log and the program's log into, for a
  // failure to be read after the run; "" keeps nothing.
  std::function<std::string(const std::string& transcript)> keep;
};

// Runs the scenario to its end (`run T`) and returns its transcript.
// Throws std::runtime_error when the stand-in cannot be started.
std::string RunThroughBinding(const scenario::Scenario& sc,
                              const BindingOptions& options);

}  // namespace quorvex::test
