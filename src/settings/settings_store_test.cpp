#include "settings/settings_store.h"

#include <gtest/gtest.h>

#include <limits>

#include "ports/memory_registry.h"
#include "settings/menu_tree.h"

namespace quorvex {
namespace {

// A first start, a kept load and a wipe by an old marker also run whole in
// tests/scenarios; these cover the values and captions those leave out.
class SettingsStoreTest : public ::testing::Test {
 protected:
  SettingsStoreTest() { BuildMenuTree(menus); }

  void Put(const std::string& key, const std::string& value) {
    registry.Save(kApp, "Settings", key, value);
  }
  std::string Stored(const std::string& key) {
    return registry.GetSetting(kApp, "Settings", key, "<missing>");
  }
  void Load(const std::string& sn = "Kestrin Host") {
    LoadSettings(settings, menus, registry, lblSent, sn);
  }
  const std::string& Caption(const std::string& name) {
    return menus.Caption(name);
  }
  bool Checked(const std::string& name) { return menus.Checked(name); }

  MemoryRegistry registry;
  MenuModel menus;
  Settings settings;
  Label lblSent{"lblSent", "total: 0"};
};

TEST_F(SettingsStoreTest, FirstStartShowsDefaults) {
  Load();
  EXPECT_EQ(Caption("mnuLAscii"), "left ascii - [ \xC2\xB7\xE2\x80\xA2[ ]");
  for (const char* group : {"mnuMSpeed", "mnuLSpeed", "mnuFSpeed"})
    EXPECT_EQ(Caption(MenuModel::ItemName(group, 5)), "custom");
  EXPECT_EQ(Caption("mnuMailMethod"), "method - [ sendlater ]");
  // The editor's insert item of the same name is a menu of its own.
  EXPECT_EQ(Caption("frmMessages.mnuHandle"), "[h] handle");
  // Only the marker is written; the rest waits for the first save.
  ASSERT_EQ(registry.Dump(kApp)["Settings"].size(), 1u);
  EXPECT_EQ(Stored("Loaded"), "5");
}

TEST_F(SettingsStoreTest, MarkerZeroOrTooBigKeepsValues) {
  for (const char* marker : {"0", "99999"}) {
    registry.Replace({});
    Put("Loaded", marker);
    Put("Handle", "kept");
    Load("sn");
    EXPECT_EQ(settings.Handle, "kept") << marker;
    EXPECT_EQ(Stored("Loaded"), "5") << marker;
  }
}

TEST_F(SettingsStoreTest, StoredValuesLoadLenientlyAndPickPresets) {
  Put("Loaded", "5");
  Put("MailNotify", "false");
  Put("FindsEnable", "-1");
  Put("ScrollThankyou", "perhaps");  // unreadable: default
  Put("ListNotify", "0");
  Put("ListSize", "120 titles");
  Put("FindMax", "12.5");
  Put("AOLRestart", "99999");  // too big for its field: default
  Put("TotalSent", "123456");
  Put("MailSpeed", "0");
  Put("FindSpeed", "0.3567");
  Put("ListAdvertise", "17");
  Put("BotScroll", "17");
  Put("MailMethod", "False");
  Put("StatusMethod", "False");  // saved there, but read from ScrollMethod
  Load();
  EXPECT_FALSE(settings.MailNotify);
  EXPECT_EQ(Caption("mnuMailNotify"), "notify - [ off ]");
  EXPECT_TRUE(settings.FindsEnable);
  EXPECT_TRUE(settings.ScrollThankyou);
  EXPECT_FALSE(settings.ListNotify);
  EXPECT_EQ(settings.ListSize, 120);
  EXPECT_EQ(settings.FindMax, 12);
  EXPECT_EQ(Caption("mnuAOLRes"), "aol - [ 1000 ]");
  EXPECT_EQ(lblSent.caption(), "sent: 123456");

  EXPECT_EQ(Caption("mnuMSpeed(5)"), "turbo - [ 0 ]");
  EXPECT_TRUE(Checked("mnuMSpeed(5)"));
  EXPECT_TRUE(Checked("mnuFSpeed(2)"));
  EXPECT_TRUE(Checked("mnuLSend(6)"));
  EXPECT_EQ(Caption("mnuLSend(6)"), "custom - [ 17 ]");
  EXPECT_TRUE(Checked("mnuBScroll(8)"));
  EXPECT_EQ(Caption("mnuBScroll(8)"), "custom");
  EXPECT_EQ(Caption("mnuMailMethod"), "method - [ regular ]");
  EXPECT_TRUE(Checked("mnuMMethod(1)"));
  EXPECT_TRUE(settings.ScrollMethod);
  EXPECT_TRUE(Checked("mnuScrollMethod(1)"));
}

// A stored number at the very end of its type loads; one past it loads as
// the default.
TEST_F(SettingsStoreTest, NumbersAtTheEndsOfTheirTypes) {
  Put("Loaded", "5");
  Put("ListSize", "32767");
  Put("FindMin", "-32768");
  Put("FindMax", "32768");
  Put("BlockMax", "-32769");
  Put("TotalSent", "2147483647");
  Put("MailSpeed", "3.4028234663852886e38");  // the largest single
  Put("ListSpeed", "3.4028236e38");
  Load();
  EXPECT_EQ(settings.ListSize, 32767);
  EXPECT_EQ(settings.FindMin, -32768);
  EXPECT_EQ(settings.FindMax, 20);
  EXPECT_EQ(settings.BlockMax, 100);
  EXPECT_EQ(lblSent.caption(), "sent: 2147483647");
  EXPECT_EQ(settings.MailSpeed, std::numeric_limits<float>::max());
  EXPECT_EQ(settings.ListSpeed, Settings().ListSpeed);

  Put("TotalSent", "-2147483648");
  Load();
  EXPECT_EQ(lblSent.caption(), "sent: -2147483648");
  Put("TotalSent", "2147483648");
  Load();
  EXPECT_EQ(lblSent.caption(), "sent: 0");
}

TEST_F(SettingsStoreTest, SaveWritesEveryStoredKey) {
  settings.MailSpeed = 0.3567f;
  settings.ListSpeed = 0;
  settings.ScrollMethod = false;
  settings.TotalSent = 77;
  SaveSettings(settings, registry);
  auto keys = registry.Dump(kApp)["Settings"];
  EXPECT_EQ(keys.size(), 27u);
  EXPECT_EQ(keys["MailSpeed"], "0.3567");
  EXPECT_EQ(keys["ListSpeed"], "0");
  EXPECT_EQ(keys["StatusMethod"], "False");
  EXPECT_EQ(keys["Version"], kVersion);
  // What is saved loads back: see SettingTableTest.
  for (const char* unsaved : {"ScrollMethod", "TotalSent", "Loaded", "Load"})
    EXPECT_EQ(keys.count(unsaved), 0u) << unsaved;
}

}  // namespace
}  // namespace quorvex
