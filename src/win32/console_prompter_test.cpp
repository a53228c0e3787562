#include "win32/console_prompter.h"

#include <gtest/gtest.h>

#include <sstream>

namespace quorvex::win32 {
namespace {

TEST(ConsolePrompterTest, AnswersComeFromTheConsoleOneLineEach) {
  std::istringstream in("new name\r\n\nyes\nNo\n");
  std::ostringstream out;
  ConsolePrompter p(in, out);
  EXPECT_EQ(p.InputBox("handle?", "quorvex", "srv"), "new name");
  EXPECT_EQ(p.InputBox("handle?", "quorvex", "srv"), "srv");  // empty: kept
  EXPECT_TRUE(p.YesNo("build lists?", "quorvex"));
  EXPECT_FALSE(p.YesNo("build lists?", "quorvex"));
  p.MsgBox("done", "quorvex");
  // Out of input: cancelled, and no.
  EXPECT_EQ(p.InputBox("handle?", "quorvex", "srv"), "");
  EXPECT_FALSE(p.YesNo("again?", "quorvex"));
  EXPECT_NE(out.str().find("[quorvex] handle? [srv]: "), std::string::npos);
  EXPECT_NE(out.str().find("[quorvex] done\n"), std::string::npos);
}

}  // namespace
}  // namespace quorvex::win32
