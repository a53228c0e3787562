// Undoing the start's mail-resize preparation: the client forgets the
// 1 x 1 size it was made to remember for open-mail, forward and Write Mail
// windows, so that the member gets ordinary mail windows back when the
// server stops.
#pragma once

#include "client/client_context.h"

namespace quorvex {

// Opens one window of each kind and runs the client's "Forget Window Size
// and Position" on it, then closes them. Gives up when the client signs
// off.
void ForgetMailWindowSizes(const ClientContext& c);

}  // namespace quorvex
