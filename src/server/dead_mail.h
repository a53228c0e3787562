// Dead mails: mails the client will not forward (it says so in a box, or
// the mail's window never comes). Each is said in the room, kept in the
// dead-mail cache and never opened again; a later request for one is
// answered with the same notice, and the client's box takes every other
// pending request for the mail along, each told.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/client_context.h"
#include "server/forward_job.h"

namespace quorvex {

// Whether the number is in the dead-mail cache.
bool IsDeadMail(const std::vector<std::string>& dead_mails,
                std::string_view number);

// sn + " mail <U>" + number + "</U> is a dead mail".
std::string DeadMailLine(std::string_view sn, std::string_view number);

// A request for a mail already known dead: the notice to `sn`, logged for
// all the `requesters` of the group.
void AnswerDeadMail(const MailJobContext& m, const ClientContext& c,
                    const std::string& sn, const std::string& number,
                    const std::string& requesters, const std::string& what);

// The forward under way gave up on its mail's window: the mail is said
// dead, kept in the cache, and the forward failed.
void GiveUpDeadMail(const MailJobContext& m, const ClientContext& c,
                    ForwardUnderWay& f);

// The client's dead-mail box about the forward under way: answered, the
// forward window closed, the mail said dead and kept in the cache, the
// forward failed, and every other pending request for it dropped.
void HandleDeadMailBox(const MailJobContext& m, const ClientContext& c,
                       ForwardUnderWay& f, Hwnd box);

}  // namespace quorvex
