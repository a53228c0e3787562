#include "server/error_sweep.h"

#include "client/error_boxes.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "server/forward_job.h"
#include "server/server_common.h"

namespace quorvex {

namespace {

constexpr float kAroundLine = 0.55f;
constexpr double kAfterError = 2;
constexpr std::int64_t kHandlerRounds = 300;

// Closes the forward window the box was about, if it is still there.
bool CloseForwardWindow(WindowApi& api) {
  const Hwnd forward = FindForwardWindow(api);
  if (forward) CloseWindow(api, forward);
  return forward != 0;
}

void AnnounceDeadMail(const MailJobContext& m, const ClientContext& c,
                      const std::string& sn, const std::string& number) {
  PauseSeconds(c.host, kAroundLine);
  Say(c, m.ended, DeadMailLine(sn, number));
  PauseSeconds(c.host, kAroundLine);
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
    AnnounceDeadMail(m, c, *sn, number);
    Emit(m.events, JobOutcome::kDeadMail, *sn, "send " + number);
  }
}

void HandleErrorWindow(const MailJobContext& m, const ClientContext& c,
                       ForwardScratch& f, Hwnd error) {
  WindowApi& api = c.api;
  const std::string text = GetErrorText(api, error);
  const auto dash = text.find('-');
  if (dash != std::string::npos && dash >= 1) {
    for (const std::string& sn : FullMailboxNames(text)) {
      for (const std::string& w : m.pending.DropFullMailbox(sn, m.ReplyQueue))
        Emit(m.events, JobOutcome::kFullMailbox, sn, "send " + w);
      Emit(m.events, JobOutcome::kFullMailbox, sn, f.what);
      f.full_mailboxes.push_back(sn);
    }
    m.pending.RefreshLabel(m.lblPending);
  }
  DismissErrorWindow(api, error);
  CloseForwardWindow(api);
  m.status.Draw("status: pausing 2 secs");
  Pause(c.host, kAfterError);
}

void HandleDeadMail(const MailJobContext& m, const ClientContext& c,
                    ForwardScratch& f, Hwnd box) {
  WindowApi& api = c.api;
  PressButton(api, FindDialogButton(api, box, "OK"));
  CloseForwardWindow(api);
  // The job's values may change while this pauses; the notice is about
  // the mail that was being forwarded when the box came.
  const std::string sn = f.sn;
  const std::string number = f.number;
  m.status.Draw("status: mail " + number + " is a dead mail");
  m.status.Draw("status: pausing 2 secs");
  Pause(c.host, kAfterError);
  AnnounceDeadMail(m, c, sn, number);
  if (!IsDeadMail(m.dead_mails, number)) m.dead_mails.push_back(number);
  ForwardFailed(f);
  DropDeadRequests(m, c, number);
}

}  // namespace

std::vector<std::string> FullMailboxNames(std::string_view error_text) {
  std::vector<std::string> names;
  std::size_t start = 0;
  while (start <= error_text.size()) {
    auto end = error_text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = error_text.size();
    std::string_view line = error_text.substr(start, end - start);
    const auto dash = line.find('-');
    if (dash != std::string_view::npos) {
      std::string_view name = line.substr(0, dash);
      const auto colon = name.rfind(':');
      if (colon != std::string_view::npos) name = name.substr(colon + 1);
      std::string sn = LCase(Trim(name));
      if (!sn.empty()) names.push_back(std::move(sn));
    }
    start = end + 1;
  }
  return names;
}

void ForwardErrorHandler(const MailJobContext& m, const ClientContext& c,
                         ForwardScratch& f) {
  WindowApi& api = c.api;
  Hwnd error = 0;
  Hwnd box = 0;
  WaitUntil(c.host,
            [&] {
              error = FindErrorWindow(api);
              box = error ? 0 : FindClientBox(api, kDeadMailBoxText);
              return error != 0 ||
                     (box != 0 && FindDialogButton(api, box, "OK") != 0);
            },
            {.rounds = kHandlerRounds});
  if (error)
    HandleErrorWindow(m, c, f, error);
  else if (box)
    HandleDeadMail(m, c, f, box);
}

void ForwardErrorSweep(const MailJobContext& m, const ClientContext& c,
                       ForwardScratch& f) {
  if (f.in_sweep) return;
  f.in_sweep = true;
  struct Done {
    bool& flag;
    ~Done() { flag = false; }
  } done{f.in_sweep};

  WindowApi& api = c.api;
  if (const Hwnd waol = FindDialog(api, "Waol")) CloseWindow(api, waol);
  if (const Hwnd box = FindClientBox(api, kTooLongBoxText)) {
    PressButton(api, FindDialogButton(api, box, "OK"));
    // The refused forward would stay open, and the job wait for it to
    // close, for ever; it was not sent, so no "sent" is said for it.
    if (CloseForwardWindow(api)) ForwardFailed(f);
  }
  if (FindErrorWindow(api)) ForwardErrorHandler(m, c, f);
  if (FindClientBox(api, kDeadMailBoxText)) ForwardErrorHandler(m, c, f);
  if (const Hwnd ok = FindModalButton(api, "OK")) PressButton(api, ok);
  if (const Hwnd no = FindModalButton(api, "&No")) PressButton(api, no);
}

}  // namespace quorvex
