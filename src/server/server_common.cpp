#include "server/server_common.h"

#include "client/chat_room.h"

namespace quorvex {

void Say(FrmMain& frm, const ClientContext& c, const std::string& text) {
  if (frm.ended) return;
  ChatSend(c, text);
}

BanContext MakeBanContext(FrmMain& frm, const ClientContext& c) {
  FrmMain* f = &frm;
  const ClientContext* ctx = &c;
  return BanContext{frm.frmBanning,
                    frm.MistakeList,
                    frm.lstBanned,
                    frm.lblBanned,
                    frm.pending,
                    [f, ctx](const std::string& line) { Say(*f, *ctx, line); }};
}

CounterView MakeCounterView(FrmMain& frm) {
  return CounterView{frm.counters, frm.ports.registry, frm.settings,
                     frm.lblSent, frm.lblSession};
}

std::string BannerLine(const Settings& settings) {
  return std::string("<font face=tahoma color=#003377></B></U></I>") +
         settings.LAscii + kServerName + " -by- kestrin" + settings.RAscii +
         "\r\n";
}

}  // namespace quorvex
