#include "server/replies.h"

#include <string>
#include <vector>

#include "server/server_test_fixture.h"

namespace quorvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RepliesTest : public ServerTest {
 protected:
  RepliesTest() {
    AddMails(3);
    sim.Launch();
  }
  void Queue(const std::vector<std::string>& lines) {
    frm.lstPending().Clear();
    for (const std::string& line : lines) frm.pending.Append(line);
  }
};

TEST_F(RepliesTest, StatusByChatSaysHowFarAwayTheFirstEntryIs) {
  // One entry: only the "you have" and "there is" lines.
  Queue({"amy-1", "bob-2", "joe~cats"});
  StatusReply(frm, c, "bob");
  EXPECT_THAT(Said(), ElementsAre("(bob) you have <U>1</U> pending",
                                  "there is <U>3</U> total pending"));

  // Finds are not counted as the person's but stand in the queue.
  Queue({"a-1", "b-2", "c~x", "d-4", "bob-5", "e-1", "bob-list", "bob-7",
         "bob~cats"});
  const size_t before = Said().size();
  StatusReply(frm, c, "bob");
  EXPECT_THAT(SaidSince(before),
              ElementsAre("(bob) you have <U>3</U> pending",
                          "<U>4</U> mails till your next request",
                          "there is <U>9</U> total pending"));
  EXPECT_THAT(seen.mails, IsEmpty());
}

TEST_F(RepliesTest, AdvertisementFollowsTheFindAndRangeSettings) {
  for (int i = 0; i < 3; ++i) frm.lstMails.Add("t");
  Queue({"a-1", "b-2"});
  frm.counters.session = 12;
  frm.ScrollSeconds = 45;
  frm.settings.FindsEnable = false;
  Advertise(frm, c);
  EXPECT_THAT(Said(), ElementsAre("quorvex serving <B><U>3</B></U> mails",
                                  "type /<B>srv</B> send <U>x,x-y</U>",
                                  "there are <B><U>2</B></U> pending; "
                                  "<B><U>12</B></U> sent"));
  EXPECT_EQ(frm.ScrollSeconds, 0);

  frm.settings.FindsEnable = true;
  frm.settings.BlocksXYEnable = false;
  Advertise(frm, c);
  EXPECT_EQ(Said().at(4), "type /<B>srv</B> send <U>x</U>; find <U>x,x&y</U>");
}

TEST_F(RepliesTest, SessionMailNeedsAtLeastThreeCharacters) {
  frm.settings.TotalSent = 345;
  frm.counters.session = 21;
  prompter.QueueAnswer("ab");
  mnuMailSession_Click(frm, c);
  EXPECT_THAT(seen.mails, IsEmpty());

  prompter.QueueAnswer("Bob Smith");
  mnuMailSession_Click(frm, c);
  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "Bob Smith");
  EXPECT_EQ(m.subject, " quorvex session served ");
  EXPECT_THAT(m.body,
              HasSubstr("(srv) has served <B><U>21</B></U> this session!"));
  EXPECT_THAT(m.body, HasSubstr("(srv) has served <B><U>345</B></U> since "
                                "installation!"));
}

}  // namespace
}  // namespace quorvex
