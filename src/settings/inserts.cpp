#include "settings/inserts.h"

#include <cstdio>

#include "model/text_util.h"

namespace quorvex {

const std::array<InsertMenuItem, 11> kInsertMenuItems = {{
    {"mnuDate", "[d] date", "[d]"},
    {"mnuTime", "[t] time", "[t]"},
    {"mnuSent", "[s] sent", "[s]"},
    {"mnuHandle", "[h] handle", "[h]"},
    {"mnuLeft", "[l] left ascii", "[l]"},
    {"mnuRight", "[r] right ascii", "[r]"},
    {"mnuPend", "[p] pending", "[p]"},
    {"mnuAOL", "[aol] aol restart", "[aol]"},
    {"mnuCPU", "[cpu] cpu restart", "[cpu]"},
    {"mnuDel", "[del] delete sent mail", "[del]"},
    {"mnuWeb", "[web] quorvex website", "[web]"},
}};

InsertValues MakeInsertValues(const Settings& settings, CivilTime now,
                              int pending, std::int64_t session,
                              std::int64_t since_aol, std::int64_t since_cpu,
                              std::int64_t since_del) {
  InsertValues v;
  v.now = now;
  v.pending = pending;
  v.session = session;
  v.handle = settings.Handle;
  v.LAscii = settings.LAscii;
  v.RAscii = settings.RAscii;
  v.aol_left = settings.AOLRestart - since_aol;
  v.cpu_left = settings.CPURestart - since_cpu;
  v.del_left = settings.SentRestart - since_del;
  return v;
}

std::string ShortDate(const CivilTime& t) {
  char buf[48];
  std::snprintf(buf, sizeof buf, "%d/%d/%d", t.month, t.day, t.year);
  return buf;
}

std::string ShortTime(const CivilTime& t) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%02d:%02d", t.hour, t.minute);
  return buf;
}

std::string ExpandInserts(std::string_view text, const InsertValues& v) {
  std::string s(text);
  s = ReplaceAll(s, "[d]", ShortDate(v.now));
  s = ReplaceAll(s, "[t]", ShortTime(v.now));
  s = ReplaceAll(s, "[p]", std::to_string(v.pending));
  s = ReplaceAll(s, "[s]", std::to_string(v.session));
  s = ReplaceAll(s, "[h]", v.handle);
  s = ReplaceAll(s, "[l]", v.LAscii);
  s = ReplaceAll(s, "[r]", v.RAscii);
  s = ReplaceAll(s, "[aol]", std::to_string(v.aol_left));
  s = ReplaceAll(s, "[cpu]", std::to_string(v.cpu_left));
  s = ReplaceAll(s, "[del]", std::to_string(v.del_left));
  s = ReplaceAll(s, "[web]", kWebAddress);
  return s;
}

}  // namespace quorvex
