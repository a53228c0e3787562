#include "soak/invariants.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <tuple>

#include "app/job_log.h"
#include "model/text_util.h"
#include "settings/settings.h"

namespace quorvex::soak {
namespace {

// The longest a forward waits for the client's windows before it gives the
// mail up as dead.
constexpr double kForwardSeconds = 60;
// The longest the program, serving, may go without doing anything of its
// own (see StallWatch), at the simulator's pace: the longest wait it gives
// up on (a forward's window, kForwardSeconds) twice over. The longest seen
// in a thousand rooms that ended by itself is 109 s (a client killed under
// a paused tick's wait).
constexpr double kQuietSeconds = 2 * kForwardSeconds;

using Json = nlohmann::json;
using scenario::Verb;

std::string NoSpaces(std::string s) {
  s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
  return LCase(s);
}

// A mail entry "sn-N" with N a whole number: (sn, N); N = 0 otherwise.
std::pair<std::string, int> MailEntry(const std::string& item) {
  if (item.find('~') != std::string::npos) return {"", 0};
  const auto dash = item.find('-');
  if (dash == std::string::npos) return {"", 0};
  const std::string wanted = item.substr(dash + 1);
  if (wanted.empty() || wanted.size() > 6 ||
      wanted.find_first_not_of("0123456789") != std::string::npos)
    return {item.substr(0, dash), 0};
  return {item.substr(0, dash), std::stoi(wanted)};
}

// The requesters of a forward, each written "(" sn ")", lower case.
std::vector<std::string> Recipients(const std::string& to) {
  std::vector<std::string> out;
  const std::string lower = LCase(to);
  for (std::size_t at = lower.find('('); at != std::string::npos;
       at = lower.find('(', at + 1)) {
    const auto close = lower.find(')', at);
    if (close == std::string::npos) break;
    out.push_back(lower.substr(at + 1, close - at - 1));
  }
  return out;
}

// Whether the client was signed off at `t`: it signed off at or before
// `t` and did not sign on again since.
bool SignedOffAt(const std::vector<double>& off, const std::vector<double>& on,
                 double t) {
  double last_off = -1;
  for (double o : off)
    if (o <= t) last_off = std::max(last_off, o);
  if (last_off < 0) return false;
  for (double o : on)
    if (o > last_off && o <= t) return false;
  return true;
}

// Whether what was written at `t` is what a user's action of moment
// `moment` did: at that moment (to the transcript's millisecond), or up to
// `later` seconds after it.
bool AtMoment(double t, double moment, double later) {
  return t > moment - 0.0015 && t < moment + 0.0015 + later;
}

bool StartsWithName(const std::string& name, const char* prefix) {
  return LCase(name).rfind(prefix, 0) == 0;
}

// "/srv send N": N; 0 for any other line.
int SendNumber(const std::string& text) {
  static const std::regex kSend("/srv send ([0-9]+)");
  std::smatch m;
  if (!std::regex_match(text, m, kSend) || m[1].length() > 6) return 0;
  return std::stoi(m[1]);
}

// The registry value a scenario stores, or "".
std::string Stored(const scenario::Scenario& sc, const char* section,
                   const char* key) {
  std::string out;
  for (const scenario::SetupValue& v : sc.registry)
    if (LCase(v.section) == LCase(section) && LCase(v.key) == LCase(key))
      out = v.value;
  return out;
}

// Whether a damaged file of the scenario stores `key` with an empty value.
bool StoredEmpty(const scenario::Scenario& sc, const std::string& key) {
  for (const scenario::SetupValue& v : sc.ini)
    if (LCase(v.section) == "quorvex" && LCase(v.key) == LCase(key) &&
        v.value.find_first_not_of(" \t") == std::string::npos)
      return true;
  return false;
}

// Whether the program, once serving, keeps going: from the moment the
// serving began until the stop it was asked for has ended ("status:
// idle"), the program owes progress but when it rests (paused, or serving
// with nothing it can take and scanning the chat). While it owes it, some
// doing of its own must come within `quiet_bound` seconds: a status
// drawn, a mail handed to the client, a counter counting, a line said in
// the room, the client started, signed on or brought into the room, the
// mailbox read. What others do (chat lines, clicks, a client signed off
// or killed) is no progress of the program's.
class StallWatch {
 public:
  StallWatch(std::string user, double quiet_bound)
      : user_(std::move(user)), bound_(quiet_bound) {}

  // Before each transcript line at `t`: the stretch since the last
  // progress, if owed and longer than the bound, is kept.
  void Before(double t) {
    if (!Owed() || t - since_ <= bound_) return;
    if (!stalls_.empty() && stalls_.back().from == since_) {
      stalls_.back().to = t;
      return;
    }
    stalls_.push_back({since_, t, status_, Takeable(),
                       on_ ? (paused_ ? "paused" : "serving") : "stopped"});
  }
  struct Stall {
    double from, to;
    std::string status;
    int pending;
    const char* state;
  };
  // The longest stretch it owed progress without any, so far.
  double longest() const { return longest_; }
  const std::vector<Stall>& stalls() const { return stalls_; }

  void Apply(double t, const Json& e) {
    const bool owed = Owed();
    const std::string ev = e.value("ev", "");
    const std::string name = e.value("name", "");
    bool progress = false;
    if (ev == "status") {
      status_ = e.value("text", "");
      progress = true;
      if (status_ == "status: idle" && !on_) in_service_ = false;
    } else if (ev == "label" && name == "cmdStart") {
      on_ = e.value("text", "") == "&stop";
      if (on_) in_service_ = true;
    } else if (ev == "label" && name == "cmdPause") {
      paused_ = e.value("text", "") == "&unpause";
    } else if (ev == "label") {
      progress = name != "lblPending" && name != "lblBanned";
    } else if (ev == "list" && name == "lstPending") {
      const std::string op = e.value("op", "");
      const std::string item = e.value("item", "");
      if (op == "add") list_.push_back(item);
      if (op == "clear") list_.clear();
      if (op == "remove") {
        const auto it = std::find(list_.begin(), list_.end(), item);
        if (it != list_.end()) list_.erase(it);
      }
    } else if (ev == "list") {
      progress = name == "lstMails";
    } else if (ev == "chat") {
      progress = LCase(e.value("sn", "")) == user_;
    } else if (ev == "client") {
      const std::string what = e.value("what", "");
      progress = what != "signs off" && what != "closes";
    } else if (ev == "machine") {
      if (e.value("what", "") == "reboots") Ends(t);
      progress = true;
    } else {
      progress = ev == "mail" || ev == "im";
    }
    Track(t, owed, progress);
  }

  // The program ended at `t` (an exit, a start of a new one, a restart of
  // the machine): it owes nothing more.
  void Ends(double t) {
    Before(t);
    in_service_ = on_ = paused_ = false;
    list_.clear();
  }

  // The run's end.
  void End(double t) {
    Before(t);
    Track(t, Owed(), false);
  }

 private:
  // Requests it can take: those before an empty line, which stops it.
  int Takeable() const {
    const auto gap = std::find(list_.begin(), list_.end(), "");
    return static_cast<int>(gap - list_.begin());
  }
  bool Owed() const {
    if (!in_service_) return false;
    // Paused (a stop while paused leaves it so: the timers are off), or
    // stopped; "idle" while serving is the end of a client restart.
    if (status_ == "status: paused" || (status_ == "status: idle" && !on_))
      return false;
    return !(on_ && !paused_ && status_ == "status: scanning chat" &&
             Takeable() == 0);
  }
  void Track(double t, bool owed, bool progress) {
    if (owed) longest_ = std::max(longest_, t - since_);
    if (progress || owed != Owed()) since_ = t;
  }

  std::string user_;
  double bound_;
  bool in_service_ = false, on_ = false, paused_ = false;
  std::string status_;
  std::vector<std::string> list_;
  double since_ = 0, longest_ = 0;
  std::vector<Stall> stalls_;
};

// How many times slower than the simulator this client was served: as
// allowed, or as its forwards of mails went, opened to sent.
double ServingPace(const scenario::Scenario& sc, const std::string& transcript,
                   const Allowances& allow) {
  if (!allow.pace_from_run) return allow.serving_pace;
  double opened_at = -1, seconds = 0;
  int forwards = 0;
  std::istringstream in(transcript);
  for (std::string line; std::getline(in, line);) {
    if (line.find("\"status\"") == std::string::npos) continue;
    const Json e = Json::parse(line, nullptr, false);
    if (e.is_discarded() || e.value("ev", "") != "status") continue;
    const std::string text = e.value("text", "");
    const double t = e.value("t", 0.0);
    if (text == "status: opening mail") opened_at = t;
    if (text == "status: sent mail" && opened_at >= 0) {
      seconds += t - opened_at;
      ++forwards;
      opened_at = -1;
    }
  }
  if (forwards == 0) return allow.serving_pace;
  return std::max(allow.serving_pace,
                  seconds / forwards / ForwardSeconds(sc.latency_ms / 1000.0));
}

}  // namespace

double ForwardSeconds(double latency_seconds) {
  // The client opens three windows and sends, and the job pauses (whole
  // seconds) around them.
  return 4 * latency_seconds + 3;
}

double SentCheckSeconds(double latency_seconds) {
  // Three lines said with their pauses, the sent mail and the mail waiting
  // to be sent each opened from the tool bar's menu, read twice two
  // seconds apart, emptied and closed: three forwards' worth.
  return 3 * ForwardSeconds(latency_seconds);
}

double AdvertisementSeconds(double latency_seconds) {
  // Three lines said in the room, each read back.
  return 2 * ForwardSeconds(latency_seconds);
}

int SentChecksAhead(int flooders, int sent_restart) {
  if (sent_restart < 2) return 0;
  // The count may stand at the limit already: a check before the first
  // forward. The groups ahead hold one line per flooder at most, the
  // asker's own group comes last: another check after every
  // `sent_restart` of the flooders' lines.
  return 1 + flooders / sent_restart;
}

double FloodBound(const FloodRoom& room, double pace) {
  // What one forward costs at most. A tick answers one reply (a mail too,
  // with replies by mail) and forwards one group; ahead of the request
  // stand at most one group per flooder.
  const double forward = ForwardSeconds(room.latency_seconds);
  const double tick = forward * (room.replies_by_mail ? 2 : 1.5);
  const double served =
      pace * (20 + (room.flooders + 1) * tick +
              SentChecksAhead(room.flooders, room.sent_restart) *
                  SentCheckSeconds(room.latency_seconds));
  // An advertisement at most once a tick, when its interval is over: one
  // may come at once, another each interval of the wait, which they
  // lengthen.
  const double ad = pace * AdvertisementSeconds(room.latency_seconds);
  const int ticks = room.flooders + 2;  // the tick under way too
  int ads = 1;
  for (int round = 0; round < ticks; ++round) {
    const int due =
        room.bot_scroll > 0
            ? std::min(ticks, 1 + static_cast<int>((served + ads * ad) /
                                                   room.bot_scroll))
            : ticks;
    if (due <= ads) break;
    ads = due;
  }
  return served + ads * ad;
}

std::vector<std::string> CheckRun(const scenario::Scenario& sc,
                                  const std::string& transcript,
                                  RunFigures* fig, const std::string* log,
                                  const Allowances& allow) {
  std::vector<std::string> bad;
  const std::string user = LCase(sc.user);
  const int mails = static_cast<int>(sc.mails.size());
  std::set<int> dead(sc.dead_mails.begin(), sc.dead_mails.end());
  std::set<std::string> full;
  for (const std::string& f : sc.full_mailboxes) full.insert(LCase(f));

  // The times the user cleared or removed entries, exited, and started
  // the program again.
  std::vector<double> clears, exits, starts, signoffs;
  // Mails the client took for sending, by (requester, mail number): when;
  // those it took to send later, the same.
  std::map<std::pair<std::string, int>, std::vector<double>> handed,
      handed_later;
  // When the sent-mail check deleted the sent mail (and, with the send
  // later method, the mail waiting to be sent).
  std::vector<double> sent_deleted;
  // When the client signed off and on again.
  std::vector<double> client_off, client_on;
  bool send_later = true;  // the program's default mail method
  for (const scenario::SetupValue& v : sc.registry)
    if (LCase(v.section) == "settings" && LCase(v.key) == "mailmethod")
      send_later = LCase(v.value) != "false";
  static const std::regex kNumber("mail number <B><U>([0-9]+)</B></U>");
  for (const scenario::TimedLine& t : sc.timeline) {
    if (t.verb == Verb::kPress &&
        (t.name == "mnuClearALL" || t.name == "mnuRemoveSelected" ||
         t.name == "mnuClearSN"))
      clears.push_back(t.at);
    if (t.verb == Verb::kPress && t.name == "lblExit") exits.push_back(t.at);
    if (t.verb == Verb::kStart) starts.push_back(t.at);
    // A client killed outright loses its connection with its process.
    if (t.verb == Verb::kSignoff || t.verb == Verb::kKill)
      signoffs.push_back(t.at);
  }

  std::map<std::pair<std::string, int>, int> accepted;
  // Every mail entry the list held, restored ones included, and the mails
  // the room or the status strip was told are dead.
  std::set<std::pair<std::string, int>> listed;
  std::set<int> told_dead;
  static const std::regex kToldDead(
      "mail (?:<U>)?([0-9]+)(?:</U>)? is a dead mail");
  std::map<std::pair<std::string, int>, double> last_taken;
  std::map<std::pair<std::string, int>, std::vector<double>> removed_at;
  // The removals that were a job's take, and those just seen.
  std::map<std::pair<std::string, int>, std::vector<double>> taken_at;
  std::vector<std::pair<std::pair<std::string, int>, double>> just_removed;
  std::set<std::string> asked;  // anyone with a request or reply order
  // When each name was banned (spaces removed, lower case): by the user
  // from the room window, or by the mistakes it made.
  std::map<std::string, std::vector<double>> banned_at;
  std::set<double> start_times(starts.begin(), starts.end()), started;
  std::map<std::pair<std::string, int>, int> live;  // in the list now
  bool queue_file_fault = false, registry_fault = false;
  // The asker's accepted requests (mail, time) and the mails handed to the
  // client for it; requests accepted at each time, by entry; what was
  // restored at the start and the labels then.
  std::vector<std::pair<int, double>> asker_asks;
  // Every item the list holds now, and the asker's requests that stood
  // behind someone else's than the flooders': the flood bound counts only
  // theirs ahead (a stretch begins with a clear, but a request said just
  // before it may be heard after it).
  std::multiset<std::string> in_list;
  // When the room showed each line of an "early" + n, by (name, text).
  std::map<std::pair<std::string, std::string>, std::vector<double>>
      early_shown;
  std::set<std::pair<int, double>> asker_behind_others;
  std::map<int, std::vector<double>> asker_handed;
  std::map<std::string, std::vector<double>> added_at;
  std::vector<std::string> restored_pending, restored_banned;
  std::string label_pending_at_start, label_banned_at_start;
  // lstMails as the start reads it again: each emptying, with the count
  // before it, the count it came back to and when its last title came. A
  // program started again has read nothing yet: its list is empty.
  struct Read {
    double at;
    int before, after;
    double end;
  };
  std::vector<Read> reads;
  int mail_titles = 0;
  bool open_read = false;  // the last read is the running program's
  // When the server went serving (on and not paused) or stopped, as the
  // captions of cmdStart and cmdPause say; a program that ends or starts
  // anew is not serving.
  std::vector<std::pair<double, bool>> serving_at;
  bool on = false, paused = false;
  auto serving_now = [&](double t) {
    serving_at.emplace_back(t, on && !paused);
  };
  // The program's exits and starts again, as the timeline has them.
  std::vector<std::pair<double, bool>> ends_and_starts;
  for (double x : exits) ends_and_starts.emplace_back(x, false);
  for (double x : starts) ends_and_starts.emplace_back(x, true);
  std::sort(ends_and_starts.begin(), ends_and_starts.end());
  std::size_t next_end_or_start = 0;
  bool exited = false;
  // The list at each exit, and the moments of the faults of the queue's
  // files: one at an exit is its save failing (a file vanishes only when
  // a start asks for it).
  std::map<double, std::map<std::pair<std::string, int>, int>> live_at_exit;
  std::vector<double> queue_faults;
  // How far the total counter went up in the run (it may come back lower
  // from a registry whose write failed): the sent-mail check counts the
  // same mails.
  long long last_total = -1, counted = 0;
  const double pace = ServingPace(sc, transcript, allow);
  const double quiet_bound = kQuietSeconds * pace;
  StallWatch stall(user, quiet_bound);
  Json final_state;
  double last_t = 0;
  std::istringstream in(transcript);
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) continue;
    Json e = Json::parse(line, nullptr, false);
    if (e.is_discarded()) {
      bad.push_back("unreadable transcript line: " + line.substr(0, 80));
      continue;
    }
    const std::string ev = e.value("ev", "");
    const double t = e.value("t", 0.0);
    last_t = t;
    if (ev != "final") stall.Before(t);
    // A job's take removes its group from the list and then counts it
    // sent; a take can come at the very moment of a user's removal (the
    // prompt of a clear lets the serving go on).
    if (ev == "list" && e.value("name", "") == "lstPending" &&
        e.value("op", "") == "remove") {
      just_removed.emplace_back(MailEntry(e.value("item", "")), t);
    } else {
      if (ev == "label" && e.value("name", "") == "lblSent")
        for (const auto& [entry, at] : just_removed)
          if (at == t) taken_at[entry].push_back(t);
      just_removed.clear();
    }
    for (; next_end_or_start < ends_and_starts.size() &&
           ends_and_starts[next_end_or_start].first <= t;
         ++next_end_or_start) {
      on = false;
      // A program started again (a start is ignored while it runs) begins
      // with an empty list, whether or not it restores anything into it,
      // and has read no mail yet.
      if (ends_and_starts[next_end_or_start].second) {
        paused = false;
        if (exited) live.clear();
        if (open_read) reads.back().after = mail_titles;
        open_read = false;
        mail_titles = 0;
      }
      stall.Ends(ends_and_starts[next_end_or_start].first);
      exited = !ends_and_starts[next_end_or_start].second;
      if (exited) live_at_exit[ends_and_starts[next_end_or_start].first] = live;
      serving_now(ends_and_starts[next_end_or_start].first);
    }
    if (ev == "chat" && StartsWithName(e.value("sn", ""), "early"))
      early_shown[{LCase(e.value("sn", "")), e.value("text", "")}].push_back(t);
    if (ev == "chat" || ev == "status") {
      std::smatch match;
      const std::string said = e.value("text", "");
      if (std::regex_search(said, match, kToldDead) && match[1].length() < 7)
        told_dead.insert(std::stoi(match[1]));
    }
    if (ev == "label" && e.value("name", "") == "lblSent") {
      const std::string caption = e.value("text", "");
      const auto colon = caption.find(": ");
      if (colon != std::string::npos) {
        const long long total = std::atoll(caption.c_str() + colon + 2);
        if (last_total >= 0) counted += std::max(0LL, total - last_total);
        last_total = total;
      }
    }
    if (ev == "final") {
      stall.End(t);
    } else {
      stall.Apply(t, e);
    }
    if (ev == "final") {
      final_state = e;
    } else if (ev == "mail") {
      std::smatch match;
      const std::string body = e.value("body", "");
      const std::string to = e.value("to", "");
      if (std::regex_search(body, match, kNumber)) {
        const int n = std::stoi(match[1]);
        const bool later = e.value("send", "") == "later";
        for (const std::string& sn : Recipients(to)) {
          handed[{sn, n}].push_back(t);
          if (later) handed_later[{sn, n}].push_back(t);
          if (sn == "asker") asker_handed[n].push_back(t);
        }
      }
    } else if (ev == "client") {
      const std::string what = e.value("what", "");
      if (what == "signs off") client_off.push_back(t);
      if (what == "signs on") client_on.push_back(t);
    } else if (ev == "label" && (e.value("name", "") == "cmdStart" ||
                                 e.value("name", "") == "cmdPause")) {
      const std::string caption = e.value("text", "");
      if (e.value("name", "") == "cmdStart") on = caption == "&stop";
      if (e.value("name", "") == "cmdPause") paused = caption == "&unpause";
      serving_now(t);
    } else if (ev == "machine" && e.value("what", "") == "reboots") {
      on = paused = false;
      serving_now(t);
    } else if (ev == "label" && t == 0) {
      if (e.value("name", "") == "lblPending")
        label_pending_at_start = e.value("text", "");
      if (e.value("name", "") == "lblBanned")
        label_banned_at_start = e.value("text", "");
    } else if (ev == "status") {
      if (e.value("text", "") == "status: deleting sent")
        sent_deleted.push_back(t);
    } else if (ev == "fault") {
      const std::string kind = e.value("kind", "");
      ++fig->faults[kind];
      const std::string what = LCase(e.value("what", ""));
      if (kind == "registry-write") registry_fault = true;
      if (what.find("quorvex.ini") != std::string::npos ||
          what.find("restartsettings.ini") != std::string::npos) {
        queue_file_fault = true;
        queue_faults.push_back(t);
      }
    } else if (ev == "list") {
      const std::string name = e.value("name", "");
      const std::string op = e.value("op", "");
      const std::string item = e.value("item", "");
      if (name == "lstBanned" && op == "add")
        banned_at[NoSpaces(item)].push_back(t);
      if (name == "lstMails") {
        if (op == "clear") {
          if (open_read) reads.back().after = mail_titles;
          reads.push_back({t, mail_titles, 0, t});
          open_read = true;
          mail_titles = 0;
        }
        mail_titles += op == "add" ? 1 : op == "remove" ? -1 : 0;
        if (open_read) reads.back().end = t;
      }
      if (t == 0 && op == "add" && name == "lstPending")
        restored_pending.push_back(item);
      if (t == 0 && op == "add" && name == "lstBanned")
        restored_banned.push_back(item);
      if (name == "ReplyQueue" && op == "add") {
        const auto dash = item.rfind('-');
        if (dash != std::string::npos) asked.insert(item.substr(0, dash));
      }
      if (name != "lstPending") continue;
      // A program started again begins with an empty list.
      if (start_times.count(t) && !started.count(t)) {
        started.insert(t);
        live.clear();
        in_list.clear();
      }
      if (op == "add") in_list.insert(item);
      if (op == "remove" && in_list.count(item))
        in_list.erase(in_list.find(item));
      if (op == "clear") {
        in_list.clear();
        for (auto& [entry, n] : live)
          if (n > 0) removed_at[entry].push_back(t);
        live.clear();
        continue;
      }
      const auto sep = item.find_first_of("-~");
      if (op == "add" && sep != std::string::npos)
        asked.insert(item.substr(0, sep));
      const auto entry = MailEntry(item);
      // The list mails made at a start stand behind the scenario's own.
      if (op == "add") listed.insert(entry);
      if (entry.second <= 0 || entry.second > mails) continue;
      // Entries restored by a start come back at the moment of the start.
      if (op == "add") ++live[entry];
      if (op == "remove") --live[entry];
      if (op == "add" && !start_times.count(t)) {
        ++accepted[entry];
        added_at[item].push_back(t);
        if (entry.first == "asker") {
          asker_asks.emplace_back(entry.second, t);
          for (const std::string& other : in_list) {
            const std::string sn = other.substr(0, other.find_first_of("-~"));
            if (sn != "asker" && !StartsWithName(sn, "flooder"))
              asker_behind_others.insert({entry.second, t});
          }
        }
      } else if (op == "remove") {
        last_taken[entry] = t;
        removed_at[entry].push_back(t);
      }
    }
  }
  if (open_read) reads.back().after = mail_titles;
  fig->quiet_max = std::max(fig->quiet_max, stall.longest());
  for (const StallWatch::Stall& q : stall.stalls()) {
    char range[64];
    std::snprintf(range, sizeof range, "from %.1f s to %.1f s", q.from, q.to);
    bad.push_back(std::string("the program stood still ") + range + " at \"" +
                  q.status + "\" (" + std::to_string(q.pending) +
                  " requests pending, " + q.state + "): no progress within " +
                  std::to_string(static_cast<int>(quiet_bound)) + " s");
  }
  if (final_state.is_null()) {
    bad.push_back("no final state: the run did not end normally");
    return bad;
  }

  // Forwarded mails received, by (requester, mail number).
  std::map<std::pair<std::string, int>, int> delivered;
  for (const auto& [owner, box] : final_state["mailboxes"].items()) {
    const std::string sn = LCase(owner);
    if (sn == user) continue;
    if (!box.empty() && !asked.count(sn))
      bad.push_back("mail to " + owner + ", who asked for nothing");
    for (const Json& m : box) {
      std::smatch match;
      const std::string body = m.value("body", "");
      if (std::regex_search(body, match, kNumber)) {
        ++delivered[{sn, std::stoi(match[1])}];
        ++fig->delivered;
      }
    }
  }

  // Forwarded mails the client still holds to send later.
  std::map<std::pair<std::string, int>, int> waiting;
  if (final_state.contains("waiting"))
    for (const Json& m : final_state["waiting"]) {
      std::smatch match;
      const std::string body = m.value("body", "");
      if (!std::regex_search(body, match, kNumber)) continue;
      for (const std::string& sn : Recipients(m.value("to", "")))
        ++waiting[{sn, std::stoi(match[1])}];
    }

  // What is still pending: in the list, or in the saved queue when the
  // program has ended by an exit and was not started again.
  std::map<std::pair<std::string, int>, int> pending;
  const bool exited_last =
      !exits.empty() && (starts.empty() || exits.back() > starts.back());
  if (exited_last) {
    const Json& files = final_state["files"];
    for (const auto& [file, sections] : files.items()) {
      if (LCase(file) != "quorvex.ini") continue;
      for (const auto& [section, keys] : sections.items()) {
        int total = 0;
        for (const auto& [k, v] : keys.items())
          if (LCase(k) == "totalpending")
            total = std::atoi(v.get<std::string>().c_str());
        for (const auto& [k, v] : keys.items()) {
          const std::string lk = LCase(k);
          if (lk.rfind("pending ", 0) != 0) continue;
          if (std::atoi(lk.c_str() + 8) >= total) continue;
          const auto entry = MailEntry(v.get<std::string>());
          ++pending[entry];
        }
        (void)section;
      }
    }
  } else if (final_state["lists"].contains("lstPending")) {
    for (const Json& item : final_state["lists"]["lstPending"])
      ++pending[MailEntry(item.get<std::string>())];
  }

  // How many of an entry's removals happened at one of these moments.
  auto removed_then = [&](const std::pair<std::string, int>& entry,
                          const std::vector<double>& moments) {
    int n = 0;
    if (removed_at.count(entry))
      for (double r : removed_at.at(entry))
        for (double c : moments)
          if (AtMoment(r, c, allow.acted_within)) {
            ++n;
            break;
          }
    return n;
  };
  // Removed by the user: at the moment of a clear or a removal.
  auto by_user = [&](const std::pair<std::string, int>& entry) {
    return removed_then(entry, clears) > 0;
  };
  // Removed by a ban of the requester, at the moment of the ban.
  auto by_ban = [&](const std::pair<std::string, int>& entry) {
    const auto b = banned_at.find(NoSpaces(entry.first));
    return b == banned_at.end() ? 0 : removed_then(entry, b->second);
  };
  // Removed at the moment of a clear, or of a ban of `sn`.
  auto at_any = [&](double r, const std::vector<double>& moments) {
    for (double c : moments)
      if (AtMoment(r, c, allow.acted_within)) return true;
    return false;
  };
  auto by_user_at = [&](double r) { return at_any(r, clears); };
  auto by_ban_at = [&](const std::string& sn, double r) {
    const auto b = banned_at.find(NoSpaces(sn));
    return b != banned_at.end() && at_any(r, b->second);
  };
  // Taken shortly before an exit.
  auto exited_within = [&](double t, double seconds) {
    for (double x : exits)
      if (x >= t && x - t <= seconds) return true;
    return false;
  };
  // Taken shortly before the program stopped (an exit, or the run's end).
  auto stopped_within = [&](double t, double seconds) {
    for (double x : exits)
      if (x >= t && x - t <= seconds) return true;
    return last_t - t <= seconds;
  };
  // The ending each entry not received was accounted to, and whether a
  // sign-off may have lost it too.
  struct EndedAs {
    std::string ending;
    bool signed_off = false;
  };
  std::map<std::pair<std::string, int>, EndedAs> ended_as;
  for (const auto& [entry, asked_n] : accepted) {
    fig->accepted += asked_n;
    const auto& [sn, n] = entry;
    const int got = delivered.count(entry) ? delivered.at(entry) : 0;
    const int still = pending.count(entry) ? pending.at(entry) : 0;
    int left = still;  // and, below, the other known endings
    const std::string who = sn + "-" + std::to_string(n);
    if (got > asked_n)
      bad.push_back(who + ": delivered " + std::to_string(got) +
                    " times, asked " + std::to_string(asked_n));
    fig->still_pending += std::min(left, asked_n);
    left = std::min(left, asked_n);
    if (got + left >= asked_n) continue;
    // Handed to the client to send later, and still in its outgoing queue
    // when the run ended.
    const int held = waiting.count(entry) ? waiting.at(entry) : 0;
    if (held > 0) {
      const int n_held = std::min(held, asked_n - got - left);
      fig->waiting += n_held;
      left += n_held;
      if (got + left >= asked_n) continue;
    }
    // Handed to send later, then deleted unsent by the sent-mail check,
    // which with the send later method deletes the mail waiting to be
    // sent: deleted by design.
    if (send_later && handed_later.count(entry)) {
      int deleted = 0;
      for (double h : handed_later.at(entry))
        for (double d : sent_deleted)
          if (d >= h) {
            ++deleted;
            break;
          }
      const int n_deleted = std::min(deleted, asked_n - got - left);
      fig->deleted_waiting += n_deleted;
      left += n_deleted;
      if (got + left >= asked_n) continue;
    }
    // Removed from the list by a ban of the requester.
    if (const int n_banned = std::min(by_ban(entry), asked_n - got - left)) {
      fig->banned += n_banned;
      left += n_banned;
      if (got + left >= asked_n) continue;
    }
    // The first known ending that applies, by name.
    const char* ending =
        dead.count(n)    ? "dead mail"
        : full.count(sn) ? "full mailbox"
        : by_user(entry) ? "cleared or removed by the user"
        : queue_file_fault && (!exits.empty() || !starts.empty())
            ? "lost with a fault of the queue's file"
            : nullptr;
    // The client signed off while the mail was going out: the client lost
    // it, after the program had handed it over.
    bool lost_by_client = false;
    if (handed.count(entry))
      for (double h : handed.at(entry))
        for (double o : signoffs)
          if (o >= h && o - h <= 1.0) lost_by_client = true;
    // The client signed off during a forward, before it took the mail:
    // the step ends there and the group is lost, as the program intends.
    // Any of the entry's takes (one asked twice may lose the first).
    // A sign-off between a take and the first hand-over since (which
    // may be a later take's, the request asked again) lost that take.
    if (removed_at.count(entry)) {
      for (double taken : removed_at.at(entry)) {
        double first_hand = taken + kForwardSeconds + 1;
        if (handed.count(entry))
          for (double h : handed.at(entry))
            if (h >= taken && h - taken <= kForwardSeconds)
              first_hand = std::min(first_hand, h);
        for (double o : signoffs)
          if (o >= taken && o - taken <= kForwardSeconds && o < first_hand)
            lost_by_client = true;
        // Or it was already off when the group was taken (it signed off
        // or was killed before the tick): the forward ends at once,
        // whatever a later take of the request asked again hands over.
        if (SignedOffAt(client_off, client_on, taken)) lost_by_client = true;
      }
    }
    if (!ending && lost_by_client) ending = "lost with a sign-off";
    // The user started the server again while the last tick of a stop
    // was forwarding it: the start clears away the client's mail windows,
    // the forward's among them.
    if (!ending && last_taken.count(entry)) {
      const double taken = last_taken.at(entry);
      bool handed_since = false;
      if (handed.count(entry))
        for (double h : handed.at(entry))
          if (h >= taken) handed_since = true;
      for (const Read& r : reads)
        if (!handed_since && r.at > taken && r.at - taken <= kForwardSeconds)
          ending = "cut short by a start";
    }
    // Taken shortly before the program stopped (any of its takes: an exit
    // ends the forward under way there; a mail handed over moments before
    // may still be on its way through a slow client).
    if (!ending && removed_at.count(entry)) {
      for (double taken : removed_at.at(entry))
        if (stopped_within(taken, 60)) ending = "in flight at a stop";
      if (ending) fig->in_flight += asked_n - got - left;
    }
    if (ending) {
      ended_as[entry] = {ending, lost_by_client};
      fig->excused += asked_n - got - left;
      fig->endings[ending] += asked_n - got - left;
      continue;
    }
    bad.push_back(who + ": asked " + std::to_string(asked_n) +
                  " times, delivered " + std::to_string(got) + ", pending " +
                  std::to_string(still) + ", and no reason why");
  }

  if (log) {
    // The log's lines: who was logged with each outcome, by (requester,
    // what) and by requester alone.
    std::set<std::tuple<std::string, std::string, std::string>> logged;
    std::map<std::tuple<std::string, std::string, std::string>, int>
        logged_times;
    std::set<std::pair<std::string, std::string>> logged_names;
    // Lines that say what became of a mail request, by (requester, what).
    static const std::set<std::string> kJobEndings = {
        "sent",     "dead mail",        "full mailbox", "lost with a sign-off",
        "not sent", "lost with an exit"};
    std::map<std::pair<std::string, std::string>, int> job_lines;
    std::istringstream lines(*log);
    for (std::string text; std::getline(lines, text);) {
      const std::optional<LogLine> l = ParseLogLine(text);
      if (!l) {
        bad.push_back("log: unreadable line: " + text.substr(0, 80));
        continue;
      }
      ++fig->log_lines;
      int n = 0;
      if (l->what.rfind("send ", 0) == 0) n = SendNumber("/srv " + l->what);
      for (const std::string& who : l->requesters) {
        const std::string sn = LCase(who);
        logged.insert({l->outcome, sn, l->what});
        ++logged_times[{l->outcome, sn, l->what}];
        logged_names.insert({l->outcome, NoSpaces(sn)});
        if (kJobEndings.count(l->outcome)) ++job_lines[{sn, l->what}];
        const std::string line =
            "log: " + l->outcome + " " + sn + " " + l->what;
        if (l->outcome == "sent" && n > 0 && !listed.count({sn, n}))
          bad.push_back(line + ", which " + sn + " never asked for");
        // Dead: one of the room's dead mails, or one the program said was,
        // or one it gave up on after taking the request (its window never
        // came).
        if (l->outcome == "dead mail" && n > 0 && !dead.count(n) &&
            !told_dead.count(n) &&
            !(removed_at.count({sn, n}) && !delivered.count({sn, n})))
          bad.push_back(line + ", but mail " + std::to_string(n) +
                        " is not dead, was never said to be, and was not "
                        "given up");
        if (l->outcome == "full mailbox" && !full.count(sn))
          bad.push_back(line + ", but that mailbox is not full");
        if (l->outcome == "removed by the user" && n > 0 &&
            !listed.count({sn, n}))
          bad.push_back(line + ", which was never in the list");
        if (l->outcome == "lost with a failed save" && !queue_file_fault)
          bad.push_back(line + ", but no save of the queue failed");
      }
    }
    for (const auto& [entry, asked_n] : accepted) {
      const auto& [sn, n] = entry;
      const std::string what = "send " + std::to_string(n);
      if (delivered.count(entry)) {
        // Or the program took it for dead, and said so: an error box that
        // came during its forward is taken to be about it.
        if (logged.count({"sent", sn, what}) ||
            logged.count({"dead mail", sn, what}))
          ++fig->log_matched;
        else
          bad.push_back("log: " + sn + " received mail " + std::to_string(n) +
                        ", and no line says it was sent");
      }
      if (by_ban(entry) > 0) {
        if (logged_names.count({"banned", NoSpaces(sn)}))
          ++fig->log_matched;
        else
          bad.push_back(
              "log: " + sn + "'s request for mail " + std::to_string(n) +
              " was removed by a ban, and no line says " + sn + " was banned");
      }
      // Each of the `times` it ended this way, a line of `outcome` says so;
      // the violation reads "<request> `before` <times> times `after`, and
      // <lines> `lines_say`".
      auto each_time_told = [&](const char* outcome, int times,
                                const char* before, const char* after,
                                const char* lines_say) {
        const auto lines = logged_times.find({outcome, sn, what});
        const int told = lines == logged_times.end() ? 0 : lines->second;
        if (told < times)
          bad.push_back("log: " + sn + "'s request for mail " +
                        std::to_string(n) + before + std::to_string(times) +
                        " times" + after + ", and " + std::to_string(told) +
                        lines_say);
        else if (times > 0)
          ++fig->log_matched;
      };
      // Removed by the user.
      int user_removed = removed_then(entry, clears);
      if (taken_at.count(entry))
        for (double r : taken_at.at(entry))
          if (at_any(r, clears)) --user_removed;
      each_time_told("removed by the user", user_removed,
                     " was removed by the user ", "", " lines say so");
      // In the list at an exit whose save of the queue failed: lost. (A
      // file that vanished before a start read it is a loss the program
      // cannot see.)
      int lost_saving = 0;
      for (const auto& [x, at_exit] : live_at_exit)
        if (at_exit.count(entry) && at_exit.at(entry) > 0 &&
            at_any(x, queue_faults))
          ++lost_saving;
      each_time_told("lost with a failed save", lost_saving,
                     " was in the queue ", " when its save failed",
                     " lines say it was lost");
      // Each time a job took the request, a line says what became of it;
      // but for a take the run's end cut short (the power went off: the
      // program writes nothing more).
      int takes = 0;
      bool exit_cut = false;
      if (removed_at.count(entry))
        for (double r : removed_at.at(entry)) {
          if (by_user_at(r) || by_ban_at(sn, r)) continue;
          const bool exit_after = exited_within(r, kForwardSeconds);
          exit_cut |= exit_after;
          if (exit_after || last_t - r > kForwardSeconds) ++takes;
        }
      const int told =
          job_lines.count({sn, what}) ? job_lines.at({sn, what}) : 0;
      if (told < takes)
        bad.push_back("log: " + sn + "'s request for mail " +
                      std::to_string(n) + " was taken " +
                      std::to_string(takes) + " times, and " +
                      std::to_string(told) + " lines say what became of it");
      // Handed to the client and still waiting to be sent: sent.
      if (waiting.count(entry) && !logged.count({"sent", sn, what}))
        bad.push_back("log: " + sn + "'s mail " + std::to_string(n) +
                      " waits in the client, and no line says it was sent");
      // Each job ending the accounting names, with a line of that ending
      // (or of another that the same run explains: a dead mail or a full
      // mailbox whose forward a sign-off or an exit cut short). A forward
      // a start cleared away ends as the program saw it: not sent (its
      // window went), its mail given up as dead, or lost with the exit the
      // start followed.
      const auto ended = ended_as.find(entry);
      if (ended == ended_as.end() || takes == 0) continue;
      std::set<std::string> allowed;
      if (dead.count(n) || told_dead.count(n)) allowed.insert("dead mail");
      if (full.count(sn)) allowed.insert("full mailbox");
      if (ended->second.signed_off)
        allowed.insert({"lost with a sign-off", "sent"});
      if (exit_cut) allowed.insert({"lost with an exit", "sent"});
      const std::string& ending = ended->second.ending;
      if (ending == "cut short by a start")
        allowed.insert({"not sent", "dead mail"});
      const bool job_ending = ending == "dead mail" ||
                              ending == "full mailbox" ||
                              ending == "lost with a sign-off" ||
                              ending == "cut short by a start" ||
                              (ending == "in flight at a stop" && exit_cut);
      if (!job_ending) continue;
      bool found = false;
      for (const std::string& o : allowed)
        if (logged.count({o, sn, what})) found = true;
      if (found) {
        ++fig->log_matched;
      } else {
        bad.push_back("log: " + sn + "'s request for mail " +
                      std::to_string(n) + " ended as " + ending +
                      ", and no line says so");
      }
    }
  }

  // A list restored at the start ends with a line the file holds, and its
  // label counts the lines restored.
  fig->restored_lines +=
      static_cast<int>(restored_pending.size() + restored_banned.size());
  for (const auto& [lines, label, prefix, what] :
       {std::tuple{&restored_pending, &label_pending_at_start, "Pending ",
                   "pending: "},
        std::tuple{&restored_banned, &label_banned_at_start, "Banned ",
                   "banned: "}}) {
    if (!lines->empty() && lines->back().empty() &&
        !StoredEmpty(sc, prefix + std::to_string(lines->size() - 1)))
      bad.push_back(std::string("the restored ") + prefix +
                    "list ends in an empty line (line " +
                    std::to_string(lines->size()) +
                    "): the file's count stops serving");
    if (!label->empty() && *label != what + std::to_string(lines->size()))
      bad.push_back("restored " + std::to_string(lines->size()) +
                    " lines, but the label reads " + *label);
  }

  // Requests said while a start read the mailbox: each accepted that asks
  // for a mail both in the list before the read and in the list after (the
  // program judges them by the list as it stood before), or said once the
  // read was over and in the list it read.
  for (const scenario::TimedLine& l : sc.timeline) {
    if (l.verb != Verb::kSay || !StartsWithName(l.name, "early")) continue;
    const int n = SendNumber(l.text);
    const Read* read = nullptr;
    for (const Read& r : reads)
      if (r.at <= l.at && l.at - r.at < 10) read = &r;
    // Not a read of the program running then: it ended or started anew
    // since.
    for (const auto& [x, start] : ends_and_starts)
      if (read && x > read->at && x <= l.at) read = nullptr;
    if (n <= 0 || !read) continue;
    if (n > std::min(read->before, read->after) &&
        (l.at <= read->end || n > read->after))
      continue;
    // When the room showed it: at its moment in the simulator; through
    // the binding, when the line ran, which may be late (the loop held by
    // a call into a busy client), and lines due meanwhile run right after
    // it. Never shown: the room was gone.
    double shown = -1;
    const auto said = early_shown.find({LCase(l.name), l.text});
    if (said != early_shown.end())
      for (double t : said->second)
        if (t >= l.at - 0.5) {
          shown = std::max(t, l.at);
          break;
        }
    // Not heard: the client signed off shortly before or right after (the
    // room is read four times a second), or the program ended first.
    bool off = shown < 0 || SignedOffAt(client_off, client_on, shown);
    for (double o : signoffs)
      if (o <= shown + 1 && l.at - o < 180) off = true;
    for (double x : exits)
      if (x >= l.at && x <= shown + 1) off = true;
    if (off) continue;
    ++fig->early_requests;
    bool taken = false;
    const auto it = added_at.find(LCase(l.name) + "-" + std::to_string(n));
    if (it != added_at.end())
      for (double a : it->second)
        if (a >= l.at && a - shown <= allow.heard_within) taken = true;
    if (!taken)
      bad.push_back(LCase(l.name) + "-" + std::to_string(n) +
                    ": asked for while a start read the mailbox, refused");
  }

  // The asker's mails, beside the flooders.
  if (sc.lost_clicks <= 0) {
    // The program's own settings where the room stores none.
    const Settings defaults;
    auto stored_or = [&](const char* key, int fallback) {
      const std::string v = Stored(sc, "Settings", key);
      return v.empty() ? fallback : std::atoi(v.c_str());
    };
    FloodRoom room;
    room.latency_seconds = sc.latency_ms / 1000.0;
    room.replies_by_mail =
        LCase(Stored(sc, "Settings", "ScrollMethod")) == "false";
    room.sent_restart = stored_or("SentRestart", defaults.SentRestart);
    // A check comes only once the program has counted that many mails.
    if (counted < room.sent_restart) room.sent_restart = 0;
    room.bot_scroll = stored_or("BotScroll", defaults.BotScroll);
    std::map<int, std::size_t> used;  // handed mails matched so far
    for (const auto& [n, t] : asker_asks) {
      // Who floods beside it, and whether anything else that may hold the
      // mail back happens from two minutes before to the bound: the user
      // acting (but for the stretch's own clear and a change of speed), a
      // sign-off (three minutes), anyone else asking after the clear.
      std::set<std::string> flooders;
      for (const scenario::TimedLine& l : sc.timeline)
        if (l.verb == Verb::kSay && StartsWithName(l.name, "flooder") &&
            std::abs(l.at - t) < 5)
          flooders.insert(LCase(l.name));
      room.flooders = static_cast<int>(flooders.size());
      const double bound = FloodBound(room, pace);
      // The mail handed for it, if any.
      std::vector<double>& got = asker_handed[n];
      std::size_t& k = used[n];
      while (k < got.size() && got[k] < t) ++k;
      const bool handed = k < got.size();
      const double wait = handed ? got[k] - t : last_t - t;
      if (handed) ++k;
      // Until then (or the bound): serving, and nothing else happening.
      const double until = t + std::min(wait, bound);
      bool quiet = true;
      for (const scenario::TimedLine& l : sc.timeline) {
        if (l.at > until) break;
        // Before the request, what may still be under way: a client
        // restart after a sign-off (a start under way is not serving yet).
        if (l.at <= t) {
          if (l.verb == Verb::kSignoff && l.at >= t - 180) quiet = false;
          continue;
        }
        if (l.verb == Verb::kJoin || l.verb == Verb::kLeave) continue;
        if (l.verb == Verb::kPress && l.name == "mnuMSpeed") continue;
        if (l.verb == Verb::kSay && (StartsWithName(l.name, "flooder") ||
                                     StartsWithName(l.name, "asker")))
          continue;
        quiet = false;
      }
      bool serving = false;
      for (const auto& [when, yes] : serving_at) {
        if (when > until) break;
        if (when <= t) serving = yes;
        if (when > t && !yes) quiet = false;
      }
      if (!serving || !quiet || stopped_within(t, bound) ||
          asker_behind_others.count({n, t}))
        continue;
      ++fig->flood_asks;
      fig->flood_wait_max = std::max(fig->flood_wait_max, wait);
      if (wait > bound)
        bad.push_back(
            "asker-" + std::to_string(n) + ": held back by flooders, waited " +
            std::to_string(static_cast<int>(wait)) + " s for its mail beside " +
            std::to_string(flooders.size()) + " flooders (bound " +
            std::to_string(static_cast<int>(bound)) + " s)");
    }
  }

  // The total shown is the total stored.
  const Json& labels = final_state["labels"];
  const Json& registry = final_state["registry"];
  if (!registry_fault && labels.contains("lblSent") &&
      registry.contains("Settings") &&
      registry["Settings"].contains("TotalSent")) {
    const std::string shown = labels["lblSent"].get<std::string>();
    const std::string stored = registry["Settings"]["TotalSent"];
    const auto colon = shown.find(": ");
    if (colon == std::string::npos || shown.substr(colon + 2) != stored)
      bad.push_back("counter " + shown + " but TotalSent = " + stored);
  }
  return bad;
}

}  // namespace quorvex::soak
