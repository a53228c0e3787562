// The serving loop's jobs bound to the contexts they work on.
#pragma once

#include "client/client_context.h"
#include "requests/ban_policy.h"
#include "server/forward_job.h"
#include "server/machine_restart.h"
#include "server/replies.h"
#include "server/serve_engine.h"

namespace quorvex {

// The forwarding, list and find jobs and the sweep on `mail`, the replies
// and the advertisement on `replies`, the full-mailbox mistake on `ban` and
// the machine restart on `restart`. What the contexts and `c` refer to
// must outlive the jobs.
ServeJobs DefaultServeJobs(const MailJobContext& mail,
                           const ReplyContext& replies, const BanContext& ban,
                           const RestartContext& restart,
                           const ClientContext& c);

}  // namespace quorvex
