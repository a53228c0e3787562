// The serving loop with its real jobs against the simulated client: people
// ask in the room, and afterwards every mailbox holds exactly what its
// owner asked for.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "requests/request_parser.h"
#include "server/forward_job_test_rig.h"
#include "server/serve_engine.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ServingEndToEndTest : public ForwardJobRig {
 protected:
  Lines Sorted(Lines v) {
    std::sort(v.begin(), v.end());
    return v;
  }
  bool WasSaid(const std::string& line) const {
    const Lines said = Said();
    return std::find(said.begin(), said.end(), line) != said.end();
  }
};

TEST_F(ServingEndToEndTest, EveryRequesterGetsExactlyWhatTheyAskedFor) {
  AddMails(30);
  sim.SetFullMailbox("ann");
  sim.SetDeadMail(9);
  frm.settings.ListSize = 50;
  prompter.QueueAnswer("yes");  // make lists
  sim.Launch();
  ServeEngine engine(frm, c);
  RequestContext requests{frm.settings,  frm.frmBanning, frm.pending,
                          frm.lstBanned, frm.lstMails,   frm.ReplyQueue,
                          frm.lblPending};
  engine.cmdStart_Click();
  ASSERT_TRUE(frm.ServerOn);
  ASSERT_EQ(frm.lstLists.Items(), Lines{"1 31"});

  const std::pair<const char*, const char*> lines[] = {
      {"Bob", "/srv send 5"},      {"Amy", "/srv send 5"},
      {"Bob", "/srv send 7"},      {"Amy", "/srv send list"},
      {"Joe", "/srv find mail 2"}, {"Ann", "/srv send 3"},
      {"Kim", "/srv send 9"},      {"Lee", "/srv send 10-12"},
      {"Ann", "/srv send 4"}};
  double at = 1;
  for (const auto& [who, text] : lines) {
    host.Schedule(at, [&requests, who = who, text = text] {
      HandleChatLine(requests, who, text);
    });
    at += 0.7;
  }
  // Long after mail 9 turned out dead: answered from the cache.
  host.Schedule(
      150, [&requests] { HandleChatLine(requests, "Lee", "/srv send 9"); });
  Run(200);

  EXPECT_EQ(Sorted(Forwarded("bob")), (Lines{"mail 5", "mail 7"}));
  EXPECT_EQ(Sorted(Forwarded("amy")),
            (Lines{" quorvex list number 1 ", "mail 5"}));
  EXPECT_EQ(Sorted(Forwarded("lee")), (Lines{"mail 10", "mail 11", "mail 12"}));
  EXPECT_EQ(Received("ann"), 0u);
  EXPECT_EQ(Received("kim"), 0u);
  ASSERT_EQ(Received("joe"), 1u);
  const ReceivedMail& find = world.FindPerson("joe")->mailbox[0];
  EXPECT_EQ(find.subject, "quorvex find results for ");
  EXPECT_NE(find.body.find("<B><U>11</B></U> find results for <B><U>mail 2"),
            std::string::npos);
  // The list written at start came back to the user.
  EXPECT_EQ(Received(kUser), 1u);

  EXPECT_TRUE(WasSaid("(ann) you have a full mailbox"));
  EXPECT_TRUE(WasSaid("kim mail <U>9</U> is a dead mail"));
  EXPECT_TRUE(WasSaid("lee mail <U>9</U> is a dead mail"));
  EXPECT_TRUE(WasSaid("bob mail <U>5</U> sent"));
  EXPECT_TRUE(WasSaid("joe results for <U>mail 2</U> sent"));
  EXPECT_TRUE(frm.lstPending().Empty());
  EXPECT_TRUE(frm.ReplyQueue.Empty());
}

}  // namespace
}  // namespace quorvex
