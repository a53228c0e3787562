// One order of the ReplyQueue: sn + "-" + kind ("thankyou", "status",
// "pending", "duplication", "mailbox"), or "send-" + a text to be said as
// it stands. The request handling, the serve-and-chat window and the
// serving loop's reply phase build and read orders through this type.
#pragma once

#include <string>
#include <string_view>

#include "model/list_box.h"

namespace quorvex {

struct ReplyOrder {
  std::string sn;    // "send" for a text to say
  std::string kind;  // the kind, or the text to say

  static constexpr std::string_view kSend = "send";

  static std::string Make(std::string_view sn, std::string_view kind) {
    return std::string(sn) + "-" + std::string(kind);
  }
  static std::string Say(std::string_view text) { return Make(kSend, text); }

  // Split at the first "-"; false for an entry without one.
  static bool Read(std::string_view entry, ReplyOrder* order) {
    const auto dash = entry.find('-');
    if (dash == std::string_view::npos) return false;
    order->sn = std::string(entry.substr(0, dash));
    order->kind = std::string(entry.substr(dash + 1));
    return true;
  }
};

// Queues a person's order unless the very same order (that person, that
// kind) is already in the queue, the one being answered included: each
// person is still told of a duplicate, a full list, a full mailbox, thanks
// and status, but one person holds at most one order of each kind, so
// that repeating a request cannot make the reply phase, and every serving
// tick behind it, as long as the person likes. True when queued.
inline bool QueueReply(ListBox& ReplyQueue, std::string_view sn,
                       std::string_view kind) {
  std::string order = ReplyOrder::Make(sn, kind);
  if (ReplyQueue.Contains(order)) return false;
  ReplyQueue.Add(std::move(order));
  return true;
}

}  // namespace quorvex
