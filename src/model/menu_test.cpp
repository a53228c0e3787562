#include "model/menu.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace quorvex {
namespace {

TEST(MenuModelTest, TreeInMenuOrderWithChangeNotification) {
  MenuModel menu;
  menu.Add("mnuSettings", "", "settings");
  menu.Add("mnuMail", "mnuSettings", "mail");
  menu.Add("mnuHelp", "", "help");
  const std::string fast = MenuModel::ItemName("mnuMSpeed", 1);
  EXPECT_EQ(fast, "mnuMSpeed(1)");
  menu.Add(fast, "mnuMail", "fast");
  menu.Add(MenuModel::ItemName("mnuMSpeed", 2), "mnuMail", "medium");
  EXPECT_THROW(menu.Add("mnuMail", "", "again"), std::logic_error);
  EXPECT_THROW(menu.Get("mnuNone"), std::out_of_range);
  EXPECT_THROW(menu.SetChecked("mnuNone", true), std::out_of_range);

  EXPECT_EQ(menu.Children(""),
            (std::vector<std::string>{"mnuSettings", "mnuHelp"}));
  EXPECT_EQ(menu.Children("mnuMail"),
            (std::vector<std::string>{"mnuMSpeed(1)", "mnuMSpeed(2)"}));
  EXPECT_EQ(menu.Order().size(), 5u);

  std::vector<std::string> heard;
  menu.Subscribe([&](const MenuEntry& e) {
    heard.push_back(e.name + ":" + e.caption + ":" + (e.checked ? "x" : "-") +
                    (e.enabled ? "e" : "d"));
  });
  menu.SetChecked(fast, true);
  menu.SetChecked(fast, true);  // no change: nothing heard
  menu.SetCaption("mnuMail", "mail [fast]");
  menu.SetCaption("mnuMail", "mail [fast]");
  menu.SetEnabled("mnuHelp", false);
  menu.SetEnabled("mnuHelp", false);
  EXPECT_EQ(heard, (std::vector<std::string>{"mnuMSpeed(1):fast:xe",
                                             "mnuMail:mail [fast]:-e",
                                             "mnuHelp:help:-d"}));
  EXPECT_TRUE(menu.Checked(fast));
  EXPECT_FALSE(menu.Checked("mnuMSpeed(2)"));
  EXPECT_FALSE(menu.Enabled("mnuHelp"));
  EXPECT_EQ(menu.Caption("mnuMail"), "mail [fast]");
}

}  // namespace
}  // namespace quorvex
