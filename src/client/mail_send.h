// Filling and sending the client's forward window and its "Write Mail"
// window. Each waits, yielding, until the window is complete and returns
// quietly when the client signs off meanwhile.
#pragma once

#include <string_view>

#include "client/client_context.h"

namespace quorvex {

// Forward window: recipients, the subject from its caption, the body
// (inserts expanded); Send Now clicked 3 times, then Send Later 8 times.
// False, with nothing typed, when the client signed off or the window went
// before its send icons came.
bool ForwardMail(const ClientContext& c, std::string_view recipients,
                 Hwnd forward_window, std::string_view body);
// The same, Send Now clicked 5 times and no Send Later.
bool ForwardMailNow(const ClientContext& c, std::string_view recipients,
                    Hwnd forward_window, std::string_view body);

// A new mail from the tool bar's Write icon: Send Now then Send Later.
void WriteMail(const ClientContext& c, std::string_view recipients,
               std::string_view subject, std::string_view body);
// Send Now only.
void WriteMailNow(const ClientContext& c, std::string_view recipients,
                  std::string_view subject, std::string_view body);
// Send Now again and again until the window has closed.
void WriteMailUntilSent(const ClientContext& c, std::string_view recipients,
                        std::string_view subject, std::string_view body);

}  // namespace quorvex
