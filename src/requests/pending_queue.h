// The pending queue: the list box `lstPending`, one text line per request
// in arrival order, with indexes kept in step with it so that duplicate
// checks, a person's count and the takes do not walk the whole list.
//
// Encoding of a line: sn + "-" + number (mail), sn + "-list" (list),
// sn + "~" + text (find). The requester of a mail or list line is the text
// before the first "-", of a find the text before the first "~".
//
// Lines the takes treat specially:
//  - an empty line ends the mail and find walks, so nothing behind it is
//    served until it is removed; the list pass walks the whole list.
//  - a line with neither "-" nor "~" (only a hand-edited Quorvex.INI makes
//    one) belongs to nobody: every take and walk passes over it, it is
//    never served, and it stays until removed by hand.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/job_event.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/profile_file.h"
#include "ports/prompter.h"
#include "requests/serve_counters.h"

namespace quorvex {

// What one take removed: requesters "(bob)(amy)" and the wanted mail number
// text, "list" or search text. Empty requesters: nothing was taken.
struct TakenGroup {
  std::string requesters;
  std::string wanted;
};

// A person's entries for the status reply: how many mail and list lines
// are theirs, and how many lines stand ahead of the first (-1: none).
struct PendingStatus {
  int count = 0;
  int first_position = -1;
};

// Quorvex.INI in the program's folder: the profile port, the file's host
// path, and the two file operations the port does not have.
struct PendingFile {
  ProfileFile& profiles;
  std::string path;
  std::function<bool()> exists;
  std::function<void()> remove;
};

// The log's events for lines that left the queue without a job (removed
// by the user, lost with the queue's file): one per request asked, naming
// everyone who asked it, in the order of the lines. Lines that ask for
// nothing (empty, or neither "-" nor "~") have none.
std::vector<JobEvent> RequestEvents(JobOutcome outcome,
                                    const std::vector<std::string>& lines);

class PendingQueue {
 public:
  PendingQueue();
  PendingQueue(const PendingQueue&) = delete;
  PendingQueue& operator=(const PendingQueue&) = delete;

  // The list box itself; changes made through it keep the indexes right.
  ListBox& list() { return lstPending_; }
  const ListBox& list() const { return lstPending_; }
  int Count() const { return lstPending_.Count(); }

  // Adds a line at the end. The label is the caller's to refresh.
  std::uint64_t Append(std::string line);
  // The list box's exact search (case ignored), as the duplicate check
  // uses it.
  bool Has(std::string_view entry) const;
  // Lines that contain "-" and whose text before the first "-" is `sn`.
  int PendingCount(std::string_view sn) const;
  // The status reply's view: lines with a "-" whose text before it is
  // Like `sn` (the pattern operator; an sn without pattern characters
  // matches itself exactly).
  PendingStatus StatusOf(std::string_view sn) const;

  // Mail pass (lists clear): the first mail line before any empty line and
  // every later one wanting the same number; the counters advance once per
  // line. List pass (lists set): every list line, last to first; the
  // counters advance `list_count` times per line. Refreshes lblPending.
  TakenGroup TakeNextMail(bool lists, Label& lblPending,
                          const CounterView& counters, int list_count = 0);
  // The first find line before any empty line and every later one with
  // the same search text. Refreshes lblPending.
  TakenGroup TakeNextFind(Label& lblPending);

  // A requester's mailbox is full: orders the "-mailbox" reply and drops
  // their mail and list lines, except that the line right after a dropped
  // one is not looked at (so of two adjacent lines only the first goes).
  // Finds stay. The label is not refreshed here. Returns what each dropped
  // line asked for ("5", "list"), in the list's order.
  std::vector<std::string> DropFullMailbox(const std::string& sn,
                                           ListBox& ReplyQueue);

  // A mail the client will not forward: removes the first mail line that
  // wants `number` and gives its requester; nothing when none is left.
  // Only lines whose id is below `below` (those already queued when a
  // walk began) are taken.
  std::optional<std::string> TakeFirstMailFor(
      const std::string& number,
      std::uint64_t below = std::numeric_limits<std::uint64_t>::max());
  // An id above every line queued so far.
  std::uint64_t IdsBelowFuture() const;

  // Removes every line that contains "-" and whose text before the first
  // "-" is `sn` (a ban earned by mistakes). Returns how many went.
  int RemovePerson(std::string_view sn);
  // Removes the lines whose requester, spaces removed, equals `name`:
  // first the lines with "-" (requester before the first "-"), then those
  // with "~" (before the first "~"). With `stop_at_empty` an empty line
  // ends each walk. Returns the lines that went, in that order.
  std::vector<std::string> RemoveRequester(std::string_view name,
                                           bool stop_at_empty);

  // Pop-up menu of the list. Each returns the lines it removed.
  std::vector<std::string> mnuRemoveSelected(Label& lblPending);
  std::vector<std::string> mnuClearSN(Prompter& prompter, Label& lblPending);
  std::vector<std::string> mnuClearALL(Label& lblPending);

  // On exit: "TotalPending" and "Pending 0"... in section "Quorvex". An
  // empty queue writes nothing. True when the file then reads back with
  // the whole queue (nothing to save counts as saved).
  bool Save(ProfileFile& profiles, const std::string& path) const;
  // Whether `section` of a saved file ("TotalPending", "Pending 0"...)
  // gives back this queue as a start would restore it.
  bool HeldIn(const ProfileFile::Sections& file,
              std::string_view section) const;
  // On start: restores a saved queue once, then deletes the file.
  void Load(const PendingFile& file, Label& lblPending);

  void RefreshLabel(Label& lblPending) const;

 private:
  // Ids in ascending (list) order. Lines are only ever added at the end,
  // so adding is a push at the back; a sorted vector beats a tree here.
  class Ids {
   public:
    using const_iterator = std::vector<std::uint64_t>::const_iterator;
    void Insert(std::uint64_t id);
    void Erase(std::uint64_t id);
    bool empty() const { return ids_.empty(); }
    size_t size() const { return ids_.size(); }
    std::uint64_t front() const { return ids_.front(); }
    const_iterator begin() const { return ids_.begin(); }
    const_iterator end() const { return ids_.end(); }
    auto rbegin() const { return ids_.rbegin(); }
    auto rend() const { return ids_.rend(); }
    const_iterator lower_bound(std::uint64_t id) const;
    void clear() { ids_.clear(); }

   private:
    std::vector<std::uint64_t> ids_;
  };
  using IdsByText = std::unordered_map<std::string, Ids>;

  void OnChange(const ListChange& change);
  void Index(std::uint64_t id, const std::string& text, bool add);
  static void Put(IdsByText& map, const std::string& key, std::uint64_t id,
                  bool add);
  // Id of the first empty line, or the largest id when there is none.
  std::uint64_t Barrier() const;
  // Takes the lines of `group` (same wanted text) that stand before the
  // first empty line; *lines says how many.
  TakenGroup TakeGroup(const Ids& group, char separator, int* lines);
  void RemoveIds(const std::vector<std::uint64_t>& ids);

  ListBox lstPending_{"lstPending"};
  Ids empty_;  // empty lines
  Ids mail_;   // mail lines: a "-", no "~", not "list"
  IdsByText mail_by_wanted_;
  Ids list_;  // text after the first "-" is "list"
  Ids find_;  // lines with "~"
  IdsByText find_by_wanted_;
  IdsByText by_dash_name_;  // text before the first "-"
};

}  // namespace quorvex
