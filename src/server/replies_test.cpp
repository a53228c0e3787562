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
    for (const std::string& line : lines) frm.pending.Append(line);
  }
};

TEST_F(RepliesTest, StatusByChatSaysHowFarAwayTheFirstEntryIs) {
  // One entry: only the "you have" and "there is" lines.
  Queue({"amy-1", "bob-2", "joe~cats"});
  StatusReply(frm, c, "bob");
  EXPECT_THAT(Said(), ElementsAre("(bob) you have <U>1</U> pending",
                                  "there is <U>3</U> total pending"));

  // Three entries, the first of them fifth in the queue; finds are not
  // counted as the person's but stand in the queue.
  frm.lstPending().Clear();
  Queue({"a-1", "b-2", "c~x", "d-4", "bob-5", "e-1", "bob-list", "bob-7",
         "bob~cats"});
  size_t before = Said().size();
  StatusReply(frm, c, "bob");
  EXPECT_THAT(SaidSince(before),
              ElementsAre("(bob) you have <U>3</U> pending",
                          "<U>4</U> mails till your next request",
                          "there is <U>9</U> total pending"));

  // Nothing pending at all.
  frm.lstPending().Clear();
  before = Said().size();
  StatusReply(frm, c, "ann");
  EXPECT_THAT(SaidSince(before),
              ElementsAre("(ann) you have <U>0</U> pending",
                          "there is <U>0</U> total pending"));
  EXPECT_THAT(seen.mails, IsEmpty());
}

TEST_F(RepliesTest, StatusByMail) {
  frm.settings.ScrollMethod = false;
  frm.settings.LAscii = "<<";
  frm.settings.RAscii = ">>";
  Queue({"a-1", "b-2", "bob-3", "bob-4"});
  StatusReply(frm, c, "bob");
  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "bob");
  EXPECT_EQ(m.subject, "quorvex status report");
  EXPECT_TRUE(m.send_now);
  EXPECT_THAT(m.body,
              HasSubstr("<font face=tahoma color=#003377></B></U></I><<quorvex"
                        "\xC2\xB0\xC2\xB7\xC2\xB2 mail server -by- kestrin>>"));
  EXPECT_THAT(m.body, HasSubstr("quorvex <B><U>status report</B></U>"));
  EXPECT_THAT(m.body, HasSubstr("you have <U><B>2</B></U> pending"));
  EXPECT_THAT(
      m.body,
      HasSubstr("<B><U>2</B></U> mails pending till your next request"));
  EXPECT_THAT(m.body,
              HasSubstr("there is <U><B>4</B></U> total mails pending"));
  // The chat lines carry the decorations too.
  EXPECT_THAT(Said(), ElementsAre("<<(bob) status report has been sent>>"));
}

TEST_F(RepliesTest, ThankYouByChatAndByMail) {
  ThankYouReply(frm, c, "bob");
  EXPECT_THAT(Said(), ElementsAre("(bob)you are welcome"));

  frm.frmMessages.lstThankyou.Add("any time");
  frm.frmMessages.lstThankyou.Add("glad to help");
  size_t before = Said().size();
  ThankYouReply(frm, c, "amy");
  ASSERT_EQ(SaidSince(before).size(), 1u);
  std::string said = SaidSince(before)[0];
  EXPECT_TRUE(said == "(amy)any time" || said == "(amy)glad to help") << said;
  EXPECT_THAT(seen.mails, IsEmpty());

  // By mail: the mail, and one line in the room.
  frm.settings.ScrollMethod = false;
  frm.frmMessages.lstThankyou.Clear();
  before = Said().size();
  ThankYouReply(frm, c, "joe");
  ASSERT_EQ(seen.mails.size(), 1u);
  EXPECT_EQ(seen.mails[0].to, "joe");
  EXPECT_EQ(seen.mails[0].subject, "quorvex thankyou");
  EXPECT_TRUE(seen.mails[0].send_now);
  EXPECT_THAT(seen.mails[0].body, HasSubstr("quorvex <B><U>thankyou</B></U>"));
  EXPECT_THAT(seen.mails[0].body, HasSubstr("you are welcome"));
  EXPECT_THAT(SaidSince(before), ElementsAre("(joe) thankyou has been sent"));
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
  EXPECT_EQ(frm.status.text(), "status: advertising");

  frm.settings.FindsEnable = true;
  frm.settings.FindsXYEnable = false;
  frm.settings.BlocksXYEnable = false;
  size_t before = Said().size();
  Advertise(frm, c);
  EXPECT_EQ(SaidSince(before).at(1),
            "type /<B>srv</B> send <U>x</U>; find <U>x</U>");
  frm.settings.FindsXYEnable = true;
  before = Said().size();
  Advertise(frm, c);
  EXPECT_EQ(SaidSince(before).at(1),
            "type /<B>srv</B> send <U>x</U>; find <U>x,x&y</U>");
}

TEST_F(RepliesTest, SessionMail) {
  frm.settings.LAscii = "[";
  frm.settings.RAscii = "]";
  frm.settings.TotalSent = 345;
  frm.counters.session = 21;
  std::vector<PromptRecord> prompts;
  prompter.SetObserver([&](const PromptRecord& r) { prompts.push_back(r); });

  prompter.QueueAnswer("ab");  // too short: nothing happens
  mnuMailSession_Click(frm, c);
  EXPECT_THAT(seen.mails, IsEmpty());
  ASSERT_EQ(prompts.size(), 1u);
  EXPECT_EQ(prompts[0].title, "screen name");
  EXPECT_EQ(prompts[0].prompt,
            "enter a screen name to send session your session to");
  EXPECT_EQ(prompts[0].default_text, kSessionMailDefault);

  prompter.QueueAnswer("Bob Smith");
  mnuMailSession_Click(frm, c);
  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "Bob Smith");
  EXPECT_EQ(m.subject, "[ quorvex session served ]");
  EXPECT_THAT(m.body,
              HasSubstr("(srv) has served <B><U>21</B></U> this session!"));
  EXPECT_THAT(
      m.body,
      HasSubstr("(srv) has served <B><U>345</B></U> since installation!"));
}

}  // namespace
}  // namespace quorvex
