// Mail made from the mailbox's titles: the numbered lists (written into the
// user's own mailbox once, then forwarded to everyone waiting for them)
// and the finds (the titles that match a requester's search text).
#pragma once

#include <string>
#include <string_view>

#include "client/client_context.h"
#include "server/forward_job.h"

namespace quorvex {

// What a list mail's title holds, followed by the list's number.
inline constexpr const char* kListMarker = " quorvex list number ";

// The list mails of lstMails into lstLists, one item "k position" each
// (list number, 1-based mail number), in mailbox order; refreshes
// "lists: " and returns the count.
int CollectLists(const MailboxLists& mailbox);

// One list mail: its subject and body for list `k` made of the titles
// `first` to `last` (0-based indexes into lstMails, inclusive).
std::string ListSubject(const Settings& s, int k);
std::string ListBody(const Settings& s, const ListBox& lstMails, int k,
                     int first, int last);

// "make lists" answered yes: every ListSize titles become a list mail
// written to the user, sent until the client takes it; then the client's
// automatic mail session, and the mailbox is read again so that the new
// lists are served from now on.
void BuildLists(const MailJobContext& m, const ClientContext& c);

// The client's automatic mail session ("Automatic AOL" on the Mail menu):
// opened, waited on until it reports it is over, and closed. Ends early
// when the client signs off.
void RunAutomaticAol(const ClientContext& c);

// Step 10 of the tick: takes every list request and forwards each list
// mail to all of them at once.
void RunListJob(const MailJobContext& m, const ClientContext& c,
                ForwardUnderWay& f);

// The "[ n ] - title" lines of the titles that contain `text` (case
// ignored), pausing with `speed` between titles; *count says how many.
std::string FindLines(const ClientContext& c, const ListBox& lstMails,
                      std::string_view text, float speed, int* count);

// Step 11 of the tick: takes the next find group and mails its results,
// or says there are none.
void RunFindJob(const MailJobContext& m, const ClientContext& c);

}  // namespace quorvex
