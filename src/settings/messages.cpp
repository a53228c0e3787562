#include "settings/messages.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "model/text_util.h"
#include "settings/settings.h"

namespace quorvex {

const char* const kDefaultMailMessage =
    "this email has been sent to you at your request in the chat room. i do "
    "not send unsolicited mail. if you feel this mail is being sent in error, "
    "please press reply and in the body of the email say \"remove me\" to be "
    "removed from my list.";

namespace {

struct NumberedList {
  const char* section;
  const char* total_key;
  const char* prefix;  // key = prefix + zero-based index
};

constexpr NumberedList kChat{kChatMsgsSection, "ChatMsgTotal", "Chat Msg"};
constexpr NumberedList kThankYou{kThankYouMsgsSection, "ThankYouMsgTotal",
                                 "ThankYou Msg"};

// The stored count; -1 (the default) means none was ever written.
std::int64_t ReadTotal(const Registry& registry, const NumberedList& list) {
  double v = RoundHalfEven(
      Val(registry.GetSetting(kApp, list.section, list.total_key, "-1")));
  if (v < 0) return v == -1 ? -1 : 0;
  return v > 1e15 ? static_cast<std::int64_t>(1e15)
                  : static_cast<std::int64_t>(v);
}

// The stored numbered keys whose index is below `total`, in index order.
// Reading what is there instead of probing every index up to the count
// gives the same messages without a loop as long as a stored count.
std::vector<std::pair<std::int64_t, std::string>> NumberedKeys(
    const Registry& registry, const NumberedList& list, std::int64_t total) {
  std::vector<std::pair<std::int64_t, std::string>> out;
  Registry::Sections sections = registry.Dump(kApp);
  const std::string prefix = LCase(list.prefix);
  for (const auto& [section, keys] : sections) {
    if (!EqualsIgnoreCase(section, list.section)) continue;
    for (const auto& [key, value] : keys) {
      std::string k = LCase(key);
      if (!StartsWith(k, prefix)) continue;
      std::string digits = k.substr(prefix.size());
      // Only the decimal text that prefix + index writes.
      if (digits.empty() || digits.size() > 15 ||
          (digits.size() > 1 && digits[0] == '0') ||
          !std::all_of(digits.begin(), digits.end(),
                       [](char c) { return c >= '0' && c <= '9'; }))
        continue;
      std::int64_t index = std::stoll(digits);
      if (index < total) out.emplace_back(index, key);
    }
  }
  std::sort(out.begin(), out.end());
  return out;
}

void LoadList(ListBox& box, const Registry& registry,
              const NumberedList& list) {
  box.Clear();
  std::int64_t total = ReadTotal(registry, list);
  if (total == -1) return;
  for (const auto& [index, key] : NumberedKeys(registry, list, total)) {
    std::string value = registry.GetSetting(kApp, list.section, key, "");
    if (!value.empty()) box.Add(std::move(value));
  }
}

// The old numbered keys deleted, then the count and the items: the
// changes of one list, in the order they are made.
void SaveList(const ListBox& box, const Registry& registry,
              const NumberedList& list, std::vector<RegistryChange>* changes) {
  std::int64_t old_total = ReadTotal(registry, list);
  if (old_total != -1)
    for (const auto& [index, key] : NumberedKeys(registry, list, old_total))
      changes->push_back({list.section, key, std::nullopt});
  changes->push_back(
      {list.section, list.total_key, std::to_string(box.Count())});
  for (int i = 0; i < box.Count(); ++i)
    changes->push_back(
        {list.section, list.prefix + std::to_string(i), box.Item(i)});
}

}  // namespace

void LoadMessages(MessageControls& form, const Registry& registry) {
  LoadList(form.lstChat, registry, kChat);
  LoadList(form.lstThankyou, registry, kThankYou);
  form.mail_text().Set(registry.GetSetting(kApp, kMailMsgsSection, "Mail Msg",
                                           kDefaultMailMessage));
}

void SaveMessages(const MessageControls& form, Registry& registry) {
  // One write of the settings for all of them: a save per key rewrote
  // the whole settings file once per message.
  std::vector<RegistryChange> changes;
  SaveList(form.lstChat, registry, kChat, &changes);
  SaveList(form.lstThankyou, registry, kThankYou, &changes);
  changes.push_back({kMailMsgsSection, "Mail Msg", form.mail_text().text});
  registry.Write(kApp, changes);
}

}  // namespace quorvex
