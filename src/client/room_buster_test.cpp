#include "client/room_buster.h"

#include <string>
#include <vector>

#include "client/chat_room.h"
#include "client/test_client.h"

namespace quorvex {
namespace {

class RoomBusterTest : public ClientTest {
 protected:
  RoomBusterTest() {
    buster.lblBusts.Subscribe(
        [this](const Label& l) { busts_shown.push_back(l.caption()); });
    Launch();
  }
  std::vector<std::string> Lines(std::vector<std::string> texts) const {
    for (std::string& t : texts) t = ChatLine(c, t);
    return texts;
  }
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
  FrmRoomBuster buster{c, [this] { ++restarts; }};
  std::vector<std::string> busts_shown;
};

TEST_F(RoomBusterTest, BustsAFullRoomCountingTheRefusals) {
  sim.RefuseRoom("Private Room", 2);
  Bust("Private Room");
  EXPECT_EQ(buster.cmdStart.caption(), "&stop");
  EXPECT_FALSE(buster.txtRoom.enabled);
  Run(30);
  EXPECT_EQ(chats,
            Lines({"quorvex busting <B><U>Private Room</B></U>",
                   "quorvex busted <B><U>Private Room</B></U> in <B><U>3</B>"
                   "</U> tries",
                   "quorvex stopped busting <B><U>Private Room</B></U> at "
                   "<B><U>3</B></U> tries"}));
  EXPECT_EQ(sim.current_room(), "Private Room");
  EXPECT_EQ(busts_shown,
            (std::vector<std::string>{"busts: 1", "busts: 2", "busts: 0"}));
  ExpectIdle();
  EXPECT_EQ(api.FindWindow("#32770", nullptr), 0u);  // refusals dismissed
  EXPECT_EQ(restarts, 0);

  // A second bust counts from nothing.
  sim.RefuseRoom("Lobby", 1);
  Bust("Lobby");
  Run(30);
  EXPECT_EQ(chats.back(), ChatLine(c,
                                   "quorvex stopped busting <B><U>Lobby</B>"
                                   "</U> at <B><U>2</B></U> tries"));
}

TEST_F(RoomBusterTest, StoppingBeforeAnyTryAndClosingTheWindow) {
  Bust("Private");
  buster.cmdStart_Click();
  EXPECT_EQ(chats.back(), ChatLine(c,
                                   "quorvex stopped busting <B><U>Private</B>"
                                   "</U> at <B><U>0</B></U> tries"));
  ExpectIdle();
  // The exit closes the window without a word; it opens fresh.
  Bust("Private");
  buster.lblExit_Click();
  EXPECT_FALSE(buster.loaded());
  ExpectIdle();
  EXPECT_EQ(chats.size(), 1u);  // only the start's line
  buster.Form_Load();
  EXPECT_EQ(buster.txtRoom.text, "");
}

TEST_F(RoomBusterTest, SpacesDoNotCountInTheRoomNameButCaseDoes) {
  sim.SetRoomCapacity("TownSquare", 0);  // the client's caption
  Bust("Town Square");
  Run(5);
  EXPECT_EQ(sim.current_room(), "TownSquare");
  EXPECT_EQ(chats[1], ChatLine(c,
                               "quorvex busted <B><U>Town Square</B></U> in "
                               "<B><U>1</B></U> tries"));
  EXPECT_FALSE(buster.busting());

  // In the room already, but typed in another case: never recognised; the
  // try waits until the member stops it.
  Bust("townsquare");
  bool still_trying = false;
  host.Schedule(5, [&] {
    still_trying = buster.busting() && buster.tries() == 1;
    buster.cmdStart_Click();
  });
  Run(7);
  EXPECT_TRUE(still_trying);
  EXPECT_EQ(chats, Lines({"quorvex busting <B><U>townsquare</B></U>",
                          "quorvex stopped busting <B><U>townsquare</B></U> "
                          "at <B><U>1</B></U> tries"}));
}

TEST_F(RoomBusterTest, ASignedOffClientIsRestartedFromTheTick) {
  sim.SignOff();
  Bust("Private");
  Run(3);
  // Each tick tries, finds no answer, and asks for the restart (here one
  // that does nothing).
  EXPECT_GE(restarts, 2);
  EXPECT_EQ(buster.tries(), restarts);
  EXPECT_TRUE(buster.busting());
}

}  // namespace
}  // namespace quorvex
