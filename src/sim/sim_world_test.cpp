// Mailboxes and capacity are driven through the client in its tests.
#include "sim/sim_world.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(SimWorldTest, RoomsMatchNamesLooselyAndRefuseOneTryAtATime) {
  SimWorld w;
  EXPECT_TRUE(w.Join("Tech Chat", "Joe"));
  EXPECT_FALSE(w.Join("techchat", "JOE"));  // same room, same person
  EXPECT_EQ(w.Room("techchat").name, "Tech Chat");
  EXPECT_TRUE(w.Leave("Tech Chat", "joe"));
  EXPECT_FALSE(w.Leave("Tech Chat", "joe"));

  w.RefuseRoom("Lobby", 2);
  EXPECT_FALSE(w.TryEnterRoom("Lobby"));
  EXPECT_FALSE(w.TryEnterRoom("Lobby"));
  EXPECT_TRUE(w.TryEnterRoom("Lobby"));
}

}  // namespace
}  // namespace quorvex
