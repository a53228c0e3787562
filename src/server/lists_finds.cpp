#include "server/lists_finds.h"

#include <algorithm>

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mail_send.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "ports/client_windows.h"
#include "server/cut_short.h"
#include "server/dead_mail.h"
#include "server/error_sweep.h"
#include "server/forward_job.h"
#include "server/server_common.h"

namespace quorvex {

namespace {

constexpr const char* kCrLf = "\r\n";
constexpr double kBetweenLists = 2;
constexpr const char* kSessionCaption = "Automatic AOL";
constexpr const char* kSessionText = "AOL session is";

std::string Str(long long n) { return std::to_string(n); }

// "[ 7 ] - title": the title's 1-based position, without a leading blank.
std::string TitleLine(const ListBox& lstMails, int index) {
  return "[ " + Str(index + 1) + " ] - " + lstMails.Item(index) + kCrLf;
}

// The "k position" items of lstLists.
struct ListMail {
  std::string k;
  std::string position;
};
ListMail ListMailAt(const ListBox& lstLists, int i) {
  const std::string& item = lstLists.Item(i);
  const auto space = item.find(' ');
  if (space == std::string::npos) return {item, ""};
  return {item.substr(0, space), item.substr(space + 1)};
}

}  // namespace

int CollectLists(const MailboxLists& mailbox) {
  const ListBox& mails = mailbox.lstMails;
  for (int i = 0; i < mails.Count(); ++i) {
    const std::string& title = mails.Item(i);
    const auto at = title.find(kListMarker);
    if (at == std::string::npos) continue;
    const std::string rest =
        title.substr(at + std::char_traits<char>::length(kListMarker));
    // "list number " must be followed by the number itself.
    if (rest.empty() || rest[0] < '0' || rest[0] > '9') continue;
    mailbox.lstLists.Add(NumberText(Val(rest)) + " " + Str(i + 1));
  }
  mailbox.lblLists.Set(kListsCount(mailbox.lstLists.Count()));
  return mailbox.lstLists.Count();
}

std::string ListSubject(const Settings& s, int k) {
  return s.LAscii + kListMarker + Str(k) + " " + s.RAscii;
}

std::string ListBody(const Settings& s, const ListBox& lstMails, int k,
                     int first, int last) {
  std::string body = BannerLine(s) + s.LAscii + "list number <B><U>" + Str(k) +
                     "</B></U>" + s.RAscii + kCrLf + kCrLf;
  for (int i = first; i <= last; ++i) body += TitleLine(lstMails, i);
  return body;
}

void BuildLists(const MailJobContext& m, const ClientContext& c) {
  const int count = m.mailbox.lstMails.Count();
  // The menu keeps ListSize within 50 to 500; a damaged value must not
  // turn this into an endless loop.
  const int size = std::max<int>(1, m.settings.ListSize);
  const std::string me = GetUserSN(c.api);
  for (int k = 1, first = 0; first < count; ++k, first += size) {
    m.status.Draw("status: making/sending list #" + Str(k));
    const int last = std::min(first + size, count) - 1;
    WriteMailUntilSent(
        c, me, ListSubject(m.settings, k),
        ListBody(m.settings, m.mailbox.lstMails, k, first, last));
    if (last + 1 < count) {
      m.status.Draw("status: pausing for 2 seconds");
      Pause(c.host, kBetweenLists);
    }
  }
  m.status.Draw("status: flashing lists");
  RunAutomaticAol(c);

  // The lists are in the mailbox now; read it again so that they are
  // served this session, as they would be after the next start.
  ReadMailbox(m.mailbox, c, m.status);
  m.mailbox.lblMails.Set(kMailsCount(m.mailbox.lstMails.Count()));
  CollectLists(m.mailbox);
}

void RunAutomaticAol(const ClientContext& c) {
  WindowApi& api = c.api;
  auto open = [&] { RunToolbarMenu(c, aol::kToolbarMailIcon, 'a'); };
  open();
  Hwnd session = 0;
  if (WaitUntil(
          c.host,
          [&] {
            session = api.FindWindowA(aol::kModalClass, kSessionCaption);
            return session != 0;
          },
          AskingAgain(SignedOff(api), open)) != WaitEnd::kMet)
    return;

  // "AOL session is in progress." until every waiting mail went out.
  if (WaitUntil(c.host,
                [&] {
                  if (!api.IsWindow(session)) return true;
                  const std::string text =
                      GetText(api, FindChild(api, session, aol::kViewClass));
                  return StartsWith(text, kSessionText) &&
                         text.find("in progress") == std::string::npos;
                },
                {.give_up = SignedOff(api)}) != WaitEnd::kMet)
    return;

  auto close = [&] {
    ClickIcon(api, FindChild(api, session, aol::kIconClass));
  };
  close();
  WaitUntil(
      c.host, [&] { return !api.IsWindow(session); },
      AskingAgain(SignedOff(api), close));
}

void RunListJob(const MailJobContext& m, const ClientContext& c,
                ForwardUnderWay& f) {
  // The list step ran: the interval starts again, served or not.
  m.ListSeconds = 0;
  const int lists = m.mailbox.lstLists.Count();
  const TakenGroup group = m.pending.TakeNextMail(
      /*lists=*/true, m.lblPending, m.counters, lists);
  if (group.requesters.empty() || group.wanted != "list") return;

  const Settings& s = m.settings;
  const std::string sn = FirstRequester(group.requesters);
  const std::string range = "lists <U>1-" + Str(lists) + "</U>";
  const int failures = f.failures();
  f.BeginJob();
  const LostIfCutShort on_exit(m.events, m.ended, group.requesters,
                               "send list");
  if (!s.ListNotify) Say(c, m.ended, range + " are being processed");

  const ForwardSteps steps{"status: opening list", "status: clicking forward",
                           "status: sending list", "status: sent list",
                           s.ListSpeed};
  for (int i = 0; i < lists; ++i) {
    const ListMail list = ListMailAt(m.mailbox.lstLists, i);
    // A list mail the client refused once is not tried again.
    if (IsDeadMail(m.dead_mails, list.position)) continue;
    f.Begin(sn, list.position, "send list");
    const std::string body =
        ForwardBody(m, "list number <B><U>" + list.k + "</B></U>");
    if (!ForwardMailNumber(m, c, static_cast<int>(Val(list.position)),
                           group.requesters, body, steps, f)) {
      Emit(m.events, FailedForwardOutcome(m, c, f, f.failures() != failures),
           group.requesters, "send list");
      return;
    }
    ForwardErrorSweep(m, c, f);
    if (s.ListNotify && !f.error())
      Say(c, m.ended,
          sn + " list <U>" + list.k + "</U> " + NotifyText(m, c.host));
    f.ClearError();
  }
  if (!s.ListNotify) Say(c, m.ended, range + " were sent");
  // Lists that failed on the way (a dead one) leave the others sent.
  const std::string received = RequestersBut(group.requesters, f.refused());
  if (!received.empty())
    Emit(m.events, JobOutcome::kListMailed, received, "send list");
  m.status.Draw("status: scanning chat");
}

std::string FindLines(const ClientContext& c, const ListBox& lstMails,
                      std::string_view text, float speed, int* count) {
  const std::string wanted = LCase(text);
  std::string lines;
  int found = 0;
  for (int i = 0; i < lstMails.Count(); ++i) {
    if (i > 0) PauseSeconds(c.host, speed);
    if (LCase(lstMails.Item(i)).find(wanted) == std::string::npos) continue;
    lines += TitleLine(lstMails, i);
    ++found;
  }
  if (count) *count = found;
  return lines;
}

void RunFindJob(const MailJobContext& m, const ClientContext& c) {
  const TakenGroup group = m.pending.TakeNextFind(m.lblPending);
  if (group.requesters.empty()) return;

  const Settings& s = m.settings;
  const std::string sn = FirstRequester(group.requesters);
  const std::string& text = group.wanted;
  const LostIfCutShort on_exit(m.events, m.ended, group.requesters,
                               "find " + text);
  m.status.Draw("status: finding find");
  int count = 0;
  const std::string lines =
      FindLines(c, m.mailbox.lstMails, text, s.FindSpeed, &count);
  if (count == 0) {
    Say(c, m.ended, sn + " no results for <U>" + text + "</U> found");
    Emit(m.events, JobOutcome::kNothingFound, group.requesters, "find " + text);
    m.status.Draw("status: no find found");
    return;
  }

  const std::string body = BannerLine(s) + "<B><U>" + Str(count) +
                           "</B></U> find results for <B><U>" + text +
                           "</B></U>" + kCrLf + lines;
  m.status.Draw("status: sending find");
  const std::string subject = s.LAscii + "quorvex find results for ";
  if (s.MailMethod)
    WriteMail(c, group.requesters, subject, body);
  else
    WriteMailNow(c, group.requesters, subject, body);
  AdvanceServeCounters(m.counters, 1);
  Say(c, m.ended, sn + " results for <U>" + text + "</U> sent");
  Emit(m.events, JobOutcome::kFindMailed, group.requesters, "find " + text);
  m.status.Draw("status: sent find");
}

}  // namespace quorvex
