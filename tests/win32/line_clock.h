// The moment a run through the binding writes for what happens, on the
// scenario's clock. A timed line runs when the message loop comes to it, a
// little after its moment (the host's timers tick every 55 ms; a long step
// of the program holds the loop): what the line does is written at its
// moment, as the simulator runs it there. Two things keep the transcript in
// the order things happened:
//  - what the program does while a line is overdue is written no later than
//    that line's moment: it came before what the line does (a request taken
//    just before a clear ran is written before the clear, not after it);
//  - nothing is written before the moment of a line that has already run,
//    nor before what was written already: a line run inside a long step of
//    another (a say, a clear during a start's read of the mailbox) is not
//    overtaken by what that step does after it (the request heard is
//    written after it was said, the one taken after the clear after it),
//    however late the step itself started.
#pragma once

#include <algorithm>
#include <limits>
#include <set>
#include <vector>

namespace quorvex::test {

class LineClock {
 public:
  // A line is to run at `at`.
  void Schedule(double at) { due_.insert(at); }
  // The line scheduled at `at` has come to be run (now, or after another
  // it waits for).
  void Unschedule(double at) {
    const auto it = due_.find(at);
    if (it != due_.end()) due_.erase(it);
  }
  // The line of moment `at` begins to run at `now`; End() when it is done.
  // A line run before its moment (by the status strip) is written when it
  // runs.
  void Begin(double at, double now) {
    lateness_.push_back(std::max(0.0, now - at));
    if (now >= at) ran_ = std::max(ran_, at);
  }
  void End() {
    if (!lateness_.empty()) lateness_.pop_back();
  }
  // The moment to write for what happens at `now`.
  double At(double now) {
    double t = now - (lateness_.empty() ? 0.0 : lateness_.back());
    t = std::max({t, ran_, written_});
    if (!due_.empty()) t = std::min(t, *due_.begin());
    written_ = t;
    return t;
  }

 private:
  std::multiset<double> due_;     // lines not run yet, by moment
  std::vector<double> lateness_;  // of the lines running, innermost last
  double ran_ = -std::numeric_limits<double>::infinity();
  double written_ = -std::numeric_limits<double>::infinity();
};

}  // namespace quorvex::test
