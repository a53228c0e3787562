// Instant messages through the client's "Send Instant Message" window, and
// the reserved names that switch the member's instant messages off and on.
#pragma once

#include <string_view>

#include "client/client_context.h"

namespace quorvex {

// Sends one instant message and presses the client's answer box, if any.
void SendIM(const ClientContext& c, std::string_view recipient,
            std::string_view message);
void IMsOff(const ClientContext& c);
void IMsOn(const ClientContext& c);

}  // namespace quorvex
