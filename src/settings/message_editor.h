// The message editor's handlers on its controls. Opening and closing the
// window (app/frm_messages.h) belong to the program; its topmost state,
// title painting and pop-up placement to the front end.
#pragma once

#include <string>

#include "settings/messages.h"

namespace quorvex {

inline constexpr int kKeyEnter = 13;
inline constexpr int kKeyBackspace = 8;

// Shows the page of tab `Index` (0 chat, 1 mail, 2 thank you).
void Tab_Click(MessageControls& form, int Index);

// A key typed into txtAdd(Index). Enter on a non-empty entry line (0 or 2)
// adds it to its list, clears it and is swallowed; on the mail text (1) it
// is an ordinary key. A key not swallowed is applied to the box at its
// caret: Enter starts a new line in the mail text and is ignored by the
// one-line boxes, backspace removes the character before the caret, a
// printable ASCII key is inserted. Returns true when the handler swallowed
// the key.
bool txtAdd_KeyPress(MessageControls& form, int Index, int KeyAscii);

// Sets the caret of txtAdd(Index), clamped to its text.
void SetCaret(MessageControls& form, int Index, std::size_t position);

// Removes the selected chat message; nothing when none is selected.
void lstChat_DblClick(MessageControls& form);
// A single click on a thank-you message removes it at once.
void lstThankyou_Click(MessageControls& form, int index);

// An item of the inserts menu ("frmMessages.mnuDate" or "mnuDate"): puts
// its code into the shown page's text box at the caret and leaves the
// caret after it. False for a name that is not an insert item.
bool ClickInsertItem(MessageControls& form, const std::string& name);

}  // namespace quorvex
