#include "soak/soak_room.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <random>
#include <set>
#include <sstream>
#include <vector>

namespace quorvex::soak {
namespace {

class Dice {
 public:
  explicit Dice(std::uint64_t seed) : rng_(seed) {}
  int Int(int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(rng_);
  }
  bool Chance(double p) {
    return std::uniform_real_distribution<double>(0, 1)(rng_) < p;
  }
  template <typename T>
  const T& Pick(const std::vector<T>& v) {
    return v[static_cast<std::size_t>(Int(0, static_cast<int>(v.size()) - 1))];
  }

 private:
  std::mt19937_64 rng_;
};

const std::vector<std::string> kPeople = {"ann", "Bob Lee", "cat", "DanX",
                                          "eve", "fay",     "Gus", "hal",
                                          "ivy", "Jo Jo"};
const std::vector<std::string> kWords = {
    "cats", "dog", "mail", "song", "radio", "clip", "bird", "the", "a", "zz"};

// Any printable text, with a few bytes above ASCII, no line break.
std::string Garbage(Dice& d, int length) {
  std::string s;
  for (int i = 0; i < length; ++i) {
    int c = d.Int(0, 20) == 0 ? d.Int(0xA0, 0xFF) : d.Int(0x20, 0x7E);
    s += static_cast<char>(c);
  }
  return s;
}

// A line for the server; `queues` tells whether it asks for a mail or a
// list, which a valid request queues.
std::string Request(Dice& d, int mails, bool* queues = nullptr) {
  const std::string h = d.Chance(0.1) ? "/SRV" : "/srv";
  const int kind = d.Int(0, 15);
  if (queues) *queues = kind <= 5;
  switch (kind) {
    case 0:
    case 1:
    case 2:
    case 3:
      return h + " send " + std::to_string(d.Int(1, mails));
    case 4: {
      int a = d.Int(1, mails);
      return h + " send " + std::to_string(a) + "-" +
             std::to_string(std::min(mails, a + d.Int(0, 4)));
    }
    case 5:
      return h + " send list";
    case 6:
      return h + " find " + d.Pick(kWords);
    case 7:
      return h + " find " + d.Pick(kWords) + "&" + d.Pick(kWords);
    case 8:
      return h + (d.Chance(0.5) ? " thanks" : " send thanks");
    case 9:
      return h + " send status";
    // Invalid: refused by the parser's own rules.
    case 10:
      return h + " send " +
             d.Pick(std::vector<std::string>{"0", "99999", "abc", "123456",
                                             "-3", "5-2"});
    case 11:
      return d.Pick(std::vector<std::string>{" /srv send 1", "/srvsend 1",
                                             "srv send 2", "/srv find x",
                                             "/srv", "hello all"});
    // Hostile: long, odd or huge.
    case 12:
      return h + " send 1-" + std::to_string(d.Int(100, 1000000));
    case 13:
      return h + " find " + Garbage(d, d.Int(0, 40));
    case 14:
      return Garbage(d, d.Int(1, 300));
    default:
      return h + " send " + Garbage(d, d.Int(1, 8));
  }
}

// The client's process killed now and then during the busy stretch, and
// its room full for a few tries when it comes back after a sign-off or a
// kill. Drawn with dice of their own, so that the rest of a seed's room
// stays as it was before these faults were drawn.
std::string AddClientDeaths(std::uint64_t seed, const RoomOptions& o,
                            const std::string& room, int end) {
  Dice d(seed ^ 0x6b696c6c2d726f6fULL);
  auto on = [&o](const char* kind) { return o.faults.count(kind) > 0; };
  std::vector<std::string> lines;
  std::istringstream in(room);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  auto first_timed = [&lines] {
    std::size_t i = 0;
    while (i < lines.size() && lines[i].rfind("at ", 0) != 0 &&
           lines[i].rfind("run ", 0) != 0)
      ++i;
    return i;
  };
  if (on("full-room") && (on("signoff") || on("kill")) && d.Chance(0.3))
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(first_timed()),
                 "room-full Lobby " + std::to_string(d.Int(1, 3)));
  const int kills = on("kill") && d.Chance(0.3) ? d.Int(1, 2) : 0;
  for (int k = 0; k < kills; ++k) {
    const double t = d.Int(3000, std::max(3000, end * 1000)) / 1000.0;
    // Before the first timed line that comes later.
    std::size_t i = first_timed();
    for (; i < lines.size(); ++i) {
      if (lines[i].rfind("run ", 0) == 0) break;
      if (lines[i].rfind("at ", 0) == 0 && std::stod(lines[i].substr(3)) > t)
        break;
    }
    char at[48];
    std::snprintf(at, sizeof at, "at %.3f kill", t);
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(i), at);
  }
  std::string out;
  for (const std::string& line : lines) out += line + "\n";
  return out;
}

std::string At(double t) {
  char at[32];
  std::snprintf(at, sizeof at, "at %.3f ", t);
  return at;
}

// A count as a damaged file may hold it, for `entries` keys stored.
std::string DamagedCount(Dice& d, int entries) {
  switch (d.Int(0, 7)) {
    case 0:
      return "2000000000";
    case 1:
      return "1e12";
    case 2:
      return std::to_string(entries + d.Int(1, 50));
    case 3:
      return std::to_string(entries);
    case 4:
      return "-" + std::to_string(d.Int(1, 9));
    case 5:
      return std::to_string(entries) + ".5";
    case 6:
      return "lots";
    default:
      return std::to_string(std::max(0, entries - 1));
  }
}

// Numbered keys PREFIX0... of a damaged file: `values` in order, one key
// sometimes missing between present ones (a real gap).
void NumberedKeys(Dice& d, std::ostringstream& s, const std::string& head,
                  const std::string& prefix,
                  const std::vector<std::string>& values) {
  const int gap = values.size() >= 2 && d.Chance(0.3)
                      ? d.Int(0, static_cast<int>(values.size()) - 2)
                      : -1;
  for (std::size_t i = 0; i < values.size(); ++i)
    if (static_cast<int>(i) != gap)
      s << head << prefix << i << " = " << values[i] << "\n";
}

// Entries of a damaged queue: the room's people asking for mails, now and
// then a find with a long text.
std::vector<std::string> DamagedEntries(Dice& d,
                                        const std::vector<std::string>& people,
                                        int mails) {
  // Distinct, as the program saves them: the parser never queues a mail
  // twice for one person.
  std::vector<std::string> out;
  std::set<std::string> seen;
  const int n = d.Int(1, 6);
  for (int i = 0; i < n; ++i) {
    std::string sn = d.Pick(people);
    for (char& c : sn) c = static_cast<char>(std::tolower(c));
    std::string entry = d.Chance(0.15)
                            ? sn + "~" + std::string(d.Int(1100, 3000), 'q')
                            : sn + "-" + std::to_string(d.Int(1, mails));
    if (seen.insert(entry).second) out.push_back(std::move(entry));
  }
  return out;
}

// A flood stretch from `t`, after a clear: "flooder" + n repeat a
// duplicate, thanks or status every second; "asker" asks for mails no
// flooder wants now and then; nothing else happens. Returns the time after
// it and a quiet minute.
double FloodStretch(Dice& d, std::ostringstream& s, double t, int mails,
                    const std::set<int>& dead) {
  s << At(t) << "press mnuClearALL\n";
  const int flooders = d.Int(1, 4);
  const int seconds = d.Int(60, 180);
  const int shared = d.Int(1, mails);
  std::set<int> wanted;
  std::vector<std::vector<std::string>> lines(flooders);
  for (int f = 0; f < flooders; ++f) {
    const int mode = d.Int(0, 4);
    const int own = d.Int(1, mails);
    if (mode <= 1) wanted.insert(mode == 0 ? own : shared);
    if (mode == 0) lines[f] = {"/srv send " + std::to_string(own)};
    if (mode == 1) lines[f] = {"/srv send " + std::to_string(shared)};
    if (mode == 2) lines[f] = {"/srv thanks"};
    if (mode == 3) lines[f] = {"/srv send status"};
    if (mode == 4)
      lines[f] = {"/srv send " + std::to_string(shared), "/srv thanks",
                  "/srv send status"};
    if (mode == 4) wanted.insert(shared);
  }
  std::vector<int> asks;
  for (int n = 1; n <= mails; ++n)
    if (!wanted.count(n) && !dead.count(n)) asks.push_back(n);
  std::vector<std::pair<double, std::string>> timed;
  const double t0 = t + 1;
  for (int k = 0; k < seconds; ++k)
    for (int f = 0; f < flooders; ++f)
      for (std::size_t l = 0; l < lines[f].size(); ++l)
        timed.emplace_back(
            t0 + k + f * 0.07 + l * 0.02,
            "flooder" + std::to_string(f + 1) + ": " + lines[f][l]);
  int asked_n = 0;
  for (double a = t0 + d.Int(2, 8); !asks.empty() && a < t0 + seconds;
       a += d.Int(15, 40))
    timed.emplace_back(
        a + 0.5,
        "asker: /srv send " + std::to_string(asks[asked_n++ % asks.size()]));
  std::stable_sort(
      timed.begin(), timed.end(),
      [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [when, line] : timed)
    s << At(when) << "say " << line << "\n";
  // A quiet minute after it.
  return t0 + seconds + 60;
}

}  // namespace

std::string MakeRoom(std::uint64_t seed, const RoomOptions& o) {
  Dice d(seed);
  auto on = [&o](const char* kind) { return o.faults.count(kind) > 0; };
  std::ostringstream s;
  const int mails = d.Int(3, 40);
  const int end = d.Int(o.min_seconds, o.max_seconds);
  s << "# soak room " << seed << "\n";
  s << "seed " << seed << "\nuser Host\nroom Lobby\n";
  std::vector<std::string> people;
  for (const std::string& p : kPeople)
    if (d.Chance(0.6)) people.push_back(p);
  if (people.empty()) people.push_back("ann");
  for (const std::string& p : people) s << "person " << p << "\n";
  s << "registry Settings Handle = srv\n";
  if (d.Chance(0.3)) s << "registry Settings ScrollMethod = False\n";
  if (d.Chance(0.3)) s << "registry Banning Mails = " << d.Int(1, 12) << "\n";
  if (d.Chance(0.3)) s << "registry Banning Mistakes = " << d.Int(1, 5) << "\n";
  // The sent-mail check now and then (with the send later method it also
  // deletes the mail waiting to be sent); the regular method now and then.
  if (d.Chance(0.25))
    s << "registry Settings SentRestart = " << d.Int(2, 6) << "\n";
  if (d.Chance(0.25)) s << "registry Settings MailMethod = False\n";
  s << "mails " << mails << " song\n";
  if (on("full-mailbox") && d.Chance(0.3))
    s << "full-mailbox " << d.Pick(people) << "\n";
  std::set<int> dead;
  if (on("dead-mail") && d.Chance(0.3)) {
    dead.insert(d.Int(1, mails));
    s << "dead-mail " << *dead.begin() << "\n";
  }
  if (on("slow") && d.Chance(0.3)) s << "latency " << d.Int(100, 3000) << "\n";
  for (const char* kind :
       {"lost-click", "registry-write", "profile-write", "disk-full", "vanish"})
    if (on(kind) && d.Chance(0.25))
      s << "fault " << kind << " " << d.Int(1, 20) << "\n";

  // A damaged queue file, or a damaged restart state: the run then starts
  // with a resume, which starts serving by itself once the client is back.
  bool resumes = false;
  if (o.damaged_files && d.Chance(0.2)) {
    resumes = d.Chance(0.3);
    const std::string head = std::string("ini ") +
                             (resumes ? "RestartSettings.INI" : "Quorvex.INI") +
                             " Quorvex ";
    const std::vector<std::string> entries = DamagedEntries(d, people, mails);
    if (resumes) {
      s << head << "ChatName = Lobby"
        << (d.Chance(0.1) ? std::string(d.Int(1100, 100000), 'x') : "") << "\n";
      s << head << "TotalSent = " << d.Int(0, 30) << "\n";
      std::vector<std::string> banned = {"spammer"};
      if (d.Chance(0.5)) banned.push_back(std::string(d.Int(1100, 5000), 'z'));
      s << head
        << "TotalBanned = " << DamagedCount(d, static_cast<int>(banned.size()))
        << "\n";
      NumberedKeys(d, s, head, "Banned ", banned);
    }
    s << head
      << "TotalPending = " << DamagedCount(d, static_cast<int>(entries.size()))
      << "\n";
    NumberedKeys(d, s, head, "Pending ", entries);
  }

  // The user starts serving at once (lists built when none are found); a
  // resume starts by itself, and the room waits until it has.
  s << "at 0.5 answer yes\n";
  if (!resumes) s << "at 1 press cmdStart\n";
  // Someone asks for a mail while a start reads the mailbox again.
  int early = 0;
  auto early_requests = [&](double from) {
    double when = from;
    for (int i = d.Int(1, 2); i > 0; --i) {
      when += d.Int(50, 1500) / 1000.0;
      s << At(when) << "say early" << ++early << ": /srv send "
        << d.Int(1, mails) << "\n";
    }
    return when;
  };
  double first = 2;  // the room's own lines begin after these
  if (!resumes && o.start_requests && d.Chance(0.5))
    first = std::max(first, early_requests(1));
  bool running = true, serving = true, paused = false;
  // Who asked for mail since the last ban from the room window, and who is
  // banned: a ban picks one of the former most of the time.
  std::vector<std::string> asking;
  std::set<std::string> banned;
  auto asked = [&](const std::string& p) {
    if (!banned.count(p) &&
        std::find(asking.begin(), asking.end(), p) == asking.end())
      asking.push_back(p);
  };
  // One room in five has a flood stretch, once it is serving.
  double stretch_at =
      o.flood_stretches && d.Chance(0.2) ? d.Int(5, std::max(5, end - 20)) : -1;
  double t = resumes ? 120 : first;
  while (t < end + (resumes ? 120 : 0)) {
    t += d.Int(1, 2000) / 1000.0;
    char at[32];
    std::snprintf(at, sizeof at, "at %.3f ", t);
    const double what = d.Int(0, 199) / 2.0;
    if (stretch_at >= 0 && t >= stretch_at && running && serving && !paused) {
      stretch_at = -1;
      t = FloodStretch(d, s, t, mails, dead);
    } else if (!running) {
      // After an exit the user starts the program again, later.
      s << at << "start\n";
      running = true, serving = false, paused = false;
    } else if (what < 60) {
      const std::string p = d.Pick(people);
      bool queues = false;
      s << at << "say " << p << ": " << Request(d, mails, &queues) << "\n";
      if (queues) asked(p);
    } else if (what < 63) {
      // A flood: one person, many lines in a second.
      const std::string p = d.Pick(people);
      const int n = d.Int(10, 40);
      for (int i = 0; i < n; ++i) {
        std::snprintf(at, sizeof at, "at %.3f ", t + i * 0.02);
        bool queues = false;
        s << at << "say " << p << ": " << Request(d, mails, &queues) << "\n";
        if (queues) asked(p);
      }
      t += n * 0.02;
    } else if (what < 68) {
      const std::string name = d.Chance(0.5)
                                   ? d.Pick(people)
                                   : "newbie" + std::to_string(d.Int(1, 9));
      s << at << (d.Chance(0.5) ? "join " : "leave ") << name << "\n";
    } else if (what < 71) {
      s << at << "press cmdPause\n";
      // The program takes it only while the server is on; a pause asked
      // for stays through a stop and the next start.
      if (serving) paused = !paused;
    } else if (what < 74) {
      // Stop, or start again (lists built when none are found).
      const bool starts = !serving;
      if (!serving) s << at << "answer yes\n";
      s << at << "press cmdStart\n";
      serving = !serving;
      if (starts && o.start_requests && d.Chance(0.7)) t = early_requests(t);
    } else if (what < 74.5) {
      s << at << "press mnuClearALL\n";
    } else if (what < 79) {
      s << at << "select lstPending " << d.Int(0, 3) << "\n"
        << at << "press mnuRemoveSelected\n";
    } else if (what < 81) {
      s << at << "answer " << d.Pick(people) << "\n"
        << at << "press mnuClearSN\n";
    } else if (what < 83) {
      // A ban from the room's people window: mostly someone who asked for
      // mail, sometimes a bystander; picked by name, as the user would.
      std::vector<std::string> bystanders;
      for (const std::string& p : people)
        if (!banned.count(p) &&
            std::find(asking.begin(), asking.end(), p) == asking.end())
          bystanders.push_back(p);
      const bool requester =
          !asking.empty() && (bystanders.empty() || d.Chance(0.8));
      if (requester || !bystanders.empty()) {
        const std::string name =
            requester ? d.Pick(asking) : d.Pick(bystanders);
        s << at << "press lstBanned 2\n"
          << at << "select frmRoom.lstRoom \"" << name << "\"\n"
          << at << "press frmRoom.lstRoom\n"
          << at << "press frmRoom.lblExit\n";
        banned.insert(name);
        asking.erase(std::remove(asking.begin(), asking.end(), name),
                     asking.end());
      }
    } else if (what < 88) {
      s << at << "press mnuMSpeed " << d.Int(1, 3) << "\n";
    } else if (what < 92 && on("signoff")) {
      s << at << "signoff\n";
    } else if (what < 94) {
      s << at << "press lblExit\n";
      running = false;
    }
  }
  // A quiet end: serving again, unpaused, while the queue drains.
  t += 1;
  char at[32];
  std::snprintf(at, sizeof at, "at %.3f ", t);
  if (!running) s << at << "start\n";
  if (!serving || !running)
    s << at << "answer yes\n" << at << "press cmdStart\n";
  // Unpaused once the start is done.
  if (paused && running) s << At(t + 30) << "press cmdPause\n";
  const double drain = t + o.drain_seconds;
  // Half the runs end with the user's exit, the rest as if the power went.
  if (d.Chance(0.5)) {
    std::snprintf(at, sizeof at, "at %.3f ", drain);
    s << at << "press lblExit\n";
  }
  std::snprintf(at, sizeof at, "run %.3f\n", drain + 5);
  s << at;
  return AddClientDeaths(seed, o, s.str(), end);
}

}  // namespace quorvex::soak
