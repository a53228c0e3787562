#include "settings/settings_store.h"

#include <cstdint>
#include <optional>

#include "model/text_util.h"
#include "settings/preset_menus.h"
#include "settings/setting_values.h"

namespace quorvex {

namespace {

class Reader {
 public:
  explicit Reader(const Registry& registry) : registry_(registry) {}

  std::optional<std::string> Raw(const char* key) const {
    return registry_.Get(kApp, kSettingsSection, key);
  }
  std::string Text(const char* key, const std::string& def) const {
    return Raw(key).value_or(def);
  }
  // A stored text the old runtime would have choked on (not a flag, or a
  // number too big for its field) gives the default.
  bool Flag(const char* key, bool def) const {
    auto raw = Raw(key);
    if (!raw) return def;
    return ParseFlag(*raw).value_or(def);
  }
  std::int16_t Int16(const char* key, std::int16_t def) const {
    auto raw = Raw(key);
    if (!raw) return def;
    return ParseInt16(*raw).value_or(def);
  }
  std::int32_t Int32(const char* key, std::int32_t def) const {
    auto raw = Raw(key);
    if (!raw) return def;
    return ParseInt32(*raw).value_or(def);
  }
  float Single(const char* key, float def) const {
    auto raw = Raw(key);
    if (!raw) return def;
    return ParseSingle(*raw).value_or(def);
  }

 private:
  const Registry& registry_;
};

std::string Loaded(const std::string& name, const std::string& value) {
  return name + " - [ " + value + " ]";
}

void LoadSpeed(Settings& s, MenuModel& menus, const Reader& in, const char* key,
               const SpeedMenu& menu) {
  float& value = s.*menu.value;
  value = in.Single(key, kSpeedPresets[0]);
  menus.SetCaption(menu.parent, Loaded("speed", SingleText(value)));
  int item = SpeedItemFor(value);
  if (item == kSpeedCustom)
    menus.SetCaption(MenuModel::ItemName(menu.group, kSpeedCustom),
                     SpeedCustomCaption(value));
  CheckOnly(menus, menu.group, kSpeedItems, item);
}

}  // namespace

void LoadSettings(Settings& s, MenuModel& menus, Registry& registry,
                  Label& lblSent, const std::string& signed_on_sn) {
  Reader in(registry);

  // The format marker. A value too big for its field reads as missing.
  std::int16_t format = in.Int16("Loaded", 0);
  if (format < kSettingsFormat) {
    if (format != 0) registry.DeleteApp(kApp);
    registry.Save(kApp, kSettingsSection, "Loaded",
                  std::to_string(kSettingsFormat));
  }

  s.Handle = in.Text("Handle", signed_on_sn);
  menus.SetCaption("mnuHandle", Loaded("handle", LCase(s.Handle)));
  s.LAscii = in.Text("LAscii", Settings{}.LAscii);
  menus.SetCaption("mnuLAscii", Loaded("left ascii", LCase(s.LAscii)));
  s.RAscii = in.Text("RAscii", Settings{}.RAscii);
  menus.SetCaption("mnuRAscii", Loaded("right ascii", LCase(s.RAscii)));
  s.ChatFont = in.Text("ChatFont", "tahoma");
  menus.SetCaption("mnuChatFont", Loaded("chat font", LCase(s.ChatFont)));

  s.MailNotify = in.Flag("MailNotify", true);
  menus.SetCaption("mnuMailNotify", Loaded("notify", OnOff(s.MailNotify)));
  s.ListSize = in.Int16("ListSize", 250);
  menus.SetCaption("mnuMPList",
                   Loaded("list size", std::to_string(s.ListSize)));
  s.ListNotify = in.Flag("ListNotify", true);
  menus.SetCaption("mnuListNotify", Loaded("notify", OnOff(s.ListNotify)));
  s.FindsEnable = in.Flag("FindsEnable", true);
  menus.SetCaption("mnuFEnable(1)", Loaded("enable x", OnOff(s.FindsEnable)));
  s.FindsXYEnable = in.Flag("FindsXYEnable", true);
  menus.SetCaption("mnuFEnable(2)",
                   Loaded("enable x&&y", OnOff(s.FindsXYEnable)));
  s.MailResize = in.Flag("MailResize", true);
  menus.SetCaption("mnuMailResize", Loaded("resize", OnOff(s.MailResize)));
  s.FindMax = in.Int16("FindMax", 20);
  menus.SetCaption("mnuFMax", Loaded("max", std::to_string(s.FindMax)));
  s.FindMin = in.Int16("FindMin", 2);
  menus.SetCaption("mnuFMininum", Loaded("mininum", std::to_string(s.FindMin)));
  s.BlockMax = in.Int16("BlockMax", 100);
  menus.SetCaption("mnuBMax", Loaded("max", std::to_string(s.BlockMax)));
  s.BlocksXYEnable = in.Flag("BlocksXYEnable", true);
  menus.SetCaption("mnuBEnableXY",
                   Loaded("enable x-y", OnOff(s.BlocksXYEnable)));
  s.ScrollStatus = in.Flag("ScrollStatus", true);
  menus.SetCaption("mnuSStatus", Loaded("status", OnOff(s.ScrollStatus)));
  s.ScrollThankyou = in.Flag("ScrollThankyou", true);
  menus.SetCaption("mnuThankyou", Loaded("thankyou", OnOff(s.ScrollThankyou)));
  s.AOLRestart = in.Int16("AOLRestart", 1000);
  menus.SetCaption("mnuAOLRes", Loaded("aol", std::to_string(s.AOLRestart)));
  s.CPURestart = in.Int16("CPURestart", 2000);
  menus.SetCaption("mnuCPURes", Loaded("cpu", std::to_string(s.CPURestart)));
  s.SentRestart = in.Int16("SentRestart", 750);
  menus.SetCaption("mnuSentRes",
                   Loaded("del sent", std::to_string(s.SentRestart)));
  s.TotalSent = in.Int32("TotalSent", 0);
  lblSent.Set("sent: " + std::to_string(s.TotalSent));

  LoadSpeed(s, menus, in, "MailSpeed", kSpeedMenus[0]);

  s.ListAdvertise = in.Int16("ListAdvertise", 30);
  menus.SetCaption("mnuListSend",
                   Loaded("send", std::to_string(s.ListAdvertise)));
  int send_item = ListSendItemFor(s.ListAdvertise);
  if (send_item == kLSendCustom)
    menus.SetCaption(MenuModel::ItemName("mnuLSend", kLSendCustom),
                     Loaded("custom", std::to_string(s.ListAdvertise)));
  CheckOnly(menus, "mnuLSend", kLSendItems, send_item);
  menus.SetChecked(MenuModel::ItemName("mnuLSend", kLSendIfNoPending),
                   s.ListIfNoPending);

  LoadSpeed(s, menus, in, "ListSpeed", kSpeedMenus[1]);

  s.MailMethod = in.Flag("MailMethod", true);
  menus.SetCaption("mnuMailMethod", s.MailMethod ? "method - [ sendlater ]"
                                                 : "method - [ regular ]");
  CheckOnly(menus, "mnuMMethod", 2, s.MailMethod ? 2 : 1);

  LoadSpeed(s, menus, in, "FindSpeed", kSpeedMenus[2]);

  s.BotScroll = in.Int16("BotScroll", 30);
  menus.SetCaption("mnuBotScroll",
                   Loaded("scroll", std::to_string(s.BotScroll)));
  CheckOnly(menus, "mnuBScroll", kBScrollItems, BotScrollItemFor(s.BotScroll));

  s.ScrollMethod = in.Flag("ScrollMethod", true);
  CheckOnly(menus, "mnuScrollMethod", 2, s.ScrollMethod ? 1 : 2);
}

void SaveSettings(const Settings& s, Registry& registry) {
  auto put = [&registry](const char* key, const std::string& value) {
    registry.Save(kApp, kSettingsSection, key, value);
  };
  put("Handle", s.Handle);
  put("LAscii", s.LAscii);
  put("RAscii", s.RAscii);
  put("ChatFont", s.ChatFont);
  put("MailNotify", FlagText(s.MailNotify));
  put("MailResize", FlagText(s.MailResize));
  put("MailSpeed", SingleText(s.MailSpeed));
  put("MailMethod", FlagText(s.MailMethod));
  put("ListNotify", FlagText(s.ListNotify));
  put("ListSize", std::to_string(s.ListSize));
  put("ListSpeed", SingleText(s.ListSpeed));
  put("ListAdvertise", std::to_string(s.ListAdvertise));
  put("FindsEnable", FlagText(s.FindsEnable));
  put("FindsXYEnable", FlagText(s.FindsXYEnable));
  put("FindMax", std::to_string(s.FindMax));
  put("FindMin", std::to_string(s.FindMin));
  put("FindSpeed", SingleText(s.FindSpeed));
  put("BlocksXYEnable", FlagText(s.BlocksXYEnable));
  put("BlockMax", std::to_string(s.BlockMax));
  put("BotScroll", std::to_string(s.BotScroll));
  put("ScrollStatus", FlagText(s.ScrollStatus));
  put("ScrollThankyou", FlagText(s.ScrollThankyou));
  put("StatusMethod", FlagText(s.ScrollMethod));
  put("AOLRestart", std::to_string(s.AOLRestart));
  put("CPURestart", std::to_string(s.CPURestart));
  put("SentRestart", std::to_string(s.SentRestart));
  put("Version", kVersion);
}

}  // namespace quorvex
