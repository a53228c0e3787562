#include "settings/settings_menu.h"

#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "model/label.h"
#include "settings/memory_registry.h"
#include "settings/menu_tree.h"
#include "settings/settings_store.h"

namespace quorvex {
namespace {

class ScriptedPrompter : public Prompter {
 public:
  std::string InputBox(const std::string& prompt, const std::string& title,
                       const std::string& default_text) override {
    std::string answer;
    if (!answers.empty()) {
      answer = answers.front();
      answers.pop_front();
    }
    shown.push_back({"input", title, prompt, default_text, answer});
    return answer;
  }
  bool YesNo(const std::string&, const std::string&) override { return false; }
  void MessageBox(const std::string&, const std::string&) override {}

  std::deque<std::string> answers;  // "" when out: a Cancel
  std::vector<PromptRecord> shown;
};

class SettingsMenuTest : public ::testing::Test {
 protected:
  SettingsMenuTest() {
    BuildMenuTree(menus);
    registry.Save(kApp, "Settings", "Loaded", "5");
    LoadSettings(settings, menus, registry, lblSent, "Host");
  }

  // Clicks `name` answering `answer` to the box it shows.
  void Click(const std::string& name, int index, const std::string& answer) {
    prompter.answers = {answer};
    ASSERT_TRUE(ClickSettingsMenu(ctx, name, index)) << name;
  }
  void Click(const std::string& name, const std::string& answer) {
    Click(name, 0, answer);
  }
  std::string Stored(const std::string& key) {
    return registry.GetSetting(kApp, "Settings", key, "<missing>");
  }
  const std::string& Caption(const std::string& name) {
    return menus.Caption(name);
  }

  MemoryRegistry registry;
  MenuModel menus;
  Settings settings;
  Label lblSent{"lblSent", "total: 0"};
  ScriptedPrompter prompter;
  bool server_on = false;
  int scroll_seconds = 0;
  SettingsMenuContext ctx{settings, menus,      registry,
                          prompter, &server_on, &scroll_seconds};
};

TEST_F(SettingsMenuTest, TextEntriesKeepTypedTextAndRefuseBlanks) {
  Click("mnuHandle", "My Bot");
  ASSERT_EQ(prompter.shown.size(), 1u);
  EXPECT_EQ(prompter.shown[0].title, "handle");
  EXPECT_EQ(prompter.shown[0].default_text, "Host");
  EXPECT_EQ(settings.Handle, "My Bot");
  EXPECT_EQ(Caption("mnuHandle"), "handle - [ My Bot ] ");
  EXPECT_EQ(Stored("Handle"), "My Bot");
  EXPECT_EQ(Stored("Version"), kVersion);

  Click("mnuChatFont", "   ");
  EXPECT_EQ(settings.ChatFont, "tahoma");
  EXPECT_EQ(prompter.shown.back().title, "font name");
}

TEST_F(SettingsMenuTest, OnOffAcceptsAnyCaseButOnlyLowerOnIsOn) {
  Click("mnuMailNotify", "On");
  EXPECT_FALSE(settings.MailNotify);
  EXPECT_EQ(Stored("MailNotify"), "False");
  Click("mnuMailNotify", "maybe");
  EXPECT_FALSE(settings.MailNotify);
  Click("mnuMailNotify", "on");
  EXPECT_TRUE(settings.MailNotify);

  // The resize entry asks as "mail notify" and captions itself "notify".
  Click("mnuMailResize", "OFF");
  EXPECT_EQ(prompter.shown.back().title, "mail notify");
  EXPECT_EQ(Caption("mnuMailResize"), "notify - [ off ] ");
  LoadSettings(settings, menus, registry, lblSent, "Host");
  EXPECT_EQ(Caption("mnuMailResize"), "resize - [ off ]");
}

TEST_F(SettingsMenuTest, BlockMaxZeroOrCancelMeansNoLimit) {
  Click("mnuBMax", "0");
  EXPECT_EQ(settings.BlockMax, 0);
  Click("mnuBMax", "12abc");
  EXPECT_EQ(settings.BlockMax, 12);
  Click("mnuBMax", "");  // Cancel
  EXPECT_EQ(settings.BlockMax, 0);
  EXPECT_EQ(Caption("mnuBMax"), "max - [ N L ] ");
  Click("mnuBMax", "40000");  // would not fit: refused
  EXPECT_EQ(settings.BlockMax, 0);
}

TEST_F(SettingsMenuTest, NumberEntriesCheckRangeThenRoundHalfEven) {
  Click("mnuAOLRes", "");  // Cancel reads as 0: refused
  EXPECT_EQ(settings.AOLRestart, 1000);
  EXPECT_EQ(settings.AOLRestart, 1000);
  Click("mnuAOLRes", "1");
  EXPECT_EQ(Caption("mnuAOLRes"), "aol - [ off ] ");
  Click("mnuSentRes", "2.5");
  EXPECT_EQ(settings.SentRestart, 2);

  Click("mnuMPList", "50.5");
  EXPECT_EQ(settings.ListSize, 50);
  Click("mnuMPList", "500.4");  // checked before rounding
  EXPECT_EQ(settings.ListSize, 50);
  Click("mnuMPList", "499.5");
  EXPECT_EQ(settings.ListSize, 500);
  Click("mnuFMininum", "0");
  EXPECT_EQ(settings.FindMin, 2);
}

TEST_F(SettingsMenuTest, BotScrollTakesZeroToThreeHundred) {
  Click("mnuBScroll", 8, "301");
  EXPECT_EQ(settings.BotScroll, 30);
  EXPECT_TRUE(menus.Checked("mnuBScroll(4)"));
  Click("mnuBScroll", 8, "0");
  EXPECT_EQ(settings.BotScroll, 0);
  EXPECT_EQ(Caption("mnuBotScroll"), "scroll - [ 0 ]");
  EXPECT_TRUE(menus.Checked("mnuBScroll(8)"));
  Click("mnuBScroll", 5, "");
  EXPECT_EQ(settings.BotScroll, 45);
  EXPECT_TRUE(menus.Checked("mnuBScroll(5)"));

  // "now" asks nothing and only moves the advertisement's counter while
  // the server runs.
  size_t prompts = prompter.shown.size();
  Click("mnuBScroll", 1, "");
  EXPECT_EQ(scroll_seconds, 0);
  server_on = true;
  Click("mnuBScroll", 1, "");
  EXPECT_EQ(scroll_seconds, 55);
  EXPECT_EQ(prompter.shown.size(), prompts);
}

TEST_F(SettingsMenuTest, ListSendRule) {
  Click("mnuLSend", 6, "1");
  EXPECT_EQ(settings.ListAdvertise, 30);
  Click("mnuLSend", 6, "1.5");
  EXPECT_EQ(settings.ListAdvertise, 2);
  EXPECT_EQ(Caption("mnuListSend"), "send - [ 2 ]");
  EXPECT_EQ(settings.ListAdvertise, 2);

  Click("mnuLSend", 1, "");
  EXPECT_EQ(Caption("mnuListSend"), "send - [ 10]");
  EXPECT_EQ(Caption("mnuLSend(6)"), "custom");
  Click("mnuLSend", 8, "");
  EXPECT_EQ(Caption("mnuListSend"), "send - [ O R ]");

  Click("mnuLSend", 9, "");
  EXPECT_TRUE(settings.ListIfNoPending);
  EXPECT_TRUE(menus.Checked("mnuLSend(8)"));
  EXPECT_EQ(Caption("mnuListSend"), "send - [ N P ]");
  EXPECT_EQ(settings.ListAdvertise, 0);
  Click("mnuLSend", 4, "");
  EXPECT_EQ(Caption("mnuListSend"), "send - [ 60 ]");
  EXPECT_FALSE(menus.Checked("mnuLSend(9)"));
  EXPECT_TRUE(settings.ListIfNoPending);
}

TEST_F(SettingsMenuTest, SpeedPresetsAndTurbo) {
  Click("mnuMSpeed", 5, "0");
  EXPECT_EQ(settings.MailSpeed, 0.0f);
  EXPECT_EQ(Caption("mnuMSpeed(5)"), "turbo - [ 0 ]");
  EXPECT_TRUE(menus.Checked("mnuMSpeed(5)"));

  Click("mnuMSpeed", 5, "1.5");
  EXPECT_EQ(settings.MailSpeed, 0.0f);
  Click("mnuMSpeed", 5, "0.25");
  EXPECT_EQ(Caption("mnuMSpeed(5)"), "custom - [ 0.25 ]");
  EXPECT_EQ(Stored("MailSpeed"), "0.25");

  Click("mnuFSpeed(2)", 0, "");
  EXPECT_EQ(Caption("mnuFindSpeed"), "speed - [ 0.3567 ]");
  Click("mnuMSpeed", 3, "");
  EXPECT_EQ(Caption("mnuMSpeed(5)"), "custom");
  EXPECT_EQ(Stored("MailSpeed"), "0.6899");
}

TEST_F(SettingsMenuTest, FindsOffGreysOutRangeFinds) {
  Click("mnuFEnable", 1, "off");
  EXPECT_FALSE(settings.FindsEnable);
  EXPECT_EQ(Caption("mnuFEnable(2)"), "enable x&&y - [ off ] ");
  EXPECT_FALSE(menus.Enabled("mnuFEnable(2)"));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuFEnable", 2));

  Click("mnuFEnable", 1, "on");
  EXPECT_TRUE(menus.Enabled("mnuFEnable(2)"));
  EXPECT_FALSE(settings.FindsXYEnable);
  Click("mnuFEnable", 2, "on");
  EXPECT_TRUE(settings.FindsXYEnable);
  EXPECT_EQ(Caption("mnuFEnable(2)"), "enable x&&y - [ on ] ");
}

TEST_F(SettingsMenuTest, MethodItemsAndDispatch) {
  Click("mnuMMethod", 1, "");
  EXPECT_FALSE(settings.MailMethod);
  EXPECT_EQ(Caption("mnuMailMethod"), "method - [ regular ]");
  EXPECT_TRUE(menus.Checked("mnuMMethod(1)"));

  Click("mnuScrollMethod", 2, "");
  EXPECT_FALSE(settings.ScrollMethod);
  EXPECT_TRUE(menus.Checked("mnuScrollMethod(2)"));
  EXPECT_EQ(Stored("StatusMethod"), "False");
  EXPECT_EQ(Stored("ScrollMethod"), "<missing>");
  EXPECT_TRUE(prompter.shown.empty());

  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMSpeed", 4));  // separator
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuLSend", 10));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "mnuMessages"));
  EXPECT_FALSE(ClickSettingsMenu(ctx, "frmMessages.mnuHandle"));
  EXPECT_TRUE(prompter.shown.empty());
}

}  // namespace
}  // namespace quorvex
