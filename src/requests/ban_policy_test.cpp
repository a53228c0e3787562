#include "requests/ban_policy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "settings/settings.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

TEST(BanningOptionsTest, RoundTripAndBadStoredValues) {
  MemoryRegistry registry;
  BanningForm form;
  form.cmbMistakes.text = "5";
  form.cmbMails.text = "1250";
  form.chkDupReqs.value = 0;
  SaveBanning(registry, form);
  BanningForm loaded;
  LoadBanning(registry, loaded);
  EXPECT_EQ(loaded.cmbMistakes.text, "5");
  EXPECT_EQ(loaded.cmbMails.text, "1250");
  EXPECT_EQ(loaded.chkDupReqs.value, 0);

  registry.Save(kApp, "Banning", "Mails", "lots");
  registry.Save(kApp, "Banning", "Mistakes", "99999");  // beyond 16 bits
  registry.Save(kApp, "Banning", "FullBox", "7");       // no check value
  LoadBanning(registry, loaded);
  EXPECT_EQ(loaded.cmbMails.text, "500");
  EXPECT_EQ(loaded.cmbMistakes.text, "3");
  EXPECT_EQ(loaded.chkFullBox.value, 1);

  loaded.cmbMails.text = "many";  // typed by hand
  EXPECT_EQ(loaded.Mails(), 500);
}

class AddMistakeTest : public ::testing::Test {
 protected:
  BanningForm form;
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
  form.cmbMistakes.text = "1";  // nobody is ever banned
  AddMistake(ctx, "bob");
  AddMistake(ctx, "bob");
  EXPECT_TRUE(said.empty());
  EXPECT_TRUE(MistakeList.Empty());

  form.cmbMistakes.text = "0";  // the first mistake bans
  AddMistake(ctx, "bob");
  EXPECT_EQ(said, Lines{"(bob) you are now banned"});

  MistakeList.Clear();
  said.clear();
  form.cmbMistakes.text = "two";  // counts as 3
  for (int i = 0; i < 3; ++i) AddMistake(ctx, "amy");
  EXPECT_EQ(said.back(), "(amy) you are now banned");

  // The limit is compared as its text: "02" is never reached.
  MistakeList.Clear();
  said.clear();
  form.cmbMistakes.text = "02";
  for (int i = 0; i < 3; ++i) AddMistake(ctx, "joe");
  EXPECT_EQ(said.back(), "(joe) you now have <U>-1</U> mistakes left");
}

}  // namespace
}  // namespace quorvex
