// The server's answers in the room: the thank-you and status replies of
// the reply phase (by chat or, with ScrollMethod off, by mail), the
// advertisement, and the session mail of the file menu.
#pragma once

#include <cstdint>
#include <string>

#include "client/client_context.h"
#include "model/job_event.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/prompter.h"
#include "requests/pending_queue.h"
#include "requests/serve_counters.h"
#include "settings/messages.h"
#include "settings/settings.h"

namespace quorvex {

// What the replies and the advertisement read and say.
struct ReplyContext {
  const Settings& settings;
  const MessageControls& messages;  // the thank-you lines
  const PendingQueue& pending;
  const ListBox& lstMails;
  const ServeCounters& counters;
  int& ScrollSeconds;  // the advertisement starts its interval again
  StatusStrip& status;
  Prompter& prompter;  // who the session mail goes to
  std::uint64_t seed;  // of every random choice
  const bool& ended;   // nothing is said once the program has ended
  // Where finished jobs are reported (the program's log); none: nowhere.
  const JobEventSink* events = nullptr;
};

// Thank-you to `sn`: a random line of the thank-you list ("you are
// welcome" when it is empty), said or mailed.
void ThankYouReply(const ReplyContext& r, const ClientContext& c,
                   const std::string& sn);

// How many mail and list entries `sn` has pending, how many entries stand
// ahead of the first of them, and the length of the queue; said or mailed.
void StatusReply(const ReplyContext& r, const ClientContext& c,
                 const std::string& sn);

// Three lines: mails served, usage, pending and sent. Resets ScrollSeconds.
void Advertise(const ReplyContext& r, const ClientContext& c);

// The contact offered by the session-mail prompt.
inline constexpr const char* kSessionMailDefault = "kestrin";

// "email your session": asks for a screen name and mails it the session's
// and the installation's counts. An answer under 3 characters does nothing.
void mnuMailSession_Click(const ReplyContext& r, const ClientContext& c);

}  // namespace quorvex
