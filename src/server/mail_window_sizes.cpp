#include "server/mail_window_sizes.h"

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
  const WaitOptions nudged{.give_up = SignedOff(api),
                           .repeat = open,
                           .pace = kAskAgainSeconds,
                           .pace_max = kAskAgainMaxSeconds,
                           .within = kWindowSeconds};
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
  WaitOptions click_again = nudged;
  click_again.repeat = [&] { ClickIcon(api, forward_icon); };
  end = WaitUntil(
      c.host, [&] { return FindComposeWindow(api) != 0; }, click_again);
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);
  CloseAll(c, FindComposeWindow);
  CloseAll(c, FindOpenMail);

  const Hwnd write_icon = FindToolbarIcon(api, aol::kToolbarWriteIcon);
  PostClickIcon(api, write_icon);
  click_again.repeat = [&] { PostClickIcon(api, write_icon); };
  end = WaitUntil(
      c.host, [&] { return FindWriteMail(api) != 0; }, click_again);
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);
  CloseAll(c, FindWriteMail);
}

}  // namespace quorvex
