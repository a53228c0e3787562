// The Host port on the Windows message loop.
//
// DoEvents dispatches the thread's messages and runs what is due; a wait
// that passes `wake_by` sleeps in MsgWaitForMultipleObjects until a
// message arrives or something falls due, so polling costs no core.
// Timers and scheduled calls are kept here and run from DoEvents, and
// also from a hidden window's WM_TIMER so that they keep running inside
// the platform's modal loops (message boxes, menus, a window drag). A
// timer whose handler is running is skipped: handlers never re-enter. What
// a handler throws comes out of DoEvents.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "ports/host.h"

namespace quorvex::win32 {

class Win32Host : public Host {
 public:
  // `speed`: as SetSpeed, from the start (tests of the stand-in client
  // run both processes' clocks faster).
  explicit Win32Host(double speed = 1);
  ~Win32Host() override;
  Win32Host(const Win32Host&) = delete;
  Win32Host& operator=(const Win32Host&) = delete;

  double Timer() const override;
  double Clock() const override;
  CivilTime Now() const override;
  void DoEvents(double wake_by = 0) override;
  void Schedule(double delay_seconds, std::function<void()> fn) override;
  std::unique_ptr<HostTimer> CreateTimer(
      std::function<void()> on_tick) override;

  // Makes Clock(), and with it every wait, timer and scheduled call, run
  // `speed` times as fast as the wall clock (the time of day stays the
  // wall's). The desktop's simulated room uses it to show a long session
  // in a short time.
  void SetSpeed(double speed);

  // Lets waits sleep until another program's windows change: a WinEvent
  // hook (out of context, on every other process) on windows made,
  // destroyed, shown, hidden, renamed or reordered wakes the message loop,
  // and a wait then polls only every `fallback_seconds` of its clock for
  // what changes without an event (a list filling; under Wine 8 all but
  // the making of windows, which is the only event it raises). False,
  // and the 10 ms poll kept, when the platform takes no such hook.
  bool WakeOnWindowChanges(double fallback_seconds);
  // A fallback poll that keeps a slow client cheap (see qv_win32_cpu).
  static constexpr double kClientWatchPoll = 0.1;
  double PollSeconds() const override { return poll_seconds_; }

  // The message loop of a program: runs until Quit() or WM_QUIT, sleeping
  // while nothing is due. Returns the exit code.
  int Run();
  void Quit(int exit_code = 0);
  // Sees each message the loop takes (a MSG*) before it is dispatched;
  // when it returns true the message is done with (the keyboard of the
  // program's windows: Tab, Return, Escape, Alt+letter).
  void SetMessageFilter(std::function<bool(void* msg)> filter) {
    filter_ = std::move(filter);
  }
  bool quitting() const { return quit_; }

 private:
  class TimerImpl;
  friend class TimerImpl;
  struct Pending {
    std::uint64_t seq;
    std::function<void()> fn;
  };

  // Runs the scheduled calls and timers due now; true when any ran.
  bool RunDue();
  // Clock() of the next thing due, or a huge number.
  double NextDue() const;
  // Sets the hidden window's timer for the next thing due.
  void Arm();
  bool PumpMessages();
  static std::intptr_t __stdcall WakeProc(void* hwnd, unsigned msg,
                                          std::uintptr_t wparam,
                                          std::intptr_t lparam);

  // Wall-clock milliseconds until Clock() reaches `clock`, at least 0.
  double WallMsUntil(double clock) const;
  // Rethrows what a timer or scheduled call threw while the platform's
  // message dispatch ran it.
  void RethrowPending();

  std::function<bool(void*)> filter_;
  std::int64_t freq_ = 1;
  std::int64_t start_count_ = 0;
  double start_clock_ = 0;  // seconds since midnight at start
  double speed_ = 1;
  std::multimap<double, Pending> scheduled_;
  std::uint64_t seq_ = 0;
  std::vector<TimerImpl*> timers_;
  void* wake_window_ = nullptr;
  bool quit_ = false;
  int exit_code_ = 0;
  int depth_ = 0;
  double poll_seconds_ = 0.01;
  void* window_hook_ = nullptr;  // HWINEVENTHOOK
  // A window of another program changed since the loop last slept.
  bool windows_changed_ = false;
  double last_change_wake_ = -1;
  static void __stdcall OnWindowEvent(void* hook, unsigned long event,
                                      void* hwnd, long object, long child,
                                      unsigned long thread, unsigned long time);
  // Thrown by a timer or scheduled call run from the wake window's
  // WM_TIMER: it comes out of the DoEvents that dispatched it, never
  // through the platform's dispatch.
  std::exception_ptr pending_exception_;
};

}  // namespace quorvex::win32
