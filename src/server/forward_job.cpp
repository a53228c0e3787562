#include "server/forward_job.h"

#include <algorithm>
#include <exception>

#include "client/chat_room.h"
#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mail_send.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "ports/client_windows.h"
#include "server/dead_mail.h"
#include "server/error_sweep.h"
#include "server/server_common.h"
#include "settings/random_number.h"

namespace quorvex {

namespace {

// How long the mail's window and its forward window may take to come.
constexpr double kMailWindowSeconds = 60;

// The open mail whose caption is the title: another mail window left open
// must not be forwarded in its place.
Hwnd FindMailWindow(WindowApi& api, const std::string& title) {
  return FindClientChildWhere(api, [&](Hwnd w) {
    return GetCaption(api, w) == title &&
           FindChild(api, w, aol::kRichTextClass) &&
           !FindChild(api, w, aol::kComboClass) &&
           !FindChild(api, w, aol::kFontComboClass) && !IsChatRoom(api, w);
  });
}

}  // namespace

std::string NotifyText(const MailJobContext& m, Host& host) {
  const ListBox& chat = m.messages.lstChat;
  if (chat.Empty()) return "sent";
  const int pick = RandomNumber(chat.Count(), host.Timer(), m.seed);
  return chat.Item(pick - 1);
}

bool CloseForwardWindow(WindowApi& api) {
  const Hwnd forward = FindForwardWindow(api);
  if (forward) CloseWindow(api, forward);
  return forward != 0;
}

namespace {

// Where mail `number` (1-based in lstMails) stands in the mailbox.
int MailboxPosition(const MailJobContext& m, int number) {
  // Without positions (a list filled by other means) numbers are positions.
  if (m.mailbox.mail_positions.size() !=
      static_cast<std::size_t>(m.mailbox.lstMails.Count()))
    return number - 1;
  return m.mailbox.mail_positions[static_cast<std::size_t>(number - 1)];
}

}  // namespace

std::string FirstRequester(std::string_view requesters) {
  const auto open = requesters.find('(');
  if (open == std::string_view::npos) return "";
  const auto close = requesters.find(')', open + 1);
  return std::string(requesters.substr(open + 1, close == std::string_view::npos
                                                     ? std::string_view::npos
                                                     : close - open - 1));
}

std::string ForwardBody(const MailJobContext& m,
                        const std::string& second_line) {
  const Settings& s = m.settings;
  return BannerLine(s) + s.LAscii + second_line + s.RAscii + "\r\n" +
         m.messages.mail_text().text + "\r\n";
}

Hwnd FindForwardWindow(WindowApi& api) {
  return FindClientChildWhere(api, [&](Hwnd w) {
    return GetCaption(api, w) != kWriteMail &&
           FindChild(api, w, aol::kRichTextClass) &&
           FindChild(api, w, aol::kStaticClass) &&
           FindChild(api, w, aol::kComboClass) &&
           FindChild(api, w, aol::kFontComboClass) && !IsChatRoom(api, w);
  });
}

bool ForwardMailNumber(const MailJobContext& m, const ClientContext& c,
                       int number, std::string_view recipients,
                       std::string_view body, const ForwardSteps& steps,
                       ForwardUnderWay& f) {
  WindowApi& api = c.api;
  f.StartForward();
  // The parser checks numbers against the mailbox; a mailbox that shrank
  // since would leave the job waiting for a mail that never opens.
  if (number < 1 || number > m.mailbox.lstMails.Count()) return false;
  const int position = MailboxPosition(m, number);
  const std::string title = m.mailbox.lstMails.Item(number - 1);

  m.status.Draw(steps.opening);
  // The mailbox stays open while serving; one closed by hand is reopened.
  auto open = [&] {
    if (!FindDocument(api, kIncomingMail)) {
      OpenOfflineMailbox(c);
      WaitUntil(c.host, [&] { return FindDocument(api, kIncomingMail) != 0; },
                {.give_up = SignedOff(api)});
    }
    OpenMail(c, position);
  };
  // Asked again at a pace a slow client can answer, and not for ever: a
  // mail whose window does not come is given up as a dead one.
  auto with_repeat = [&](std::function<void()> repeat) {
    return AskingAgain(SignedOff(api), std::move(repeat), kMailWindowSeconds);
  };
  auto give_up = [&](WaitEnd end) {
    if (end == WaitEnd::kOutOfTime) GiveUpDeadMail(m, c, f);
    return false;
  };

  open();
  // The mail's window with its Forward icon: the client makes a window's
  // controls after the window, and a click on an icon not made yet is
  // lost.
  Hwnd mail = 0;
  auto forward_icon = [&] {
    return FindNthChild(api, mail, aol::kIconClass, aol::kOpenMailForwardIcon);
  };
  WaitEnd end = WaitUntil(
      c.host,
      [&] {
        mail = FindMailWindow(api, title);
        return mail != 0 && forward_icon() != 0;
      },
      with_repeat(open));
  if (end != WaitEnd::kMet) return give_up(end);

  m.status.Draw(steps.forwarding);
  auto click_forward = [&] { ClickIcon(api, forward_icon()); };
  click_forward();
  Hwnd forward = 0;
  end = WaitUntil(
      c.host,
      [&] {
        forward = FindForwardWindow(api);
        return forward != 0;
      },
      with_repeat(click_forward));
  if (end != WaitEnd::kMet) return give_up(end);

  m.status.Draw(steps.sending);
  if (!(m.settings.MailMethod ? ForwardMail : ForwardMailNow)(c, recipients,
                                                              forward, body))
    return false;

  // The mail is the client's now, whatever cuts the wait below short.
  f.Handed();
  m.status.Draw(steps.sent);
  // The forward window goes first, the mail's window with or after it. A
  // forward still there long after its clicks had every one of them lost
  // on a busy client: its send is clicked again, at a pace (a window that
  // is sending takes no more clicks).
  const Hwnd send_again =
      FindNthChild(api, forward, aol::kIconClass,
                   m.settings.MailMethod ? aol::kForwardSendLaterIcon
                                         : aol::kForwardSendNowIcon);
  WaitOptions poll = AskingAgain(SignedOff(api), [&] {
    if (api.IsWindow(forward)) ClickIcon(api, send_again);
  });
  poll.speed = steps.speed;
  for (const Hwnd window : {forward, mail, forward}) {
    if (WaitUntil(
            c.host, [&] { return !api.IsWindow(window); }, poll) !=
        WaitEnd::kMet)
      return false;
  }
  return true;
}

std::string RequestersBut(std::string_view requesters,
                          const std::vector<std::string>& names) {
  std::string out;
  std::size_t at = 0;
  while ((at = requesters.find('(', at)) != std::string_view::npos) {
    const std::size_t close = requesters.find(')', at + 1);
    if (close == std::string_view::npos) break;
    const std::string_view name = requesters.substr(at + 1, close - at - 1);
    if (std::none_of(names.begin(), names.end(), [&](const std::string& n) {
          return EqualsIgnoreCase(n, name);
        }))
      out.append(requesters.substr(at, close - at + 1));
    at = close + 1;
  }
  return out;
}

JobOutcome FailedForwardOutcome(const MailJobContext& m, const ClientContext& c,
                                const ForwardUnderWay& f, bool failed) {
  if (failed && IsDeadMail(m.dead_mails, f.number()))
    return JobOutcome::kDeadMail;
  if (!IsSignedOn(c.api)) return JobOutcome::kLostWithSignOff;
  return JobOutcome::kNotSent;
}

namespace {

// An exit in the middle of a forward unwinds the job: a mail the client
// had taken by then is logged as sent on the way out, one it had not as
// lost with the exit.
class SentIfUnwound {
 public:
  SentIfUnwound(const MailJobContext& m, const ForwardUnderWay& f,
                const std::string& requesters)
      : m_(m), f_(f), requesters_(requesters) {}
  ~SentIfUnwound() {
    if (std::uncaught_exceptions() <= exceptions_) return;
    try {
      if (!f_.handed()) {
        if (m_.ended)
          Emit(m_.events, JobOutcome::kLostWithExit, requesters_, f_.what());
        return;
      }
      const std::string received = RequestersBut(requesters_, f_.refused());
      if (!received.empty())
        Emit(m_.events, JobOutcome::kSent, received, f_.what());
    } catch (...) {
      // The log loses the line; the unwinding goes on.
    }
  }
  SentIfUnwound(const SentIfUnwound&) = delete;
  SentIfUnwound& operator=(const SentIfUnwound&) = delete;

 private:
  const MailJobContext& m_;
  const ForwardUnderWay& f_;
  const std::string& requesters_;
  const int exceptions_ = std::uncaught_exceptions();
};

}  // namespace

void RunMailJob(const MailJobContext& m, const ClientContext& c,
                ForwardUnderWay& f) {
  const TakenGroup group = m.pending.TakeNextMail(
      /*lists=*/false, m.lblPending, m.counters);
  if (group.requesters.empty() || group.wanted == "list") return;

  const std::string sn = FirstRequester(group.requesters);
  const std::string& number = group.wanted;
  f.BeginJob();
  f.Begin(sn, number, "send " + number);
  const SentIfUnwound on_exit(m, f, group.requesters);
  const std::string notify = NotifyText(m, c.host);
  const int failures = f.failures();

  if (IsDeadMail(m.dead_mails, number)) {
    AnswerDeadMail(m, c, sn, number, group.requesters, f.what());
    return;
  }

  // The parser may have written a fraction; the client takes whole
  // positions.
  const double wanted = RoundHalfEven(Val(number));
  const int position = wanted < 1 || wanted > m.mailbox.lstMails.Count()
                           ? 0
                           : static_cast<int>(wanted);
  const std::string body =
      ForwardBody(m, "mail number <B><U>" + number + "</B></U>");
  ForwardSteps steps{"status: opening mail", "status: forwarding mail",
                     "status: sending mail", "status: sent mail",
                     m.settings.MailSpeed};
  if (!ForwardMailNumber(m, c, position, group.requesters, body, steps, f)) {
    const bool failed = f.failures() != failures;
    if (f.handed() && !failed)
      Emit(m.events, JobOutcome::kSent, group.requesters, f.what());
    else
      Emit(m.events, FailedForwardOutcome(m, c, f, failed), group.requesters,
           f.what());
    return;
  }

  ForwardErrorSweep(m, c, f);
  if (m.settings.MailNotify && !f.error())
    Say(c, m.ended, sn + " mail <U>" + number + "</U> " + notify);
  // Those whose mailbox refused it were logged as they were found.
  const std::string received = RequestersBut(group.requesters, f.refused());
  if (!received.empty())
    Emit(m.events,
         f.failures() != failures ? FailedForwardOutcome(m, c, f, true)
                                  : JobOutcome::kSent,
         received, f.what());
  f.ClearError();
  m.status.Draw("status: scanning chat");
}

}  // namespace quorvex
