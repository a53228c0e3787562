// The client's answer boxes after a forward (full mailboxes, dead mails,
// over-long mails, stray modals): finding them and pressing their buttons.
// What to do about each is the forwarding job's business.
#pragma once

#include <string>
#include <string_view>

#include "ports/window_api.h"

namespace quorvex {

inline constexpr const char* kClientBoxCaption = "America Online";
inline constexpr const char* kTooLongBoxText =
    "Message is too long or too complex";
inline constexpr const char* kDeadMailBoxText =
    "That message is no longer available for forwarding.";

// A standard dialog "#32770" with this caption ("Waol").
Hwnd FindDialog(WindowApi& api, const char* caption);
// An "America Online" box holding a "Static" with exactly this text.
Hwnd FindClientBox(WindowApi& api, std::string_view static_text);
// A "Button" of a standard dialog, by its caption ("OK").
Hwnd FindDialogButton(WindowApi& api, Hwnd box, const char* caption);

// The "Error" document window listing the names a mail could not reach.
Hwnd FindErrorWindow(WindowApi& api);
// Its "_AOL_View" text: one "name - reason" line per name.
std::string GetErrorText(WindowApi& api, Hwnd error_window);
// Clicks its "_AOL_Icon".
void DismissErrorWindow(WindowApi& api, Hwnd error_window);

// The "_AOL_Button" with this caption ("OK", "&No") of the first client
// modal "_AOL_Modal" that has one.
Hwnd FindModalButton(WindowApi& api, const char* caption);

// Space key down and up, sent: presses a button.
void PressButton(WindowApi& api, Hwnd button);

}  // namespace quorvex
