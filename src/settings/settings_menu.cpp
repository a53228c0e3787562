#include "settings/settings_menu.h"

#include <array>
#include <cstdint>
#include <optional>

#include "model/text_util.h"
#include "settings/preset_menus.h"
#include "settings/setting_table.h"
#include "settings/setting_values.h"
#include "settings/settings_store.h"

namespace quorvex {

namespace {

// The main window's topmost state is dropped around the box by the front
// end; here only the question and the answer matter.
std::string Ask(SettingsMenuContext& ctx, const SettingRow& row,
                const std::string& default_text) {
  return ctx.prompter.InputBox(row.prompt, row.title, default_text);
}

void Save(SettingsMenuContext& ctx) {
  SaveSettings(ctx.settings, ctx.registry);
}

// The caption a click handler writes: note the trailing blank.
std::string Edited(const SettingRow& row, const std::string& value) {
  return std::string(row.edited_caption ? row.edited_caption : row.caption) +
         " - [ " + value + " ] ";
}

template <typename T>
T& Field(SettingsMenuContext& ctx, const SettingRow& row) {
  return ctx.settings.*std::get<T Settings::*>(row.field);
}

void TextEntry(SettingsMenuContext& ctx, const SettingRow& row) {
  std::string& value = Field<std::string>(ctx, row);
  std::string answer = Ask(ctx, row, value);
  if (!RemoveSpaces(answer).empty()) value = answer;
  ctx.menus.SetCaption(ShownIn(row), Edited(row, value));
  Save(ctx);
}

// Accepts "on" or "off" in any case, but only "on" itself turns the flag
// on: "On" is taken and stores off.
void FlagEntry(SettingsMenuContext& ctx, const SettingRow& row) {
  bool& value = Field<bool>(ctx, row);
  std::string answer = Ask(ctx, row, OnOff(value));
  std::string folded = LCase(answer);
  if (folded == "on" || folded == "off") value = answer == "on";
  ctx.menus.SetCaption(ShownIn(row), Edited(row, OnOff(value)));
  Save(ctx);
}

// A whole number in [low, high] (the answer's leading number, rounded half
// to even after the range check). An answer that would not fit in 16 bits
// is refused like any other out-of-range answer.
void NumberEntry(SettingsMenuContext& ctx, const SettingRow& row) {
  std::int16_t& value = Field<std::int16_t>(ctx, row);
  double x = Val(Ask(ctx, row, std::to_string(value)));
  if (x >= row.low && x <= row.high) {
    if (auto n = ToInt16(x)) value = *n;
  }
  std::string shown = row.special_value && value == *row.special_value
                          ? std::string(row.special_text)
                          : std::to_string(value);
  ctx.menus.SetCaption(ShownIn(row), Edited(row, shown));
  Save(ctx);
}

// A flag per item of a group: the first enables the others (range finds
// need finds).
void FlagGroupClick(SettingsMenuContext& ctx, const SettingRow& clicked) {
  bool& value = Field<bool>(ctx, clicked);
  std::string answer = Ask(ctx, clicked, OnOff(value));
  std::string folded = LCase(answer);
  if (folded == "on" || folded == "off") value = answer == "on";
  ctx.menus.SetCaption(ShownIn(clicked), Edited(clicked, OnOff(value)));
  Save(ctx);
  bool first_on = Field<bool>(ctx, *FindSettingRow(clicked.entry, 1));
  for (int i = 2; i <= clicked.items; ++i) {
    const SettingRow& row = *FindSettingRow(clicked.entry, i);
    if (first_on) {
      ctx.menus.SetEnabled(ShownIn(row), true);
    } else {
      Field<bool>(ctx, row) = false;
      ctx.menus.SetCaption(ShownIn(row), Edited(row, "off"));
      ctx.menus.SetEnabled(ShownIn(row), false);
    }
  }
  Save(ctx);
}

void SpeedClick(SettingsMenuContext& ctx, const SettingRow& row, int index) {
  float& value = Field<float>(ctx, row);
  const std::string custom = MenuModel::ItemName(row.entry, kSpeedCustom);
  if (index >= 1 && index <= static_cast<int>(kSpeedPresets.size())) {
    value = kSpeedPresets[index - 1];
    ctx.menus.SetCaption(custom, "custom");
  } else if (index == kSpeedCustom) {
    double x = Val(Ask(ctx, row, SingleText(value)));
    if (!(x >= row.low && x <= row.high)) {
      Save(ctx);
      return;
    }
    value = static_cast<float>(x);
    ctx.menus.SetCaption(custom, SpeedCustomCaption(value));
  } else {
    return;
  }
  CheckOnly(ctx.menus, row.entry, row.items, index);
  ctx.menus.SetCaption(ShownIn(row), std::string(row.caption) + " - [ " +
                                         SingleText(value) + " ]");
  Save(ctx);
}

void MailMethodClick(SettingsMenuContext& ctx, const SettingRow& row,
                     int index) {
  if (index != 1 && index != 2) return;
  bool& value = Field<bool>(ctx, row);
  value = index == 2;
  CheckOnly(ctx.menus, row.entry, row.items, index);
  ctx.menus.SetCaption(ShownIn(row), MailMethodCaption(row, value));
  Save(ctx);
}

void ReplyMethodClick(SettingsMenuContext& ctx, const SettingRow& row,
                      int index) {
  if (index != 1 && index != 2) return;
  Field<bool>(ctx, row) = index == 1;
  CheckOnly(ctx.menus, row.entry, row.items, index);
  Save(ctx);
}

constexpr std::array<std::int16_t, 4> kEverySecs = {10, 30, 45, 60};

std::string Bracketed(const char* name, std::int16_t value) {
  return std::string(name) + " - [ " + std::to_string(value) + " ]";
}

void ListSendClick(SettingsMenuContext& ctx, const SettingRow& row, int index) {
  std::int16_t& value = Field<std::int16_t>(ctx, row);
  const std::string parent = ShownIn(row);
  const std::string custom = MenuModel::ItemName(row.entry, kLSendCustom);
  if (index >= 1 && index <= 4) {
    value = kEverySecs[index - 1];
    ctx.menus.SetCaption(custom, "custom");
    // "10]" without the blank, as it always read.
    ctx.menus.SetCaption(parent, index == 1
                                     ? std::string(row.caption) + " - [ 10]"
                                     : Bracketed(row.caption, value));
  } else if (index == kLSendCustom) {
    double x = Val(Ask(ctx, row, std::to_string(value)));
    auto n = x > row.low ? ToInt16(x) : std::nullopt;
    if (!n) {
      Save(ctx);
      return;
    }
    value = *n;
    ctx.menus.SetCaption(custom, Bracketed("custom", value));
    ctx.menus.SetCaption(parent, Bracketed(row.caption, value));
  } else if (index == kLSendUponRequest) {
    value = 0;
    ctx.menus.SetCaption(custom, "custom");
    ctx.menus.SetCaption(parent, std::string(row.caption) + " - [ O R ]");
  } else if (index == kLSendIfNoPending) {
    bool& flag = ctx.settings.ListIfNoPending;
    flag = !flag;
    ctx.menus.SetChecked(MenuModel::ItemName(row.entry, kLSendIfNoPending),
                         flag);
    if (flag)
      ctx.menus.SetCaption(parent, std::string(row.caption) + " - [ N P ]");
    Save(ctx);
    return;
  } else {
    return;
  }
  // The session flag's check mark goes too (the flag itself stays).
  CheckOnly(ctx.menus, row.entry, row.items, index);
  Save(ctx);
}

void BotScrollClick(SettingsMenuContext& ctx, const SettingRow& row,
                    int index) {
  std::int16_t& value = Field<std::int16_t>(ctx, row);
  if (index == kBScrollNow) {
    // Not a setting: the advertisement goes out at its next check.
    if (ctx.ServerOn && *ctx.ServerOn && ctx.ScrollSeconds)
      *ctx.ScrollSeconds = value + 10;
    return;
  }
  if (index >= 3 && index <= 6) {
    value = kEverySecs[index - 3];
  } else if (index == kBScrollCustom) {
    double x = Val(Ask(ctx, row, std::to_string(value)));
    if (!(x >= row.low && x <= row.high)) {
      Save(ctx);
      return;
    }
    value = *ToInt16(x);
    ctx.menus.SetCaption(MenuModel::ItemName(row.entry, kBScrollCustom),
                         Bracketed("custom", value));
  } else {
    return;
  }
  CheckOnly(ctx.menus, row.entry, row.items, index);
  ctx.menus.SetCaption(ShownIn(row), Bracketed(row.caption, value));
  Save(ctx);
}

// Runs the click on `row` (item `index` of its group, 0 for an entry).
void RunClick(SettingsMenuContext& ctx, const SettingRow& row, int index) {
  switch (row.input) {
    case SettingInput::kText:
      return TextEntry(ctx, row);
    case SettingInput::kFlag:
      return row.item > 0 ? FlagGroupClick(ctx, row) : FlagEntry(ctx, row);
    case SettingInput::kNumber:
      return NumberEntry(ctx, row);
    case SettingInput::kSpeed:
      return SpeedClick(ctx, row, index);
    case SettingInput::kListSend:
      return ListSendClick(ctx, row, index);
    case SettingInput::kBotScroll:
      return BotScrollClick(ctx, row, index);
    case SettingInput::kMailMethod:
      return MailMethodClick(ctx, row, index);
    case SettingInput::kReplyMethod:
      return ReplyMethodClick(ctx, row, index);
    case SettingInput::kCount:
      return;
  }
}

}  // namespace

const std::vector<SettingsMenuHandler>& SettingsMenuHandlers() {
  static const std::vector<SettingsMenuHandler> handlers = [] {
    std::vector<SettingsMenuHandler> list;
    for (const SettingRow& row : SettingRows()) {
      if (!row.entry) continue;
      if (!list.empty() && std::string(list.back().name) == row.entry)
        continue;  // the next item of a group of flags
      list.push_back({row.entry, row.items});
    }
    return list;
  }();
  return handlers;
}

bool ClickSettingsMenu(SettingsMenuContext& ctx, const std::string& name,
                       int index) {
  if (const SettingRow* row = FindSettingRow(name); row && row->items == 0) {
    if (!ctx.menus.Enabled(name)) return false;
    RunClick(ctx, *row, 0);
    return true;
  }
  // "mnuMSpeed(5)" names the group and the item at once.
  std::string group = name;
  if (auto open = name.find('('); open != std::string::npos &&
                                  name.size() > open + 2 &&
                                  name.back() == ')') {
    std::string digits = name.substr(open + 1, name.size() - open - 2);
    if (digits.size() > 2 ||
        digits.find_first_not_of("0123456789") != std::string::npos)
      return false;
    group = name.substr(0, open);
    index = std::stoi(digits);
  }
  const SettingRow* row = FindSettingRow(group, index);
  if (!row || row->items == 0 || index < 1 || index > row->items ||
      IsPresetSeparator(group, index))
    return false;
  if (!ctx.menus.Enabled(MenuModel::ItemName(group, index))) return false;
  RunClick(ctx, *row, index);
  return true;
}

}  // namespace quorvex
