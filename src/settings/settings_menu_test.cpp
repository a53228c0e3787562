#include "settings/settings_menu.h"

#include <gtest/gtest.h>

#include <vector>

#include "model/label.h"
#include "ports/memory_registry.h"
#include "ports/scripted_prompter.h"
#include "settings/menu_tree.h"
#include "settings/settings_store.h"

namespace quorvex {
namespace {

// Prompts, captions and the deliberate slips that a whole run already shows
// (tests/scenarios/settings_menus.scn) are not repeated here.
class SettingsMenuTest : public ::testing::Test {
 protected:
  SettingsMenuTest() {
    BuildMenuTree(menus);
    registry.Save(kApp, "Settings", "Loaded", "5");
    LoadSettings(settings, menus, registry, lblSent, "Host");
    prompter.SetObserver([this](const PromptRecord& r) { shown.push_back(r); });
  }

  // Clicks `name` answering `answer` ("" cancels) to the box it shows.
  void Click(const std::string& name, int index, const std::string& answer) {
    if (!answer.empty()) prompter.QueueAnswer(answer);
    ASSERT_TRUE(ClickSettingsMenu(ctx, name, index)) << name;
  }
  std::string Stored(const std::string& key) {
    return registry.GetSetting(kApp, "Settings", key, "<missing>");
  }

  MemoryRegistry registry;
  MenuModel menus;
  Settings settings;
  Label lblSent{"lblSent", "total: 0"};
  ScriptedPrompter prompter;
  std::vector<PromptRecord> shown;
  bool server_on = false;
  int scroll_seconds = 0;
  SettingsMenuContext ctx{settings, menus,      registry,
                          prompter, &server_on, &scroll_seconds};
};

TEST_F(SettingsMenuTest, TextAndOnOffEntries) {
  Click("mnuHandle", 0, "My Bot");
  EXPECT_EQ(shown.back().default_text, "Host");
  EXPECT_EQ(Stored("Version"), kVersion);
  Click("mnuChatFont", 0, "   ");  // blanks are refused
  EXPECT_EQ(settings.ChatFont, "tahoma");
  EXPECT_EQ(shown.back().title, "font name");

  Click("mnuMailNotify", 0, "off");
  Click("mnuMailNotify", 0, "maybe");
  EXPECT_FALSE(settings.MailNotify);
  Click("mnuMailNotify", 0, "on");
  EXPECT_TRUE(settings.MailNotify);
  // The resize entry captions itself "notify" until the next load.
  Click("mnuMailResize", 0, "OFF");
  LoadSettings(settings, menus, registry, lblSent, "Host");
  EXPECT_EQ(menus.Caption("mnuMailResize"), "resize - [ off ]");
}

// The ends of a range are in it: whole numbers, a custom scroll interval
// at the top of its range, a list size at both; each step changes the
// value it checks.
TEST_F(SettingsMenuTest, NumberEntriesCheckRangeThenRoundHalfEven) {
  struct Step {
    const char* menu;
    int index;
    const char* answer;
    std::int16_t Settings::*field;
    int want;
  };
  const Step steps[] = {
      {"mnuAOLRes", 0, "", &Settings::AOLRestart, 1000},  // Cancel reads as 0
      {"mnuSentRes", 0, "2.5", &Settings::SentRestart, 2},
      {"mnuMPList", 0, "500.4", &Settings::ListSize, 250},  // range first
      {"mnuMPList", 0, "499.5", &Settings::ListSize, 500},
      {"mnuMPList", 0, "50", &Settings::ListSize, 50},
      {"mnuMPList", 0, "500", &Settings::ListSize, 500},
      {"mnuFMax", 0, "30", &Settings::FindMax, 30},
      {"mnuFMininum", 0, "0", &Settings::FindMin, 2},
      {"mnuBMax", 0, "12abc", &Settings::BlockMax, 12},
      {"mnuBMax", 0, "40000", &Settings::BlockMax, 12},  // would not fit
      {"mnuBMax", 0, "", &Settings::BlockMax, 0},        // no limit
      {"mnuBScroll", 8, "300", &Settings::BotScroll, 300},
      // The list's custom interval is the exception: it must be above 1.
      {"mnuLSend", 6, "1", &Settings::ListAdvertise, 30},
      {"mnuLSend", 6, "1.5", &Settings::ListAdvertise, 2},
  };
  for (const Step& s : steps) {
    Click(s.menu, s.index, s.answer);
    EXPECT_EQ(settings.*s.field, s.want) << s.menu << " " << s.answer;
  }
  // A custom speed at the top of its range.
  Click("mnuMSpeed", 5, "1");
  EXPECT_EQ(settings.MailSpeed, 1.0f);
}

TEST_F(SettingsMenuTest, PresetsAndCustomValuesShowInCaptions) {
  struct Step {
    const char* menu;
    int index;
    const char* answer;
    const char* item;
    const char* caption;
    const char* checked;  // nullptr: not looked at
  };
  const Step steps[] = {
      {"mnuBScroll", 3, "", "mnuBotScroll", "scroll - [ 10 ]", "mnuBScroll(3)"},
      {"mnuBScroll", 6, "", "mnuBotScroll", "scroll - [ 60 ]", "mnuBScroll(6)"},
      {"mnuBScroll", 5, "", "mnuBotScroll", "scroll - [ 45 ]", "mnuBScroll(5)"},
      {"mnuLSend", 6, "17", "mnuLSend(6)", "custom - [ 17 ]", nullptr},
      {"mnuLSend", 1, "", "mnuListSend", "send - [ 10]", nullptr},
      {"mnuLSend", 1, "", "mnuLSend(6)", "custom", nullptr},
      {"mnuLSend", 8, "", "mnuListSend", "send - [ O R ]", nullptr},
      {"mnuLSend", 9, "", "mnuListSend", "send - [ N P ]", "mnuLSend(8)"},
      {"mnuLSend", 4, "", "mnuListSend", "send - [ 60 ]", nullptr},
      {"mnuMSpeed", 5, "0.25", "mnuMSpeed(5)", "custom - [ 0.25 ]",
       "mnuMSpeed(5)"},
      {"mnuMSpeed", 5, "1.5", "mnuMailSpeed", "speed - [ 0.25 ]", nullptr},
      {"mnuFSpeed(2)", 0, "", "mnuFindSpeed", "speed - [ 0.3567 ]", nullptr},
      {"mnuMSpeed", 1, "", "mnuMailSpeed", "speed - [ 0.1345 ]",
       "mnuMSpeed(1)"},
      {"mnuMSpeed", 3, "", "mnuMSpeed(5)", "custom", nullptr},
      {"mnuMMethod", 1, "", "mnuMailMethod", "method - [ regular ]",
       "mnuMMethod(1)"},
  };
  for (const Step& s : steps) {
    Click(s.menu, s.index, s.answer);
    EXPECT_EQ(menus.Caption(s.item), s.caption) << s.menu << " " << s.index;
    if (s.checked) {
      EXPECT_TRUE(menus.Checked(s.checked)) << s.checked;
    }
  }
  // "if no pending" loses its mark to another preset, but stays on.
  EXPECT_FALSE(menus.Checked("mnuLSend(9)"));
  EXPECT_TRUE(settings.ListIfNoPending);
  EXPECT_EQ(Stored("MailSpeed"), "0.6899");
  EXPECT_FALSE(settings.MailMethod);
}

// "now" asks nothing and, only while the server runs, moves the
// advertisement's counter past its 30-second interval.
TEST_F(SettingsMenuTest, BotScrollNow) {
  Click("mnuBScroll", 1, "");
  EXPECT_EQ(scroll_seconds, 0);
  server_on = true;
  Click("mnuBScroll", 1, "");
  EXPECT_EQ(scroll_seconds, 40);
  EXPECT_TRUE(shown.empty());
}

TEST_F(SettingsMenuTest, ScrollMethodRangeFindsAndDispatch) {
  Click("mnuScrollMethod", 2, "");
  EXPECT_FALSE(settings.ScrollMethod);
  EXPECT_TRUE(menus.Checked("mnuScrollMethod(2)"));
  EXPECT_EQ(Stored("StatusMethod"), "False");
  EXPECT_EQ(Stored("ScrollMethod"), "<missing>");
  EXPECT_TRUE(shown.empty());
  Click("mnuScrollMethod", 1, "");
  EXPECT_TRUE(settings.ScrollMethod);
  EXPECT_TRUE(menus.Checked("mnuScrollMethod(1)"));
  Click("mnuMMethod", 1, "");
  Click("mnuMMethod", 2, "");
  EXPECT_TRUE(settings.MailMethod);
  EXPECT_EQ(menus.Caption("mnuMailMethod"), "method - [ sendlater ]");

  Click("mnuFEnable", 1, "off");
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuFEnable", 2));  // greyed out
  Click("mnuFEnable", 1, "on");
  EXPECT_TRUE(ClickSettingsMenu(ctx, "mnuFEnable", 2));

  shown.clear();
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMSpeed", 4));  // separator
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuLSend", 10));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMSpeed", 0));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMessages"));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "frmMessages.mnuHandle"));
  // An item in the name: one or two digits.
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMSpeed()"));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMSpeed(001)"));
  EXPECT_TRUE(ClickSettingsMenu(ctx, "mnuMSpeed(02)"));
  EXPECT_TRUE(shown.empty());
}

}  // namespace
}  // namespace quorvex
