// The file menu's two messages: the contact info and the web address.
#pragma once

#include "ports/prompter.h"

namespace quorvex {

inline constexpr const char* kContactInfoTitle = "contact info";
inline constexpr const char* kContactInfoText =
    "aol: Kestrin Qv\r\naim: KestrinQuorvex";
inline constexpr const char* kWebTitle = "quorvex website";

// mnuContactInfo: a message titled "contact info" with the author's names.
void mnuContactInfo_Click(Prompter& prompter);
// mnuWeb: the program's web address, shown in a message to copy.
void mnuWeb_Click(Prompter& prompter);

}  // namespace quorvex
