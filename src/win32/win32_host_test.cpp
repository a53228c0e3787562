#include "win32/win32_host.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace quorvex::win32 {
namespace {

TEST(Win32HostTest, TheClockFollowsTheDayAndWaitsEndWhenSomethingFallsDue) {
  Win32Host host;
  const CivilTime now = host.Now();
  const double timer = host.Timer();
  EXPECT_NEAR(timer, now.hour * 3600 + now.minute * 60 + now.second, 2.0);
  EXPECT_GE(host.Clock(), timer - 2.0);

  std::vector<std::string> ran;
  host.Schedule(0.05, [&] { ran.push_back("later"); });
  host.Schedule(0, [&] { ran.push_back("now"); });
  host.DoEvents();  // a plain yield runs only what is due
  EXPECT_EQ(ran, std::vector<std::string>{"now"});

  // A wait sleeps until the next thing due, not to its far end.
  const double start = host.Clock();
  while (ran.size() < 2) host.DoEvents(start + 30);
  EXPECT_LT(host.Clock() - start, 10.0);
  EXPECT_EQ(ran.back(), "later");
}

TEST(Win32HostTest, ASpedUpClockRunsThatManyTimesFasterThanTheWallClock) {
  Win32Host wall, fast(20);
  const double wall0 = wall.Clock(), fast0 = fast.Clock();
  // Two seconds of the fast clock: a tenth of a second of sleep.
  const double end = fast0 + 2;
  while (fast.Clock() < end) fast.DoEvents(end);
  const double ratio = (fast.Clock() - fast0) / (wall.Clock() - wall0);
  EXPECT_NEAR(ratio, 20, 1);
  // The time of day is the day's, whatever the pace.
  EXPECT_NEAR(fast.Timer(), wall.Timer(), 1);
}

TEST(Win32HostTest, DoEventsDispatchesMessagesAndTimersNeverReEnter) {
  Win32Host host;
  static std::vector<UINT> got;
  got.clear();
  WNDCLASSW wc{};
  wc.lpfnWndProc = [](HWND h, UINT m, WPARAM w, LPARAM l) -> LRESULT {
    if (m == WM_APP) got.push_back(m);
    return ::DefWindowProcW(h, m, w, l);
  };
  wc.hInstance = ::GetModuleHandleW(nullptr);
  wc.lpszClassName = L"QvHostTest";
  ::RegisterClassW(&wc);
  HWND w = ::CreateWindowExW(0, L"QvHostTest", L"", 0, 0, 0, 0, 0, HWND_MESSAGE,
                             nullptr, wc.hInstance, nullptr);
  ASSERT_NE(w, nullptr);
  ::PostMessageW(w, WM_APP, 0, 0);
  host.DoEvents();
  EXPECT_EQ(got, std::vector<UINT>{WM_APP});

  // A handler that yields for longer than its interval is not called
  // again from inside itself; the other timer keeps ticking meanwhile.
  int depth = 0, max_depth = 0, ticks = 0, other = 0;
  std::unique_ptr<HostTimer> slow;
  slow = host.CreateTimer([&] {
    ++ticks;
    max_depth = std::max(max_depth, ++depth);
    const double until = host.Clock() + 0.1;
    while (host.Clock() < until) host.DoEvents(until);
    if (ticks == 3) slow->SetEnabled(false);
    --depth;
  });
  auto fast = host.CreateTimer([&] { ++other; });
  slow->SetInterval(1);
  fast->SetInterval(5);
  EXPECT_FALSE(slow->enabled());
  slow->SetEnabled(true);
  fast->SetEnabled(true);
  const double end = host.Clock() + 5;
  while (slow->enabled() && host.Clock() < end) host.DoEvents(end);
  EXPECT_EQ(ticks, 3);
  EXPECT_EQ(max_depth, 1);
  EXPECT_GT(other, 3);
  ::DestroyWindow(w);
}

}  // namespace
}  // namespace quorvex::win32
