#include "invariants.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "model/text_util.h"

namespace quorvex::soak {
namespace {

// The longest a forward waits for the client's windows before it gives the
// mail up as dead.
constexpr double kForwardSeconds = 60;

using Json = nlohmann::json;

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

}  // namespace

std::vector<std::string> CheckRun(const sim::Scenario& sc,
                                  const std::string& transcript,
                                  RunFigures* fig) {
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
  for (const sim::SetupValue& v : sc.registry)
    if (LCase(v.section) == "settings" && LCase(v.key) == "mailmethod")
      send_later = LCase(v.value) != "false";
  static const std::regex kNumber("mail number <B><U>([0-9]+)</B></U>");
  for (const sim::TimedLine& t : sc.timeline) {
    if (t.verb == "press" &&
        (t.name == "mnuClearALL" || t.name == "mnuRemoveSelected" ||
         t.name == "mnuClearSN"))
      clears.push_back(t.at);
    if (t.verb == "press" && t.name == "lblExit") exits.push_back(t.at);
    if (t.verb == "start") starts.push_back(t.at);
    // A client killed outright loses its connection with its process.
    if (t.verb == "signoff" || t.verb == "kill") signoffs.push_back(t.at);
  }

  std::map<std::pair<std::string, int>, int> accepted;
  std::map<std::pair<std::string, int>, double> last_taken;
  std::map<std::pair<std::string, int>, std::vector<double>> removed_at;
  std::set<std::string> asked;  // anyone with a request or reply order
  // When each name was banned (spaces removed, lower case): by the user
  // from the room window, or by the mistakes it made.
  std::map<std::string, std::vector<double>> banned_at;
  std::set<double> start_times(starts.begin(), starts.end()), started;
  std::map<std::pair<std::string, int>, int> live;  // in the list now
  bool queue_file_fault = false, registry_fault = false;
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
        }
      }
    } else if (ev == "client") {
      const std::string what = e.value("what", "");
      if (what == "signs off") client_off.push_back(t);
      if (what == "signs on") client_on.push_back(t);
    } else if (ev == "status") {
      if (e.value("text", "") == "status: deleting sent")
        sent_deleted.push_back(t);
    } else if (ev == "fault") {
      const std::string kind = e.value("kind", "");
      ++fig->faults[kind];
      const std::string what = LCase(e.value("what", ""));
      if (kind == "registry-write") registry_fault = true;
      if (what.find("quorvex.ini") != std::string::npos ||
          what.find("restartsettings.ini") != std::string::npos)
        queue_file_fault = true;
    } else if (ev == "list") {
      const std::string name = e.value("name", "");
      const std::string op = e.value("op", "");
      const std::string item = e.value("item", "");
      if (name == "lstBanned" && op == "add")
        banned_at[NoSpaces(item)].push_back(t);
      if (name == "ReplyQueue" && op == "add") {
        const auto dash = item.rfind('-');
        if (dash != std::string::npos) asked.insert(item.substr(0, dash));
      }
      if (name != "lstPending") continue;
      // A program started again begins with an empty list.
      if (start_times.count(t) && !started.count(t)) {
        started.insert(t);
        live.clear();
      }
      if (op == "clear") {
        for (auto& [entry, n] : live)
          if (n > 0) removed_at[entry].push_back(t);
        live.clear();
        continue;
      }
      const auto sep = item.find_first_of("-~");
      if (op == "add" && sep != std::string::npos)
        asked.insert(item.substr(0, sep));
      const auto entry = MailEntry(item);
      if (entry.second <= 0 || entry.second > mails) continue;
      // Entries restored by a start come back at the moment of the start.
      if (op == "add") ++live[entry];
      if (op == "remove") --live[entry];
      if (op == "add" && !start_times.count(t)) {
        ++accepted[entry];
      } else if (op == "remove") {
        last_taken[entry] = t;
        removed_at[entry].push_back(t);
      }
    }
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
          if (std::abs(r - c) < 0.0015) {
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
  // Taken shortly before the program stopped (an exit, or the run's end).
  auto stopped_within = [&](double t, double seconds) {
    for (double x : exits)
      if (x >= t && x - t <= seconds) return true;
    return last_t - t <= seconds;
  };
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
    // The client signed off during the forward, before it took the mail:
    // the step ends there and the group is lost, as the program intends.
    if (last_taken.count(entry)) {
      const double taken = last_taken.at(entry);
      bool handed_since = false;
      if (handed.count(entry))
        for (double h : handed.at(entry))
          if (h >= taken) handed_since = true;
      if (!handed_since) {
        for (double o : signoffs)
          if (o >= taken && o - taken <= kForwardSeconds) lost_by_client = true;
        // Or it was already off when the group was taken (it signed off
        // earlier in the same tick): the forward ends at once.
        if (SignedOffAt(client_off, client_on, taken)) lost_by_client = true;
      }
    }
    if (!ending && lost_by_client) ending = "lost with a sign-off";
    if (!ending && last_taken.count(entry) &&
        stopped_within(last_taken[entry], 60)) {
      ending = "in flight at a stop";
      fig->in_flight += asked_n - got - left;
    }
    if (ending) {
      fig->excused += asked_n - got - left;
      fig->endings[ending] += asked_n - got - left;
      continue;
    }
    bad.push_back(who + ": asked " + std::to_string(asked_n) +
                  " times, delivered " + std::to_string(got) + ", pending " +
                  std::to_string(still) + ", and no reason why");
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
