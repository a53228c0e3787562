#include "app/frm_main.h"

#include "server/serve_jobs.h"

namespace quorvex {

// Each context names the fields it fills: two neighbouring references of
// one type cannot change places unnoticed.

RequestContext MakeRequestContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .banning = frm.forms.frmBanning,
          .pending = frm.lists.pending,
          .lstBanned = frm.lists.lstBanned,
          .lstMails = frm.lists.lstMails,
          .ReplyQueue = frm.lists.ReplyQueue,
          .lblPending = frm.counts.lblPending,
          .mails_while_reading = &frm.lists.mails_while_reading};
}

CounterView MakeCounterView(FrmMain& frm) {
  return {.counters = frm.counts.counters,
          .registry = frm.ports.registry,
          .settings = frm.settings,
          .lblSent = frm.counts.lblSent,
          .lblSession = frm.counts.lblSession};
}

BanContext MakeBanContext(FrmMain& frm, const ClientContext& c) {
  const bool* ended = &frm.serving.ended;
  const ClientContext* cc = &c;
  return {
      .banning = frm.forms.frmBanning,
      .MistakeList = frm.lists.MistakeList,
      .lstBanned = frm.lists.lstBanned,
      .lblBanned = frm.counts.lblBanned,
      .pending = frm.lists.pending,
      .say = [ended, cc](const std::string& line) { Say(*cc, *ended, line); },
      .events = &frm.events};
}

MailboxLists MakeMailboxLists(FrmMain& frm) {
  return {.lstMails = frm.lists.lstMails,
          .mail_positions = frm.lists.mail_positions,
          .lstLists = frm.lists.lstLists,
          .lblMails = frm.counts.lblMails,
          .lblLists = frm.counts.lblLists,
          .mails_while_reading = &frm.lists.mails_while_reading};
}

MailJobContext MakeMailJobContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .messages = frm.forms.frmMessages,
          .mailbox = MakeMailboxLists(frm),
          .pending = frm.lists.pending,
          .lblPending = frm.counts.lblPending,
          .ReplyQueue = frm.lists.ReplyQueue,
          .dead_mails = frm.lists.dead_mails,
          .ListSeconds = frm.serving.ListSeconds,
          .counters = MakeCounterView(frm),
          .status = frm.controls.status,
          .seed = frm.ports.seed,
          .ended = frm.serving.ended,
          .events = &frm.events};
}

ReplyContext MakeReplyContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .messages = frm.forms.frmMessages,
          .pending = frm.lists.pending,
          .lstMails = frm.lists.lstMails,
          .counters = frm.counts.counters,
          .ScrollSeconds = frm.serving.ScrollSeconds,
          .status = frm.controls.status,
          .prompter = frm.ports.prompter,
          .seed = frm.ports.seed,
          .ended = frm.serving.ended,
          .events = &frm.events};
}

RestartContext MakeRestartContext(FrmMain& frm) {
  Ports& p = frm.ports;
  return {.machine = p.machine,
          .profiles = p.profiles,
          .registry = p.registry,
          .settings = frm.settings,
          .messages = frm.forms.frmMessages,
          .pending = frm.lists.pending,
          .lblPending = frm.counts.lblPending,
          .lstBanned = frm.lists.lstBanned,
          .lblBanned = frm.counts.lblBanned,
          .counters = frm.counts.counters,
          .lblSession = frm.counts.lblSession,
          .room_name = frm.serving.room_name,
          .Timer1 = frm.serving.Timer1,
          .Timer2 = frm.serving.Timer2,
          .status = frm.controls.status,
          .ended = frm.serving.ended};
}

ServeContext MakeServeContext(FrmMain& frm) {
  return {.settings = frm.settings,
          .prompter = frm.ports.prompter,
          .mailbox = MakeMailboxLists(frm),
          .pending = frm.lists.pending,
          .ReplyQueue = frm.lists.ReplyQueue,
          .counters = frm.counts.counters,
          .ServerOn = frm.serving.ServerOn,
          .ServerPaused = frm.serving.ServerPaused,
          .cmdStart = frm.controls.cmdStart,
          .cmdPause = frm.controls.cmdPause,
          .ListSeconds = frm.serving.ListSeconds,
          .ScrollSeconds = frm.serving.ScrollSeconds,
          .room_name = frm.serving.room_name,
          .Timer1 = frm.serving.Timer1,
          .Timer2 = frm.serving.Timer2,
          .status = frm.controls.status,
          .ended = frm.serving.ended,
          .events = &frm.events};
}

ServeJobs MakeServeJobs(FrmMain& frm, const ClientContext& c) {
  return DefaultServeJobs(MakeMailJobContext(frm), MakeReplyContext(frm),
                          MakeBanContext(frm, c), MakeRestartContext(frm), c);
}

}  // namespace quorvex
