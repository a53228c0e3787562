#include "settings/settings_store.h"

#include <gtest/gtest.h>

#include "settings/memory_registry.h"
#include "settings/menu_tree.h"

namespace quorvex {
namespace {

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

TEST_F(SettingsStoreTest, MenuTreeHoldsBothWindowsWithoutClashes) {
  for (const auto& name : menus.Order()) {
    const std::string& parent = menus.Get(name).parent;
    EXPECT_TRUE(parent.empty() || menus.Has(parent)) << name;
  }
  EXPECT_EQ(menus.Children("mnuListSend").size(), 9u);
  EXPECT_EQ(menus.Children("mnuMailSpeed").back(), "mnuMSpeed(5)");
  EXPECT_EQ(menus.Get("mnuFEnable(2)").parent, "mnuFindOptions");
  EXPECT_EQ(menus.Caption("mnuHandle"), "handle");
  EXPECT_EQ(menus.Caption("frmMessages.mnuHandle"), "[h] handle");
  EXPECT_EQ(menus.Children("frmMessages.mnuInserts").size(), 11u);
}

TEST_F(SettingsStoreTest, FirstStartShowsDefaults) {
  Load();
  EXPECT_EQ(settings.Handle, "Kestrin Host");
  EXPECT_EQ(Caption("mnuHandle"), "handle - [ kestrin host ]");
  EXPECT_EQ(Caption("mnuLAscii"), "left ascii - [ \xC2\xB7\xE2\x80\xA2[ ]");
  EXPECT_EQ(Caption("mnuMailResize"), "resize - [ on ]");
  EXPECT_EQ(Caption("mnuFEnable(2)"), "enable x&&y - [ on ]");
  EXPECT_EQ(Caption("mnuMPList"), "list size - [ 250 ]");
  for (const char* parent : {"mnuMailSpeed", "mnuListSpeed", "mnuFindSpeed"})
    EXPECT_EQ(Caption(parent), "speed - [ 0.1345 ]");
  for (const char* group : {"mnuMSpeed", "mnuLSpeed", "mnuFSpeed"}) {
    EXPECT_TRUE(Checked(MenuModel::ItemName(group, 1)));
    EXPECT_FALSE(Checked(MenuModel::ItemName(group, 5)));
    EXPECT_EQ(Caption(MenuModel::ItemName(group, 5)), "custom");
  }
  EXPECT_EQ(Caption("mnuListSend"), "send - [ 30 ]");
  EXPECT_TRUE(Checked("mnuLSend(2)"));
  EXPECT_EQ(Caption("mnuBotScroll"), "scroll - [ 30 ]");
  EXPECT_TRUE(Checked("mnuBScroll(4)"));
  EXPECT_EQ(Caption("mnuMailMethod"), "method - [ sendlater ]");
  EXPECT_EQ(lblSent.caption(), "sent: 0");
  // Only the marker is written; the rest waits for the first save.
  auto dump = registry.Dump(kApp);
  ASSERT_EQ(dump["Settings"].size(), 1u);
  EXPECT_EQ(Stored("Loaded"), "5");
}

TEST_F(SettingsStoreTest, OlderFormatMarkerWipesEverythingOnce) {
  Put("Loaded", "3");
  Put("Handle", "old");
  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "1");
  registry.Save(kApp, "Banning", "Warnings", "3");
  Load("sn");
  EXPECT_EQ(settings.Handle, "sn");
  auto dump = registry.Dump(kApp);
  EXPECT_EQ(dump.size(), 1u);
  EXPECT_EQ(Stored("Loaded"), "5");
  EXPECT_EQ(Stored("Handle"), "<missing>");

  // Current (or later) format: nothing touched, nothing written.
  Put("Handle", "kept");
  Load("sn");
  EXPECT_EQ(settings.Handle, "kept");

  // A missing or 0 marker only writes 5; so does one too big for its field.
  for (const char* marker : {"0", "99999"}) {
    registry.Replace({});
    Put("Loaded", marker);
    Put("Handle", "kept");
    Load("sn");
    EXPECT_EQ(settings.Handle, "kept") << marker;
    EXPECT_EQ(Stored("Loaded"), "5") << marker;
  }
}

TEST_F(SettingsStoreTest, StoredValuesAreReadLeniently) {
  Put("Loaded", "5");
  Put("Handle", "My BOT");
  Put("MailNotify", "false");
  Put("FindsEnable", "-1");
  Put("ScrollThankyou", "perhaps");  // unreadable: default
  Put("ListSize", "120 titles");
  Put("FindMax", "12.5");
  Put("AOLRestart", "99999");  // too big for its field: default
  Put("CPURestart", "1");
  Put("BlockMax", "0");
  Put("TotalSent", "123456");
  Load();
  EXPECT_EQ(Caption("mnuHandle"), "handle - [ my bot ]");
  EXPECT_FALSE(settings.MailNotify);
  EXPECT_EQ(Caption("mnuMailNotify"), "notify - [ off ]");
  EXPECT_TRUE(settings.FindsEnable);
  EXPECT_TRUE(settings.ScrollThankyou);
  EXPECT_EQ(settings.ListSize, 120);
  EXPECT_EQ(settings.FindMax, 12);
  EXPECT_EQ(settings.AOLRestart, 1000);
  EXPECT_EQ(Caption("mnuAOLRes"), "aol - [ 1000 ]");
  // The load form shows the bare numbers; "off" and "N L" only after edits.
  EXPECT_EQ(Caption("mnuCPURes"), "cpu - [ 1 ]");
  EXPECT_EQ(Caption("mnuBMax"), "max - [ 0 ]");
  EXPECT_EQ(lblSent.caption(), "sent: 123456");
}

TEST_F(SettingsStoreTest, PresetsFollowStoredValues) {
  Put("Loaded", "5");
  Put("MailSpeed", "0");
  Put("ListSpeed", "0.5");
  Put("FindSpeed", "0.3567");
  Put("ListAdvertise", "0");
  Put("BotScroll", "17");
  Put("MailMethod", "False");
  Put("StatusMethod", "False");  // saved there, but read from ScrollMethod
  Load();
  EXPECT_EQ(Caption("mnuMSpeed(5)"), "turbo - [ 0 ]");
  EXPECT_TRUE(Checked("mnuMSpeed(5)"));
  EXPECT_EQ(Caption("mnuLSpeed(5)"), "custom - [ 0.5 ]");
  EXPECT_TRUE(Checked("mnuFSpeed(2)"));
  EXPECT_TRUE(Checked("mnuLSend(8)"));
  EXPECT_EQ(Caption("mnuListSend"), "send - [ 0 ]");
  EXPECT_TRUE(Checked("mnuBScroll(8)"));
  EXPECT_EQ(Caption("mnuBScroll(8)"), "custom");
  EXPECT_EQ(Caption("mnuMailMethod"), "method - [ regular ]");
  EXPECT_TRUE(Checked("mnuMMethod(1)"));
  EXPECT_TRUE(settings.ScrollMethod);
  EXPECT_TRUE(Checked("mnuScrollMethod(1)"));

  registry.Replace({});
  Put("Loaded", "5");
  Put("ListAdvertise", "17");
  Load();
  EXPECT_TRUE(Checked("mnuLSend(6)"));
  EXPECT_EQ(Caption("mnuLSend(6)"), "custom - [ 17 ]");
}

TEST_F(SettingsStoreTest, SaveWritesEveryStoredKeyAndReloads) {
  settings.Handle = "Srv";
  settings.MailSpeed = 0.3567f;
  settings.ListSpeed = 0;
  settings.MailNotify = false;
  settings.ScrollMethod = false;
  settings.BlockMax = 0;
  settings.TotalSent = 77;
  SaveSettings(settings, registry);
  auto keys = registry.Dump(kApp)["Settings"];
  EXPECT_EQ(keys.size(), 27u);
  EXPECT_EQ(keys["MailSpeed"], "0.3567");
  EXPECT_EQ(keys["ListSpeed"], "0");
  EXPECT_EQ(keys["MailNotify"], "False");
  EXPECT_EQ(keys["StatusMethod"], "False");
  EXPECT_EQ(keys.count("ScrollMethod"), 0u);
  EXPECT_EQ(keys["BlockMax"], "0");
  EXPECT_EQ(keys["Version"], kVersion);
  for (const char* unsaved : {"TotalSent", "Loaded", "Load"})
    EXPECT_EQ(keys.count(unsaved), 0u) << unsaved;

  Put("Loaded", "5");
  Settings reloaded;
  LoadSettings(reloaded, menus, registry, lblSent, "other");
  EXPECT_EQ(reloaded.Handle, "Srv");
  EXPECT_EQ(reloaded.MailSpeed, 0.3567f);
  EXPECT_TRUE(reloaded.ScrollMethod);  // back to chat at every start
}

}  // namespace
}  // namespace quorvex
