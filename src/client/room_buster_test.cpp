#include "client/room_buster.h"

#include <string>

#include "client/chat_room.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

// The room_buster scenarios check the lines said, the busts label and the
// restart of a signed-off client; these tests check the window's state.
class RoomBusterTest : public ClientTest {
 protected:
  RoomBusterTest() { Launch(); }
  void Bust(const std::string& room) {
    chats.clear();
    buster.Form_Load();
    buster.txtRoom.text = room;
    buster.cmdStart_Click();
  }
  // The window as it is between busts.
  void ExpectIdle() {
    EXPECT_EQ(buster.cmdStart.caption(), "&start");
    EXPECT_TRUE(buster.txtRoom.enabled);
    EXPECT_FALSE(buster.Timer1->enabled());
  }

  int restarts = 0;
  Form window{"frmRoomBuster"};
  RoomBuster buster{window, c, [this] { ++restarts; }};
};

TEST_F(RoomBusterTest, BustsAFullRoomThenClosesFresh) {
  sim.RefuseRoom("Private Room", 2);
  Bust("Private Room");
  EXPECT_EQ(buster.cmdStart.caption(), "&stop");
  EXPECT_FALSE(buster.txtRoom.enabled);
  Run(30);
  EXPECT_EQ(sim.current_room(), "Private Room");
  ExpectIdle();
  EXPECT_EQ(api.FindWindowA("#32770", nullptr), 0u);  // refusals dismissed
  EXPECT_EQ(restarts, 0);

  // The exit stops a bust under way without a word; the window opens fresh.
  Bust("Lobby");
  buster.lblExit_Click();
  EXPECT_FALSE(buster.loaded());
  ExpectIdle();
  EXPECT_EQ(chats.size(), 1u);  // only the start's line
  buster.Form_Load();
  EXPECT_EQ(buster.txtRoom.text, "");
}

TEST_F(RoomBusterTest, ARoomTypedInAnotherCaseIsNeverRecognised) {
  // In the room already: the try waits until the member stops it.
  Bust("lobby");
  bool still_trying = false;
  host.Schedule(5, [&] {
    still_trying = buster.busting() && buster.tries() == 1;
    buster.cmdStart_Click();
  });
  Run(7);
  EXPECT_TRUE(still_trying);
  EXPECT_EQ(chats.back(), ChatLine(c,
                                   "quorvex stopped busting <B><U>lobby</B>"
                                   "</U> at <B><U>1</B></U> tries"));
}

}  // namespace
}  // namespace quorvex
