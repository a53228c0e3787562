#include "server/replies.h"

#include <algorithm>
#include <string>

#include "client/chat_room.h"
#include "client/mail_send.h"
#include "client/wait.h"
#include "server/cut_short.h"
#include "server/server_common.h"
#include "settings/random_number.h"

namespace quorvex {

namespace {

constexpr const char* kCrLf = "\r\n";

std::string Str(long long n) { return std::to_string(n); }

// Before every mail: what the strip says while the mail is typed, then
// while it goes out.
void MailReply(const ReplyContext& r, const ClientContext& c,
               const char* typing, const std::string& to,
               const std::string& subject, const std::string& body) {
  r.status.Draw(typing);
  r.status.Draw("status: sending mail");
  WriteMailNow(c, to, subject, body);
}

}  // namespace

void ThankYouReply(const ReplyContext& r, const ClientContext& c,
                   const std::string& sn) {
  const LostIfCutShort on_exit(r.events, r.ended, sn, "thanks");
  const ListBox& thanks = r.messages.lstThankyou;
  std::string text = "you are welcome";
  if (!thanks.Empty()) {
    int pick = RandomNumber(thanks.Count(), c.host.Timer(), r.seed);
    text = thanks.Item(pick - 1);
  }
  if (r.settings.ScrollMethod) {
    SayFramed(c, r.ended, "(" + sn + ")" + text);
    Emit(r.events, JobOutcome::kReplyInRoom, sn, "thanks");
    return;
  }
  std::string body = BannerLine(r.settings) + "quorvex <B><U>thankyou</B></U>" +
                     kCrLf + text + kCrLf;
  MailReply(r, c, "status: typing your welcome", sn, "quorvex thankyou", body);
  SayFramed(c, r.ended, "(" + sn + ") thankyou has been sent");
  Emit(r.events, JobOutcome::kReplyByMail, sn, "thanks");
}

void StatusReply(const ReplyContext& r, const ClientContext& c,
                 const std::string& sn) {
  const LostIfCutShort on_exit(r.events, r.ended, sn, "status");
  PendingStatus st = r.pending.StatusOf(sn);
  const long long n = st.count;
  // Nobody ahead when the person has nothing queued.
  const long long k = std::max(st.first_position, 0);
  const long long total = r.pending.list().Count();
  if (r.settings.ScrollMethod) {
    SayFramed(c, r.ended, "(" + sn + ") you have <U>" + Str(n) + "</U> pending",
              ThenPause::kReply);
    // k describes the first entry but is said only for several; kept so.
    if (n > 1) {
      SayFramed(c, r.ended,
                "<U>" + Str(k) + "</U> mails till your next request");
    }
    SayFramed(c, r.ended, "there is <U>" + Str(total) + "</U> total pending");
    Emit(r.events, JobOutcome::kReplyInRoom, sn, "status");
    return;
  }
  std::string body =
      BannerLine(r.settings) + "quorvex <B><U>status report</B></U>" + kCrLf +
      "you have <U><B>" + Str(n) + "</B></U> pending" + kCrLf + "<B><U>" +
      Str(k) + "</B></U> mails pending till your next request" + kCrLf +
      "there is <U><B>" + Str(total) + "</B></U> total mails pending" + kCrLf;
  MailReply(r, c, "status: typing status", sn, "quorvex status report", body);
  SayFramed(c, r.ended, "(" + sn + ") status report has been sent");
  Emit(r.events, JobOutcome::kReplyByMail, sn, "status");
}

void Advertise(const ReplyContext& r, const ClientContext& c) {
  const Settings& s = r.settings;
  r.ScrollSeconds = 0;
  r.status.Draw("status: advertising");
  SayFramed(
      c, r.ended,
      "quorvex serving <B><U>" + Str(r.lstMails.Count()) + "</B></U> mails");
  std::string usage = "type /<B>" + s.Handle + "</B> send <U>x" +
                      (s.BlocksXYEnable ? ",x-y</U>" : "</U>");
  if (s.FindsEnable)
    usage +=
        std::string("; find <U>x") + (s.FindsXYEnable ? ",x&y</U>" : "</U>");
  SayFramed(c, r.ended, usage);
  SayFramed(c, r.ended,
            "there are <B><U>" + Str(r.pending.list().Count()) +
                "</B></U> pending; <B><U>" + Str(r.counters.session) +
                "</B></U> sent");
}

void mnuMailSession_Click(const ReplyContext& r, const ClientContext& c) {
  std::string to =
      r.prompter.InputBox("enter a screen name to send session your session to",
                          "screen name", kSessionMailDefault);
  if (to.size() < 3) return;
  const Settings& s = r.settings;
  std::string body = BannerLine(s) + "(" + s.Handle + ") has served <B><U>" +
                     Str(r.counters.session) + "</B></U> this session!" +
                     kCrLf + "(" + s.Handle + ") has served <B><U>" +
                     Str(s.TotalSent) + "</B></U> since installation!" + kCrLf;
  r.status.Draw("status: sending mail");
  WriteMail(c, to, s.LAscii + " quorvex session served " + s.RAscii, body);
}

}  // namespace quorvex
