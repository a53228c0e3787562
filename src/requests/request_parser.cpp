#include "requests/request_parser.h"

#include <cmath>

#include "model/text_util.h"
#include "requests/pending_line.h"
#include "requests/reply_order.h"

namespace quorvex {

namespace {

// Mid(s, start) with a 1-based start: "" when past the end.
std::string_view MidFrom(std::string_view s, size_t start) {
  return start - 1 >= s.size() ? std::string_view() : s.substr(start - 1);
}

bool IsWordRequest(std::string_view rest) {
  return rest == "list" || StartsWith(rest, "than") || rest == "status";
}

}  // namespace

void ForEachInRange(double x, double y, double last,
                    const std::function<void(double)>& add) {
  // Below 2^53 every whole number is a double, so from a negative start
  // adding one is exact until the value passes zero.
  constexpr double kExact = 9007199254740992.0;
  double i = x;
  while (i <= y && i <= last) {
    if (i > 0) add(i);
    if (i <= -1 && i >= -kExact) {
      i += std::floor(-i);  // the last value not above zero
      continue;
    }
    double next = i + 1;
    if (next == i) break;
    i = next;
  }
}

int RequestableMails(const RequestContext& ctx) {
  if (ctx.mails_while_reading && *ctx.mails_while_reading >= 0)
    return *ctx.mails_while_reading;
  return ctx.lstMails.Count();
}

bool CheckDuplicate(RequestContext& ctx, const std::string& sn,
                    std::string_view separator, std::string_view item) {
  std::string entry = sn;
  entry += separator;
  entry += item;
  if (!ctx.pending.Has(entry)) return false;
  if (ctx.banning.chkDupReqs.value == 1)
    QueueReply(ctx.ReplyQueue, sn, "duplication");
  return true;
}

namespace {

// The ways a request ends: with the label refreshed or without.
enum class End { kRefresh, kSilent };

End RangeRequest(RequestContext& ctx, const std::string& sn,
                 std::string_view msg, std::string_view rest,
                 size_t rest_start) {
  double x = Val(Trim(msg.substr(rest_start - 1, rest.find('-'))));
  double y = Val(Trim(msg.substr(msg.find('-') + 1)));
  int pending = ctx.pending.PendingCount(sn);
  // The span is y - x, one less than the mails asked for.
  if (ctx.banning.chkPending.value == 1 &&
      y - x + pending > ctx.banning.Mails()) {
    QueueReply(ctx.ReplyQueue, sn, "pending");
    return End::kRefresh;
  }
  if (!(y > x)) return End::kRefresh;
  if (ctx.settings.BlockMax > 0 && y - x > ctx.settings.BlockMax)
    return End::kSilent;
  ForEachInRange(x, y, RequestableMails(ctx), [&](double i) {
    std::string number = NumberText(i);
    if (!CheckDuplicate(ctx, sn, "-", number))
      ctx.pending.Append(PendingLine::Mail(sn, number));
  });
  return End::kRefresh;
}

End WordRequest(RequestContext& ctx, const std::string& sn,
                std::string_view rest) {
  if (rest == "list") {
    if (CheckDuplicate(ctx, sn, "-", "list")) return End::kSilent;
    ctx.pending.Append(PendingLine::List(sn));
  } else if (StartsWith(rest, "than") && ctx.settings.ScrollThankyou) {
    QueueReply(ctx.ReplyQueue, sn, "thankyou");
  } else if (rest == "status" && ctx.settings.ScrollStatus) {
    QueueReply(ctx.ReplyQueue, sn, "status");
  }
  return End::kRefresh;
}

End SingleRequest(RequestContext& ctx, const std::string& sn,
                  std::string_view rest) {
  // At most five characters after the one skipped.
  if (rest.size() >= 6 || rest.empty()) return End::kSilent;
  int pending = ctx.pending.PendingCount(sn);
  double n = Val(Trim(rest));
  if (ctx.banning.chkPending.value == 1 && pending + 1 > ctx.banning.Mails()) {
    QueueReply(ctx.ReplyQueue, sn, "pending");
    return End::kRefresh;
  }
  if (n > 0 && n <= RequestableMails(ctx)) {
    std::string number = NumberText(n);
    if (!CheckDuplicate(ctx, sn, "-", number))
      ctx.pending.Append(PendingLine::Mail(sn, number));
  }
  return End::kRefresh;
}

End SendRequest(RequestContext& ctx, const std::string& sn,
                std::string_view msg, size_t key_length) {
  // "/", the key and one more character (normally a blank) come first.
  size_t rest_start = key_length + 3;
  std::string_view rest = MidFrom(msg, rest_start);
  if (ctx.settings.BlocksXYEnable && rest.find('-') != std::string_view::npos)
    return RangeRequest(ctx, sn, msg, rest, rest_start);
  if (IsWordRequest(rest)) return WordRequest(ctx, sn, rest);
  return SingleRequest(ctx, sn, rest);
}

End FindRequest(RequestContext& ctx, const std::string& sn,
                std::string_view msg, size_t key_length) {
  size_t rest_start = key_length + 3;
  std::string_view rest = MidFrom(msg, rest_start);
  const Settings& s = ctx.settings;
  if (static_cast<double>(rest.size()) < s.FindMin ||
      static_cast<double>(rest.size()) > s.FindMax)
    return End::kSilent;
  size_t amp = rest.find('&');
  if (s.FindsXYEnable && amp != std::string_view::npos) {
    // The second text follows the first "&" of the whole line.
    std::string first = Trim(rest.substr(0, amp));
    std::string second = Trim(msg.substr(msg.find('&') + 1));
    ctx.pending.Append(PendingLine::Find(sn, first));
    ctx.pending.Append(PendingLine::Find(sn, second));
  } else {
    ctx.pending.Append(PendingLine::Find(sn, rest));
  }
  return End::kRefresh;
}

}  // namespace

void HandleChatLine(RequestContext& ctx, std::string_view speaker,
                    std::string_view text) {
  std::string sn = LCase(speaker);
  if (ListHasItem(ctx.lstBanned, sn)) return;
  // Case does not change "/", so chatter is dropped before any copy.
  if (text.empty() || text.front() != '/') return;
  std::string msg = LCase(text);

  std::string handle = LCase(ctx.settings.Handle);
  std::string send_key = handle + " send";
  std::string find_key = handle + " find";
  std::string thank_key = handle + " than";
  std::string_view after_slash = std::string_view(msg).substr(1);

  End end = End::kRefresh;
  if (StartsWith(after_slash, send_key)) {
    end = SendRequest(ctx, sn, msg, send_key.size());
  } else if (StartsWith(after_slash, thank_key) &&
             ctx.settings.ScrollThankyou) {
    QueueReply(ctx.ReplyQueue, sn, "thankyou");
  } else if (StartsWith(after_slash, find_key) && ctx.settings.FindsEnable) {
    end = FindRequest(ctx, sn, msg, find_key.size());
  }
  if (end == End::kRefresh) ctx.pending.RefreshLabel(ctx.lblPending);
}

}  // namespace quorvex
