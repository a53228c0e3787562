// What the tests that serve through the stand-in client plant in it and
// look for in its state.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace quorvex::test {

// The command that plants a list mail made earlier in the client's
// mailbox: a start finds it and asks nothing (making one writes a mail to
// the user, which the stand-in client does not finish).
inline constexpr char kEarlierListMail[] =
    "mail  \xC2\xB7\xE2\x80\xA2[ quorvex list number 1 ]"
    "\xE2\x80\xA2\xC2\xB7";

// The mails in `name`'s mailbox, none when there is no such box.
inline nlohmann::json MailboxOf(const nlohmann::json& state,
                                const std::string& name) {
  return state["mailboxes"].contains(name) ? state["mailboxes"][name]
                                           : nlohmann::json::array();
}

// How many of the lines the room heard hold `part`.
inline int Heard(const nlohmann::json& state, const std::string& part) {
  int n = 0;
  for (const nlohmann::json& line : state["heard"])
    n += line.get<std::string>().find(part) != std::string::npos;
  return n;
}

}  // namespace quorvex::test
