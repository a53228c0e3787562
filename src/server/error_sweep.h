// The forward-error sweep: the client's answer boxes after a forward are
// looked for and answered, once after every forward and every second from
// Timer2. Full mailboxes drop their owners from the queue; a mail the
// client will not forward becomes a dead mail, is announced, joins the
// dead-mail cache and takes every other pending request for it along.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/client_context.h"
#include "server/forward_job.h"

namespace quorvex {

// The pause after answering one of the client's boxes.
inline constexpr double kAfterClientBoxSeconds = 2;

// One pass over the boxes, in a fixed order, answering each one found. A
// sweep started while another is under way (Timer2 inside a pause of the
// sweep) returns at once.
void ForwardErrorSweep(const MailJobContext& m, const ClientContext& c,
                       ForwardUnderWay& f);

// Waits up to 300 rounds for the "Error" window or the dead-mail box and
// handles whichever came.
void ForwardErrorHandler(const MailJobContext& m, const ClientContext& c,
                         ForwardUnderWay& f);

// The lower-case screen names of the "Error" window's text: one per line,
// before the line's first "-" (and after a ":" that comes before it),
// spaces around them trimmed. Lines without a "-" name nobody.
std::vector<std::string> FullMailboxNames(std::string_view error_text);

}  // namespace quorvex
