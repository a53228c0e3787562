#include "server/error_sweep.h"

#include "client/chat_room.h"
#include "client/error_boxes.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "server/dead_mail.h"
#include "server/forward_job.h"
#include "server/server_common.h"

namespace quorvex {

namespace {

constexpr std::int64_t kHandlerRounds = 300;

void HandleErrorWindow(const MailJobContext& m, const ClientContext& c,
                       ForwardUnderWay& f, Hwnd error) {
  WindowApi& api = c.api;
  const std::string text = GetErrorText(api, error);
  const auto dash = text.find('-');
  if (dash != std::string::npos && dash >= 1) {
    for (const std::string& sn : FullMailboxNames(text)) {
      for (const std::string& w : m.pending.DropFullMailbox(sn, m.ReplyQueue))
        Emit(m.events, JobOutcome::kFullMailbox, sn, "send " + w);
      Emit(m.events, JobOutcome::kFullMailbox, sn, f.what());
      f.RefusedBy(sn);
    }
    m.pending.RefreshLabel(m.lblPending);
  }
  DismissErrorWindow(api, error);
  CloseForwardWindow(api);
  m.status.Draw("status: pausing 2 secs");
  Pause(c.host, kAfterClientBoxSeconds);
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
                         ForwardUnderWay& f) {
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
    HandleDeadMailBox(m, c, f, box);
}

void ForwardErrorSweep(const MailJobContext& m, const ClientContext& c,
                       ForwardUnderWay& f) {
  if (!f.EnterSweep()) return;
  struct Done {
    ForwardUnderWay& f;
    ~Done() { f.LeaveSweep(); }
  } done{f};

  WindowApi& api = c.api;
  if (const Hwnd waol = FindDialog(api, "Waol")) CloseWindow(api, waol);
  if (const Hwnd box = FindClientBox(api, kTooLongBoxText)) {
    PressButton(api, FindDialogButton(api, box, "OK"));
    // The refused forward would stay open, and the job wait for it to
    // close, for ever; it was not sent, so no "sent" is said for it.
    if (CloseForwardWindow(api)) f.Failed();
  }
  if (FindErrorWindow(api)) ForwardErrorHandler(m, c, f);
  if (FindClientBox(api, kDeadMailBoxText)) ForwardErrorHandler(m, c, f);
  if (const Hwnd ok = FindModalButton(api, "OK")) PressButton(api, ok);
  if (const Hwnd no = FindModalButton(api, "&No")) PressButton(api, no);
}

}  // namespace quorvex
