#include "server/dead_mail.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "client/chat_room.h"
#include "client/error_boxes.h"
#include "client/wait.h"
#include "server/error_sweep.h"
#include "server/server_common.h"

namespace quorvex {

namespace {

void Remember(const MailJobContext& m, const std::string& number) {
  if (!IsDeadMail(m.dead_mails, number)) m.dead_mails.push_back(number);
}

// Nobody waits for a mail that cannot be sent: every other mail entry for
// the number leaves the queue, each told so, found through the queue's
// index of mail lines by number.
void DropDeadRequests(const MailJobContext& m, const ClientContext& c,
                      const std::string& number) {
  // One at a time: each notice pauses, and new lines may come meanwhile.
  // Only those queued when the walk began: people who keep asking for the
  // mail would otherwise keep this walk, and the tick, going for ever;
  // later ones are told by the next ticks, one each.
  const std::uint64_t queued = m.pending.IdsBelowFuture();
  while (std::optional<std::string> sn =
             m.pending.TakeFirstMailFor(number, queued)) {
    m.pending.RefreshLabel(m.lblPending);
    SayFramed(c, m.ended, DeadMailLine(*sn, number), ThenPause::kLine);
    Emit(m.events, JobOutcome::kDeadMail, *sn, "send " + number);
  }
}

}  // namespace

bool IsDeadMail(const std::vector<std::string>& dead_mails,
                std::string_view number) {
  return std::find(dead_mails.begin(), dead_mails.end(), number) !=
         dead_mails.end();
}

std::string DeadMailLine(std::string_view sn, std::string_view number) {
  return std::string(sn) + " mail <U>" + std::string(number) +
         "</U> is a dead mail";
}

void AnswerDeadMail(const MailJobContext& m, const ClientContext& c,
                    const std::string& sn, const std::string& number,
                    const std::string& requesters, const std::string& what) {
  SayFramed(c, m.ended, DeadMailLine(sn, number), ThenPause::kReply);
  Emit(m.events, JobOutcome::kDeadMail, requesters, what);
}

void GiveUpDeadMail(const MailJobContext& m, const ClientContext& c,
                    ForwardUnderWay& f) {
  SayFramed(c, m.ended, DeadMailLine(f.sn(), f.number()), ThenPause::kReply);
  Remember(m, f.number());
  f.Failed();
}

void HandleDeadMailBox(const MailJobContext& m, const ClientContext& c,
                       ForwardUnderWay& f, Hwnd box) {
  WindowApi& api = c.api;
  PressButton(api, FindDialogButton(api, box, "OK"));
  CloseForwardWindow(api);
  // The job's values may change while this pauses; the notice is about
  // the mail that was being forwarded when the box came.
  const std::string sn = f.sn();
  const std::string number = f.number();
  m.status.Draw("status: mail " + number + " is a dead mail");
  m.status.Draw("status: pausing 2 secs");
  Pause(c.host, kAfterClientBoxSeconds);
  SayFramed(c, m.ended, DeadMailLine(sn, number), ThenPause::kLine);
  Remember(m, number);
  f.Failed();
  DropDeadRequests(m, c, number);
}

}  // namespace quorvex
