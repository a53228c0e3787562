#include "server/replies.h"

#include <algorithm>
#include <string>

#include "client/mail_send.h"
#include "client/wait.h"
#include "server/server_common.h"
#include "settings/random_number.h"

namespace quorvex {

namespace {

constexpr float kBeforeLine = 0.55f;
constexpr float kAfterReply = 0.45f;
constexpr const char* kCrLf = "\r\n";

std::string Str(long long n) { return std::to_string(n); }

// Before every mail: what the strip says while the mail is typed, then
// while it goes out.
void MailReply(FrmMain& frm, const ClientContext& c, const char* typing,
               const std::string& to, const std::string& subject,
               const std::string& body) {
  frm.SetStatus(typing);
  frm.SetStatus("status: sending mail");
  WriteMailNow(c, to, subject, body);
}

}  // namespace

void ThankYouReply(FrmMain& frm, const ClientContext& c,
                   const std::string& sn) {
  const ListBox& thanks = frm.frmMessages.lstThankyou;
  std::string text = "you are welcome";
  if (!thanks.Empty()) {
    int pick = RandomNumber(thanks.Count(), c.host.Timer(), frm.ports.seed);
    text = thanks.Item(pick - 1);
  }
  if (frm.settings.ScrollMethod) {
    PauseSeconds(c.host, kBeforeLine);
    Say(frm, c, "(" + sn + ")" + text);
    return;
  }
  std::string body = BannerLine(frm.settings) +
                     "quorvex <B><U>thankyou</B></U>" + kCrLf + text + kCrLf;
  MailReply(frm, c, "status: typing your welcome", sn, "quorvex thankyou",
            body);
  PauseSeconds(c.host, kBeforeLine);
  Say(frm, c, "(" + sn + ") thankyou has been sent");
}

void StatusReply(FrmMain& frm, const ClientContext& c, const std::string& sn) {
  PendingStatus st = frm.pending.StatusOf(sn);
  const long long n = st.count;
  // Nobody ahead when the person has nothing queued.
  const long long k = std::max(st.first_position, 0);
  const long long total = frm.lstPending().Count();
  if (frm.settings.ScrollMethod) {
    PauseSeconds(c.host, kBeforeLine);
    Say(frm, c, "(" + sn + ") you have <U>" + Str(n) + "</U> pending");
    PauseSeconds(c.host, kAfterReply);
    // k describes the first entry but is said only for several; kept so.
    if (n > 1) {
      PauseSeconds(c.host, kBeforeLine);
      Say(frm, c, "<U>" + Str(k) + "</U> mails till your next request");
    }
    PauseSeconds(c.host, kBeforeLine);
    Say(frm, c, "there is <U>" + Str(total) + "</U> total pending");
    return;
  }
  std::string body =
      BannerLine(frm.settings) + "quorvex <B><U>status report</B></U>" + kCrLf +
      "you have <U><B>" + Str(n) + "</B></U> pending" + kCrLf + "<B><U>" +
      Str(k) + "</B></U> mails pending till your next request" + kCrLf +
      "there is <U><B>" + Str(total) + "</B></U> total mails pending" + kCrLf;
  MailReply(frm, c, "status: typing status", sn, "quorvex status report", body);
  PauseSeconds(c.host, kBeforeLine);
  Say(frm, c, "(" + sn + ") status report has been sent");
}

void Advertise(FrmMain& frm, const ClientContext& c) {
  const Settings& s = frm.settings;
  frm.ScrollSeconds = 0;
  frm.SetStatus("status: advertising");
  PauseSeconds(c.host, kBeforeLine);
  Say(frm, c,
      "quorvex serving <B><U>" + Str(frm.lstMails.Count()) + "</B></U> mails");
  std::string usage = "type /<B>" + s.Handle + "</B> send <U>x" +
                      (s.BlocksXYEnable ? ",x-y</U>" : "</U>");
  if (s.FindsEnable)
    usage +=
        std::string("; find <U>x") + (s.FindsXYEnable ? ",x&y</U>" : "</U>");
  PauseSeconds(c.host, kBeforeLine);
  Say(frm, c, usage);
  PauseSeconds(c.host, kBeforeLine);
  Say(frm, c,
      "there are <B><U>" + Str(frm.lstPending().Count()) +
          "</B></U> pending; <B><U>" + Str(frm.counters.session) +
          "</B></U> sent");
}

void mnuMailSession_Click(FrmMain& frm, const ClientContext& c) {
  std::string to = frm.ports.prompter.InputBox(
      "enter a screen name to send session your session to", "screen name",
      kSessionMailDefault);
  if (to.size() < 3) return;
  const Settings& s = frm.settings;
  std::string body = BannerLine(s) + "(" + s.Handle + ") has served <B><U>" +
                     Str(frm.counters.session) + "</B></U> this session!" +
                     kCrLf + "(" + s.Handle + ") has served <B><U>" +
                     Str(s.TotalSent) + "</B></U> since installation!" + kCrLf;
  frm.SetStatus("status: sending mail");
  WriteMail(c, to, s.LAscii + " quorvex session served " + s.RAscii, body);
}

}  // namespace quorvex
