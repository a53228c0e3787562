#include "server/serve_engine.h"

#include <utility>

#include "client/client_tree.h"
#include "client/instant_messages.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "requests/ban_policy.h"
#include "requests/reply_order.h"
#include "server/machine_restart.h"
#include "server/mail_window_sizes.h"
#include "server/replies.h"
#include "server/server_common.h"

namespace quorvex {

namespace {

// Around every announcement and before every reply; after a reply.
constexpr float kAround = 0.55f;
constexpr float kAfterReply = 0.45f;

// ListSeconds and ScrollSeconds were 16-bit: the old runtime stopped with
// an overflow error after nine hours without a list or an advertisement.
// They stay at the largest value instead.
constexpr int kSecondsMax = 32767;

int NextSecond(int seconds) {
  return seconds >= kSecondsMax ? kSecondsMax : seconds + 1;
}

}  // namespace

ServeEngine::ServeEngine(FrmMain& frm, const ClientContext& c, ServeJobs jobs)
    : frm_(frm), c_(c), jobs_(std::move(jobs)) {
  Host& host = frm_.ports.host;
  frm_.Timer1 = host.CreateTimer([this] { Timer1_Timer(); });
  frm_.Timer1->SetInterval(1);
  frm_.Timer2 = host.CreateTimer([this] { Timer2_Timer(); });
  frm_.Timer2->SetInterval(1000);
}

ServeEngine::~ServeEngine() {
  // The timers call back into this engine.
  frm_.Timer1.reset();
  frm_.Timer2.reset();
}

void ServeEngine::SetTimers(bool enabled) {
  frm_.Timer1->SetEnabled(enabled);
  frm_.Timer2->SetEnabled(enabled);
}

// --- lifecycle ---

void ServeEngine::cmdStart_Click() {
  if (frm_.ended) return;
  if (frm_.ServerOn) {
    // The next tick says goodbye and stops the timers.
    frm_.ServerOn = false;
    frm_.cmdStart.Set("&start");
    return;
  }
  // A second click while the start is still talking to the client would
  // start the server twice over.
  if (starting_) return;
  starting_ = true;
  Start();
  starting_ = false;
}

void ServeEngine::Start() {
  const Settings& s = frm_.settings;
  frm_.lstMails.Clear();
  frm_.mail_positions.clear();
  frm_.lstLists.Clear();
  LoadMailbox(c_, frm_.lstMails, true, frm_.status, &frm_.mail_positions);
  int lists = jobs_.collect_lists ? jobs_.collect_lists(frm_) : 0;
  frm_.SetStatus("status: found #" + std::to_string(lists) + " lists");
  if (lists == 0) {
    if (!frm_.ports.prompter.YesNo("do you want to make new lists?",
                                   "make lists")) {
      frm_.SetStatus("status: idle");
      return;
    }
    if (jobs_.build_lists) jobs_.build_lists(frm_, c_);
    lists = frm_.lstLists.Count();
  }
  if (frm_.ended) return;
  frm_.lblMails.Set("mails: " + std::to_string(frm_.lstMails.Count()));
  frm_.lblLists.Set("lists: " + std::to_string(lists));

  frm_.SetStatus("status: starting server");
  PrepareClient();
  if (frm_.ended) return;

  Host& host = c_.host;
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex mail server <B><U>on</B></U>");
  PauseSeconds(host, kAround);
  Say(frm_, c_,
      "type /<B>" + s.Handle + " send <U>x" +
          (s.BlocksXYEnable ? ",x-y</U></B>" : "</U></B>"));
  PauseSeconds(host, kAround);
  if (s.FindsEnable) {
    // The range setting of sends picks the find form too; intended.
    Say(frm_, c_,
        "type <B>/" + s.Handle + " find <U>x" +
            (s.BlocksXYEnable ? ",x&y</U></B>" : "</U></B>"));
    PauseSeconds(host, kAround);
  }
  if (frm_.ended) return;

  frm_.ServerOn = true;
  frm_.cmdStart.Set("&stop");
  SetTimers(true);
  frm_.counters.AOLCount = 0;
  frm_.counters.CPUCount = 0;
  frm_.counters.SentCount = 0;
  frm_.SetStatus("status: scanning chat");
}

void ServeEngine::PrepareClient() {
  WindowApi& api = c_.api;
  // The frame, its MDI client and the buddy list are looked up as the
  // client's preparation always did; only the screen name is kept.
  FindFrame(api);
  FindChildByTitle(api, FindMdiClient(api), "Buddy List Window");
  user_sn_ = GetUserSN(api);
  if (set_preferences) set_preferences();
  if (frm_.settings.MailResize) ShrinkMailWindows(c_);
  IMsOff(c_);
}

void ServeEngine::cmdPause_Click() {
  if (frm_.ended || !frm_.ServerOn) return;
  if (frm_.ServerPaused) {
    Resume();
    return;
  }
  // The next tick says so and stops the timers.
  frm_.ServerPaused = true;
  frm_.cmdPause.Set("&unpause");
}

void ServeEngine::Resume() {
  Host& host = c_.host;
  frm_.SetStatus("status: unpausing server");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex mail server <B><U>unpaused</B></U>");
  PauseSeconds(host, kAround);
  if (frm_.ended) return;
  frm_.ServerPaused = false;
  SetTimers(true);
  frm_.cmdPause.Set("&pause");
  frm_.SetStatus("status: scanning chat");
}

void ServeEngine::PauseServer() {
  Host& host = c_.host;
  frm_.SetStatus("status: pausing server");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex mail server <B><U>paused</B></U>");
  PauseSeconds(host, kAround);
  SetTimers(false);
  frm_.SetStatus("status: paused");
}

void ServeEngine::Stop() {
  Host& host = c_.host;
  frm_.SetStatus("status: stopping server");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex mail server <B><U>off</B></U>");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "please stop requesting");
  SetTimers(false);
  if (frm_.ended) return;
  if (frm_.settings.MailResize) ForgetMailWindowSizes(c_);
  IMsOn(c_);
  frm_.SetStatus("status: idle");
}

// --- the serving loop ---

void ServeEngine::Timer1_Timer() {
  if (frm_.ended) return;
  ReplyPhase();
  if (frm_.ended) return;
  frm_.SetStatus("status: scanning chat");
  // Clicks made during the tick so far are honoured here.
  if (frm_.ServerPaused) {
    PauseServer();
  } else if (frm_.ServerOn) {
    ServeSteps();
  } else {
    Stop();
  }
}

void ServeEngine::ReplyPhase() {
  // Replies queued while this phase runs wait for the next tick.
  const int n = frm_.ReplyQueue.Count();
  for (int i = 0; i < n && !frm_.ended; ++i) {
    if (frm_.ReplyQueue.Empty()) break;
    const std::string entry = frm_.ReplyQueue.Item(0);
    if (entry.empty()) break;
    const std::uint64_t id = frm_.ReplyQueue.IdAt(0);
    ReplyOrder order;
    if (ReplyOrder::Read(entry, &order)) Reply(order.sn, order.kind);
    frm_.ReplyQueue.RemoveId(id);
  }
}

void ServeEngine::Reply(const std::string& sn, const std::string& kind) {
  Host& host = c_.host;
  if (kind == "thankyou") {
    ThankYouReply(frm_, c_, sn);
    PauseSeconds(host, kAround);
  } else if (kind == "duplication") {
    PauseSeconds(host, kAround);
    Say(frm_, c_, "(" + sn + ") you made a duplication error");
  } else if (kind == "mailbox") {
    PauseSeconds(host, kAround);
    Say(frm_, c_, "(" + sn + ") you have a full mailbox");
    // A full mailbox counts against the person only when the banning
    // options say so.
    if (frm_.frmBanning.chkFullBox.value == 1) {
      BanContext ban = MakeBanContext(frm_, c_);
      AddMistake(ban, sn);
    }
    PauseSeconds(host, kAround);
  } else if (kind == "pending") {
    PauseSeconds(host, kAround);
    Say(frm_, c_, "(" + sn + ") you have to many pending");
  } else if (sn == ReplyOrder::kSend) {
    PauseSeconds(host, kAround);
    Say(frm_, c_, kind);
    PauseSeconds(host, kAfterReply);
  } else if (kind == "status") {
    StatusReply(frm_, c_, sn);
    PauseSeconds(host, kAfterReply);
  }
}

void ServeEngine::ServeSteps() {
  const Settings& s = frm_.settings;
  const ServeCounters& n = frm_.counters;
  // A lost sign-on is no error: the client is restarted like after its
  // quota of mails.
  if (!IsSignedOn(c_.api) ||
      (s.AOLRestart >= 2 && n.AOLCount >= s.AOLRestart)) {
    RestartClient();
    if (frm_.ended) return;
  }
  if (s.CPURestart >= 2 && n.CPUCount >= s.CPURestart) {
    RestartMachine();
    return;
  }
  if (s.SentRestart >= 2 && n.SentCount >= s.SentRestart) {
    ClearSent();
    if (frm_.ended) return;
  }
  if (jobs_.mail) jobs_.mail(frm_, c_);
  if (frm_.ended) return;
  if (frm_.ScrollSeconds >= s.BotScroll) Advertise(frm_, c_);
  if (frm_.ended) return;
  if (frm_.ListSeconds >= s.ListAdvertise || s.ListIfNoPending) {
    if (jobs_.list) jobs_.list(frm_, c_);
  }
  if (frm_.ended) return;
  if (jobs_.find) jobs_.find(frm_, c_);
  if (frm_.ended) return;
  RememberRoom();
}

void ServeEngine::RememberRoom() {
  if (Hwnd room = FindChatRoom(c_.api))
    frm_.room_name = GetCaption(c_.api, room);
}

void ServeEngine::RestartClient() {
  Host& host = c_.host;
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex is restarting <B><U>aol</B></U>");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "please hold requests and be patient");
  PauseSeconds(host, kAround);
  frm_.SetStatus("status: restarting aol");
  RememberRoom();
  // The second clock's error sweep must not click into the client while
  // it restarts.
  frm_.Timer2->SetEnabled(false);
  if (aol_restart) aol_restart();
  frm_.counters.AOLCount = 0;
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex restarted <B><U>aol</B></U>");
  PauseSeconds(host, kAround);
  if (frm_.ended) return;
  frm_.Timer2->SetEnabled(true);
  frm_.SetStatus("status: restarted aol");
  frm_.SetStatus("status: scanning chat");
}

void ServeEngine::RestartMachine() {
  Host& host = c_.host;
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex is restarting <B><U>cpu</B></U>");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "please hold requests and be patient");
  PauseSeconds(host, kAround);
  frm_.SetStatus("status: restarting cpu");
  RememberRoom();
  frm_.Timer2->SetEnabled(false);
  if (frm_.ended) return;
  if (cpu_restart) {
    cpu_restart();
  } else {
    CPURestart(frm_, c_);
  }
}

void ServeEngine::ClearSent() {
  Host& host = c_.host;
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex is deleting <B><U>sent</B></U>");
  PauseSeconds(host, kAround);
  Say(frm_, c_, "please be patient");
  PauseSeconds(host, kAround);
  frm_.SetStatus("status: deleting sent");
  frm_.Timer2->SetEnabled(false);
  host.DoEvents();
  DeleteSentMail(c_);
  host.DoEvents();
  if (frm_.settings.MailMethod) {
    DeleteMailWaiting(c_);
    host.DoEvents();
  }
  PauseSeconds(host, kAround);
  Say(frm_, c_, "quorvex deleted <B><U>sent</B></U>");
  PauseSeconds(host, kAround);
  if (frm_.ended) return;
  frm_.Timer2->SetEnabled(true);
  frm_.counters.SentCount = 0;
  frm_.SetStatus("status: deleted sent");
  frm_.SetStatus("status: scanning chat");
}

void ServeEngine::Timer2_Timer() {
  if (frm_.ended) return;
  if (jobs_.sweep) jobs_.sweep(frm_, c_);
  const Settings& s = frm_.settings;
  // With "if no requests pending" an empty queue makes the next tick's
  // list step due at once.
  if (frm_.lstPending().Count() == 0 && s.ListIfNoPending)
    frm_.ListSeconds = s.ListAdvertise + 10;
  frm_.ListSeconds = NextSecond(frm_.ListSeconds);
  frm_.ScrollSeconds = NextSecond(frm_.ScrollSeconds);
}

}  // namespace quorvex
