// What the serving jobs share: one chat line said in the room, the ban
// policy's and the counters' views of the main window, and the first line
// of every mail the server writes.
#pragma once

#include <string>

#include "client/client_context.h"
#include "requests/ban_policy.h"
#include "requests/serve_counters.h"
#include "server/frm_main.h"
#include "settings/settings.h"

namespace quorvex {

// The server's name as it signs its lines: "quorvex°·² mail server".
inline constexpr const char* kServerName =
    "quorvex\xC2\xB0\xC2\xB7\xC2\xB2 mail server";

// Says one line in the room (ChatSend, inserts expanded). Nothing is said
// once the program has ended.
void Say(FrmMain& frm, const ClientContext& c, const std::string& text);

// The ban policy working on frm's lists, saying its warnings through Say.
BanContext MakeBanContext(FrmMain& frm, const ClientContext& c);

// The counters a take or a find advances, with their labels.
CounterView MakeCounterView(FrmMain& frm);

// "<font face=tahoma color=#003377></B></U></I>" + LAscii +
// "quorvex°·² mail server -by- kestrin" + RAscii + CR LF.
std::string BannerLine(const Settings& settings);

}  // namespace quorvex
