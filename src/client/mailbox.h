// The mailboxes of the client: reading "Incoming/Saved Mail" into the
// program's list of titles, opening a mail by position, emptying the sent
// mail and the outgoing queue, and keeping the mail windows small.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/client_context.h"
#include "model/label.h"
#include "model/list_box.h"

namespace quorvex {

// The title of a mailbox item (date, tab, sender, tab, title): everything
// after the second tab, zero characters removed.
std::string MailTitleOf(std::string_view item);

// Appends the mailbox's titles to `list` in mailbox order, showing progress
// every ten mails. Opens the mailbox when it is missing and, while it is
// empty, closes and opens it again without end: a served mailbox is never
// empty. With skipForeignLists, list mails of other servers are dropped;
// `positions`, when given, receives for each title added the mail's
// zero-based position in the mailbox, which is what OpenMail takes.
void LoadMailbox(const ClientContext& c, ListBox& list, bool skipForeignLists,
                 StatusStrip& status, std::vector<int>* positions = nullptr);
// Whether a title is the list mail of another server.
bool IsForeignListTitle(std::string_view title);
// Whether a read of the mailbox keeps the title of the mail at zero-based
// `position`: with skipForeignLists, not another server's list mail. A
// kept title's position goes to `positions`, when given.
bool KeepsMailTitle(std::string_view title, int position, bool skipForeignLists,
                    std::vector<int>* positions);
// Mails in "Incoming/Saved Mail"; 0 when it is not open.
int GetMailCount(WindowApi& api);
// The title at a zero-based position, "" past the end.
std::string GetMailTitle(WindowApi& api, int position);
// Opens the mail at a zero-based position in its own window (nothing
// happens when the mailbox is shorter, or the client signed off).
void OpenMail(const ClientContext& c, int position);

// Deletes every mail of the online mailbox's sent list.
void DeleteSentMail(const ClientContext& c);
// Deletes every mail of "Mail Waiting to be Sent".
void DeleteMailWaiting(const ClientContext& c);
// Makes the client remember 1 x 1 as the size of open-mail, forward and
// Write Mail windows.
void ShrinkMailWindows(const ClientContext& c);

// Closes every window `find` finds, one after the other, until it finds
// none (or the client signs off).
void CloseAll(const ClientContext& c, Hwnd (*find)(WindowApi&));

}  // namespace quorvex
