#include "invariants.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace quorvex::soak {
namespace {

// A scenario of three mails, and transcript lines built by hand.
class InvariantsTest : public ::testing::Test {
 protected:
  InvariantsTest() { sc.mails = {"a", "b", "c"}; }
  void Add(double t, const std::string& item) {
    Line(t, R"("ev":"list","name":"lstPending","op":"add","item":")" + item +
                "\"");
  }
  void Remove(double t, const std::string& item) {
    Line(t, R"("ev":"list","name":"lstPending","op":"remove","item":")" + item +
                "\"");
  }
  void Line(double t, const std::string& body) {
    text += "{\"t\":" + std::to_string(t) + "," + body + "}\n";
  }
  // The final state: mailboxes as (owner, mail number) pairs.
  std::vector<std::string> Check(
      const std::vector<std::pair<std::string, int>>& received,
      const std::string& pending = "[]", const std::string& sent = "sent: 0",
      const std::string& stored = "0") {
    std::map<std::string, std::string> by_owner;
    for (const auto& [owner, n] : received)
      by_owner[owner] +=
          std::string(by_owner[owner].empty() ? "" : ",") +
          R"({"from":"Host","subject":"x","body":"[mail number <B><U>)" +
          std::to_string(n) + R"(</B></U>]"})";
    std::string boxes;
    for (const auto& [owner, mails] : by_owner)
      boxes += (boxes.empty() ? "\"" : ",\"") + owner + "\":[" + mails + "]";
    Line(999, R"("ev":"final","lists":{"lstPending":)" + pending +
                  R"(},"labels":{"lblSent":")" + sent +
                  R"("},"registry":{"Settings":{"TotalSent":")" + stored +
                  R"("}},"files":{},"mailboxes":{)" + boxes + "}");
    figures = {};
    return CheckRun(sc, text, &figures);
  }

  sim::Scenario sc;
  std::string text;
  RunFigures figures;
};

TEST_F(InvariantsTest, EveryAcceptedRequestDeliveredOrPending) {
  Add(1, "bob-1");
  Add(1.5, "amy-1");
  Add(2, "bob-2");
  Remove(3, "bob-1");
  Remove(3, "amy-1");
  // One forward to both (counted once each); bob-2 still pending.
  EXPECT_TRUE(
      Check({{"bob", 1}, {"amy", 1}}, R"(["bob-2"])", "sent: 2", "2").empty());
  EXPECT_EQ(figures.accepted, 3);
  EXPECT_EQ(figures.delivered, 2);
  EXPECT_EQ(figures.still_pending, 1);
}

TEST_F(InvariantsTest, LostDuplicatedAndUnaskedMailsAreViolations) {
  sc.run_until = 1000;
  Add(1, "bob-1");
  Add(2, "bob-2");
  Remove(3, "bob-1");
  Remove(4, "bob-2");
  // bob-2 taken long before the end and never received; bob-1 twice; a
  // mail to zed, who asked for nothing.
  const auto bad = Check({{"bob", 1}, {"bob", 1}, {"zed", 3}});
  ASSERT_EQ(bad.size(), 3u) << testing::PrintToString(bad);
  EXPECT_NE(bad[0].find("zed, who asked for nothing"), std::string::npos);
  EXPECT_NE(bad[1].find("bob-1: delivered 2 times, asked 1"),
            std::string::npos);
  EXPECT_NE(bad[2].find("bob-2: asked 1 times, delivered 0, pending 0"),
            std::string::npos);
}

TEST_F(InvariantsTest, RequestsEndedTheWaysTheProgramKnowsAreExcused) {
  sc.dead_mails = {3};
  sc.full_mailboxes = {"Amy"};
  sc.timeline.push_back(
      {.line = 1, .at = 5, .verb = "press", .name = "mnuClearALL"});
  Add(1, "bob-3");  // a dead mail
  Add(1, "amy-1");  // a full mailbox
  Add(1, "joe-1");  // cleared by the user, with everything in the list
  Remove(2, "bob-3");
  Remove(2, "amy-1");
  Line(5, R"("ev":"list","name":"lstPending","op":"clear")");
  Add(6, "ann-2");  // taken 61 s before the end: lost, not in flight
  Add(6, "cat-2");  // taken 60 s before the end: in flight
  Remove(938, "ann-2");
  Remove(939, "cat-2");
  // Handed to the client, which signed off while sending it (1 s later:
  // lost by the client; 1.5 s: the mail should have gone).
  sc.timeline.push_back({.line = 2, .at = 11, .verb = "signoff"});
  for (const char* who : {"eve", "fay"}) {
    Add(9, std::string(who) + "-1");
    Remove(9.5, std::string(who) + "-1");
  }
  // Taken, and the client signed off before it took the mail: the
  // forward ends there and the group is lost.
  Add(9, "gil-1");
  Remove(10.5, "gil-1");
  Line(10,
       R"j("ev":"mail","to":"(eve)","body":"[mail number <B><U>1</B></U>]")j");
  Line(9.5,
       R"j("ev":"mail","to":"(fay)","body":"[mail number <B><U>1</B></U>]")j");
  const auto bad = Check({});
  ASSERT_EQ(bad.size(), 2u) << testing::PrintToString(bad);
  EXPECT_NE(bad[0].find("ann-2"), std::string::npos);
  EXPECT_NE(bad[1].find("fay-1"), std::string::npos);
  EXPECT_EQ(figures.in_flight, 1);
  EXPECT_EQ(figures.excused, 6);
}

TEST_F(InvariantsTest, TheTotalShownIsTheTotalStored) {
  EXPECT_TRUE(Check({}, "[]", "sent: 7", "7").empty());
  text.clear();
  const auto bad = Check({}, "[]", "sent: 7", "6");
  ASSERT_EQ(bad.size(), 1u);
  EXPECT_EQ(bad[0], "counter sent: 7 but TotalSent = 6");
  // Not when a write of the settings failed.
  text = R"({"t":1,"ev":"fault","kind":"registry-write","what":"x"})"
         "\n";
  EXPECT_TRUE(Check({}, "[]", "sent: 7", "6").empty());
  EXPECT_EQ(figures.faults.at("registry-write"), 1);
}

}  // namespace
}  // namespace quorvex::soak
