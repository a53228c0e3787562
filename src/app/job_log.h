// Quorvex.log, beside Quorvex.INI: one line per finished job or event, for
// the person who reads the next morning what happened overnight.
//
// A line is the local time, the outcome, the requesters and what was
// asked, separated by tabs, ending in CR LF:
//
//   2026-11-25 04:18:18<TAB>sent<TAB>bob, amy<TAB>send 5
//
// Nobody is written "-", and so is nothing asked. Each line is appended and
// flushed to disk at once; a line that would take the file past the limit
// first renames it to Quorvex.log.1 (replacing the older one) in one step,
// so the two files together never hold more than twice the limit. A write
// that fails is counted and dropped: the program serves on, and the next
// line written is preceded by one that says how many were lost:
//
//   2026-11-25 04:19:02<TAB>log incomplete<TAB>-<TAB>3 lines of Quorvex.log
//   could not be written
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/job_event.h"
#include "model/observers.h"
#include "ports/host.h"
#include "ports/machine.h"

namespace quorvex {

inline constexpr const char* kLogName = "Quorvex.log";
inline constexpr const char* kOldLogSuffix = ".1";

// The word an outcome is written as ("sent", "dead mail", ...).
const char* OutcomeWord(JobOutcome outcome);

// The line for an event at `when`, CR LF included. Tabs and line breaks in
// a name or in what was asked are written as blanks.
std::string FormatLogLine(const CivilTime& when, const JobEvent& event);

// A line read back (its CR LF, or what is left of it, ignored): the fields as
// written, the requesters one by one (none for "-").
struct LogLine {
  std::string time;
  std::string outcome;
  std::vector<std::string> requesters;
  std::string what;
};
std::optional<LogLine> ParseLogLine(std::string_view line);

// What a person is told when `lost` lines could not be written: "3 lines
// of Quorvex.log could not be written".
std::string LostLinesNotice(int lost);

class JobLog {
 public:
  static constexpr std::int64_t kDefaultLimit = std::int64_t{1} << 20;

  // The log lives in the program's folder as `machine` names it when a
  // line is written (a restart copy runs from elsewhere).
  JobLog(Machine& machine, const Host& host,
         std::int64_t limit = kDefaultLimit);

  // Writes the event's line; false, and counted, when it could not be.
  bool Write(const JobEvent& event);
  // Writes the lines of events of one moment in one append and one flush;
  // they are kept or lost together.
  bool Write(std::span<const JobEvent> events);

  // The Windows path of the log and of the older one.
  std::string Path() const;
  std::string OldPath() const;
  // Lines lost since the log was made; those of them not yet owned up to
  // in the log itself.
  int failures() const { return failures_; }
  int unreported() const { return unreported_; }
  // Views that show the losses hear of each one.
  int Subscribe(Observers<const JobLog&>::Observer o) {
    return observers_.Add(std::move(o));
  }
  void Unsubscribe(int id) { observers_.Remove(id); }

 private:
  bool Failed(int lines);

  Machine& machine_;
  const Host& host_;
  std::int64_t limit_;
  int failures_ = 0;
  int unreported_ = 0;
  Observers<const JobLog&> observers_;
};

}  // namespace quorvex
