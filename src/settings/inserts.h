// Insert codes: short bracketed codes in the message texts that are
// replaced by live values at the moment a text is said or mailed.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "ports/host.h"
#include "settings/settings.h"

namespace quorvex {

// What "[web]" inserts.
inline constexpr const char* kWebAddress = "http://quorvex.example/";

// The live values behind the codes.
struct InsertValues {
  CivilTime now;              // "[d]", "[t]"
  int pending = 0;            // "[p]": lines in lstPending
  std::int64_t session = 0;   // "[s]": mails sent this session
  std::string handle;         // "[h]"
  std::string LAscii;         // "[l]"
  std::string RAscii;         // "[r]"
  std::int64_t aol_left = 0;  // "[aol]": may be zero or negative
  std::int64_t cpu_left = 0;  // "[cpu]"
  std::int64_t del_left = 0;  // "[del]"
};

// The values from the settings and the counters of mails sent since the
// last client restart, machine restart and sent-mail deletion.
InsertValues MakeInsertValues(const Settings& settings, CivilTime now,
                              int pending, std::int64_t session,
                              std::int64_t since_aol, std::int64_t since_cpu,
                              std::int64_t since_del);

// Replaces every code, one code after the other in a fixed order, exactly
// and case-sensitively. A value put in by an earlier code is itself open
// to the later codes (a handle holding "[l]" gets the left decoration).
std::string ExpandInserts(std::string_view text, const InsertValues& values);

// The short date: month/day/year without padding ("1/5/2000"), one format
// whatever the machine's locale, so that texts read the same everywhere.
std::string ShortDate(const CivilTime& t);
// "hh:mm", 24-hour, two digits each.
std::string ShortTime(const CivilTime& t);

// The editor's insert items: menu name (under frmMessages), caption, code.
struct InsertMenuItem {
  const char* name;
  const char* caption;
  const char* code;
};
extern const std::array<InsertMenuItem, 11> kInsertMenuItems;

}  // namespace quorvex
