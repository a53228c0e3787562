#include "app/frm_main.h"

#include "server/serve_jobs.h"

namespace quorvex {

// Each context names the fields it fills: two neighbouring references of
// one type cannot change places unnoticed.

RequestContext MakeRequestContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .frmBanning = frm.frmBanning,
          .pending = frm.pending,
          .lstBanned = frm.lstBanned,
          .lstMails = frm.lstMails,
          .ReplyQueue = frm.ReplyQueue,
          .lblPending = frm.lblPending,
          .mails_while_reading = &frm.mails_while_reading};
}

CounterView MakeCounterView(FrmMain& frm) {
  return {.counters = frm.counters,
          .registry = frm.ports.registry,
          .settings = frm.settings,
          .lblSent = frm.lblSent,
          .lblSession = frm.lblSession};
}

BanContext MakeBanContext(FrmMain& frm, const ClientContext& c) {
  const bool* ended = &frm.ended;
  const ClientContext* cc = &c;
  return {
      .frmBanning = frm.frmBanning,
      .MistakeList = frm.MistakeList,
      .lstBanned = frm.lstBanned,
      .lblBanned = frm.lblBanned,
      .pending = frm.pending,
      .say = [ended, cc](const std::string& line) { Say(*cc, *ended, line); },
      .events = &frm.events};
}

MailboxLists MakeMailboxLists(FrmMain& frm) {
  return {.lstMails = frm.lstMails,
          .mail_positions = frm.mail_positions,
          .lstLists = frm.lstLists,
          .lblMails = frm.lblMails,
          .lblLists = frm.lblLists,
          .mails_while_reading = &frm.mails_while_reading};
}

MailJobContext MakeMailJobContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .frmMessages = frm.frmMessages,
          .mailbox = MakeMailboxLists(frm),
          .pending = frm.pending,
          .lblPending = frm.lblPending,
          .ReplyQueue = frm.ReplyQueue,
          .dead_mails = frm.dead_mails,
          .ListSeconds = frm.ListSeconds,
          .counters = MakeCounterView(frm),
          .status = frm.status,
          .seed = frm.ports.seed,
          .ended = frm.ended,
          .events = &frm.events};
}

ReplyContext MakeReplyContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .frmMessages = frm.frmMessages,
          .pending = frm.pending,
          .lstMails = frm.lstMails,
          .counters = frm.counters,
          .ScrollSeconds = frm.ScrollSeconds,
          .status = frm.status,
          .prompter = frm.ports.prompter,
          .seed = frm.ports.seed,
          .ended = frm.ended,
          .events = &frm.events};
}

RestartContext MakeRestartContext(FrmMain& frm) {
  Ports& p = frm.ports;
  return {.machine = p.machine,
          .profiles = p.profiles,
          .registry = p.registry,
          .settings = frm.settings,
          .frmMessages = frm.frmMessages,
          .pending = frm.pending,
          .lblPending = frm.lblPending,
          .lstBanned = frm.lstBanned,
          .lblBanned = frm.lblBanned,
          .counters = frm.counters,
          .lblSession = frm.lblSession,
          .room_name = frm.room_name,
          .Timer1 = frm.Timer1,
          .Timer2 = frm.Timer2,
          .status = frm.status,
          .ended = frm.ended};
}

ServeContext MakeServeContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .prompter = frm.ports.prompter,
          .mailbox = MakeMailboxLists(frm),
          .pending = frm.pending,
          .ReplyQueue = frm.ReplyQueue,
          .counters = frm.counters,
          .ServerOn = frm.ServerOn,
          .ServerPaused = frm.ServerPaused,
          .cmdStart = frm.cmdStart,
          .cmdPause = frm.cmdPause,
          .ListSeconds = frm.ListSeconds,
          .ScrollSeconds = frm.ScrollSeconds,
          .room_name = frm.room_name,
          .Timer1 = frm.Timer1,
          .Timer2 = frm.Timer2,
          .status = frm.status,
          .ended = frm.ended,
          .events = &frm.events};
}

ServeJobs MakeServeJobs(FrmMain& frm, const ClientContext& c) {
  return DefaultServeJobs(MakeMailJobContext(frm), MakeReplyContext(frm),
                          MakeBanContext(frm, c), MakeRestartContext(frm), c);
}

}  // namespace quorvex
