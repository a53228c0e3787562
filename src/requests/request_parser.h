// The chat request parser: turns a line said in the room into pending
// entries or reply orders. It keeps no state of its own.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "model/label.h"
#include "model/list_box.h"
#include "requests/ban_policy.h"
#include "requests/pending_queue.h"
#include "settings/settings.h"

namespace quorvex {

struct RequestContext {
  const Settings& settings;
  const BanningOptions& banning;
  PendingQueue& pending;
  const ListBox& lstBanned;
  const ListBox& lstMails;  // its count is the highest mail number
  ListBox& ReplyQueue;
  Label& lblPending;
  // While a start reads the mailbox again, lstMails is emptied and filled
  // title by title; requests are judged against the count it had before
  // (>= 0 then), never against a half-read list. Unset or -1: no read.
  const int* mails_while_reading = nullptr;
};

// The highest mail number a request may ask for now.
int RequestableMails(const RequestContext& ctx);

// One chat event (speaker, text). Any bytes are accepted.
void HandleChatLine(RequestContext& ctx, std::string_view speaker,
                    std::string_view text);

// True when sn + separator + item is already pending (case ignored); then,
// when duplicate requests are banned, orders the "-duplication" reply.
bool CheckDuplicate(RequestContext& ctx, const std::string& sn,
                    std::string_view separator, std::string_view item);

// Calls `add(i)` for each value of the runtime's "For i = x To y" (step 1,
// in double precision) that lies in (0, last], in order. The work is
// bounded by `last`: the stretch below zero is crossed in one step, the
// walk ends above `last`, and a value that adding one no longer changes
// (where the runtime would loop for ever) ends it too.
void ForEachInRange(double x, double y, double last,
                    const std::function<void(double)>& add);

}  // namespace quorvex
