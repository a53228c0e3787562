#include "server/mail_window_sizes.h"

#include <functional>
#include <utility>

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

// The frame's Window menu and its "Forget Window Size and Position".
constexpr int kWindowMenu = 2;
constexpr int kForgetSize = 6;
// How long each window may take to come before the clean-up gives up.
constexpr double kWindowSeconds = 60;

}  // namespace

void ForgetMailWindowSizes(const ClientContext& c) {
  WindowApi& api = c.api;
  const WaitOptions signed_on{.give_up = SignedOff(api)};

  Hwnd box = 0;
  WaitEnd end = WaitUntil(
      c.host,
      [&] {
        if ((box = FindDocument(api, kIncomingMail)) != 0) return true;
        OpenOfflineMailbox(c);
        Pause(c.host, 0.8);
        return (box = FindDocument(api, kIncomingMail)) != 0;
      },
      signed_on);
  if (end != WaitEnd::kMet) return;
  MinimizeWindow(api, box);
  DoEvents(c.host, 2);

  // Any mail will do: the first one is there whenever the box is not empty.
  // Asked again at a pace: a slow client answers each request with one
  // more window.
  auto open = [&] { OpenMail(c, 0); };
  const WaitOptions nudged = AskingAgain(SignedOff(api), open, kWindowSeconds);
  open();
  // The mail's window with its Forward icon, which the client makes after
  // the window.
  Hwnd forward_icon = 0;
  end = WaitUntil(
      c.host,
      [&] {
        const Hwnd mail = FindOpenMail(api);
        forward_icon = mail ? FindNthChild(api, mail, aol::kIconClass,
                                           aol::kOpenMailForwardIcon)
                            : 0;
        return forward_icon != 0;
      },
      nudged);
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);

  ClickIcon(api, forward_icon);
  // Each click the busy client lost is made again, at the same pace.
  auto clicked_again = [&](std::function<void()> click) {
    return AskingAgain(SignedOff(api), std::move(click), kWindowSeconds);
  };
  end = WaitUntil(
      c.host, [&] { return FindComposeWindow(api) != 0; },
      clicked_again([&] { ClickIcon(api, forward_icon); }));
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);
  CloseAll(c, FindComposeWindow);
  CloseAll(c, FindOpenMail);

  const Hwnd write_icon = FindToolbarIcon(api, aol::kToolbarWriteIcon);
  PostClickIcon(api, write_icon);
  end = WaitUntil(
      c.host, [&] { return FindWriteMail(api) != 0; },
      clicked_again([&] { PostClickIcon(api, write_icon); }));
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);
  CloseAll(c, FindWriteMail);
}

}  // namespace quorvex
