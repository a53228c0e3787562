#include "settings/settings_store.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <variant>
#include <vector>

#include "model/text_util.h"
#include "settings/preset_menus.h"
#include "settings/setting_table.h"
#include "settings/setting_values.h"

namespace quorvex {

namespace {

class Reader {
 public:
  explicit Reader(const Registry& registry) : registry_(registry) {}

  std::optional<std::string> Raw(const char* key) const {
    return registry_.Get(kApp, kSettingsSection, key);
  }
  // A stored text the old runtime would have choked on (not a flag, or a
  // number too big for its field) gives the default.
  template <typename T, typename Parse>
  T Parsed(const char* key, T def, Parse parse) const {
    auto raw = Raw(key);
    if (!raw) return def;
    return parse(*raw).value_or(def);
  }

 private:
  const Registry& registry_;
};

std::string Loaded(const std::string& name, const std::string& value) {
  return name + " - [ " + value + " ]";
}

// Reads the row's value into the record; the default is the record's own
// initial value (or the screen name for the handle).
void ReadValue(const SettingRow& row, Settings& s, const Reader& in,
               const std::string& signed_on_sn) {
  static const Settings defaults;
  std::visit(
      [&](auto field) {
        using T = std::remove_reference_t<decltype(s.*field)>;
        const T& def = defaults.*field;
        if constexpr (std::is_same_v<T, std::string>) {
          s.*field = in.Raw(row.key).value_or(
              row.defaults_to_screen_name ? signed_on_sn : def);
        } else if constexpr (std::is_same_v<T, bool>) {
          s.*field = in.Parsed(row.key, def, ParseFlag);
        } else if constexpr (std::is_same_v<T, std::int16_t>) {
          s.*field = in.Parsed(row.key, def, ParseInt16);
        } else if constexpr (std::is_same_v<T, std::int32_t>) {
          s.*field = in.Parsed(row.key, def, ParseInt32);
        } else {
          s.*field = in.Parsed(row.key, def, ParseSingle);
        }
      },
      row.field);
}

// Writes the row's captions and check marks in their load form.
void ShowLoaded(const SettingRow& row, Settings& s, MenuModel& menus,
                Label& lblSent) {
  switch (row.input) {
    case SettingInput::kText:
      menus.SetCaption(
          ShownIn(row),
          Loaded(row.caption,
                 LCase(s.*std::get<std::string Settings::*>(row.field))));
      break;
    case SettingInput::kFlag:
      menus.SetCaption(
          ShownIn(row),
          Loaded(row.caption, OnOff(s.*std::get<bool Settings::*>(row.field))));
      break;
    case SettingInput::kNumber:
      menus.SetCaption(
          ShownIn(row),
          Loaded(row.caption,
                 std::to_string(
                     s.*std::get<std::int16_t Settings::*>(row.field))));
      break;
    case SettingInput::kCount:
      lblSent.Set(
          row.caption +
          std::to_string(s.*std::get<std::int32_t Settings::*>(row.field)));
      break;
    case SettingInput::kSpeed: {
      float value = s.*std::get<float Settings::*>(row.field);
      menus.SetCaption(ShownIn(row), Loaded(row.caption, SingleText(value)));
      int item = SpeedItemFor(value);
      if (item == kSpeedCustom)
        menus.SetCaption(MenuModel::ItemName(row.entry, kSpeedCustom),
                         SpeedCustomCaption(value));
      CheckOnly(menus, row.entry, row.items, item);
      break;
    }
    case SettingInput::kListSend: {
      std::int16_t value = s.*std::get<std::int16_t Settings::*>(row.field);
      menus.SetCaption(ShownIn(row),
                       Loaded(row.caption, std::to_string(value)));
      int item = ListSendItemFor(value);
      if (item == kLSendCustom)
        menus.SetCaption(MenuModel::ItemName(row.entry, kLSendCustom),
                         Loaded("custom", std::to_string(value)));
      CheckOnly(menus, row.entry, row.items, item);
      menus.SetChecked(MenuModel::ItemName(row.entry, kLSendIfNoPending),
                       s.ListIfNoPending);
      break;
    }
    case SettingInput::kBotScroll: {
      std::int16_t value = s.*std::get<std::int16_t Settings::*>(row.field);
      menus.SetCaption(ShownIn(row),
                       Loaded(row.caption, std::to_string(value)));
      CheckOnly(menus, row.entry, row.items, BotScrollItemFor(value));
      break;
    }
    case SettingInput::kMailMethod:
    case SettingInput::kReplyMethod: {
      bool value = s.*std::get<bool Settings::*>(row.field);
      if (row.input == SettingInput::kMailMethod) {
        menus.SetCaption(ShownIn(row), MailMethodCaption(row, value));
        CheckOnly(menus, row.entry, row.items, value ? 2 : 1);
      } else {
        CheckOnly(menus, row.entry, row.items, value ? 1 : 2);
      }
      break;
    }
  }
}

std::string StoredText(const SettingRow& row, const Settings& s) {
  return std::visit(
      [&](auto field) -> std::string {
        const auto& value = s.*field;
        using T = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::string>) {
          return value;
        } else if constexpr (std::is_same_v<T, bool>) {
          return FlagText(value);
        } else if constexpr (std::is_same_v<T, float>) {
          return SingleText(value);
        } else {
          return std::to_string(value);
        }
      },
      row.field);
}

}  // namespace

void LoadSettings(Settings& s, MenuModel& menus, Registry& registry,
                  Label& lblSent, const std::string& signed_on_sn) {
  Reader in(registry);

  // The format marker. A value too big for its field reads as missing.
  std::int16_t format = in.Parsed("Loaded", std::int16_t{0}, ParseInt16);
  if (format < kSettingsFormat) {
    if (format != 0) registry.DeleteApp(kApp);
    registry.Save(kApp, kSettingsSection, "Loaded",
                  std::to_string(kSettingsFormat));
  }

  std::vector<const SettingRow*> rows;
  for (const SettingRow& row : SettingRows()) rows.push_back(&row);
  std::sort(rows.begin(), rows.end(),
            [](const SettingRow* a, const SettingRow* b) {
              return a->load_rank < b->load_rank;
            });
  for (const SettingRow* row : rows) {
    ReadValue(*row, s, in, signed_on_sn);
    ShowLoaded(*row, s, menus, lblSent);
  }
}

void SaveSettings(const Settings& s, Registry& registry) {
  for (const SettingRow& row : SettingRows())
    if (row.saved_as)
      registry.Save(kApp, kSettingsSection, row.saved_as, StoredText(row, s));
  registry.Save(kApp, kSettingsSection, "Version", kVersion);
}

}  // namespace quorvex
