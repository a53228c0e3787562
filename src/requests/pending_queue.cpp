#include "requests/pending_queue.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "model/text_util.h"
#include "ports/profile_section.h"
#include "requests/pending_line.h"
#include "requests/reply_order.h"

namespace quorvex {

namespace {

constexpr std::string_view kList = "list";

std::string_view Before(std::string_view line, size_t at) {
  return line.substr(0, at);
}
std::string_view After(std::string_view line, size_t at) {
  return line.substr(at + 1);
}

// A line as a profile file keeps it: no line breaks in a value (some
// files write them as blanks), no more than a read gives back.
std::string AsStored(std::string line) {
  for (char& c : line)
    if (c == '\r' || c == '\n') c = ' ';
  return CutProfileValue(std::move(line));
}

bool HasPatternCharacter(std::string_view s) {
  return s.find_first_of("*?#[") != std::string_view::npos;
}

}  // namespace

std::vector<JobEvent> RequestEvents(JobOutcome outcome,
                                    const std::vector<std::string>& lines) {
  std::vector<JobEvent> events;
  std::unordered_map<std::string, std::size_t> event_of;  // by what
  for (const std::string& line : lines) {
    // As the takes read it: a list line, a find, a mail.
    const bool list = PendingLine::Has(line, '-') &&
                      PendingLine::Wanted(line, '-') == PendingLine::kList;
    const char separator = !list && PendingLine::Has(line, '~') ? '~' : '-';
    if (!PendingLine::Has(line, separator)) continue;
    std::string what =
        list ? "send list"
             : (separator == '~' ? "find " : "send ") +
                   std::string(PendingLine::Wanted(line, separator));
    const std::string who =
        "(" + std::string(PendingLine::Requester(line, separator)) + ")";
    auto [at, added] = event_of.try_emplace(what, events.size());
    if (added) events.push_back({outcome, "", std::move(what)});
    events[at->second].requesters += who;
  }
  return events;
}

void PendingQueue::Ids::Insert(std::uint64_t id) {
  if (ids_.empty() || ids_.back() < id) {
    ids_.push_back(id);
    return;
  }
  auto it = std::lower_bound(ids_.begin(), ids_.end(), id);
  if (it == ids_.end() || *it != id) ids_.insert(it, id);
}

void PendingQueue::Ids::Erase(std::uint64_t id) {
  auto it = std::lower_bound(ids_.begin(), ids_.end(), id);
  if (it != ids_.end() && *it == id) ids_.erase(it);
}

PendingQueue::Ids::const_iterator PendingQueue::Ids::lower_bound(
    std::uint64_t id) const {
  return std::lower_bound(ids_.begin(), ids_.end(), id);
}

PendingQueue::PendingQueue() {
  lstPending_.Subscribe(
      [this](const ListBox&, const ListChange& change) { OnChange(change); });
}

std::uint64_t PendingQueue::Append(std::string line) {
  return lstPending_.Add(std::move(line));
}

bool PendingQueue::Has(std::string_view entry) const {
  return ListHasItem(lstPending_, entry);
}

int PendingQueue::PendingCount(std::string_view sn) const {
  auto it = by_dash_name_.find(std::string(sn));
  return it == by_dash_name_.end() ? 0 : static_cast<int>(it->second.size());
}

PendingStatus PendingQueue::StatusOf(std::string_view sn) const {
  PendingStatus status;
  if (!HasPatternCharacter(sn)) {
    auto it = by_dash_name_.find(std::string(sn));
    if (it == by_dash_name_.end()) return status;
    status.count = static_cast<int>(it->second.size());
    status.first_position = lstPending_.IndexOfId(it->second.front());
    return status;
  }
  // A pattern in the name: only a walk can tell which names it matches.
  for (const auto& [name, ids] : by_dash_name_) {
    if (!Like(name, sn)) continue;
    status.count += static_cast<int>(ids.size());
    int first = lstPending_.IndexOfId(ids.front());
    if (status.first_position < 0 || first < status.first_position)
      status.first_position = first;
  }
  return status;
}

void PendingQueue::OnChange(const ListChange& change) {
  switch (change.op) {
    case ListChange::Op::kAdd:
      Index(change.id, change.item, true);
      break;
    case ListChange::Op::kRemove:
      Index(change.id, change.item, false);
      break;
    case ListChange::Op::kClear:
      empty_.clear();
      mail_.clear();
      mail_by_wanted_.clear();
      list_.clear();
      find_.clear();
      find_by_wanted_.clear();
      by_dash_name_.clear();
      break;
  }
}

void PendingQueue::Put(IdsByText& map, const std::string& key, std::uint64_t id,
                       bool add) {
  if (add) {
    map[key].Insert(id);
    return;
  }
  auto it = map.find(key);
  if (it == map.end()) return;
  it->second.Erase(id);
  if (it->second.empty()) map.erase(it);
}

void PendingQueue::Index(std::uint64_t id, const std::string& text, bool add) {
  auto mark = [&](Ids& ids) {
    if (add) {
      ids.Insert(id);
    } else {
      ids.Erase(id);
    }
  };
  if (text.empty()) {
    mark(empty_);
    return;
  }
  size_t dash = text.find('-');
  size_t tilde = text.find('~');
  if (dash != std::string::npos) {
    Put(by_dash_name_, std::string(Before(text, dash)), id, add);
    std::string_view wanted = After(text, dash);
    if (wanted == kList) {
      mark(list_);
    } else if (tilde == std::string::npos) {
      mark(mail_);
      Put(mail_by_wanted_, std::string(wanted), id, add);
    }
  }
  if (tilde != std::string::npos) {
    mark(find_);
    Put(find_by_wanted_, std::string(After(text, tilde)), id, add);
  }
}

std::uint64_t PendingQueue::Barrier() const {
  return empty_.empty() ? std::numeric_limits<std::uint64_t>::max()
                        : empty_.front();
}

TakenGroup PendingQueue::TakeGroup(const Ids& group, char separator,
                                   int* lines) {
  TakenGroup taken;
  std::uint64_t barrier = Barrier();
  std::vector<std::uint64_t> ids;
  for (std::uint64_t id : group) {
    if (id >= barrier) break;
    const std::string& line = lstPending_.Item(lstPending_.IndexOfId(id));
    size_t at = line.find(separator);
    if (ids.empty()) taken.wanted = std::string(After(line, at));
    taken.requesters += "(";
    taken.requesters += Before(line, at);
    taken.requesters += ")";
    ids.push_back(id);
  }
  *lines = static_cast<int>(ids.size());
  // `group` may go with the last of its lines.
  RemoveIds(ids);
  return taken;
}

void PendingQueue::RemoveIds(const std::vector<std::uint64_t>& ids) {
  lstPending_.RemoveIds(ids);
}

TakenGroup PendingQueue::TakeNextMail(bool lists, Label& lblPending,
                                      const CounterView& counters,
                                      int list_count) {
  TakenGroup taken;
  if (lists) {
    taken.wanted = std::string(kList);
    std::vector<std::uint64_t> ids(list_.rbegin(), list_.rend());
    for (std::uint64_t id : ids) {
      const std::string& line = lstPending_.Item(lstPending_.IndexOfId(id));
      taken.requesters += "(";
      taken.requesters += Before(line, line.find('-'));
      taken.requesters += ")";
    }
    RemoveIds(ids);
    AdvanceServeCounters(counters, static_cast<std::int64_t>(ids.size()) *
                                       std::max(list_count, 0));
  } else if (!mail_.empty() && mail_.front() < Barrier()) {
    const std::string& first =
        lstPending_.Item(lstPending_.IndexOfId(mail_.front()));
    std::string wanted(After(first, first.find('-')));
    int lines = 0;
    taken = TakeGroup(mail_by_wanted_.at(wanted), '-', &lines);
    AdvanceServeCounters(counters, lines);
  }
  RefreshLabel(lblPending);
  return taken;
}

TakenGroup PendingQueue::TakeNextFind(Label& lblPending) {
  TakenGroup taken;
  if (!find_.empty() && find_.front() < Barrier()) {
    const std::string& first =
        lstPending_.Item(lstPending_.IndexOfId(find_.front()));
    std::string wanted(After(first, first.find('~')));
    int lines = 0;
    taken = TakeGroup(find_by_wanted_.at(wanted), '~', &lines);
  }
  RefreshLabel(lblPending);
  return taken;
}

std::vector<std::string> PendingQueue::DropFullMailbox(const std::string& sn,
                                                       ListBox& ReplyQueue) {
  QueueReply(ReplyQueue, sn, "mailbox");
  auto it = by_dash_name_.find(sn);
  if (it == by_dash_name_.end()) return {};

  // Replays the walk by index over the positions before any removal: a
  // removal shifts the next line into the current slot and the index moves
  // on, so the line right after a removed one is never looked at. An
  // empty line that is looked at ends the walk.
  std::vector<std::uint64_t> drop;
  std::vector<std::string> dropped;
  int last_removed = -2;
  std::uint64_t looked_up_to = 0;  // ids below this have been passed
  for (std::uint64_t id : it->second) {
    int pos = lstPending_.IndexOfId(id);
    const std::string& line = lstPending_.Item(pos);
    // Empty lines between the last candidate and this one.
    bool stopped = false;
    for (auto e = empty_.lower_bound(looked_up_to);
         e != empty_.end() && *e < id; ++e) {
      if (lstPending_.IndexOfId(*e) == last_removed + 1) continue;  // skipped
      stopped = true;
      break;
    }
    if (stopped) break;
    looked_up_to = id + 1;
    if (line.find('~') != std::string::npos) continue;
    if (pos == last_removed + 1) continue;  // moved into a removed slot
    drop.push_back(id);
    dropped.push_back(line.substr(line.find('-') + 1));
    last_removed = pos;
  }
  RemoveIds(drop);
  return dropped;
}

std::uint64_t PendingQueue::IdsBelowFuture() const {
  return lstPending_.Empty() ? 0
                             : lstPending_.IdAt(lstPending_.Count() - 1) + 1;
}

std::optional<std::string> PendingQueue::TakeFirstMailFor(
    const std::string& number, std::uint64_t below) {
  auto it = mail_by_wanted_.find(number);
  if (it == mail_by_wanted_.end() || it->second.empty()) return std::nullopt;
  const std::uint64_t id = it->second.front();
  if (id >= below) return std::nullopt;
  std::string sn(
      PendingLine::Requester(lstPending_.Item(lstPending_.IndexOfId(id)), '-'));
  lstPending_.RemoveId(id);
  return sn;
}

int PendingQueue::RemovePerson(std::string_view sn) {
  auto it = by_dash_name_.find(std::string(sn));
  if (it == by_dash_name_.end()) return 0;
  std::vector<std::uint64_t> ids(it->second.begin(), it->second.end());
  RemoveIds(ids);
  return static_cast<int>(ids.size());
}

std::vector<std::string> PendingQueue::RemoveRequester(std::string_view name,
                                                       bool stop_at_empty) {
  std::vector<std::string> removed;
  for (char separator : {'-', '~'}) {
    std::vector<std::uint64_t> ids;
    for (int i = 0; i < lstPending_.Count(); ++i) {
      const std::string& line = lstPending_.Item(i);
      if (line.empty() && stop_at_empty) break;
      size_t at = line.find(separator);
      if (at == std::string::npos) continue;
      if (RemoveSpaces(Before(line, at)) == name) {
        ids.push_back(lstPending_.IdAt(i));
        removed.push_back(line);
      }
    }
    RemoveIds(ids);
  }
  return removed;
}

std::vector<std::string> PendingQueue::mnuRemoveSelected(Label& lblPending) {
  std::vector<std::string> removed;
  const int at = lstPending_.selected();
  if (at >= 0 && at < lstPending_.Count())
    removed.push_back(lstPending_.Item(at));
  lstPending_.Remove(at);
  RefreshLabel(lblPending);
  return removed;
}

std::vector<std::string> PendingQueue::mnuClearSN(Prompter& prompter,
                                                  Label& lblPending) {
  std::string answer = LCase(RemoveSpaces(
      prompter.InputBox("enter a screen name to remove", "screen name", "")));
  if (answer.size() < 3) return {};
  std::vector<std::string> removed = RemoveRequester(answer, false);
  RefreshLabel(lblPending);
  return removed;
}

std::vector<std::string> PendingQueue::mnuClearALL(Label& lblPending) {
  std::vector<std::string> removed = lstPending_.Items();
  lstPending_.Clear();
  RefreshLabel(lblPending);
  return removed;
}

bool PendingQueue::Save(ProfileFile& profiles, const std::string& path) const {
  int count = lstPending_.Count();
  if (count == 0) return true;  // an empty list writes nothing at all
  // The count is written once, ahead of the lines: writing it again with
  // every line would leave the same file. One rewrite of the file for the
  // whole queue, however long it is.
  std::vector<std::pair<std::string, std::string>> values;
  values.reserve(static_cast<size_t>(count) + 1);
  values.emplace_back("TotalPending", std::to_string(count));
  for (int i = 0; i < count; ++i)
    values.emplace_back("Pending " + std::to_string(i),
                        ProfileQuote(lstPending_.Item(i)));
  profiles.WriteStrings(path, "Quorvex", values);
  // The port does not say whether the write went through (a full disk
  // leaves the old file): the file read back does.
  return HeldIn(profiles.Dump(path), "Quorvex");
}

bool PendingQueue::HeldIn(const ProfileFile::Sections& file,
                          std::string_view section) const {
  const ProfileSection saved(file, section);
  const std::string total = saved.Get("TotalPending");
  if (total != std::to_string(lstPending_.Count())) return false;
  const std::vector<std::string> lines = saved.Numbered("Pending ", total);
  if (static_cast<int>(lines.size()) != lstPending_.Count()) return false;
  for (int i = 0; i < lstPending_.Count(); ++i)
    if (AsStored(lines[i]) != AsStored(lstPending_.Item(i))) return false;
  return true;
}

void PendingQueue::Load(const PendingFile& file, Label& lblPending) {
  if (!file.exists()) return;
  // One read of the whole file: a profile read per key could mean a
  // pass over the file per line.
  const ProfileSection section(file.profiles.Dump(file.path), "Quorvex");
  const std::string total = section.Get("TotalPending");
  if (IsNumeric(total)) {
    std::vector<std::string> lines = section.Numbered("Pending ", total);
    // The lines loaded, which a damaged count may overstate.
    lblPending.Set(kPendingCount(lines.size()));
    for (std::string& line : lines) lstPending_.Add(std::move(line));
  }
  file.remove();
}

void PendingQueue::RefreshLabel(Label& lblPending) const {
  lblPending.Set(kPendingCount(lstPending_.Count()));
}

}  // namespace quorvex
