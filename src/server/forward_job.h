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
  const MessagesForm& frmMessages;
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

// Whether the number is in the dead-mail cache.
bool IsDeadMail(const std::vector<std::string>& dead_mails,
                std::string_view number);

// sn + " mail <U>" + number + "</U> is a dead mail".
std::string DeadMailLine(std::string_view sn, std::string_view number);

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

// What a forward leaves for the error sweep that follows it, and the
// sweep for the forward: the first requester and the mail number being
// forwarded, which a dead-mail notice names; whether the sweep found the
// forward failed (set by the sweep, cleared at the end of each forward);
// and a sweep under way (Timer2 fires inside the sweep's own pauses and
// must not answer the same box twice). The mail job, the list job and the
// sweep of one serving engine share one.
struct ForwardScratch {
  std::string sn;
  std::string number;
  std::string what;  // what was asked, as the log names it ("send 5")
  bool error = false;
  // Counts every failure that sets `error`: a job compares it before and
  // after its forward, whatever `error` held when it began.
  int failures = 0;
  // Whose mailbox refused the forward under way (lower case): not among
  // those it was sent to.
  std::vector<std::string> full_mailboxes;
  // The forward under way was handed to the client (its send clicked): a
  // sign-off or an exit after that leaves the mail sent, the client's to
  // deliver.
  bool handed = false;
  bool in_sweep = false;
};

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
                       ForwardScratch& f);

// "(bob)(amy)" without the names listed (case ignored), in the same form.
std::string RequestersBut(std::string_view requesters,
                          const std::vector<std::string>& names);

// Marks the forward under way as failed.
void ForwardFailed(ForwardScratch& f);

// How a forward that did not go ended, for the log: a dead mail (when
// `failed` and the mail is now known dead), lost with a sign-off, or not
// sent.
JobOutcome FailedForwardOutcome(const MailJobContext& m, const ClientContext& c,
                                const ForwardScratch& f, bool failed);

// Step 8 of the tick: takes the next mail group and, unless it is a list
// group or nothing, forwards it.
void RunMailJob(const MailJobContext& m, const ClientContext& c,
                ForwardScratch& f);

}  // namespace quorvex
