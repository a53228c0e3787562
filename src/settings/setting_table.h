// Every stored setting declared once: its registry key, its field of the
// record (whose initial value is the default), the menu entry that edits
// it, its caption at load and after an edit, the input box and the range
// an answer must fall in. Loading, saving, the captions and the click
// dispatch of the settings menu all read this table.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "settings/settings.h"

namespace quorvex {

// How a setting is edited and shown.
enum class SettingInput {
  kText,         // an input box; blank answers refused
  kFlag,         // an input box taking "on" or "off"
  kNumber,       // an input box taking a whole number in a range
  kCount,        // the sent counter: shown in lblSent, never in a menu
  kSpeed,        // a speed preset group with a custom item
  kListSend,     // the list-send preset group
  kBotScroll,    // the bot-scroll preset group
  kMailMethod,   // regular / send later
  kReplyMethod,  // chat / email
};

using SettingField = std::variant<std::string Settings::*, bool Settings::*,
                                  std::int16_t Settings::*,
                                  std::int32_t Settings::*, float Settings::*>;

inline constexpr double kNoLimit = std::numeric_limits<double>::infinity();

struct SettingRow {
  const char* key;       // read from this registry key
  const char* saved_as;  // written under this key; nullptr: not written here
  SettingInput input;
  SettingField field;
  // Place in the load order (the loader reads the keys in this order).
  int load_rank;
  // The entry clicked, or the preset group with `item` (1-based) or with
  // `items` items (separators included) when the whole group is one
  // setting.
  const char* entry = nullptr;
  int item = 0;
  int items = 0;
  // The entry whose caption shows the value, when not the clicked one.
  const char* shown_in = nullptr;
  const char* caption = nullptr;         // "name" of "name - [ v ]" at load
  const char* edited_caption = nullptr;  // after an edit; nullptr: same
  const char* title = nullptr;           // of the input box
  const char* prompt = nullptr;
  double low = 0;  // accepted answers (numbers)
  double high = kNoLimit;
  // After an edit this value shows as `special_text` ("off", "N L").
  std::optional<std::int16_t> special_value{};
  const char* special_text = nullptr;
  // The default is the screen name signed on, not the record's.
  bool defaults_to_screen_name = false;
};

// The rows in save order (the order of the settings menu).
std::span<const SettingRow> SettingRows();

// The row of the entry or preset group `entry` (for a group of one flag
// per item, the row of `item`); nullptr when none.
const SettingRow* FindSettingRow(const std::string& entry, int item = 0);

// The entry whose caption shows the row's value (an item name for a flag
// of a group, such as "mnuFEnable(1)").
std::string ShownIn(const SettingRow& row);

// The mail method's caption: "method - [ sendlater ]" or "... regular ]".
std::string MailMethodCaption(const SettingRow& row, bool send_later);

}  // namespace quorvex
