#include "server/server_common.h"

#include "client/chat_room.h"
#include "client/mailbox.h"

namespace quorvex {

void Say(const ClientContext& c, bool ended, const std::string& text) {
  if (ended) return;
  ChatSend(c, text);
}

void ReadMailbox(const MailboxLists& mailbox, const ClientContext& c,
                 StatusStrip& status) {
  // Also when the read is cut short by the program's end.
  struct Reading {
    int* count;
    ~Reading() {
      if (count) *count = -1;
    }
  } reading{mailbox.mails_while_reading};
  if (reading.count) *reading.count = mailbox.lstMails.Count();
  mailbox.lstMails.Clear();
  mailbox.mail_positions.clear();
  mailbox.lstLists.Clear();
  // Other servers' list mails are not served.
  LoadMailbox(c, mailbox.lstMails, /*skipForeignLists=*/true, status,
              &mailbox.mail_positions);
}

std::string BannerLine(const Settings& settings) {
  return std::string("<font face=tahoma color=#003377></B></U></I>") +
         settings.LAscii + kServerName + " -by- kestrin" + settings.RAscii +
         "\r\n";
}

}  // namespace quorvex
