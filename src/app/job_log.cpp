#include "app/job_log.h"

#include <cstdio>

namespace quorvex {

namespace {

constexpr char kSep = '\t';
constexpr const char* kNone = "-";

// A field as written: blanks for what would break the line apart.
std::string Field(std::string_view text) {
  if (text.empty()) return kNone;
  std::string out(text);
  for (char& c : out)
    if (c == '\t' || c == '\r' || c == '\n') c = ' ';
  return out;
}

// "(bob)(amy)" as "bob, amy"; a bare name as it is.
std::string Requesters(std::string_view requesters) {
  if (requesters.empty() || requesters.front() != '(') return Field(requesters);
  std::string out;
  std::size_t at = 0;
  while ((at = requesters.find('(', at)) != std::string_view::npos) {
    const std::size_t close = requesters.find(')', at + 1);
    const std::string_view name = requesters.substr(
        at + 1, close == std::string_view::npos ? std::string_view::npos
                                                : close - at - 1);
    if (!name.empty()) {
      if (!out.empty()) out += ", ";
      out += name;
    }
    if (close == std::string_view::npos) break;
    at = close + 1;
  }
  return Field(out);
}

}  // namespace

const char* OutcomeWord(JobOutcome outcome) {
  switch (outcome) {
    case JobOutcome::kSent:
      return "sent";
    case JobOutcome::kDeadMail:
      return "dead mail";
    case JobOutcome::kFullMailbox:
      return "full mailbox";
    case JobOutcome::kLostWithSignOff:
      return "lost with a sign-off";
    case JobOutcome::kLostWithExit:
      return "lost with an exit";
    case JobOutcome::kNotSent:
      return "not sent";
    case JobOutcome::kBanned:
      return "banned";
    case JobOutcome::kRemovedByUser:
      return "removed by the user";
    case JobOutcome::kLostWithFailedSave:
      return "lost with a failed save";
    case JobOutcome::kListMailed:
      return "list mailed";
    case JobOutcome::kFindMailed:
      return "find mailed";
    case JobOutcome::kNothingFound:
      return "nothing found";
    case JobOutcome::kReplyByMail:
      return "reply by mail";
    case JobOutcome::kReplyInRoom:
      return "reply in the room";
    case JobOutcome::kClientRestarted:
      return "client restarted";
    case JobOutcome::kMachineRestarted:
      return "machine restarted";
    case JobOutcome::kSentMailDeleted:
      return "sent mail deleted";
    case JobOutcome::kStarted:
      return "started";
    case JobOutcome::kStopped:
      return "stopped";
    case JobOutcome::kLogIncomplete:
      return "log incomplete";
  }
  return "?";
}

std::string FormatLogLine(const CivilTime& when, const JobEvent& event) {
  char time[32];
  std::snprintf(time, sizeof time, "%04d-%02d-%02d %02d:%02d:%02d", when.year,
                when.month, when.day, when.hour, when.minute, when.second);
  return std::string(time) + kSep + OutcomeWord(event.outcome) + kSep +
         Requesters(event.requesters) + kSep + Field(event.what) + "\r\n";
}

std::optional<LogLine> ParseLogLine(std::string_view line) {
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  std::vector<std::string_view> fields;
  for (int i = 0; i < 3; ++i) {
    const std::size_t tab = line.find(kSep);
    if (tab == std::string_view::npos) return std::nullopt;
    fields.push_back(line.substr(0, tab));
    line.remove_prefix(tab + 1);
  }
  LogLine out{
      std::string(fields[0]), std::string(fields[1]), {}, std::string(line)};
  if (fields[2] != kNone) {
    std::string_view names = fields[2];
    for (;;) {
      const std::size_t comma = names.find(", ");
      out.requesters.emplace_back(names.substr(0, comma));
      if (comma == std::string_view::npos) break;
      names.remove_prefix(comma + 2);
    }
  }
  if (out.what == kNone) out.what.clear();
  return out;
}

JobLog::JobLog(Machine& machine, const Host& host, std::int64_t limit)
    : machine_(machine), host_(host), limit_(limit) {}

std::string JobLog::Path() const {
  return machine_.AppPath() + "\\" + kLogName;
}

std::string JobLog::OldPath() const { return Path() + kOldLogSuffix; }

std::string LostLinesNotice(int lost) {
  return std::to_string(lost) + (lost == 1 ? " line" : " lines") + " of " +
         kLogName + " could not be written";
}

bool JobLog::Write(const JobEvent& event) {
  return Write(std::span<const JobEvent>(&event, 1));
}

bool JobLog::Write(std::span<const JobEvent> events) {
  if (events.empty()) return true;
  // The lines lost since the last one written are owned up to first, in
  // the same write: the notice never stands without the line after it.
  std::string line;
  const CivilTime now = host_.Now();
  if (unreported_ > 0)
    line = FormatLogLine(
        now, {JobOutcome::kLogIncomplete, "", LostLinesNotice(unreported_)});
  for (const JobEvent& event : events) line += FormatLogLine(now, event);
  const std::string path = Path();
  const std::int64_t size = machine_.FileLength(path);
  const auto line_size = static_cast<std::int64_t>(line.size());
  // A full log becomes the old one before the line goes in; a log that
  // cannot be moved aside takes no more lines, so the disk cannot fill.
  if (size > 0 && size + line_size > limit_ &&
      !machine_.MoveFileOver(path, OldPath()))
    return Failed(static_cast<int>(events.size()));
  if (!machine_.AppendToFile(path, line))
    return Failed(static_cast<int>(events.size()));
  unreported_ = 0;
  return true;
}

bool JobLog::Failed(int lines) {
  failures_ += lines;
  unreported_ += lines;
  observers_.Notify(*this);
  return false;
}

}  // namespace quorvex
