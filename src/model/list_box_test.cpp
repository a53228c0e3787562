#include "model/list_box.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "model/menu.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

TEST(ListBoxTest, IdsAndExactSearch) {
  ListBox list("lstPending");
  const auto bob = list.Add("bob-7");
  const auto amy = list.Add("Amy-List");
  const auto joe = list.Add("bob-7");
  EXPECT_EQ(list.Item(3), "");
  EXPECT_EQ(list.Item(-1), "");
  EXPECT_EQ(list.FindExact("amy-list"), 1);
  EXPECT_EQ(list.FindExact("bob-"), -1);  // exact, not a prefix
  EXPECT_FALSE(ListHasItem(list, ""));

  list.Remove(0);
  EXPECT_EQ(list.FindExact("bob-7"), 1);  // the duplicate is still there
  EXPECT_EQ(list.IndexOfId(bob), -1);
  EXPECT_EQ(list.IndexOfId(amy), 0);
  EXPECT_TRUE(list.RemoveId(joe));
  EXPECT_FALSE(list.RemoveId(joe));
  list.Remove(5);  // out of range: nothing
  EXPECT_EQ(list.Items(), Lines{"Amy-List"});
  list.Clear();
  EXPECT_FALSE(list.Contains("amy-list"));
  EXPECT_GT(list.Add("x"), joe);  // ids are never reused
}

TEST(ListBoxTest, SelectionFollowsRemovals) {
  ListBox list("lstBanned");
  for (const char* s : {"a", "b", "c", "d"}) list.Add(s);
  list.Select(2);  // "c"
  list.Remove(3);  // after the selection
  EXPECT_EQ(list.selected(), 2);
  list.Remove(0);  // before it: the selection moves up with its item
  EXPECT_EQ(list.selected(), 1);
  list.Remove(1);  // the selected item itself
  EXPECT_EQ(list.selected(), -1);
  list.Select(7);
  EXPECT_EQ(list.selected(), -1);
  list.Select(0);
  list.Clear();
  EXPECT_EQ(list.selected(), -1);
}

TEST(ListBoxTest, ObserversHearEveryChangeAndBatchRemovalsOneByOne) {
  ListBox list("lstMails");
  Lines heard;
  list.Subscribe([&](const ListBox& l, const ListChange& c) {
    const char* op = c.op == ListChange::Op::kAdd      ? "add"
                     : c.op == ListChange::Op::kRemove ? "remove"
                                                       : "clear";
    heard.push_back(std::string(op) + " " + std::to_string(c.index) + " " +
                    c.item + " " + std::to_string(l.Count()));
  });
  list.Add("one");
  list.Add("two");
  list.Remove(0);
  list.Remove(4);  // nothing removed: nothing heard
  list.Clear();
  EXPECT_EQ(heard, (Lines{"add 0 one 1", "add 1 two 2", "remove 0 one 1",
                          "clear -1  0"}));

  std::vector<std::uint64_t> id;
  for (const char* t : {"a", "b", "c", "d", "e", "f"})
    id.push_back(list.Add(t));
  list.Select(4);  // "e"
  list.RemoveId(id[5]);
  heard.clear();
  // Out of order, with a repeat and an id already gone; positions as a
  // one-by-one walk saw them.
  list.RemoveIds({id[3], id[1], id[3], id[5], id[0]});
  EXPECT_EQ(list.Items(), (Lines{"c", "e"}));
  for (auto& h : heard) h.erase(h.rfind(' '));  // the count is not defined
  EXPECT_EQ(heard, (Lines{"remove 3 d", "remove 1 b", "remove 0 a"}));
  EXPECT_EQ(list.selected(), 1);  // still "e"
  EXPECT_EQ(list.IndexOfId(id[4]), 1);
}

TEST(MenuModelTest, TreeInMenuOrderWithChangeNotification) {
  MenuModel menu;
  menu.Add("mnuSettings", "", "settings");
  menu.Add("mnuMail", "mnuSettings", "mail");
  menu.Add("mnuHelp", "", "help");
  const std::string fast = MenuModel::ItemName("mnuMSpeed", 1);
  menu.Add(fast, "mnuMail", "fast");
  menu.Add(MenuModel::ItemName("mnuMSpeed", 2), "mnuMail", "medium");
  EXPECT_THROW(menu.Add("mnuMail", "", "again"), std::logic_error);
  EXPECT_THROW(menu.SetChecked("mnuNone", true), std::out_of_range);
  EXPECT_EQ(menu.Children(""), (Lines{"mnuSettings", "mnuHelp"}));
  EXPECT_EQ(menu.Children("mnuMail"), (Lines{"mnuMSpeed(1)", "mnuMSpeed(2)"}));

  Lines heard;
  menu.Subscribe([&](const MenuEntry& e) {
    heard.push_back(e.name + ":" + e.caption + ":" + (e.checked ? "x" : "-") +
                    (e.enabled ? "e" : "d"));
  });
  // A repeated setting is no change: nothing heard.
  for (int i = 0; i < 2; ++i) {
    menu.SetChecked(fast, true);
    menu.SetCaption("mnuMail", "mail [fast]");
    menu.SetEnabled("mnuHelp", false);
  }
  EXPECT_EQ(heard, (Lines{"mnuMSpeed(1):fast:xe", "mnuMail:mail [fast]:-e",
                          "mnuHelp:help:-d"}));
  EXPECT_FALSE(menu.Checked("mnuMSpeed(2)"));
}

}  // namespace
}  // namespace quorvex
