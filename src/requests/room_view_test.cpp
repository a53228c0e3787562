#include "requests/room_view.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

TEST(RoomViewTest, LoadLeavesOutTheBannedAndDoubleClickBansSilently) {
  ListBox lstBanned{"lstBanned"};
  lstBanned.Add("ZED");
  Label lblBanned{"lblBanned", "banned: 1"};
  Label lblPending{"lblPending", "pending: ?"};
  PendingQueue pending;
  for (const char* l : {"joe smith-3", "amy-1", "joesmith~cats", "JoeSmith-4",
                        "joesmith-list", "", "joesmith-9"})
    pending.Append(l);
  RoomForm room;
  room.Load({"Amy", "joesmith", "zed", "JoeSmith"}, lstBanned);
  EXPECT_EQ(room.lstRoom.Items(), (Lines{"Amy", "joesmith", "JoeSmith"}));

  room.DoubleClick(lstBanned, lblBanned, pending, lblPending);  // no choice
  EXPECT_EQ(lstBanned.Count(), 1);
  EXPECT_EQ(lblPending.caption(), "pending: ?");

  room.lstRoom.Select(1);
  room.DoubleClick(lstBanned, lblBanned, pending, lblPending);
  EXPECT_EQ(lstBanned.Items(), (Lines{"ZED", "joesmith"}));
  EXPECT_EQ(lblBanned.caption(), "banned: 2");
  // Spaces are removed but case is not folded, finds go too, and the
  // blank line ends the walks.
  EXPECT_EQ(pending.list().Items(),
            (Lines{"amy-1", "JoeSmith-4", "", "joesmith-9"}));
  EXPECT_EQ(lblPending.caption(), "pending: 4");
  EXPECT_EQ(room.lstRoom.Items(), (Lines{"Amy", "JoeSmith"}));
}

}  // namespace
}  // namespace quorvex
