#include "desktop/message_pump.h"

#include <windows.h>

#include <algorithm>

namespace quorvex::desktop {

MessagePump::MessagePump(VirtualHost& host, double speed)
    : host_(host),
      speed_(std::max(speed, 0.01)),
      start_(std::chrono::steady_clock::now()) {
  host_.SetPacer([this](double, double to) { Pace(to); });
}

void MessagePump::Post(std::function<void()> fn) {
  host_.Schedule(0, std::move(fn));
  woken_ = true;
}

void MessagePump::Pace(double virtual_seconds) {
  const auto target = start_ + std::chrono::microseconds(static_cast<long long>(
                                   virtual_seconds / speed_ * 1e6));
  while (!quit_) {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      if (msg.message == WM_QUIT) {
        quit_ = true;
        return;
      }
      TranslateMessage(&msg);
      DispatchMessageW(&msg);
    }
    if (woken_) {
      // An action waits: the clock may run ahead of the wall for it.
      woken_ = false;
      return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now >= target) return;
    const auto wait =
        std::chrono::duration_cast<std::chrono::milliseconds>(target - now);
    MsgWaitForMultipleObjectsEx(0, nullptr,
                                static_cast<DWORD>(wait.count()) + 1,
                                QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  }
}

void MessagePump::Run() {
  // The host jumps to its next due moment; a short slice keeps the
  // windows answering when nothing is due for a long time.
  while (!quit_) {
    try {
      host_.RunUntil(host_.Elapsed() + 0.05);
    } catch (const RunEnded&) {
      return;
    }
  }
}

}  // namespace quorvex::desktop
