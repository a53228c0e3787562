#include "settings/setting_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "model/label.h"
#include "model/menu.h"
#include "ports/memory_registry.h"
#include "settings/menu_tree.h"
#include "settings/settings_menu.h"
#include "settings/settings_store.h"

namespace quorvex {
namespace {

// Remembers the order in which the loader asks for the keys.
class RecordingRegistry : public MemoryRegistry {
 public:
  std::optional<std::string> Get(const std::string& app,
                                 const std::string& section,
                                 const std::string& key) const override {
    if (section == kSettingsSection) asked.push_back(key);
    return MemoryRegistry::Get(app, section, key);
  }
  mutable std::vector<std::string> asked;
};

TEST(SettingTableTest, EveryEntryIsInTheMenuAndDispatchedOnce) {
  MenuModel menus;
  BuildMenuTree(menus);
  std::set<std::string> keys;
  for (const SettingRow& row : SettingRows()) {
    EXPECT_TRUE(keys.insert(row.key).second) << row.key;
    if (!row.entry) continue;
    if (row.caption) {
      EXPECT_TRUE(menus.Has(ShownIn(row))) << row.key;
    }
    const std::string first =
        row.items > 0 ? MenuModel::ItemName(row.entry, 1) : row.entry;
    EXPECT_TRUE(menus.Has(first)) << row.key;
    EXPECT_EQ(FindSettingRow(row.entry, row.item), &row) << row.key;
  }
  std::set<std::string> dispatched;
  for (const SettingsMenuHandler& h : SettingsMenuHandlers())
    EXPECT_TRUE(dispatched.insert(h.name).second) << h.name;
  EXPECT_EQ(dispatched.size(), 25u);
  EXPECT_EQ(FindSettingRow("mnuFEnable", 3), nullptr);
  EXPECT_EQ(FindSettingRow("mnuMessages"), nullptr);
}

TEST(SettingTableTest, LoadReadsTheKeysInTheirFixedOrder) {
  RecordingRegistry registry;
  registry.Save(kApp, kSettingsSection, "Loaded", "5");
  MenuModel menus;
  BuildMenuTree(menus);
  Settings settings;
  Label lblSent{"lblSent", ""};
  LoadSettings(settings, menus, registry, lblSent, "Host");
  const std::vector<std::string> want = {
      "Loaded",         "Handle",        "LAscii",         "RAscii",
      "ChatFont",       "MailNotify",    "ListSize",       "ListNotify",
      "FindsEnable",    "FindsXYEnable", "MailResize",     "FindMax",
      "FindMin",        "BlockMax",      "BlocksXYEnable", "ScrollStatus",
      "ScrollThankyou", "AOLRestart",    "CPURestart",     "SentRestart",
      "TotalSent",      "MailSpeed",     "ListAdvertise",  "ListSpeed",
      "MailMethod",     "FindSpeed",     "BotScroll",      "ScrollMethod"};
  EXPECT_EQ(registry.asked, want);
}

// What is saved comes back on the next load, all but the reply method,
// which is written under another key than it is read from.
TEST(SettingTableTest, SavedValuesLoadBackExceptTheReplyMethod) {
  MemoryRegistry registry;
  registry.Save(kApp, kSettingsSection, "Loaded", "5");
  Settings saved;
  saved.Handle = "Other Host";
  saved.LAscii = "<<";
  saved.RAscii = ">>";
  saved.ChatFont = "arial";
  saved.MailNotify = saved.MailResize = saved.MailMethod = false;
  saved.ListNotify = saved.FindsEnable = saved.FindsXYEnable = false;
  saved.BlocksXYEnable = saved.ScrollStatus = saved.ScrollThankyou = false;
  saved.ScrollMethod = false;
  saved.MailSpeed = 0.25f;
  saved.ListSpeed = 0.3567f;
  saved.FindSpeed = 0;
  saved.ListSize = 499;
  saved.ListAdvertise = 17;
  saved.FindMax = 29;
  saved.FindMin = 3;
  saved.BlockMax = 0;
  saved.BotScroll = 45;
  saved.AOLRestart = 1;
  saved.CPURestart = 3;
  saved.SentRestart = 4;
  saved.TotalSent = 12;  // the serving loop's to save
  SaveSettings(saved, registry);

  MenuModel menus;
  BuildMenuTree(menus);
  Settings loaded;
  Label lblSent{"lblSent", ""};
  LoadSettings(loaded, menus, registry, lblSent, "Host");
  EXPECT_EQ(loaded.Handle, saved.Handle);
  EXPECT_EQ(loaded.LAscii, saved.LAscii);
  EXPECT_EQ(loaded.RAscii, saved.RAscii);
  EXPECT_EQ(loaded.ChatFont, saved.ChatFont);
  for (bool Settings::*flag :
       {&Settings::MailNotify, &Settings::MailResize, &Settings::MailMethod,
        &Settings::ListNotify, &Settings::FindsEnable, &Settings::FindsXYEnable,
        &Settings::BlocksXYEnable, &Settings::ScrollStatus,
        &Settings::ScrollThankyou})
    EXPECT_FALSE(loaded.*flag);
  EXPECT_TRUE(loaded.ScrollMethod);
  EXPECT_EQ(loaded.MailSpeed, 0.25f);
  EXPECT_EQ(loaded.ListSpeed, 0.3567f);
  EXPECT_EQ(loaded.FindSpeed, 0.0f);
  for (std::int16_t Settings::*number :
       {&Settings::ListSize, &Settings::ListAdvertise, &Settings::FindMax,
        &Settings::FindMin, &Settings::BlockMax, &Settings::BotScroll,
        &Settings::AOLRestart, &Settings::CPURestart, &Settings::SentRestart})
    EXPECT_EQ(loaded.*number, saved.*number);
  EXPECT_EQ(loaded.TotalSent, 0);
  EXPECT_EQ(lblSent.caption(), "sent: 0");
  // Load captions: no trailing blank, restart counts as numbers, "turbo".
  EXPECT_EQ(menus.Caption("mnuAOLRes"), "aol - [ 1 ]");
  EXPECT_EQ(menus.Caption("mnuBMax"), "max - [ 0 ]");
  EXPECT_EQ(menus.Caption("mnuFSpeed(5)"), "turbo - [ 0 ]");
  EXPECT_EQ(menus.Caption("mnuLSend(6)"), "custom - [ 17 ]");
  EXPECT_EQ(menus.Caption("mnuHandle"), "handle - [ other host ]");
}

}  // namespace
}  // namespace quorvex
