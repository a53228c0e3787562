#include "server/serve_engine.h"

#include <algorithm>
#include <utility>

#include "client/chat_room.h"
#include "client/client_tree.h"
#include "client/instant_messages.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "requests/reply_order.h"
#include "server/mail_window_sizes.h"
#include "server/server_common.h"

namespace quorvex {

namespace {

// ListSeconds and ScrollSeconds were 16-bit: the old runtime stopped with
// an overflow error after nine hours without a list or an advertisement.
// They stay at the largest value instead.
constexpr int kSecondsMax = 32767;

// The orders one tick answers, first in line first. Each costs a second
// or more in the room, so a room of people each holding an order (one of
// each kind at most) would otherwise hold every mail back by as many
// seconds as there are orders; one a tick lets a forward follow each.
constexpr int kRepliesPerTick = 1;

int NextSecond(int seconds) {
  return seconds >= kSecondsMax ? kSecondsMax : seconds + 1;
}

}  // namespace

ServeEngine::ServeEngine(const ServeContext& ctx, const ClientContext& c,
                         ServeJobs jobs)
    : ctx_(ctx), c_(c), jobs_(std::move(jobs)) {
  Host& host = c_.host;
  ctx_.Timer1 = host.CreateTimer([this] { Timer1_Timer(); });
  ctx_.Timer1->SetInterval(1);
  ctx_.Timer2 = host.CreateTimer([this] { Timer2_Timer(); });
  ctx_.Timer2->SetInterval(1000);
}

ServeEngine::~ServeEngine() {
  // The timers call back into this engine.
  ctx_.Timer1.reset();
  ctx_.Timer2.reset();
}

void ServeEngine::SetTimers(bool enabled) {
  ctx_.Timer1->SetEnabled(enabled);
  ctx_.Timer2->SetEnabled(enabled);
}

// --- lifecycle ---

void ServeEngine::cmdStart_Click() {
  if (ctx_.ended) return;
  if (ctx_.ServerOn) {
    // The next tick says goodbye and stops the timers.
    ctx_.ServerOn = false;
    ctx_.cmdStart.Set("&start");
    return;
  }
  // A second click while the start is still talking to the client would
  // start the server twice over.
  if (starting_) return;
  // Nor may a start run inside a restart of the client (a stop pressed
  // during it leaves the server off): it would wait to read the mailbox of
  // a client the restart has yet to sign on, and the restart would never
  // go on.
  if (restarting_) return;
  if (!FindFrame(c_.api)) {
    ctx_.prompter.MsgBox(kNoClientText, kNoClientTitle);
    return;
  }
  starting_ = true;
  Start();
  starting_ = false;
}

void ServeEngine::Start() {
  const Settings& s = ctx_.settings;
  ReadMailbox(ctx_.mailbox, c_, ctx_.status);
  int lists = jobs_.collect_lists ? jobs_.collect_lists() : 0;
  ctx_.status.Draw("status: found #" + std::to_string(lists) + " lists");
  if (lists == 0) {
    if (!ctx_.prompter.YesNo("do you want to make new lists?", "make lists")) {
      ctx_.status.Draw("status: idle");
      return;
    }
    if (jobs_.build_lists) jobs_.build_lists();
    lists = ctx_.mailbox.lstLists.Count();
  }
  if (ctx_.ended) return;
  ctx_.mailbox.lblMails.Set(kMailsCount(ctx_.mailbox.lstMails.Count()));
  ctx_.mailbox.lblLists.Set(kListsCount(lists));

  ctx_.status.Draw("status: starting server");
  PrepareClient();
  if (ctx_.ended) return;

  const std::string on = "quorvex mail server <B><U>on</B></U>";
  const std::string send = "type /<B>" + s.Handle + " send <U>x" +
                           (s.BlocksXYEnable ? ",x-y</U></B>" : "</U></B>");
  // The range setting of sends picks the find form too; intended.
  if (s.FindsEnable)
    Announce({on, send,
              "type <B>/" + s.Handle + " find <U>x" +
                  (s.BlocksXYEnable ? ",x&y</U></B>" : "</U></B>")});
  else
    Announce({on, send});
  if (ctx_.ended) return;

  ctx_.ServerOn = true;
  ctx_.cmdStart.Set("&stop");
  SetTimers(true);
  ctx_.counters.AOLCount = 0;
  ctx_.counters.CPUCount = 0;
  ctx_.counters.SentCount = 0;
  Emit(ctx_.events, JobOutcome::kStarted, "",
       "serving " + std::to_string(ctx_.mailbox.lstMails.Count()) + " mails");
  ctx_.status.Draw("status: scanning chat");
}

void ServeEngine::PrepareClient() {
  WindowApi& api = c_.api;
  // The frame, its MDI client and the buddy list are looked up as the
  // client's preparation always did; only the screen name is kept.
  FindFrame(api);
  FindChildByTitle(api, FindMdiClient(api), "Buddy List Window");
  user_sn_ = GetUserSN(api);
  // The room to return to after a client restart, known from the start: a
  // client lost during the first tick would otherwise be sent to no room,
  // and its restart would wait for one for ever.
  RememberRoom();
  if (set_preferences) set_preferences();
  if (ctx_.settings.MailResize) ShrinkMailWindows(c_);
  IMsOff(c_);
}

void ServeEngine::cmdPause_Click() {
  if (ctx_.ended || !ctx_.ServerOn) return;
  if (ctx_.ServerPaused) {
    Resume();
    return;
  }
  // The next tick says so and stops the timers.
  ctx_.ServerPaused = true;
  ctx_.cmdPause.Set("&unpause");
}

void ServeEngine::Resume() {
  ctx_.status.Draw("status: unpausing server");
  Announce({"quorvex mail server <B><U>unpaused</B></U>"});
  if (ctx_.ended) return;
  ctx_.ServerPaused = false;
  SetTimers(true);
  ctx_.cmdPause.Set("&pause");
  ctx_.status.Draw("status: scanning chat");
}

void ServeEngine::PauseServer() {
  ctx_.status.Draw("status: pausing server");
  Announce({"quorvex mail server <B><U>paused</B></U>"});
  // Unpaused while that was said: the resume has turned the timers on.
  if (!ctx_.ServerPaused) return;
  SetTimers(false);
  ctx_.status.Draw("status: paused");
}

void ServeEngine::Stop() {
  ctx_.status.Draw("status: stopping server");
  Announce({"quorvex mail server <B><U>off</B></U>"});
  Say(c_, ctx_.ended, "please stop requesting");
  // Started again while the farewell was said: that start has turned the
  // timers on and prepared the client, and the stop must not undo it
  // (the server would stay on with its timers off, serving nobody).
  if (ctx_.ServerOn) return;
  SetTimers(false);
  if (ctx_.ended) return;
  Emit(ctx_.events, JobOutcome::kStopped, "", "serving");
  if (ctx_.settings.MailResize) ForgetMailWindowSizes(c_);
  IMsOn(c_);
  ctx_.status.Draw("status: idle");
}

// --- the serving loop ---

void ServeEngine::Timer1_Timer() {
  if (ctx_.ended) return;
  ReplyPhase();
  if (ctx_.ended) return;
  ctx_.status.Draw("status: scanning chat");
  // Clicks made during the tick so far are honoured here.
  if (ctx_.ServerPaused) {
    PauseServer();
  } else if (ctx_.ServerOn) {
    ServeSteps();
  } else {
    Stop();
  }
}

void ServeEngine::ReplyPhase() {
  // Replies queued while this phase runs wait for the next tick, and so do
  // those beyond this tick's share.
  const int n = std::min(ctx_.ReplyQueue.Count(), kRepliesPerTick);
  for (int i = 0; i < n && !ctx_.ended; ++i) {
    if (ctx_.ReplyQueue.Empty()) break;
    const std::string entry = ctx_.ReplyQueue.Item(0);
    if (entry.empty()) break;
    const std::uint64_t id = ctx_.ReplyQueue.IdAt(0);
    ReplyOrder order;
    if (ReplyOrder::Read(entry, &order)) Reply(order.sn, order.kind);
    ctx_.ReplyQueue.RemoveId(id);
  }
}

void ServeEngine::Reply(const std::string& sn, const std::string& kind) {
  Host& host = c_.host;
  if (kind == "thankyou") {
    if (jobs_.thank_you) jobs_.thank_you(sn);
    PauseSeconds(host, kBeforeLine);
  } else if (kind == "duplication") {
    SayFramed(c_, ctx_.ended, "(" + sn + ") you made a duplication error");
  } else if (kind == "mailbox") {
    SayFramed(c_, ctx_.ended, "(" + sn + ") you have a full mailbox");
    // A full mailbox counts against the person only when the banning
    // options say so.
    if (jobs_.full_mailbox) jobs_.full_mailbox(sn);
    PauseSeconds(host, kBeforeLine);
  } else if (kind == "pending") {
    SayFramed(c_, ctx_.ended, "(" + sn + ") you have to many pending");
  } else if (sn == ReplyOrder::kSend) {
    SayFramed(c_, ctx_.ended, kind, ThenPause::kReply);
  } else if (kind == "status") {
    if (jobs_.status) jobs_.status(sn);
    PauseSeconds(host, kAfterReply);
  }
}

void ServeEngine::ServeSteps() {
  const Settings& s = ctx_.settings;
  const ServeCounters& n = ctx_.counters;
  // A lost sign-on is no error: the client is restarted like after its
  // quota of mails.
  if (!IsSignedOn(c_.api) ||
      (s.AOLRestart >= 2 && n.AOLCount >= s.AOLRestart)) {
    RestartClient(IsSignedOn(c_.api)
                      ? "after " + std::to_string(n.AOLCount) + " mails"
                      : "signed off");
    if (ctx_.ended) return;
  }
  if (s.CPURestart >= 2 && n.CPUCount >= s.CPURestart) {
    RestartMachine("after " + std::to_string(n.CPUCount) + " mails");
    return;
  }
  if (s.SentRestart >= 2 && n.SentCount >= s.SentRestart) {
    ClearSent("after " + std::to_string(n.SentCount) + " mails");
    if (ctx_.ended) return;
  }
  if (jobs_.mail) jobs_.mail();
  if (ctx_.ended) return;
  if (ctx_.ScrollSeconds >= s.BotScroll && jobs_.advertise) jobs_.advertise();
  if (ctx_.ended) return;
  if (ctx_.ListSeconds >= s.ListAdvertise || s.ListIfNoPending) {
    if (jobs_.list) jobs_.list();
  }
  if (ctx_.ended) return;
  if (jobs_.find) jobs_.find();
  if (ctx_.ended) return;
  RememberRoom();
}

void ServeEngine::Announce(std::initializer_list<std::string> lines) {
  for (const std::string& line : lines) SayFramed(c_, ctx_.ended, line);
  PauseSeconds(c_.host, kBeforeLine);
}

void ServeEngine::RememberRoom() {
  if (Hwnd room = FindChatRoom(c_.api))
    ctx_.room_name = GetCaption(c_.api, room);
}

void ServeEngine::RestartClient(const std::string& why) {
  Announce({"quorvex is restarting <B><U>aol</B></U>",
            "please hold requests and be patient"});
  ctx_.status.Draw("status: restarting aol");
  RememberRoom();
  // The second clock's error sweep must not click into the client while
  // it restarts.
  ctx_.Timer2->SetEnabled(false);
  restarting_ = true;
  if (aol_restart) aol_restart();
  restarting_ = false;
  ctx_.counters.AOLCount = 0;
  Announce({"quorvex restarted <B><U>aol</B></U>"});
  if (ctx_.ended) return;
  Emit(ctx_.events, JobOutcome::kClientRestarted, "", why);
  ctx_.Timer2->SetEnabled(true);
  ctx_.status.Draw("status: restarted aol");
  ctx_.status.Draw("status: scanning chat");
}

void ServeEngine::RestartMachine(const std::string& why) {
  Announce({"quorvex is restarting <B><U>cpu</B></U>",
            "please hold requests and be patient"});
  ctx_.status.Draw("status: restarting cpu");
  RememberRoom();
  ctx_.Timer2->SetEnabled(false);
  if (ctx_.ended) return;
  // Logged before: the restart ends the program where it stands.
  Emit(ctx_.events, JobOutcome::kMachineRestarted, "", why);
  if (jobs_.cpu_restart) jobs_.cpu_restart();
}

void ServeEngine::ClearSent(const std::string& why) {
  Host& host = c_.host;
  Announce({"quorvex is deleting <B><U>sent</B></U>", "please be patient"});
  ctx_.status.Draw("status: deleting sent");
  ctx_.Timer2->SetEnabled(false);
  host.DoEvents();
  DeleteSentMail(c_);
  host.DoEvents();
  if (ctx_.settings.MailMethod) {
    DeleteMailWaiting(c_);
    host.DoEvents();
  }
  Announce({"quorvex deleted <B><U>sent</B></U>"});
  if (ctx_.ended) return;
  Emit(ctx_.events, JobOutcome::kSentMailDeleted, "", why);
  ctx_.Timer2->SetEnabled(true);
  ctx_.counters.SentCount = 0;
  ctx_.status.Draw("status: deleted sent");
  ctx_.status.Draw("status: scanning chat");
}

void ServeEngine::Timer2_Timer() {
  if (ctx_.ended) return;
  if (jobs_.sweep) jobs_.sweep();
  const Settings& s = ctx_.settings;
  // With "if no requests pending" an empty queue makes the next tick's
  // list step due at once.
  if (ctx_.pending.list().Count() == 0 && s.ListIfNoPending)
    ctx_.ListSeconds = s.ListAdvertise + 10;
  ctx_.ListSeconds = NextSecond(ctx_.ListSeconds);
  ctx_.ScrollSeconds = NextSecond(ctx_.ScrollSeconds);
}

}  // namespace quorvex
