// The message texts: the chat list, the thank-you list and the mail text.
// They live in the message editor's controls for the whole run (there is
// no other copy); this file loads them from the registry and saves them.
#pragma once

#include <array>
#include <cstddef>

#include "model/controls.h"
#include "model/list_box.h"
#include "ports/registry.h"

namespace quorvex {

inline constexpr const char* kChatMsgsSection = "ChatMsgs";
inline constexpr const char* kThankYouMsgsSection = "ThankYouMsgs";
inline constexpr const char* kMailMsgsSection = "MailMsgs";

// The mail text used when none is stored.
extern const char* const kDefaultMailMessage;

// The message editor's controls (its window is app/frm_messages.h): the
// texts, the entry lines with their carets, and the page shown.
struct MessageControls {
  ListBox lstChat{"lstChat"};
  ListBox lstThankyou{"lstThankyou"};
  // 0: new chat message, 1: the mail text, 2: new thank-you message.
  std::array<TextBox, 3> txtAdd;
  // Caret of each txtAdd box, a byte offset into its text.
  std::array<std::size_t, 3> caret{};
  // The shown tab and page: 0 chat (Picture1), 1 mail (Picture2),
  // 2 thank you (Picture3).
  int tab = 0;

  TextBox& mail_text() { return txtAdd[1]; }
  const TextBox& mail_text() const { return txtAdd[1]; }
};

// Fills lstChat, lstThankyou and the mail text from the registry. Empty or
// missing numbered messages are skipped, so gaps close up.
void LoadMessages(MessageControls& form, const Registry& registry);
// Writes the three texts back, first deleting the numbered keys of the old
// count so that none is left over when a list shrank.
void SaveMessages(const MessageControls& form, Registry& registry);

}  // namespace quorvex
