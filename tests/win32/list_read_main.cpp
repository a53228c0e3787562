// qv_win32_list_read: what reading the mailbox's titles through the
// binding costs, title by title, against the stand-in client in another
// process. Printed, in wall-clock microseconds a title: the whole read as
// a start makes it (LoadMailbox), then its parts one at a time over the
// same titles: a message the client does not answer itself (the bare
// round trip between the processes), the count, the length, a title as
// a forward reads it (the count, the length and the text), and the
// program's own yield. A benchmark: nothing is checked against a limit.
//
//   qv_win32_list_read [--mails N (5000)] [--speed F (5)] [--rounds R (1)]
#include <windows.h>

#include <cstdio>
#include <functional>
#include <string>

#include "client/client_tree.h"
#include "client/mailbox.h"
#include "client/window_ops.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/client_windows.h"
#include "settings/settings.h"
#include "standin_process.h"
#include "win32/win32_host.h"
#include "win32/win32_window_api.h"

namespace {

using namespace quorvex;

double Wall() { return test::StandInProcess::WallSeconds(); }

// Microseconds a call of `step`, over `n` calls.
double PerCall(int n, const std::function<void(int)>& step) {
  const double start = Wall();
  for (int i = 0; i < n; ++i) step(i);
  return (Wall() - start) * 1e6 / n;
}

}  // namespace

int main(int argc, char** argv) {
  int mails = 5000, rounds = 1;
  double speed = 5;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string k = argv[i];
    if (k == "--mails") mails = std::stoi(argv[i + 1]);
    if (k == "--speed") speed = std::stod(argv[i + 1]);
    if (k == "--rounds") rounds = std::stoi(argv[i + 1]);
  }
  test::StandInProcess standin("--launch --mails " + std::to_string(mails) +
                                   " --speed " + std::to_string(speed),
                               600);
  if (!standin.running()) {
    std::fprintf(stderr, "the stand-in client did not start\n");
    return 1;
  }
  win32::Win32Host host(speed);
  win32::Win32WindowApi api;
  Settings settings;
  ClientContext c{api, host, settings, nullptr};
  StatusStrip status;

  std::printf("%d titles, both clocks %g times the wall clock\n", mails, speed);
  for (int round = 0; round < rounds; ++round) {
    ListBox list("lstMails");
    const double start = Wall();
    LoadMailbox(c, list, true, status);
    const double read = Wall() - start;
    std::printf(
        "read as a start reads it: %.0f us a title (%d titles in %.1f s)\n",
        read * 1e6 / list.Count(), list.Count(), read);
  }
  const Hwnd tree =
      FindChild(api, FindDocument(api, kIncomingMail), aol::kTreeClass);
  const int n = GetMailCount(api);
  std::printf("  bare round trip (WM_NULL): %.0f us\n",
              PerCall(n, [&](int) { api.SendMessageA(tree, WM_NULL, 0, 0); }));
  std::printf("  LB_GETCOUNT: %.0f us\n", PerCall(n, [&](int) {
                api.SendMessageA(tree, win::kLbGetCount, 0, 0);
              }));
  std::printf("  LB_GETTEXTLEN: %.0f us\n", PerCall(n, [&](int i) {
                api.SendMessageA(tree, win::kLbGetTextLen,
                                 static_cast<std::uintptr_t>(i), 0);
              }));
  std::printf(
      "  a title as a forward reads it (count, length, text): %.0f us\n",
      PerCall(n, [&](int i) { GetMailTitle(api, i); }));
  std::printf("  the yield (DoEvents): %.0f us\n",
              PerCall(n, [&](int) { host.DoEvents(); }));
  return 0;
}
