#include "app/frm_main.h"

#include "server/serve_jobs.h"

namespace quorvex {

RequestContext MakeRequestContext(FrmMain& frm) {
  return RequestContext{
      frm.settings, frm.frmBanning, frm.pending,    frm.lstBanned,
      frm.lstMails, frm.ReplyQueue, frm.lblPending, &frm.mails_while_reading};
}

CounterView MakeCounterView(FrmMain& frm) {
  return CounterView{frm.counters, frm.ports.registry, frm.settings,
                     frm.lblSent, frm.lblSession};
}

BanContext MakeBanContext(FrmMain& frm, const ClientContext& c) {
  const bool* ended = &frm.ended;
  const ClientContext* cc = &c;
  return BanContext{
      frm.frmBanning,
      frm.MistakeList,
      frm.lstBanned,
      frm.lblBanned,
      frm.pending,
      [ended, cc](const std::string& line) { Say(*cc, *ended, line); },
      &frm.events};
}

MailboxLists MakeMailboxLists(FrmMain& frm) {
  return MailboxLists{frm.lstMails, frm.mail_positions,
                      frm.lstLists, frm.lblMails,
                      frm.lblLists, &frm.mails_while_reading};
}

MailJobContext MakeMailJobContext(FrmMain& frm) {
  return MailJobContext{frm.settings,   frm.frmMessages, MakeMailboxLists(frm),
                        frm.pending,    frm.lblPending,  frm.ReplyQueue,
                        frm.dead_mails, frm.ListSeconds, MakeCounterView(frm),
                        frm.status,     frm.ports.seed,  frm.ended,
                        &frm.events};
}

ReplyContext MakeReplyContext(FrmMain& frm) {
  return ReplyContext{frm.settings, frm.frmMessages,    frm.pending,
                      frm.lstMails, frm.counters,       frm.ScrollSeconds,
                      frm.status,   frm.ports.prompter, frm.ports.seed,
                      frm.ended,    &frm.events};
}

RestartContext MakeRestartContext(FrmMain& frm) {
  Ports& p = frm.ports;
  return RestartContext{
      p.machine,       p.profiles,   p.registry,     frm.settings,
      frm.frmMessages, frm.pending,  frm.lblPending, frm.lstBanned,
      frm.lblBanned,   frm.counters, frm.lblSession, frm.room_name,
      frm.Timer1,      frm.Timer2,   frm.status,     frm.ended};
}

ServeContext MakeServeContext(FrmMain& frm) {
  return ServeContext{frm.settings,  frm.ports.prompter, MakeMailboxLists(frm),
                      frm.pending,   frm.ReplyQueue,     frm.counters,
                      frm.ServerOn,  frm.ServerPaused,   frm.cmdStart,
                      frm.cmdPause,  frm.ListSeconds,    frm.ScrollSeconds,
                      frm.room_name, frm.Timer1,         frm.Timer2,
                      frm.status,    frm.ended,          &frm.events};
}

ServeJobs MakeServeJobs(FrmMain& frm, const ClientContext& c) {
  return DefaultServeJobs(MakeMailJobContext(frm), MakeReplyContext(frm),
                          MakeBanContext(frm, c), MakeRestartContext(frm), c);
}

}  // namespace quorvex
