#include "client/instant_messages.h"

#include "client/error_boxes.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

using InstantMessagesTest = ClientTest;

TEST_F(InstantMessagesTest, SendsAndSwitchesOffAndOnThroughTheWindow) {
  Launch();
  SendIM(c, "Ann", "hello there");
  IMsOff(c);
  Run(1);
  EXPECT_FALSE(sim.ims_on());
  // The client's answer box is pressed, the message window closed.
  EXPECT_EQ(FindDialog(api, "America Online"), 0u);
  EXPECT_EQ(FindDocument(api, kSendIm), 0u);
  IMsOn(c);
  Run(1);
  EXPECT_TRUE(sim.ims_on());
  EXPECT_EQ(FindDialog(api, "America Online"), 0u);
  EXPECT_EQ(ims, (std::vector<std::string>{"Ann: hello there", "$IM_OFF: =)",
                                           "$IM_ON: =)"}));
}

TEST_F(InstantMessagesTest, RunsTheKeywordAgainWhileTheWindowDoesNotCome) {
  Launch();
  sim.SetLatency(5000);  // the window comes long after the run's end
  host.SetEnd(1000);
  EXPECT_THROW(SendIM(c, "Ann", "hi"), RunEnded);
  // Again after 10 s, then ever more slowly, up to one every 40 s: 26 in
  // 1000 s (at 10, 30, 70, 110, ...), never one on every poll.
  EXPECT_GE(Count(win::kWmSetText), 24);
  EXPECT_LE(Count(win::kWmSetText), 28);
  EXPECT_TRUE(ims.empty());
}

TEST_F(InstantMessagesTest, ASignedOffClientEndsTheWait) {
  // Signed off, the window never comes: the send gives up at once instead
  // of waiting for ever.
  sim.SetSignedOffAtStart();
  Launch();
  host.SetEnd(1000);
  SendIM(c, "Ann", "hi");
  EXPECT_LT(host.Elapsed(), 1);
  EXPECT_TRUE(ims.empty());
}

TEST_F(InstantMessagesTest, ASignOffWhileWaitingEndsTheWait) {
  Launch();
  sim.SetLatency(30);
  host.SetEnd(1000);
  host.Schedule(15, [this] { sim.SignOff(); });
  IMsOff(c);
  EXPECT_LT(host.Elapsed(), 20);
  EXPECT_TRUE(ims.empty());
}

}  // namespace
}  // namespace quorvex
