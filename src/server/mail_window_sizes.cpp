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
constexpr int kNudgeRounds = 200;  // rounds between repeated clicks

Hwnd FindWriteMail(WindowApi& api) { return FindDocument(api, kWriteMail); }

// Closes every window the finder finds.
void CloseAll(const ClientContext& c, Hwnd (*find)(WindowApi&)) {
  WaitUntil(c.host,
            [&] {
              const Hwnd w = find(c.api);
              if (w) CloseWindow(c.api, w);
              return w == 0;
            },
            {.give_up = SignedOff(c.api)});
}

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
  Hwnd mail = 0;
  end = WaitUntil(
      c.host,
      [&] {
        OpenMail(c, 0);
        return (mail = FindOpenMail(api)) != 0;
      },
      signed_on);
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);

  const Hwnd forward_icon =
      FindNthChild(api, mail, aol::kIconClass, aol::kOpenMailForwardIcon);
  ClickIcon(api, forward_icon);
  end = WaitUntil(c.host, [&] { return FindComposeWindow(api) != 0; },
                  {.give_up = SignedOff(api),
                   .every = kNudgeRounds,
                   .repeat = [&] { ClickIcon(api, forward_icon); }});
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);
  CloseAll(c, FindComposeWindow);
  CloseAll(c, FindOpenMail);

  const Hwnd write_icon = FindToolbarIcon(api, aol::kToolbarWriteIcon);
  PostClickIcon(api, write_icon);
  end = WaitUntil(c.host, [&] { return FindWriteMail(api) != 0; },
                  {.give_up = SignedOff(api),
                   .every = kNudgeRounds,
                   .repeat = [&] { PostClickIcon(api, write_icon); }});
  if (end != WaitEnd::kMet) return;
  RunClientMenu(api, kWindowMenu, kForgetSize);
  CloseAll(c, FindWriteMail);
}

}  // namespace quorvex
