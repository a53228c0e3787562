#include "client/instant_messages.h"

#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/test_client.h"

namespace quorvex {
namespace {

using InstantMessagesTest = ClientTest;

TEST_F(InstantMessagesTest, SendsThroughTheMessageWindow) {
  Launch();
  SendIM(c, "Ann", "hello there");
  EXPECT_EQ(ims, std::vector<std::string>{"Ann: hello there"});
  Run(1);
  EXPECT_EQ(FindDocument(api, kSendIm), 0u);
}

TEST_F(InstantMessagesTest, OffAndOnPressTheClientsAnswerBox) {
  Launch();
  IMsOff(c);
  Run(1);
  EXPECT_FALSE(sim.ims_on());
  EXPECT_EQ(FindDialog(api, "America Online"), 0u);
  EXPECT_EQ(FindDocument(api, kSendIm), 0u);
  IMsOn(c);
  Run(1);
  EXPECT_TRUE(sim.ims_on());
  EXPECT_EQ(FindDialog(api, "America Online"), 0u);
  EXPECT_EQ(ims, (std::vector<std::string>{"$IM_OFF: =)", "$IM_ON: =)"}));
}

TEST_F(InstantMessagesTest, RunsTheKeywordAgainWhileTheWindowDoesNotCome) {
  sim.SetSignedOffAtStart();  // the keyword box does nothing signed off
  Launch();
  host.SetEnd(1000);
  EXPECT_THROW(SendIM(c, "Ann", "hi"), RunEnded);
  int keywords = 0;
  for (const auto& m : api.messages)
    if (m.msg == win::kWmSetText) ++keywords;
  // One every 30000 rounds of 10 ms of virtual idle.
  EXPECT_GE(keywords, 3);
  EXPECT_TRUE(ims.empty());
}

}  // namespace
}  // namespace quorvex
