// What the serving jobs share: one chat line said in the room, the mailbox
// as the server reads it, and the first line of every mail the server
// writes.
#pragma once

#include <string>
#include <vector>

#include "client/client_context.h"
#include "model/label.h"
#include "model/list_box.h"
#include "settings/settings.h"

namespace quorvex {

// The server's name as it signs its lines: "quorvex°·² mail server".
inline constexpr const char* kServerName =
    "quorvex\xC2\xB0\xC2\xB7\xC2\xB2 mail server";

// Says one line in the room (ChatSend, inserts expanded). Nothing is said
// once the program has ended.
void Say(const ClientContext& c, bool ended, const std::string& text);

// The mailbox's titles as read at the start, where each one stands, the
// list mails among them, and the labels that count them. The start and
// the list job read it anew.
struct MailboxLists {
  ListBox& lstMails;
  // Where each title of lstMails stands in the mailbox (zero-based).
  std::vector<int>& mail_positions;
  ListBox& lstLists;
  Label& lblMails;
  Label& lblLists;
  // Set to lstMails' count while a read is under way (-1 otherwise): what
  // requests said meanwhile are judged against. May be unset.
  int* mails_while_reading = nullptr;
};

// Empties the lists and reads the mailbox's titles anew (the status strip
// shows the reading); lblMails and lblLists are left to the caller. Until
// the list is whole again, requests are judged against the count it had.
void ReadMailbox(const MailboxLists& mailbox, const ClientContext& c,
                 StatusStrip& status);

// "<font face=tahoma color=#003377></B></U></I>" + LAscii +
// "quorvex°·² mail server -by- kestrin" + RAscii + CR LF.
std::string BannerLine(const Settings& settings);

}  // namespace quorvex
