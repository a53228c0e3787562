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

std::vector<UINT> got;
// The system's calling convention (a lambda has the C++ one, which
// differs in a 32-bit program).
LRESULT CALLBACK RecordApp(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_APP) got.push_back(m);
  return ::DefWindowProcW(h, m, w, l);
}

TEST(Win32HostTest, DoEventsDispatchesMessagesAndTimersNeverReEnter) {
  Win32Host host;
  got.clear();
  WNDCLASSW wc{};
  wc.lpfnWndProc = RecordApp;
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

TEST(Win32HostTest, ASpeedRunsTheClockThatManyTimesAsFastFromWhereItStood) {
  Win32Host host;
  const double before = host.Clock();
  host.SetSpeed(1000);
  const double from = host.Clock();
  EXPECT_GE(from, before);
  // At least 50 ms of the wall pass, so at least 50 s of the clock.
  ::Sleep(50);
  EXPECT_GE(host.Clock() - from, 49.0);
  // A call scheduled a minute ahead comes within a wait of a minute.
  bool ran = false;
  host.Schedule(60, [&] { ran = true; });
  const double until = host.Clock() + 120;
  while (!ran && host.Clock() < until) host.DoEvents(until);
  EXPECT_TRUE(ran);
}

TEST(Win32HostTest, WhatAHandlerThrowsComesOutOfDoEventsAndTheHostGoesOn) {
  Win32Host host;
  struct Thrown {};
  // From a scheduled call, whichever way the host ran it (directly, or from
  // its wake window's timer message), and from a timer.
  for (int round = 0; round < 3; ++round) {
    host.Schedule(0.02 * round, [] { throw Thrown{}; });
    bool caught = false;
    const double end = host.Clock() + 5;
    while (!caught && host.Clock() < end) {
      try {
        host.DoEvents(end);
      } catch (const Thrown&) {
        caught = true;
      }
    }
    EXPECT_TRUE(caught) << round;
  }
  int ticks = 0;
  auto timer = host.CreateTimer([&] {
    if (++ticks == 1) throw Thrown{};
  });
  timer->SetInterval(20);
  timer->SetEnabled(true);
  bool caught = false;
  const double end = host.Clock() + 5;
  while (ticks < 3 && host.Clock() < end) {
    try {
      host.DoEvents(end);
    } catch (const Thrown&) {
      caught = true;
    }
  }
  EXPECT_TRUE(caught);
  // The timer that threw ticks on.
  EXPECT_GE(ticks, 3);
}

}  // namespace
}  // namespace quorvex::win32
