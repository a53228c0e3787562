// The Host port: the clock, the message loop's yield and timers.
//
// Everything runs on one thread. DoEvents lets timers, chat events and
// clicks run inside a long operation; a timer never re-enters its own
// handler. Two implementations: virtual time (tests, quorvex-sim) and the
// Win32 message loop (the desktop program).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace quorvex {

struct CivilTime {
  int year = 2000, month = 1, day = 1;
  int hour = 0, minute = 0, second = 0, millisecond = 0;
};

class HostTimer {
 public:
  virtual ~HostTimer() = default;
  virtual void SetInterval(int milliseconds) = 0;
  virtual int interval() const = 0;
  // Enabling (re)starts the interval; disabling inside the handler stops
  // the timer after the handler returns.
  virtual void SetEnabled(bool enabled) = 0;
  virtual bool enabled() const = 0;
};

class Host {
 public:
  virtual ~Host() = default;

  // Seconds since midnight, with milliseconds (the runtime's Timer).
  virtual double Timer() const = 0;
  // Seconds since midnight of the day the host started; unlike Timer it
  // keeps growing past midnight. Waits measure with it, so that a pause
  // spanning midnight lasts as long as any other.
  virtual double Clock() const = 0;
  virtual CivilTime Now() const = 0;

  // Yields once to the message loop: runs what is due. A plain yield
  // (wake_by 0) returns at once when nothing is due. A wait passes
  // `wake_by` (a Clock() value): when nothing is due, the host may sleep
  // until the next thing that is, but never past wake_by.
  virtual void DoEvents(double wake_by = 0) = 0;

  // How long a wait may sleep between two polls of a condition when
  // nothing has happened: 10 ms. A host that hears of the client's windows
  // changing wakes the wait when they do, and polls less often for what
  // changes without a word.
  virtual double PollSeconds() const { return 0.01; }

  // Runs `fn` from the message loop after `delay_seconds` (0: as soon as
  // the loop next runs). Used by the simulated client and scenario drivers.
  virtual void Schedule(double delay_seconds, std::function<void()> fn) = 0;

  // A timer whose handler runs from the message loop every interval while
  // enabled. Created disabled.
  virtual std::unique_ptr<HostTimer> CreateTimer(
      std::function<void()> on_tick) = 0;
};

}  // namespace quorvex
