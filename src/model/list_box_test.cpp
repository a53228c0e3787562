#include "model/list_box.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvex {
namespace {

TEST(ListBoxTest, ItemsIdsAndExactSearch) {
  ListBox list("lstPending");
  EXPECT_TRUE(list.Empty());
  const auto bob = list.Add("bob-7");
  const auto amy = list.Add("Amy-List");
  const auto joe = list.Add("bob-7");
  EXPECT_LT(bob, amy);
  EXPECT_LT(amy, joe);
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(list.Item(1), "Amy-List");
  EXPECT_EQ(list.Item(3), "");
  EXPECT_EQ(list.Item(-1), "");

  EXPECT_EQ(list.FindExact("amy-list"), 1);
  EXPECT_EQ(list.FindExact("BOB-7"), 0);
  EXPECT_EQ(list.FindExact("bob-"), -1);  // exact, not a prefix
  EXPECT_TRUE(ListHasItem(list, "AMY-LIST"));
  EXPECT_FALSE(ListHasItem(list, ""));

  list.Remove(0);
  EXPECT_EQ(list.FindExact("bob-7"), 1);  // the duplicate is still there
  EXPECT_EQ(list.IndexOfId(bob), -1);
  EXPECT_EQ(list.IndexOfId(amy), 0);
  EXPECT_EQ(list.IndexOfId(joe), 1);
  EXPECT_TRUE(list.RemoveId(joe));
  EXPECT_FALSE(list.RemoveId(joe));
  EXPECT_FALSE(list.Contains("bob-7"));
  list.Remove(5);  // out of range: nothing
  EXPECT_EQ(list.Items(), std::vector<std::string>{"Amy-List"});

  list.Clear();
  EXPECT_TRUE(list.Empty());
  EXPECT_FALSE(list.Contains("amy-list"));
  EXPECT_GT(list.Add("x"), joe);  // ids are never reused
}

TEST(ListBoxTest, SelectionFollowsRemovals) {
  ListBox list("lstBanned");
  for (const char* s : {"a", "b", "c", "d"}) list.Add(s);
  EXPECT_EQ(list.selected(), -1);
  list.Select(2);  // "c"
  list.Remove(3);  // after the selection
  EXPECT_EQ(list.selected(), 2);
  list.Remove(0);  // before it: the selection moves up with its item
  EXPECT_EQ(list.selected(), 1);
  EXPECT_EQ(list.Item(list.selected()), "c");
  list.Remove(1);  // the selected item itself
  EXPECT_EQ(list.selected(), -1);
  list.Select(7);
  EXPECT_EQ(list.selected(), -1);
  list.Select(0);
  list.Clear();
  EXPECT_EQ(list.selected(), -1);
}

TEST(ListBoxTest, ObserversHearEveryChange) {
  ListBox list("lstMails");
  std::vector<std::string> heard;
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
  EXPECT_EQ(heard, (std::vector<std::string>{"add 0 one 1", "add 1 two 2",
                                             "remove 0 one 1", "clear -1  0"}));
}

}  // namespace
}  // namespace quorvex

namespace quorvex {
namespace {

TEST(ListBoxBatchTest, RemovesManyAtOnceReportingEachRemovalAsIfOneByOne) {
  ListBox list("l");
  std::vector<std::uint64_t> id;
  for (const char* t : {"a", "b", "c", "d", "e", "f"}) id.push_back(list.Add(t));
  list.Select(4);  // "e"
  std::vector<std::pair<int, std::string>> seen;
  list.Subscribe([&](const ListBox&, const ListChange& c) {
    seen.emplace_back(c.index, c.item);
  });
  // Out of order, with a repeat and an id already gone.
  list.RemoveId(id[5]);
  seen.clear();
  list.RemoveIds({id[3], id[1], id[3], id[5], id[0]});
  EXPECT_EQ(list.Items(), (std::vector<std::string>{"c", "e"}));
  // d at 3; then b at 1; then a at 0: positions as a one-by-one walk saw them.
  EXPECT_EQ(seen, (std::vector<std::pair<int, std::string>>{
                      {3, "d"}, {1, "b"}, {0, "a"}}));
  EXPECT_EQ(list.selected(), 1);  // still "e"
  EXPECT_EQ(list.IndexOfId(id[4]), 1);
  EXPECT_FALSE(list.Contains("b"));
  EXPECT_TRUE(list.Contains("C"));
}

}  // namespace
}  // namespace quorvex
