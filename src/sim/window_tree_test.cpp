// The window tree, the popup menu, the client's memory and the rooms of
// the world; walking windows, mailboxes and the menu's letters are driven
// through the client in its tests.
#include "sim/window_tree.h"

#include <gtest/gtest.h>

#include "ports/window_api.h"
#include "sim/popup_menu.h"
#include "sim/sim_memory.h"
#include "sim/sim_world.h"

namespace quorvex {
namespace {

TEST(WindowTreeTest, ClassNamesMatchWholeIgnoringCaseAndCaptionsExactly) {
  WindowTree t;
  const Hwnd mdi = t.Create(0, "MDIClient", "");
  const Hwnd box = t.Create(mdi, "AOL Child", "Incoming/Saved Mail", true);
  t.Create(box, "_AOL_Icon", "Read");
  EXPECT_EQ(t.Find(box, 0, "_AOL_Ico", nullptr), 0u);
  EXPECT_EQ(t.Find(mdi, 0, "aol child", "Incoming/Saved Mail"), box);
  EXPECT_EQ(t.Find(mdi, 0, "AOL Child", "incoming/saved mail"), 0u);
  EXPECT_EQ(t.Find(mdi, 0, "AOL Child", "Incoming"), 0u);
}

TEST(WindowTreeTest, DestroyRemovesTheSubtreeAndHandlesAreNeverReused) {
  WindowTree t;
  std::vector<Hwnd> destroyed;
  t.SetDestroyHook([&](const SimWindow& w) { destroyed.push_back(w.hwnd); });
  Hwnd top = t.Create(0, "#32770", "America Online");
  Hwnd st = t.Create(top, "Static", "text");
  Hwnd btn = t.Create(top, "Button", "OK");
  t.Destroy(top);
  EXPECT_EQ(destroyed, (std::vector<Hwnd>{st, btn, top}));
  EXPECT_EQ(t.size(), 0);
  Hwnd again = t.Create(0, "#32770", "America Online");
  EXPECT_TRUE(again != top && again != st && again != btn);
}

TEST(SimWorldTest, RoomsMatchNamesLooselyRefuseOneTryAtATimeAndFill) {
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
  // A room of two with one person in it takes one more, then no one.
  w.SetRoomCapacity("Lobby", 2);
  w.Join("Lobby", "Ann");
  EXPECT_TRUE(w.TryEnterRoom("Lobby"));
  w.Join("Lobby", "Bob");
  EXPECT_FALSE(w.TryEnterRoom("Lobby"));
}

TEST(SimMemoryTest, ReadsOnlyWithinOneMappedBlock) {
  SimMemory m;
  std::uint32_t a = m.Allocate(8, 0xCD);
  std::uint32_t b = m.Allocate(8);
  ASSERT_TRUE(m.WriteU32(a + 4, 0x00A3F123));
  unsigned char bytes[5] = {};
  ASSERT_TRUE(m.Read(a + 3, bytes, 5));
  // Filled as asked, then little-endian, as the program reassembles it.
  EXPECT_EQ(bytes[0], 0xCD);
  EXPECT_EQ(bytes[1], 0x23);
  EXPECT_EQ(bytes[3], 0xA3);

  // Past a block's end (into the gap) or across blocks: nothing read.
  char buf[16];
  EXPECT_FALSE(m.Read(a + 4, buf, 8));
  EXPECT_FALSE(m.Read(a, buf, static_cast<std::size_t>(b - a) + 1));
  EXPECT_FALSE(m.Read(a - 1, buf, 1));
  EXPECT_FALSE(m.Write(b + 6, "abc", 3));

  m.Free(a);
  EXPECT_FALSE(m.Read(a, buf, 1));
  EXPECT_TRUE(m.Read(b, buf, 8));
  EXPECT_GT(m.Allocate(4), b);  // freed addresses are not handed out again
}

TEST(PopupMenuTest, SubmenusOpenAndCloseALevelAtATime) {
  using R = PopupMenu::Result;
  auto items = [] {
    return std::vector<MenuItem>{
        {"&Read Mail", 1, {}},
        {"Read &Offline Mail",
         0,
         {{"&Incoming/Saved Mail", 4, {}}, {"Mail I've Sen&t", 5, {}}}},
        {"Mail &Preferences", 6, {}}};
  };
  PopupMenu n(items());
  n.KeyDown(win::kVkUp);
  n.KeyDown(win::kVkRight);  // no submenu there: nothing
  EXPECT_EQ(n.depth(), 1);
  n.KeyDown(win::kVkUp);
  n.KeyDown(win::kVkRight);
  EXPECT_EQ(n.depth(), 2);
  EXPECT_EQ(n.KeyDown(win::kVkEscape), R::kNone);
  EXPECT_EQ(n.depth(), 1);
  EXPECT_EQ(n.KeyDown(win::kVkEscape), R::kClosed);

  PopupMenu o(items());
  EXPECT_EQ(o.Char('x'), R::kNone);
  EXPECT_EQ(o.Char('O'), R::kNone);  // opens the submenu, case ignored
  EXPECT_EQ(o.Char('t'), R::kChosen);
  EXPECT_EQ(o.chosen(), 5);
  EXPECT_EQ(PopupMenu::Mnemonic("Fish && &Chips"), 'c');
}

}  // namespace
}  // namespace quorvex
