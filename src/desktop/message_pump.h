// The desktop program's loop: the core runs on a host whose clock is paced
// to the wall clock, and while the host waits for its next moment the
// windows' messages are dispatched. A person's actions (clicks, menu
// picks, typing) are queued on the host, so they run from its loop as they
// would run inside the program's own waits.
#pragma once

#include <chrono>
#include <functional>

#include "ports/virtual_host.h"

namespace quorvex::desktop {

class MessagePump {
 public:
  // `speed` > 1 runs the program's clock faster than the wall clock.
  MessagePump(VirtualHost& host, double speed);

  // Runs `fn` from the host's loop as soon as it next turns.
  void Post(std::function<void()> fn);
  // Turns the loop until the program quits (WM_QUIT).
  void Run();
  bool quit() const { return quit_; }

 private:
  // Dispatches messages until the wall clock reaches `virtual_seconds`
  // or an action was posted.
  void Pace(double virtual_seconds);

  VirtualHost& host_;
  double speed_;
  std::chrono::steady_clock::time_point start_;
  bool woken_ = false;
  bool quit_ = false;
};

}  // namespace quorvex::desktop
