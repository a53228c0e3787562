// The client's session: restarting the client (close it, start it from
// its install folder, sign on, tidy up after sign-on, set the mail
// preferences, return to the server's room), reporting each step on the
// status strip.
#pragma once

#include <string>

#include "client/client_context.h"
#include "client/room_buster.h"
#include "model/label.h"
#include "ports/machine.h"
#include "ports/profile_file.h"

namespace quorvex {

inline constexpr const char* kSignOnCaption = "Sign On";
inline constexpr const char* kGoodbyeCaption = "Goodbye from America Online!";

// What the restart works with: the client, the machine it is started on,
// the main window's status strip, the room buster and the server's room
// (remembered by the serving loop) to return to.
struct SessionContext {
  const ClientContext& client;
  Machine& machine;
  const ProfileFile& profiles;
  StatusStrip& status;
  RoomBuster& buster;
  const std::string& room_name;
};

// The client's install folder: "AppPath" of section "WAOL" in Win.ini of
// the Windows folder; "" when it is not there.
std::string GetAOLPath(const Machine& machine, const ProfileFile& profiles);

// The whole restart. Every wait is without a limit: it keeps at it until
// the client is back in the room (a run in virtual time ends by throwing
// out of a wait). A restart started while another is bringing the client
// back returns at once.
void AOLRestart(const SessionContext& s);

// One check box of the client's "Mail Preferences" page, by its label,
// and the state the server needs it in.
struct MailPreference {
  const char* label;
  int checked;
};
// The boxes the preferences step sets; the others are left as the member
// has them.
extern const MailPreference kMailPreferences[5];

// Sets kMailPreferences on the client's "Mail Preferences" page (opened
// through the "Preferences" window) and saves them with its OK. Gives up
// when the client signs off meanwhile.
void SetMailPreferences(const ClientContext& c);

}  // namespace quorvex
