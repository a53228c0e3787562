#include "client/mail_send.h"

#include <string>

#include "client/client_tree.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

// How long the previous "Write Mail" window may take to go out.
constexpr double kPreviousMailSeconds = 60;

enum class Send { kNowThenLater, kNow, kUntilSent };

// A click that lands while the client is busy is lost, so every send is
// clicked several times; clicks on a window already closed do nothing.
void ClickTimes(const ClientContext& c, Hwnd icon, int times) {
  for (int i = 0; i < times; ++i) {
    ClickIcon(c.api, icon);
    DoEvents(c.host, 2);
  }
}

void PostEscape(WindowApi& api, Hwnd frame) {
  PostKey(api, frame, win::kVkEscape);
}

void ShrinkStatusWindow(WindowApi& api) {
  if (const Hwnd status = FindDocument(api, "Status"))
    ShrinkWindow(api, status);
}

struct MailControls {
  Hwnd edit[3] = {0, 0, 0};
  Hwnd body = 0, combo = 0, font = 0;
  Hwnd send_now = 0, send_later = 0;

  void Find(WindowApi& api, Hwnd window, int send_now_at, bool with_later) {
    for (int i = 0; i < 3; ++i)
      edit[i] = FindNthChild(api, window, aol::kEditClass, i + 1);
    body = FindChild(api, window, aol::kRichTextClass);
    combo = FindChild(api, window, aol::kComboClass);
    font = FindChild(api, window, "_AOL_Fontcombo");
    send_now = FindNthChild(api, window, aol::kIconClass, send_now_at);
    send_later =
        with_later ? FindNthChild(api, window, aol::kIconClass, send_now_at + 1)
                   : 0;
  }
};

bool Forward(const ClientContext& c, std::string_view recipients, Hwnd window,
             std::string_view body, Send how) {
  WindowApi& api = c.api;
  const bool later = how == Send::kNowThenLater;
  const Hwnd frame = FindFrame(api);
  const std::string caption = GetText(api, window);

  MailControls mail;
  if (WaitUntil(c.host,
                [&] {
                  mail.Find(api, window, aol::kForwardSendNowIcon, later);
                  // Icons are counted by position: a window still being
                  // built must not pass its first ones off as these.
                  for (int i = 1; i <= 4; ++i)
                    if (mail.send_later ==
                        FindNthChild(api, window, aol::kIconClass, i))
                      return false;
                  return mail.body && mail.combo &&
                         GetText(api, mail.send_now) == "Send Now" &&
                         (!later ||
                          GetText(api, mail.send_later) == "Send Later");
                },
                // A window closed under it (a start clears the client's
                // mail windows) never gets its icons.
                {.give_up = [&api, off = SignedOff(api), window] {
                  return off() || !api.IsWindow(window);
                }}) != WaitEnd::kMet)
    return false;

  const std::string text = c.ExpandInserts(std::string(body));
  SetText(api, mail.edit[0], recipients);
  c.host.DoEvents();
  SetText(api, mail.edit[2], caption.size() > 4 ? caption.substr(4) : "");
  c.host.DoEvents();
  SetText(api, mail.body, text);
  DoEvents(c.host, 2);
  PostEscape(api, frame);
  DoEvents(c.host, 2);

  if (later) {
    ClickTimes(c, mail.send_now, 3);
    PostEscape(api, frame);
    DoEvents(c.host, 2);
    ClickTimes(c, mail.send_later, 8);
  } else {
    ClickTimes(c, mail.send_now, 5);
    PostEscape(api, frame);
  }
  ShrinkStatusWindow(api);
  return true;
}

// A "Write Mail" window still open is the previous mail going out: a new
// one asked for now would be found as that one and written into, and the
// previous mail lost. Waits until it has gone, clicking its Send Now again
// at a pace in case every click was lost. One without recipients is no
// mail going out (a slow client answered a repeated click late) and is
// closed at once; one still there after a minute (a person's draft) too.
// False when signed off.
bool WaitForPreviousWrite(const ClientContext& c) {
  WindowApi& api = c.api;
  auto none_left = [&] {
    Hwnd w = FindWriteMail(api);
    while (w != 0 &&
           GetText(api, FindNthChild(api, w, aol::kEditClass, 1)).empty()) {
      CloseWindow(api, w);
      const Hwnd next = FindWriteMail(api);
      if (next == w) break;  // it would not close
      w = next;
    }
    return w == 0;
  };
  const WaitEnd end =
      WaitUntil(c.host, none_left,
                AskingAgain(
                    SignedOff(api),
                    [&] {
                      const Hwnd send_now =
                          FindNthChild(api, FindWriteMail(api), aol::kIconClass,
                                       aol::kWriteSendNowIcon);
                      if (GetText(api, send_now) == "Send Now")
                        ClickIcon(api, send_now);
                    },
                    kPreviousMailSeconds));
  if (end == WaitEnd::kGaveUp) return false;
  if (end == WaitEnd::kOutOfTime) {
    return WaitUntil(c.host, [&] { return FindWriteMail(api) == 0; },
                     {.give_up = SignedOff(api), .every = 1, .repeat = [&] {
                        CloseWindow(api, FindWriteMail(api));
                      }}) == WaitEnd::kMet;
  }
  return true;
}

void Write(const ClientContext& c, std::string_view recipients,
           std::string_view subject, std::string_view body, Send how) {
  WindowApi& api = c.api;
  const bool later = how == Send::kNowThenLater;
  if (!WaitForPreviousWrite(c)) return;
  const Hwnd frame = FindFrame(api);
  const Hwnd write_icon = FindToolbarIcon(api, aol::kToolbarWriteIcon);
  PostClickIcon(api, write_icon);

  MailControls mail;
  Hwnd window = 0;
  if (WaitUntil(
          c.host,
          [&] {
            window = FindWriteMail(api);
            mail.Find(api, window, aol::kWriteSendNowIcon, true);
            return !GetText(api, mail.send_now).empty() &&
                   (!later || !GetText(api, mail.send_later).empty());
          },
          // Asked again only while no window has come: one that
          // came is still filling in its icons.
          AskingAgain(SignedOff(api), [&] {
            if (!FindWriteMail(api)) PostClickIcon(api, write_icon);
          })) != WaitEnd::kMet)
    return;

  SetText(api, mail.edit[0], recipients);
  SetText(api, mail.edit[2], subject);
  SetText(api, mail.body, c.ExpandInserts(std::string(body)));

  switch (how) {
    case Send::kNowThenLater:
      PostEscape(api, frame);
      DoEvents(c.host, 2);
      ClickTimes(c, mail.send_now, 3);
      PostEscape(api, frame);
      ClickTimes(c, mail.send_later, 8);
      break;
    case Send::kNow:
      ClickTimes(c, mail.send_now, 5);
      PostEscape(api, frame);
      break;
    case Send::kUntilSent:
      WaitUntil(c.host,
                [&] {
                  PauseSeconds(c.host, 0.6f);
                  ClickIcon(api, mail.send_now);
                  DoEvents(c.host, 2);
                  // Its own window: one more, empty, that a slow client
                  // opened late is not this mail.
                  return !api.IsWindow(window);
                },
                {.give_up = SignedOff(api)});
      break;
  }
  ShrinkStatusWindow(api);
}

}  // namespace

bool ForwardMail(const ClientContext& c, std::string_view recipients,
                 Hwnd forward_window, std::string_view body) {
  return Forward(c, recipients, forward_window, body, Send::kNowThenLater);
}

bool ForwardMailNow(const ClientContext& c, std::string_view recipients,
                    Hwnd forward_window, std::string_view body) {
  return Forward(c, recipients, forward_window, body, Send::kNow);
}

void WriteMail(const ClientContext& c, std::string_view recipients,
               std::string_view subject, std::string_view body) {
  Write(c, recipients, subject, body, Send::kNowThenLater);
}

void WriteMailNow(const ClientContext& c, std::string_view recipients,
                  std::string_view subject, std::string_view body) {
  Write(c, recipients, subject, body, Send::kNow);
}

void WriteMailUntilSent(const ClientContext& c, std::string_view recipients,
                        std::string_view subject, std::string_view body) {
  Write(c, recipients, subject, body, Send::kUntilSent);
}

}  // namespace quorvex
