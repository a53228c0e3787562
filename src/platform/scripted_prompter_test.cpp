#include "platform/scripted_prompter.h"

#include <gtest/gtest.h>

#include <vector>

namespace quorvex {
namespace {

TEST(ScriptedPrompterTest, AnswersInOrderAndReportsEveryBox) {
  ScriptedPrompter p;
  std::vector<PromptRecord> shown;
  p.SetObserver([&](const PromptRecord& r) { shown.push_back(r); });
  p.QueueAnswer("srv");
  p.QueueAnswer(" YES ");
  p.QueueAnswer("maybe");
  EXPECT_EQ(p.QueuedAnswers(), 3u);

  EXPECT_EQ(p.InputBox("enter a handle", "handle", "old"), "srv");
  p.MessageBox("done", "quorvex");  // takes no answer
  EXPECT_TRUE(p.YesNo("build the lists?", "lists"));
  EXPECT_FALSE(p.YesNo("again?", "lists"));  // not "yes": no
  // Nothing queued: the input box is cancelled, the yes/no box says no.
  EXPECT_EQ(p.InputBox("enter a screen name to remove", "screen name", "x"),
            "");
  EXPECT_FALSE(p.YesNo("sure?", "quit"));
  EXPECT_EQ(p.QueuedAnswers(), 0u);

  ASSERT_EQ(shown.size(), 6u);
  EXPECT_EQ(shown[0].kind, "input");
  EXPECT_EQ(shown[0].title, "handle");
  EXPECT_EQ(shown[0].prompt, "enter a handle");
  EXPECT_EQ(shown[0].default_text, "old");
  EXPECT_EQ(shown[0].answer, "srv");
  EXPECT_EQ(shown[1].kind, "message");
  EXPECT_EQ(shown[1].prompt, "done");
  EXPECT_EQ(shown[2].kind, "yesno");
  EXPECT_EQ(shown[2].answer, "yes");
  EXPECT_EQ(shown[3].answer, "no");
  EXPECT_EQ(shown[4].answer, "");
  EXPECT_EQ(shown[5].answer, "no");
}

}  // namespace
}  // namespace quorvex
