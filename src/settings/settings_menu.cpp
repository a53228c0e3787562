#include "settings/settings_menu.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include "model/text_util.h"
#include "settings/preset_menus.h"
#include "settings/setting_values.h"
#include "settings/settings_store.h"

namespace quorvex {

namespace {

// The main window's topmost state is dropped around the box by the front
// end; here only the question and the answer matter.
std::string Ask(SettingsMenuContext& ctx, const std::string& title,
                const std::string& prompt, const std::string& default_text) {
  return ctx.prompter.InputBox(prompt, title, default_text);
}

void Save(SettingsMenuContext& ctx) {
  SaveSettings(ctx.settings, ctx.registry);
}

// The caption a click handler writes: note the trailing blank.
std::string Edited(const std::string& name, const std::string& value) {
  return name + " - [ " + value + " ] ";
}

void TextEntry(SettingsMenuContext& ctx, std::string Settings::*field,
               const char* entry, const char* name, const char* title,
               const char* prompt) {
  std::string& value = ctx.settings.*field;
  std::string answer = Ask(ctx, title, prompt, value);
  if (!RemoveSpaces(answer).empty()) value = answer;
  ctx.menus.SetCaption(entry, Edited(name, value));
  Save(ctx);
}

// Accepts "on" or "off" in any case, but only "on" itself turns the flag
// on: "On" is taken and stores off.
void AskFlag(SettingsMenuContext& ctx, bool& value, const char* title,
             const char* prompt) {
  std::string answer = Ask(ctx, title, prompt, OnOff(value));
  std::string folded = LCase(answer);
  if (folded == "on" || folded == "off") value = answer == "on";
}

void FlagEntry(SettingsMenuContext& ctx, bool Settings::*field,
               const char* entry, const char* name, const char* title,
               const char* prompt) {
  bool& value = ctx.settings.*field;
  AskFlag(ctx, value, title, prompt);
  ctx.menus.SetCaption(entry, Edited(name, OnOff(value)));
  Save(ctx);
}

// A whole number in [low, high] (the answer's leading number, rounded half
// to even after the range check). An answer that would not fit in 16 bits
// is refused like any other out-of-range answer.
void NumberEntry(SettingsMenuContext& ctx, std::int16_t Settings::*field,
                 const char* entry, const char* name, const char* title,
                 const char* prompt, double low, std::optional<double> high,
                 std::optional<std::int16_t> shown_as_value = std::nullopt,
                 const char* shown_as_text = nullptr) {
  std::int16_t& value = ctx.settings.*field;
  double x = Val(Ask(ctx, title, prompt, std::to_string(value)));
  if (x >= low && (!high || x <= *high)) {
    if (auto n = ToInt16(x)) value = *n;
  }
  std::string shown = shown_as_value && value == *shown_as_value
                          ? std::string(shown_as_text)
                          : std::to_string(value);
  ctx.menus.SetCaption(entry, Edited(name, shown));
  Save(ctx);
}

void SpeedClick(SettingsMenuContext& ctx, const SpeedMenu& menu, int index) {
  float& value = ctx.settings.*menu.value;
  const std::string custom = MenuModel::ItemName(menu.group, kSpeedCustom);
  if (index >= 1 && index <= static_cast<int>(kSpeedPresets.size())) {
    value = kSpeedPresets[index - 1];
    ctx.menus.SetCaption(custom, "custom");
  } else if (index == kSpeedCustom) {
    double x = Val(Ask(ctx, menu.title, "enter a number between 0 and 1",
                       SingleText(value)));
    if (!(x >= 0 && x <= 1)) {
      Save(ctx);
      return;
    }
    value = static_cast<float>(x);
    ctx.menus.SetCaption(custom, SpeedCustomCaption(value));
  } else {
    return;
  }
  CheckOnly(ctx.menus, menu.group, kSpeedItems, index);
  ctx.menus.SetCaption(menu.parent, "speed - [ " + SingleText(value) + " ]");
  Save(ctx);
}

constexpr std::array<std::int16_t, 4> kEverySecs = {10, 30, 45, 60};

}  // namespace

void mnuHandle_Click(SettingsMenuContext& ctx) {
  TextEntry(ctx, &Settings::Handle, "mnuHandle", "handle", "handle",
            "enter your handle");
}

void mnuLAscii_Click(SettingsMenuContext& ctx) {
  TextEntry(ctx, &Settings::LAscii, "mnuLAscii", "left ascii", "left ascii",
            "enter the left ascii");
}

void mnuRAscii_Click(SettingsMenuContext& ctx) {
  TextEntry(ctx, &Settings::RAscii, "mnuRAscii", "right ascii", "right ascii",
            "enter the right ascii");
}

void mnuChatFont_Click(SettingsMenuContext& ctx) {
  TextEntry(ctx, &Settings::ChatFont, "mnuChatFont", "chat font", "font name",
            "enter the font name");
}

void mnuMailNotify_Click(SettingsMenuContext& ctx) {
  FlagEntry(ctx, &Settings::MailNotify, "mnuMailNotify", "notify",
            "mail notify", "enter on or off");
}

// Titled "mail notify" and captioned "notify - [": the next load puts the
// "resize" caption back. Kept as the program always behaved.
void mnuMailResize_Click(SettingsMenuContext& ctx) {
  FlagEntry(ctx, &Settings::MailResize, "mnuMailResize", "notify",
            "mail notify", "enter on or off");
}

void mnuMSpeed_Click(SettingsMenuContext& ctx, int Index) {
  SpeedClick(ctx, kSpeedMenus[0], Index);
}

void mnuMMethod_Click(SettingsMenuContext& ctx, int Index) {
  if (Index != 1 && Index != 2) return;
  ctx.settings.MailMethod = Index == 2;
  CheckOnly(ctx.menus, "mnuMMethod", 2, Index);
  ctx.menus.SetCaption("mnuMailMethod", ctx.settings.MailMethod
                                            ? "method - [ sendlater ]"
                                            : "method - [ regular ]");
  Save(ctx);
}

void mnuListNotify_Click(SettingsMenuContext& ctx) {
  FlagEntry(ctx, &Settings::ListNotify, "mnuListNotify", "notify",
            "list notify", "enter on(after each) or off(after all)");
}

void mnuMPList_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::ListSize, "mnuMPList", "list size", "list size",
              "enter a number between 50 - 500", 50, 500);
}

void mnuLSpeed_Click(SettingsMenuContext& ctx, int Index) {
  SpeedClick(ctx, kSpeedMenus[1], Index);
}

void mnuLSend_Click(SettingsMenuContext& ctx, int Index) {
  std::int16_t& value = ctx.settings.ListAdvertise;
  const std::string custom = MenuModel::ItemName("mnuLSend", kLSendCustom);
  if (Index >= 1 && Index <= 4) {
    value = kEverySecs[Index - 1];
    ctx.menus.SetCaption(custom, "custom");
    // "10]" without the blank, as it always read.
    ctx.menus.SetCaption(
        "mnuListSend", Index == 1 ? "send - [ 10]"
                                  : "send - [ " + std::to_string(value) + " ]");
  } else if (Index == kLSendCustom) {
    double x = Val(
        Ask(ctx, "list send", "enter a number above 1", std::to_string(value)));
    auto n = x > 1 ? ToInt16(x) : std::nullopt;
    if (!n) {
      Save(ctx);
      return;
    }
    value = *n;
    ctx.menus.SetCaption(custom, "custom - [ " + std::to_string(value) + " ]");
    ctx.menus.SetCaption("mnuListSend",
                         "send - [ " + std::to_string(value) + " ]");
  } else if (Index == kLSendUponRequest) {
    value = 0;
    ctx.menus.SetCaption(custom, "custom");
    ctx.menus.SetCaption("mnuListSend", "send - [ O R ]");
  } else if (Index == kLSendIfNoPending) {
    bool& flag = ctx.settings.ListIfNoPending;
    flag = !flag;
    ctx.menus.SetChecked(MenuModel::ItemName("mnuLSend", kLSendIfNoPending),
                         flag);
    if (flag) ctx.menus.SetCaption("mnuListSend", "send - [ N P ]");
    Save(ctx);
    return;
  } else {
    return;
  }
  // The session flag's check mark goes too (the flag itself stays).
  CheckOnly(ctx.menus, "mnuLSend", kLSendItems, Index);
  Save(ctx);
}

void mnuFEnable_Click(SettingsMenuContext& ctx, int Index) {
  if (Index != 1 && Index != 2) return;
  Settings& s = ctx.settings;
  const std::string xy = MenuModel::ItemName("mnuFEnable", 2);
  if (Index == 1) {
    AskFlag(ctx, s.FindsEnable, "find enable", "enter on or off");
    ctx.menus.SetCaption("mnuFEnable(1)",
                         Edited("enable x", OnOff(s.FindsEnable)));
  } else {
    AskFlag(ctx, s.FindsXYEnable, "find enable", "enter on or off");
    ctx.menus.SetCaption(xy, Edited("enable x&&y", OnOff(s.FindsXYEnable)));
  }
  Save(ctx);
  // Range finds need finds.
  if (s.FindsEnable) {
    ctx.menus.SetEnabled(xy, true);
  } else {
    s.FindsXYEnable = false;
    ctx.menus.SetCaption(xy, "enable x&&y - [ off ] ");
    ctx.menus.SetEnabled(xy, false);
  }
  Save(ctx);
}

void mnuFMax_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::FindMax, "mnuFMax", "max", "max find characters",
              "enter a number between 2 and 30", 2, 30);
}

void mnuFMininum_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::FindMin, "mnuFMininum", "mininum",
              "mininum find characters", "enter a number between 1 and 30", 1,
              30);
}

void mnuFSpeed_Click(SettingsMenuContext& ctx, int Index) {
  SpeedClick(ctx, kSpeedMenus[2], Index);
}

void mnuBEnableXY_Click(SettingsMenuContext& ctx) {
  FlagEntry(ctx, &Settings::BlocksXYEnable, "mnuBEnableXY", "enable x-y",
            "send xy enable", "enter on or off");
}

// Cancel or a non-numeric answer reads as 0: no limit.
void mnuBMax_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::BlockMax, "mnuBMax", "max", "max block",
              "enter a number(0 for no limit)", 0, std::nullopt,
              std::int16_t{0}, "N L");
}

void mnuBScroll_Click(SettingsMenuContext& ctx, int Index) {
  std::int16_t& value = ctx.settings.BotScroll;
  if (Index == kBScrollNow) {
    // Not a setting: the advertisement goes out at its next check.
    if (ctx.ServerOn && *ctx.ServerOn && ctx.ScrollSeconds)
      *ctx.ScrollSeconds = value + 10;
    return;
  }
  if (Index >= 3 && Index <= 6) {
    value = kEverySecs[Index - 3];
  } else if (Index == kBScrollCustom) {
    // 0 is taken although the prompt says 1.
    double x = Val(Ask(ctx, "bot scroll", "enter a number between 1 and 300",
                       std::to_string(value)));
    if (!(x >= 0 && x <= 300)) {
      Save(ctx);
      return;
    }
    value = *ToInt16(x);
    ctx.menus.SetCaption(MenuModel::ItemName("mnuBScroll", kBScrollCustom),
                         "custom - [ " + std::to_string(value) + " ]");
  } else {
    return;
  }
  CheckOnly(ctx.menus, "mnuBScroll", kBScrollItems, Index);
  ctx.menus.SetCaption("mnuBotScroll",
                       "scroll - [ " + std::to_string(value) + " ]");
  Save(ctx);
}

void mnuSStatus_Click(SettingsMenuContext& ctx) {
  FlagEntry(ctx, &Settings::ScrollStatus, "mnuSStatus", "status",
            "scroll status", "enter on or off");
}

void mnuThankyou_Click(SettingsMenuContext& ctx) {
  FlagEntry(ctx, &Settings::ScrollThankyou, "mnuThankyou", "thankyou",
            "scroll thankyou", "enter on or off");
}

void mnuScrollMethod_Click(SettingsMenuContext& ctx, int Index) {
  if (Index != 1 && Index != 2) return;
  ctx.settings.ScrollMethod = Index == 1;
  CheckOnly(ctx.menus, "mnuScrollMethod", 2, Index);
  Save(ctx);
}

// The restart counts: 1 is off; Cancel (read as 0) is refused.
void mnuAOLRes_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::AOLRestart, "mnuAOLRes", "aol", "aol restart",
              "enter a number(1 for off)", 1, std::nullopt, std::int16_t{1},
              "off");
}

void mnuCPURes_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::CPURestart, "mnuCPURes", "cpu", "cpu restart",
              "enter a number(1 for off)", 1, std::nullopt, std::int16_t{1},
              "off");
}

void mnuSentRes_Click(SettingsMenuContext& ctx) {
  NumberEntry(ctx, &Settings::SentRestart, "mnuSentRes", "del sent",
              "del sent restart", "enter a number(1 for off)", 1, std::nullopt,
              std::int16_t{1}, "off");
}

const std::vector<SettingsMenuHandler>& SettingsMenuHandlers() {
  static const std::vector<SettingsMenuHandler> handlers = {
      {"mnuHandle", 0, mnuHandle_Click, nullptr},
      {"mnuLAscii", 0, mnuLAscii_Click, nullptr},
      {"mnuRAscii", 0, mnuRAscii_Click, nullptr},
      {"mnuChatFont", 0, mnuChatFont_Click, nullptr},
      {"mnuMailNotify", 0, mnuMailNotify_Click, nullptr},
      {"mnuMailResize", 0, mnuMailResize_Click, nullptr},
      {"mnuMSpeed", kSpeedItems, nullptr, mnuMSpeed_Click},
      {"mnuMMethod", 2, nullptr, mnuMMethod_Click},
      {"mnuListNotify", 0, mnuListNotify_Click, nullptr},
      {"mnuMPList", 0, mnuMPList_Click, nullptr},
      {"mnuLSpeed", kSpeedItems, nullptr, mnuLSpeed_Click},
      {"mnuLSend", kLSendItems, nullptr, mnuLSend_Click},
      {"mnuFEnable", 2, nullptr, mnuFEnable_Click},
      {"mnuFMax", 0, mnuFMax_Click, nullptr},
      {"mnuFMininum", 0, mnuFMininum_Click, nullptr},
      {"mnuFSpeed", kSpeedItems, nullptr, mnuFSpeed_Click},
      {"mnuBEnableXY", 0, mnuBEnableXY_Click, nullptr},
      {"mnuBMax", 0, mnuBMax_Click, nullptr},
      {"mnuBScroll", kBScrollItems, nullptr, mnuBScroll_Click},
      {"mnuSStatus", 0, mnuSStatus_Click, nullptr},
      {"mnuThankyou", 0, mnuThankyou_Click, nullptr},
      {"mnuScrollMethod", 2, nullptr, mnuScrollMethod_Click},
      {"mnuAOLRes", 0, mnuAOLRes_Click, nullptr},
      {"mnuCPURes", 0, mnuCPURes_Click, nullptr},
      {"mnuSentRes", 0, mnuSentRes_Click, nullptr},
  };
  return handlers;
}

bool ClickSettingsMenu(SettingsMenuContext& ctx, const std::string& name,
                       int index) {
  const auto& handlers = SettingsMenuHandlers();
  auto find = [&handlers](const std::string& n) -> const SettingsMenuHandler* {
    for (const SettingsMenuHandler& h : handlers)
      if (n == h.name) return &h;
    return nullptr;
  };
  if (const SettingsMenuHandler* h = find(name); h && h->entry) {
    if (!ctx.menus.Enabled(name)) return false;
    h->entry(ctx);
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
  const SettingsMenuHandler* g = find(group);
  if (!g || !g->group || index < 1 || index > g->items ||
      IsPresetSeparator(group, index))
    return false;
  if (!ctx.menus.Enabled(MenuModel::ItemName(group, index))) return false;
  g->group(ctx, index);
  return true;
}

}  // namespace quorvex
