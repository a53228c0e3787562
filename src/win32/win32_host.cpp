#include "win32/win32_host.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace quorvex::win32 {

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();
// A timer ticks at most once per tick of the system clock, as the old
// runtime's timers did on the Windows the client ran on (about 18 times a
// second): a 1 ms serving timer that polled the client a thousand times a
// second would take a tenth of a core while nothing happens.
constexpr double kTimerTick = 0.055;
constexpr UINT_PTR kWakeTimer = 1;
// The shortest time between two wakes by windows changing.
constexpr double kMinChangeWake = 0.01;
// The host whose waits the window hook wakes (the thread's one).
thread_local Win32Host* g_watching = nullptr;
const wchar_t kWakeClass[] = L"QuorvexHostWake";

double SecondsSinceMidnight(const SYSTEMTIME& t) {
  return t.wHour * 3600.0 + t.wMinute * 60.0 + t.wSecond +
         t.wMilliseconds / 1000.0;
}

}  // namespace

class Win32Host::TimerImpl : public HostTimer {
 public:
  TimerImpl(Win32Host& host, std::function<void()> on_tick)
      : host_(host), on_tick_(std::move(on_tick)) {
    host_.timers_.push_back(this);
  }
  ~TimerImpl() override {
    auto& t = host_.timers_;
    t.erase(std::remove(t.begin(), t.end(), this), t.end());
  }
  void SetInterval(int milliseconds) override {
    interval_ = std::max(milliseconds, 0);
    if (enabled_) Restart();
  }
  int interval() const override { return interval_; }
  void SetEnabled(bool enabled) override {
    enabled_ = enabled;
    if (enabled) Restart();
  }
  bool enabled() const override { return enabled_; }

  // Runs the handler when due and not already running; true when it ran.
  bool RunIfDue(double now) {
    if (!enabled_ || running_ || interval_ <= 0 || now < due_) return false;
    running_ = true;
    // The next tick counts from the end of this one: a slow handler is
    // not called again at once to catch up. One that throws ticks again.
    struct Done {
      TimerImpl& t;
      ~Done() {
        t.running_ = false;
        t.due_ = t.host_.Clock() + t.Period();
      }
    } done{*this};
    on_tick_();
    return true;
  }
  double due() const {
    return enabled_ && !running_ && interval_ > 0 ? due_ : kNever;
  }

 private:
  double Period() const { return std::max(interval_ / 1000.0, kTimerTick); }
  void Restart() {
    due_ = host_.Clock() + Period();
    host_.Arm();
  }

  Win32Host& host_;
  std::function<void()> on_tick_;
  int interval_ = 0;
  bool enabled_ = false;
  bool running_ = false;
  double due_ = 0;
};

Win32Host::Win32Host(double speed) : speed_(std::max(speed, 0.01)) {
  LARGE_INTEGER f, c;
  ::QueryPerformanceFrequency(&f);
  ::QueryPerformanceCounter(&c);
  freq_ = f.QuadPart > 0 ? f.QuadPart : 1;
  start_count_ = c.QuadPart;
  SYSTEMTIME t;
  ::GetLocalTime(&t);
  start_clock_ = SecondsSinceMidnight(t);

  HINSTANCE inst = ::GetModuleHandleW(nullptr);
  WNDCLASSW wc{};
  wc.lpfnWndProc = reinterpret_cast<WNDPROC>(&Win32Host::WakeProc);
  wc.hInstance = inst;
  wc.lpszClassName = kWakeClass;
  ::RegisterClassW(&wc);  // fails harmlessly when already registered
  HWND w = ::CreateWindowExW(0, kWakeClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE,
                             nullptr, inst, nullptr);
  ::SetWindowLongPtrW(w, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  wake_window_ = w;
}

Win32Host::~Win32Host() {
  if (window_hook_) {
    ::UnhookWinEvent(static_cast<HWINEVENTHOOK>(window_hook_));
    if (g_watching == this) g_watching = nullptr;
  }
  if (wake_window_) ::DestroyWindow(static_cast<HWND>(wake_window_));
}

bool Win32Host::WakeOnWindowChanges(double fallback_seconds) {
  if (!window_hook_) {
    // The hook's calls come to this thread as it takes its messages.
    window_hook_ = ::SetWinEventHook(
        EVENT_OBJECT_CREATE, EVENT_OBJECT_NAMECHANGE, nullptr,
        reinterpret_cast<WINEVENTPROC>(&Win32Host::OnWindowEvent), 0, 0,
        WINEVENT_OUTOFCONTEXT | WINEVENT_SKIPOWNPROCESS);
    if (!window_hook_) return false;
    g_watching = this;
  }
  poll_seconds_ = std::max(fallback_seconds, 0.01);
  return true;
}

void __stdcall Win32Host::OnWindowEvent(void*, unsigned long, void*, long, long,
                                        unsigned long, unsigned long) {
  if (g_watching) g_watching->windows_changed_ = true;
}

double Win32Host::Clock() const {
  LARGE_INTEGER c;
  ::QueryPerformanceCounter(&c);
  return start_clock_ + speed_ *
                            static_cast<double>(c.QuadPart - start_count_) /
                            static_cast<double>(freq_);
}

double Win32Host::WallMsUntil(double clock) const {
  return std::max(0.0, std::ceil((clock - Clock()) * 1000.0 / speed_));
}

void Win32Host::SetSpeed(double speed) {
  // The clock goes on from where it stands.
  const double now = Clock();
  LARGE_INTEGER c;
  ::QueryPerformanceCounter(&c);
  start_count_ = c.QuadPart;
  start_clock_ = now;
  speed_ = std::max(speed, 0.01);
  Arm();
}

double Win32Host::Timer() const {
  SYSTEMTIME t;
  ::GetLocalTime(&t);
  return SecondsSinceMidnight(t);
}

CivilTime Win32Host::Now() const {
  SYSTEMTIME t;
  ::GetLocalTime(&t);
  return {t.wYear,   t.wMonth,  t.wDay,         t.wHour,
          t.wMinute, t.wSecond, t.wMilliseconds};
}

void Win32Host::Schedule(double delay_seconds, std::function<void()> fn) {
  scheduled_.emplace(Clock() + std::max(delay_seconds, 0.0),
                     Pending{seq_++, std::move(fn)});
  Arm();
}

std::unique_ptr<HostTimer> Win32Host::CreateTimer(
    std::function<void()> on_tick) {
  return std::make_unique<TimerImpl>(*this, std::move(on_tick));
}

double Win32Host::NextDue() const {
  double next = scheduled_.empty() ? kNever : scheduled_.begin()->first;
  for (const TimerImpl* t : timers_) next = std::min(next, t->due());
  return next;
}

bool Win32Host::RunDue() {
  // Nothing more runs until what was thrown has come out.
  if (pending_exception_) return false;
  bool ran = false;
  const double now = Clock();
  // Only what was due when we started: a call that schedules another at
  // once does not keep this loop going.
  const std::uint64_t limit = seq_;
  for (auto it = scheduled_.begin();
       it != scheduled_.end() && it->first <= now;) {
    if (it->second.seq >= limit) {
      ++it;
      continue;
    }
    auto fn = std::move(it->second.fn);
    scheduled_.erase(it);
    fn();
    ran = true;
    it = scheduled_.begin();
  }
  // A handler may delete timers: walk a copy and check each is still here.
  const std::vector<TimerImpl*> timers = timers_;
  for (TimerImpl* t : timers) {
    if (std::find(timers_.begin(), timers_.end(), t) == timers_.end()) continue;
    ran |= t->RunIfDue(now);
  }
  Arm();
  return ran;
}

void Win32Host::Arm() {
  if (!wake_window_) return;
  const double next = NextDue();
  HWND w = static_cast<HWND>(wake_window_);
  if (next == kNever) {
    ::KillTimer(w, kWakeTimer);
    return;
  }
  const double ms = WallMsUntil(next);
  ::SetTimer(w, kWakeTimer,
             static_cast<UINT>(
                 std::clamp(ms, double{USER_TIMER_MINIMUM}, 2147483647.0)),
             nullptr);
}

bool Win32Host::PumpMessages() {
  bool any = false;
  MSG msg;
  while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    any = true;
    if (msg.message == WM_QUIT) {
      quit_ = true;
      exit_code_ = static_cast<int>(msg.wParam);
      continue;
    }
    if (filter_ && filter_(&msg)) continue;
    ::TranslateMessage(&msg);
    ::DispatchMessageW(&msg);
    RethrowPending();
  }
  return any;
}

void Win32Host::RethrowPending() {
  if (pending_exception_)
    std::rethrow_exception(std::exchange(pending_exception_, nullptr));
}

void Win32Host::DoEvents(double wake_by) {
  ++depth_;
  bool any = PumpMessages();
  any |= RunDue();
  // A window that changed wakes the wait: it polls again, at once but not
  // more often than every 10 ms (another program making windows all the
  // time must not turn the wait into a spin).
  double until = NextDue();
  if (windows_changed_) {
    const double now = Clock();
    if (now - last_change_wake_ >= kMinChangeWake) {
      windows_changed_ = false;
      last_change_wake_ = now;
      any = true;
    } else {
      until = std::min(until, last_change_wake_ + kMinChangeWake);
    }
  }
  if (!any && wake_by > 0 && !quit_) {
    until = std::min(wake_by, until);
    const double wait_ms = WallMsUntil(until);
    if (wait_ms > 0) {
      ::MsgWaitForMultipleObjectsEx(
          0, nullptr, static_cast<DWORD>(std::min(wait_ms, 86400000.0)),
          QS_ALLINPUT, MWMO_INPUTAVAILABLE);
      PumpMessages();
      RunDue();
    }
  }
  --depth_;
}

int Win32Host::Run() {
  while (!quit_) DoEvents(Clock() + 3600);
  return exit_code_;
}

void Win32Host::Quit(int exit_code) {
  quit_ = true;
  exit_code_ = exit_code;
  ::PostQuitMessage(exit_code);
}

std::intptr_t __stdcall Win32Host::WakeProc(void* hwnd, unsigned msg,
                                            std::uintptr_t wparam,
                                            std::intptr_t lparam) {
  HWND w = static_cast<HWND>(hwnd);
  if (msg == WM_TIMER && wparam == kWakeTimer) {
    auto* host =
        reinterpret_cast<Win32Host*>(::GetWindowLongPtrW(w, GWLP_USERDATA));
    if (host) {
      try {
        host->RunDue();
      } catch (...) {
        host->pending_exception_ = std::current_exception();
      }
    }
    return 0;
  }
  return ::DefWindowProcW(w, msg, wparam, lparam);
}

}  // namespace quorvex::win32
