// The forwarding job: one "send" group taken from the pending queue is
// forwarded from "Incoming/Saved Mail" to everyone who asked for it, in one
// mail, and the room is told. The job blocks its tick until the client's
// windows have come and gone; every wait yields and ends when the client
// signs off (the group is then lost: the restart check brings the client
// back, and nobody is served twice).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "client/client_context.h"
#include "model/job_event.h"
#include "model/label.h"
#include "model/list_box.h"
#include "requests/pending_queue.h"
#include "requests/serve_counters.h"
#include "server/server_common.h"
#include "settings/messages.h"
#include "settings/settings.h"

namespace quorvex {

// What the mail jobs (forwards, lists, finds) and the forward-error sweep
// work on.
struct MailJobContext {
  const Settings& settings;
  // The notices said after a forward and the text every forward carries.
  const MessageControls& messages;
  MailboxLists mailbox;
  PendingQueue& pending;
  Label& lblPending;
  // A full mailbox's reply orders leave the queue with its requests.
  ListBox& ReplyQueue;
  // Mail numbers that could not be forwarded; never opened again.
  std::vector<std::string>& dead_mails;
  int& ListSeconds;  // the list step ran: the interval starts again
  CounterView counters;
  StatusStrip& status;
  std::uint64_t seed;  // of every random choice
  const bool& ended;   // nothing is said once the program has ended
  // Where finished jobs are reported (the program's log); none: nowhere.
  const JobEventSink* events = nullptr;
};

// The word said after a forward: "sent", or a random line of the message
// editor's chat list when it has any.
std::string NotifyText(const MailJobContext& m, Host& host);

// "bob" from "(bob)(amy)"; "" when there is none.
std::string FirstRequester(std::string_view requesters);

// The body of a forward: the banner line, then `second_line` between the
// decorations, then the editor's mail text; every line ends in CR LF.
std::string ForwardBody(const MailJobContext& m,
                        const std::string& second_line);

// What the shared forwarding steps show and how fast they poll; lists use
// their own texts and the list speed.
struct ForwardSteps {
  const char* opening;     // before the mail is opened
  const char* forwarding;  // before its Forward icon is clicked
  const char* sending;     // before the forward window is filled and sent
  const char* sent;        // while waiting for the windows to close
  float speed;             // pause between polls of the last wait
};

// A forward window: a mail being written that is not a "Write Mail" one.
Hwnd FindForwardWindow(WindowApi& api);

// The forward under way, as the mail and list jobs start it and the
// forward-error sweep (after each forward, and every second from Timer2)
// reports on it: whom and which mail it is for, which a dead-mail notice
// names; whether it failed; whose mailbox refused it; whether the client
// has taken it. The jobs and the sweep of one serving engine share one.
class ForwardUnderWay {
 public:
  // A job's start: no mailbox refused it yet, nothing handed.
  void BeginJob() {
    refused_.clear();
    handed_ = false;
  }
  // The mail about to be forwarded for `sn` ("send 5" is `what`).
  void Begin(std::string sn, std::string number, std::string what) {
    sn_ = std::move(sn);
    number_ = std::move(number);
    what_ = std::move(what);
  }
  const std::string& sn() const { return sn_; }
  const std::string& number() const { return number_; }
  const std::string& what() const { return what_; }

  // The forward failed (a dead mail, a refused one): counted, so that a
  // job compares failures() before and after its forward whatever error()
  // held when it began; error() holds until the job clears it.
  void Failed() {
    error_ = true;
    ++failures_;
  }
  int failures() const { return failures_; }
  bool error() const { return error_; }
  void ClearError() { error_ = false; }

  // `sn`'s mailbox (lower case) refused the forward: not among those it
  // was sent to.
  void RefusedBy(std::string sn) { refused_.push_back(std::move(sn)); }
  const std::vector<std::string>& refused() const { return refused_; }

  // The client took the forward (its send clicked): a sign-off or an exit
  // after that leaves the mail sent, the client's to deliver. Each
  // forward starts not handed.
  void StartForward() { handed_ = false; }
  void Handed() { handed_ = true; }
  bool handed() const { return handed_; }

  // A sweep under way: Timer2 fires inside the sweep's own pauses and
  // must not answer the same box twice. EnterSweep() is false when one
  // is.
  bool EnterSweep() { return !std::exchange(in_sweep_, true); }
  void LeaveSweep() { in_sweep_ = false; }
  bool in_sweep() const { return in_sweep_; }

 private:
  std::string sn_;
  std::string number_;
  std::string what_;
  bool error_ = false;
  int failures_ = 0;
  std::vector<std::string> refused_;
  bool handed_ = false;
  bool in_sweep_ = false;
};

// Closes the forward window the client's box was about, if it is still
// there; whether there was one.
bool CloseForwardWindow(WindowApi& api);

// Opens mail `number` (1-based position in lstMails), forwards it to
// `recipients` with `body` (send later or send now as MailMethod says) and
// waits until the forward window and the mail's window are gone. False
// when the client signed off meanwhile, or the number is no mail; also
// when the mail's window (or its forward window) has not come within a
// minute: the mail `f` names is then said to be dead and is not opened
// again.
bool ForwardMailNumber(const MailJobContext& m, const ClientContext& c,
                       int number, std::string_view recipients,
                       std::string_view body, const ForwardSteps& steps,
                       ForwardUnderWay& f);

// "(bob)(amy)" without the names listed (case ignored), in the same form.
std::string RequestersBut(std::string_view requesters,
                          const std::vector<std::string>& names);

// How a forward that did not go ended, for the log: a dead mail (when
// `failed` and the mail is now known dead), lost with a sign-off, or not
// sent.
JobOutcome FailedForwardOutcome(const MailJobContext& m, const ClientContext& c,
                                const ForwardUnderWay& f, bool failed);

// Step 8 of the tick: takes the next mail group and, unless it is a list
// group or nothing, forwards it.
void RunMailJob(const MailJobContext& m, const ClientContext& c,
                ForwardUnderWay& f);

}  // namespace quorvex
