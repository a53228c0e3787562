#include "requests/ban_policy.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ports/memory_registry.h"
#include "requests/room_view.h"
#include "settings/settings.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

TEST(BanningOptionsTest, BadStoredValuesLoadAsDefaults) {
  MemoryRegistry registry;
  BanningOptions form;
  registry.Save(kApp, "Banning", "Mails", "lots");
  registry.Save(kApp, "Banning", "Mistakes", "99999");  // beyond 16 bits
  registry.Save(kApp, "Banning", "FullBox", "7");       // no check value
  registry.Save(kApp, "Banning", "DupeRequests", "0");
  LoadBanning(registry, form);
  EXPECT_EQ(form.cmbMails.text, "500");
  EXPECT_EQ(form.cmbMistakes.text, "3");
  EXPECT_EQ(form.chkFullBox.value, 1);
  EXPECT_EQ(form.chkDupReqs.value, 0);
  form.cmbMails.text = "many";  // typed by hand
  EXPECT_EQ(form.Mails(), 500);
}

TEST(BanningOptionsTest, StoredValuesAtTheEdgesOfTheirRanges) {
  // A combo holds a 16-bit integer, a check box 0, 1 or 2; one past
  // either end loads as the default (500 mails, full box checked).
  const std::pair<const char*, const char*> mails[] = {{"32767", "32767"},
                                                       {"32768", "500"},
                                                       {"-32768", "-32768"},
                                                       {"-32769", "500"},
                                                       {"32767.4", "32767"}};
  for (const auto& [stored, loaded] : mails) {
    MemoryRegistry registry;
    BanningOptions form;
    registry.Save(kApp, "Banning", "Mails", stored);
    LoadBanning(registry, form);
    EXPECT_EQ(form.cmbMails.text, loaded) << stored;
  }
  const std::pair<const char*, int> checks[] = {
      {"-1", 1}, {"0", 0}, {"2", 2}, {"3", 1}};
  for (const auto& [stored, loaded] : checks) {
    MemoryRegistry registry;
    BanningOptions form;
    registry.Save(kApp, "Banning", "FullBox", stored);
    LoadBanning(registry, form);
    EXPECT_EQ(form.chkFullBox.value, loaded) << stored;
  }
}

class AddMistakeTest : public ::testing::Test {
 protected:
  BanningOptions form;
  ListBox MistakeList{"MistakeList"};
  ListBox lstBanned{"lstBanned"};
  Label lblBanned{"lblBanned", "banned: 0"};
  PendingQueue pending;
  Lines said;
  BanContext ctx{
      form,      MistakeList,
      lstBanned, lblBanned,
      pending,   [this](const std::string& l) { said.push_back(l); }};
};

TEST_F(AddMistakeTest, ThreeStrikesThenNobodyCounts) {
  for (const char* l : {"bob-4", "amy-1", "bob-list", "bob~cats"})
    pending.Append(l);
  for (const char* sn : {"bob", "amy", "bob", "bob"}) AddMistake(ctx, sn);
  EXPECT_EQ(said, (Lines{"(bob) you now have <U>2</U> mistakes left",
                         "(amy) you now have <U>2</U> mistakes left",
                         "(bob) you now have <U>1</U> mistakes left",
                         "(bob) you are now banned"}));
  EXPECT_EQ(lstBanned.Items(), Lines{"bob"});
  EXPECT_EQ(lblBanned.caption(), "banned: 1");
  EXPECT_EQ(pending.list().Items(), (Lines{"amy-1", "bob~cats"}));

  // Only elements ahead of a banned one still count: amy's once, and then
  // it sits behind bob's.
  said.clear();
  for (const char* sn : {"amy", "amy", "joe"}) AddMistake(ctx, sn);
  EXPECT_EQ(said, Lines{"(amy) you now have <U>1</U> mistakes left"});
  EXPECT_EQ(MistakeList.Items(), (Lines{"bob-banned", "amy-2"}));

  lstBanned.Select(0);
  BannedLeftClick(lstBanned, lblBanned);
  EXPECT_EQ(lblBanned.caption(), "banned: 0");
  BannedLeftClick(lstBanned, lblBanned);  // empty: nothing
}

TEST_F(AddMistakeTest, LimitsOfOneZeroAndOddTexts) {
  // Limit text and the last line said after three mistakes: "1" never
  // bans, "0" bans at once, "two" counts as 3, "02" is compared as text.
  const std::pair<const char*, const char*> cases[] = {
      {"1", ""},
      {"0", "(bob) you are now banned"},
      {"two", "(bob) you are now banned"},
      {"02", "(bob) you now have <U>-1</U> mistakes left"}};
  for (const auto& [limit, last] : cases) {
    MistakeList.Clear();
    said = {""};
    form.cmbMistakes.text = limit;
    for (int i = 0; i < 3; ++i) AddMistake(ctx, "bob");
    EXPECT_EQ(said.back(), last) << limit;
  }
}

// The room people window: the first name of the room is handled like any.
TEST(RoomPeopleTest, LeavesOutTheBannedAndBansTheSelectedPerson) {
  RoomPeople room;
  ListBox lstBanned{"lstBanned"};
  Label lblBanned{"lblBanned", "banned: 2"};
  PendingQueue pending;
  Label lblPending{"lblPending", "pending: 0"};
  lstBanned.Add("AMY");
  lstBanned.Add("cal");
  room.Load({"amy", "bob", "cal", "dan"}, lstBanned);
  EXPECT_EQ(room.lstRoom.Items(), (Lines{"bob", "dan"}));

  pending.Append("bob-1");
  room.DoubleClick(lstBanned, lblBanned, pending, lblPending);  // no one
  EXPECT_EQ(lstBanned.Count(), 2);
  room.lstRoom.Select(0);
  room.DoubleClick(lstBanned, lblBanned, pending, lblPending);
  EXPECT_EQ(lstBanned.Items(), (Lines{"AMY", "cal", "bob"}));
  EXPECT_EQ(lblBanned.caption(), "banned: 3");
  EXPECT_EQ(room.lstRoom.Items(), Lines{"dan"});
  EXPECT_EQ(lblPending.caption(), "pending: 0");
  EXPECT_TRUE(pending.list().Empty());
}

}  // namespace
}  // namespace quorvex
