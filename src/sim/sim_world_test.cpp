#include "sim/sim_world.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(SimWorldTest, MailboxesRecordDeliveriesUnlessFull) {
  SimWorld w;
  w.AddPerson("Joe Smith");
  w.SetFullMailbox("ann");
  EXPECT_TRUE(w.Deliver("joesmith", {"Host", "hi", "body", ""}));
  EXPECT_FALSE(w.Deliver("ANN", {"Host", "hi", "body", ""}));
  // Unknown names become people with a mailbox.
  EXPECT_TRUE(w.Deliver("newbie", {"Host", "yo", "", "t"}));
  auto boxes = w.Mailboxes();
  ASSERT_EQ(boxes.size(), 3u);
  ASSERT_EQ(boxes["Joe Smith"].size(), 1u);
  EXPECT_EQ(boxes["Joe Smith"][0].subject, "hi");
  EXPECT_TRUE(boxes["ann"].empty());
  EXPECT_EQ(boxes["newbie"][0].forward_of, "t");
}

TEST(SimWorldTest, RoomsHoldPeopleUpToTheirCapacity) {
  SimWorld w;
  EXPECT_TRUE(w.Join("Tech Chat", "Joe"));
  EXPECT_FALSE(w.Join("techchat", "JOE"));  // same room, same person
  EXPECT_TRUE(w.InRoom("TECH chat", "joe"));
  EXPECT_EQ(w.Room("techchat").name, "Tech Chat");

  w.SetRoomCapacity("Tech Chat", 2);
  EXPECT_TRUE(w.TryEnterRoom("Tech Chat"));  // one place left for the user
  w.Join("Tech Chat", "Ann");
  EXPECT_FALSE(w.TryEnterRoom("Tech Chat"));
  EXPECT_TRUE(w.Leave("Tech Chat", "ann"));
  EXPECT_FALSE(w.Leave("Tech Chat", "ann"));
  EXPECT_TRUE(w.TryEnterRoom("Tech Chat"));

  // Refusals are used up one try at a time.
  w.RefuseRoom("Lobby", 2);
  EXPECT_FALSE(w.TryEnterRoom("Lobby"));
  EXPECT_FALSE(w.TryEnterRoom("Lobby"));
  EXPECT_TRUE(w.TryEnterRoom("Lobby"));
}

}  // namespace
}  // namespace quorvex
