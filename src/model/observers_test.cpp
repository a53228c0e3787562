#include "model/observers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/controls.h"
#include "model/form.h"
#include "model/list_box.h"

namespace quorvex {
namespace {

TEST(ObserversTest, UnsubscribedObserversHearNothingEvenMidNotification) {
  Observers<int> observers;
  std::vector<std::string> heard;
  int second = 0;
  observers.Add([&](int v) {
    heard.push_back("first " + std::to_string(v));
    observers.Remove(second);  // the next one goes before it is told
  });
  second = observers.Add(
      [&](int v) { heard.push_back("second " + std::to_string(v)); });
  observers.Notify(1);
  observers.Notify(2);
  EXPECT_EQ(heard, (std::vector<std::string>{"first 1", "first 2"}));
}

TEST(ObserversTest, ModelsTellOnlyOfRealChanges) {
  std::vector<std::string> heard;
  Form form("frmAbout");
  form.Subscribe([&](const Form& f) {
    heard.push_back(std::string(f.open() ? "open" : "closed") +
                    (f.minimized() ? " min" : ""));
  });
  form.Open();
  form.Open();
  form.Minimize();
  form.Close();

  ListBox list("lst");
  list.Add("a");
  list.Add("b");
  int id = list.SubscribeSelection([&](const ListBox& l) {
    heard.push_back("sel " + std::to_string(l.selected()));
  });
  list.Select(1);
  list.Select(1);
  list.Select(5);  // out of range: no selection
  list.UnsubscribeSelection(id);
  list.Select(0);

  TextBox box;
  box.Subscribe([&](const TextBox& b) { heard.push_back("text " + b.text); });
  box.Set("x");
  box.Set("x");
  EXPECT_EQ(heard, (std::vector<std::string>{"open", "open min", "closed min",
                                             "sel 1", "sel -1", "text x"}));
}

}  // namespace
}  // namespace quorvex
