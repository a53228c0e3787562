// The server's answers in the room: the thank-you and status replies of
// the reply phase (by chat or, with ScrollMethod off, by mail), the
// advertisement, and the session mail of the file menu.
#pragma once

#include <string>

#include "client/client_context.h"
#include "server/frm_main.h"

namespace quorvex {

// Thank-you to `sn`: a random line of the thank-you list ("you are
// welcome" when it is empty), said or mailed.
void ThankYouReply(FrmMain& frm, const ClientContext& c, const std::string& sn);

// How many mail and list entries `sn` has pending, how many entries stand
// ahead of the first of them, and the length of the queue; said or mailed.
void StatusReply(FrmMain& frm, const ClientContext& c, const std::string& sn);

// Three lines: mails served, usage, pending and sent. Resets ScrollSeconds.
void Advertise(FrmMain& frm, const ClientContext& c);

// The contact offered by the session-mail prompt.
inline constexpr const char* kSessionMailDefault = "kestrin";

// "email your session": asks for a screen name and mails it the session's
// and the installation's counts. An answer under 3 characters does nothing.
void mnuMailSession_Click(FrmMain& frm, const ClientContext& c);

}  // namespace quorvex
