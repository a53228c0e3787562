#include "model/subscriptions.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "model/form.h"
#include "model/label.h"
#include "model/list_box.h"

namespace quorvex {
namespace {

// A view over three models that closes itself when its form closes, as
// the desktop's windows do.
struct View {
  View(Form& form, ListBox& list, Label& label, std::vector<std::string>& log) {
    subs.Add(list, [&log](const ListBox&, const ListChange& c) {
      log.push_back("list " + c.item);
    });
    subs.Add(label,
             [&log](const Label& l) { log.push_back("label " + l.caption()); });
    subs.Add(form, [this, &log](const Form& f) {
      log.push_back(f.open() ? "open" : "close");
      if (!f.open()) subs.Clear();
    });
  }
  Subscriptions subs;
};

TEST(SubscriptionsTest, AViewHearsItsModelsUntilItGoes) {
  Form form("frmTest");
  ListBox list("lstTest");
  Label label("lblTest", "");
  std::vector<std::string> log;
  // Another observer of the same form, after the view: it must still be
  // told when the view ends its subscriptions in the middle of the news.
  int others = 0;
  form.Subscribe([&](const Form&) { ++others; });

  auto view = std::make_unique<View>(form, list, label, log);
  form.Open();
  list.Add("a");
  label.Set("one");
  form.Close();  // the view ends its own subscriptions here
  list.Add("b");
  label.Set("two");
  form.Open();
  EXPECT_EQ(log,
            (std::vector<std::string>{"open", "list a", "label one", "close"}));
  EXPECT_EQ(others, 3);
  EXPECT_TRUE(view->subs.empty());

  // A view destroyed while open leaves no observer behind.
  log.clear();
  view = std::make_unique<View>(form, list, label, log);
  view.reset();
  list.Add("c");
  label.Set("three");
  form.Close();
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(others, 4);
}

}  // namespace
}  // namespace quorvex
