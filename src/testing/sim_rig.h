// A simulated client ready to drive in virtual time, with the window paths
// the program walks, for tests of anything that talks to the client.
#pragma once

#include <string>

#include "ports/client_windows.h"
#include "ports/virtual_host.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"
#include "testing/sim_recorder.h"

namespace quorvex {

struct SimRig {
  explicit SimRig(std::uint64_t seed = 1) : client(host, world, seed) {
    client.SetObserver(&events);
  }

  // Lets `seconds` of virtual time pass, running what falls due.
  void Run(double seconds) { host.RunUntil(host.Elapsed() + seconds); }

  Hwnd Frame() { return client.FindWindowA(aol::kFrameClass, nullptr); }
  Hwnd Mdi() {
    return client.FindWindowExA(Frame(), 0, aol::kMdiClass, nullptr);
  }
  Hwnd Doc(const char* caption) {
    return client.FindWindowExA(Mdi(), 0, aol::kChildClass, caption);
  }
  Hwnd Nth(Hwnd parent, const char* class_name, int n, Hwnd after = 0) {
    Hwnd h = after;
    for (int i = 0; i < n; ++i)
      h = client.FindWindowExA(parent, h, class_name, nullptr);
    return h;
  }
  Hwnd ToolbarIcon(int n) {
    Hwnd strip =
        client.FindWindowExA(Frame(), 0, aol::kToolbarFrameClass, nullptr);
    Hwnd row = client.FindWindowExA(strip, 0, aol::kToolbarClass, nullptr);
    return Nth(row, aol::kIconClass, n);
  }
  std::string Text(Hwnd h) {
    auto n = client.SendMessageA(h, win::kWmGetTextLength, 0, 0);
    std::string out;
    client.SendMessageGetText(h, win::kWmGetText,
                              static_cast<std::size_t>(n) + 1, &out,
                              static_cast<std::size_t>(n) + 1);
    return out;
  }
  void SetText(Hwnd h, const std::string& text) {
    client.SendMessageSetText(h, win::kWmSetText, 0, text);
  }
  void Click(Hwnd h) {
    client.SendMessageA(h, win::kWmLButtonDown, 0, 0);
    client.SendMessageA(h, win::kWmLButtonUp, 0, 0);
  }
  void PostClick(Hwnd h) {
    client.PostMessageA(h, win::kWmLButtonDown, 0, 0);
    client.PostMessageA(h, win::kWmLButtonUp, 0, 0);
  }
  void PostKey(Hwnd h, int vk) {
    client.PostMessageA(h, win::kWmKeyDown, static_cast<std::uintptr_t>(vk), 0);
    client.PostMessageA(h, win::kWmKeyUp, static_cast<std::uintptr_t>(vk), 0);
  }
  // Runs an address through the keyword box, as the program does.
  void Keyword(const std::string& address) {
    Hwnd strip =
        client.FindWindowExA(Frame(), 0, aol::kToolbarFrameClass, nullptr);
    Hwnd row = client.FindWindowExA(strip, 0, aol::kToolbarClass, nullptr);
    Hwnd combo = client.FindWindowExA(row, 0, aol::kComboClass, nullptr);
    Hwnd edit = client.FindWindowExA(combo, 0, "Edit", nullptr);
    SetText(edit, address);
    client.SendMessageA(edit, win::kWmChar, ' ', 0);
    client.SendMessageA(edit, win::kWmChar, '\r', 0);
  }

  VirtualHost host;
  SimWorld world;
  SimRecorder events;
  SimClient client;
};

}  // namespace quorvex
