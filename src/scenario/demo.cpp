#include "scenario/demo.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

namespace quorvex::scenario {

const char* const kDemoScenario =
    R"(# A busy evening in the Lobby: the server is started, builds its lists,
# and serves single mails, ranges, lists, finds, status and thank-you
# requests; duplicates and over-limit requests are answered, a full
# mailbox costs its owner a warning and then a ban, and one mail turns out
# to be dead. For a while replies go out by mail, and at the end the
# session's count is mailed to alice.
clock 20:00:00 2004-05-01
seed 7
user Host
room Lobby
person alice
person bob
person carol
person dave
person erin
person frank
person gina
person henry
registry Settings Handle = srv
registry Settings MailResize = False
registry Settings ListSize = 50
registry Settings ListAdvertise = 30
registry Settings BotScroll = 90
registry Banning Mails = 12
registry Banning Mistakes = 2
full-mailbox gina
dead-mail 33
mail cats in the snow
mail two cats and a dog
mail dog park sunday
mail birds of the marsh
mail the blue bird
mail cat nap compilation
mail summer road trip
mail old radio show
mail guitar lesson 1
mail guitar lesson 2
mails 110 clip
at 0.5 answer yes
at 1 press cmdStart
at 12 say alice: hi everyone
at 14 say bob: /srv send 5
at 15 say carol: /srv send 10-14
at 16 say dave: /srv send list
at 16.5 say carol: /srv send 13
at 17 say alice: /srv send 5
at 18 say bob: /srv send 5
at 20 say erin: /srv find cats
at 21 say frank: /srv send status
at 22 say gina: /srv send 7
at 24 say carol: /srv send 20-40
at 26 say henry: /srv send 33
at 27 say alice: /srv send 33
at 30 say erin: /srv find dog&bird
at 35 say dave: lol
at 40 say gina: /srv send 8
at 45 say bob: /srv thanks
at 50 say frank: /srv send list
at 62 say gina: /srv send 9
at 70 say gina: /srv send 10
at 80 say dave: /srv find x
at 90 say henry: /srv send status
at 95 press mnuScrollMethod 2
at 100 say alice: /srv thank you
at 110 say carol: /srv send status
at 115 press mnuScrollMethod 1
at 120 say frank: /srv send 100-103
at 150 say erin: /srv send 120
at 170 say henry: /srv find guitar
at 200 press mnuBScroll 1
at 230 press cmdPause
at 235 say bob: /srv send 6
at 250 press cmdPause
at 300 say carol: /srv send status
at 330 press cmdStart
at 345 answer alice
at 345 press mnuMailSession
run 360
)";

namespace {

// The width of the summary's first column.
constexpr std::size_t kWhatWidth = 15;

bool Has(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

std::string DemoSummary(const nlohmann::ordered_json& final_state,
                        const std::string& user) {
  int forwards = 0, lists = 0, finds = 0, replies = 0;
  std::set<std::string> served;
  using Json = nlohmann::ordered_json;
  // Copies: value() gives a temporary.
  const Json mailboxes = final_state.value("mailboxes", Json::object());
  const Json mistakes = final_state.value("MistakeList", Json::array());
  const Json lists_json = final_state.value("lists", Json::object());
  const Json labels = final_state.value("labels", Json::object());
  for (const auto& [sn, box] : mailboxes.items()) {
    if (sn == user) continue;
    for (const auto& mail : box) {
      const std::string subject = mail.value("subject", "");
      const std::string body = mail.value("body", "");
      if (Has(body, "mail number <B><U>")) {
        ++forwards;
      } else if (Has(body, "list number <B><U>")) {
        ++lists;
      } else if (Has(subject, "quorvex find results for")) {
        ++finds;
      } else {
        ++replies;
      }
      served.insert(sn);
    }
  }
  int warned = 0, banned = 0;
  for (const auto& item : mistakes) {
    const std::string entry = item.get<std::string>();
    if (entry.size() > 7 &&
        entry.compare(entry.size() - 7, 7, "-banned") == 0) {
      ++banned;
    } else {
      ++warned;
    }
  }
  const size_t banned_names =
      lists_json.contains("lstBanned") ? lists_json["lstBanned"].size() : 0;
  const size_t pending =
      lists_json.contains("lstPending") ? lists_json["lstPending"].size() : 0;

  std::vector<std::pair<std::string, std::string>> rows = {
      {"mails forwarded", std::to_string(forwards) + " (to " +
                              std::to_string(served.size()) + " people)"},
      {"lists sent", std::to_string(lists)},
      {"finds sent", std::to_string(finds)},
      {"replies mailed", std::to_string(replies)},
      {"people warned", std::to_string(warned + banned)},
      {"people banned", std::to_string(banned_names)},
      {"still pending", std::to_string(pending)},
  };
  if (labels.contains("lblSession"))
    rows.push_back({"counters", labels["lblSession"].get<std::string>() + ", " +
                                    labels.value("lblSent", "")});
  rows.push_back({"final status", final_state.value("status", "")});

  std::size_t wide = 0;
  for (const auto& row : rows) wide = std::max(wide, row.second.size());
  const std::string rule = "+" + std::string(kWhatWidth + 2, '-') + "+" +
                           std::string(wide + 2, '-') + "+\n";
  auto line = [&](const std::string& what, const std::string& value) {
    return "| " + what + std::string(kWhatWidth - what.size(), ' ') + " | " +
           value + std::string(wide - value.size(), ' ') + " |\n";
  };
  std::ostringstream out;
  out << "\nWhat the server did in the demo room:\n" << rule;
  for (const auto& [what, value] : rows) out << line(what, value);
  out << rule;
  return out.str();
}

}  // namespace quorvex::scenario
