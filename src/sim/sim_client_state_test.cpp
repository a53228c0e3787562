// A client whose program is started again keeps its world, and a crash
// takes its windows at once.
#include "sim/sim_client_fixture.h"

namespace quorvex {
namespace {

std::vector<std::string> Subjects(const SimClient& c, const std::string& sn) {
  std::vector<std::string> out;
  for (const auto& [name, box] : c.Mailboxes())
    if (name == sn)
      for (const ReceivedMail& m : box) out.push_back(m.subject);
  return out;
}

TEST(SimClientStateTest, AClientStartedAgainKeepsItsWorldAndPendingFaults) {
  SimRig first;
  SimClient& a = first.client;
  a.SetUserName("Host");
  a.SetRoomName("Town Square");
  a.AddPerson("Ann");
  a.AddMail("one");
  a.AddMail("two");
  a.SetDeadMail(2);
  a.SetDeadMail(5);  // before its mail came
  a.SetFullMailbox("Cal");
  a.SetErrorLine("Cal", "Cal-full");
  a.knobs().signon_failures = 1;
  a.knobs().latency = 0.4;
  a.Launch();
  a.RefuseRoom("Town Square", 2);
  a.world().Deliver("Ann", {"Host", "Fwd: one", "body", "one"});
  // A mail written offline waits to be sent.
  a.SignOff();
  const Hwnd write = WriteMail(first, "Bob", 3);
  ASSERT_NE(write, 0u);
  ClickIcon(a, FindNthChild(a, write, "_AOL_Icon", 17));
  ASSERT_EQ(a.WaitingCount(), 1);
  a.SetPreference("Perform a spell check before sending mail", 1);

  // Written as text and read back, as a new process would.
  const nlohmann::json saved = nlohmann::json::parse(a.SaveState().dump());
  SimRig second;
  SimClient& b = second.client;
  b.RestoreState(saved);
  b.Start();
  second.Run(5);
  ASSERT_NE(FindDocument(b, "Sign On"), 0u);
  EXPECT_EQ(b.user_name(), "Host");
  EXPECT_EQ(b.IncomingTitles(), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(Subjects(b, "Ann"), std::vector<std::string>{"Fwd: one"});
  EXPECT_EQ(b.WaitingCount(), 1);
  EXPECT_EQ(b.Waiting()[0].to, "Bob");
  EXPECT_EQ(b.knobs().latency, 0.4);
  EXPECT_EQ(b.knobs().signon_failures, 1);
  EXPECT_EQ(b.Preference("Perform a spell check before sending mail"), 1);
  EXPECT_TRUE(b.world().FindPerson("cal")->full_mailbox);
  EXPECT_EQ(saved["error_lines"]["cal"], "Cal-full");
  EXPECT_EQ(b.world().FindRoom("townsquare")->refusals, 2);
  EXPECT_TRUE(b.world().InRoom("Town Square", "Ann"));
  // Its saved state is the one it came from: nothing was lost on the way.
  EXPECT_EQ(b.SaveState(), saved);

  // The mail added later takes the dead number set before it came.
  b.AddMail("three");
  b.AddMail("four");
  b.AddMail("five");
  EXPECT_EQ(b.SaveState()["incoming"][4]["dead"], true);
  EXPECT_EQ(b.SaveState()["incoming"][2]["dead"], false);
}

TEST(SimClientStateTest, AStagedClientLaunchesAsSetUp) {
  SimRig first;
  first.client.SetUserName("Host");
  first.client.SetRoomName("Lobby");
  first.client.AddPerson("Ann");
  first.client.SetSignedOffAtStart(false);
  SimRig second;
  second.client.RestoreState(first.client.SaveState());
  second.client.Launch();
  EXPECT_TRUE(second.client.signed_on());
  EXPECT_EQ(second.client.current_room(), "Lobby");
  EXPECT_TRUE(second.world.InRoom("Lobby", "Ann"));
}

TEST(SimClientStateTest, ACrashTakesTheWindowsAtOnceAndAStartUnderWay) {
  SimRig rig;
  SimClient& c = rig.client;
  c.Launch();
  ASSERT_TRUE(c.running());
  c.Crash();
  EXPECT_FALSE(c.running());
  EXPECT_EQ(FindFrame(c), 0u);
  EXPECT_EQ(rig.events.client,
            (std::vector<std::string>{"signs off", "closes"}));
  // Nothing more comes of a dead client.
  c.Crash();
  EXPECT_EQ(rig.events.client.size(), 2u);

  // A crash while the program is starting: no "Sign On" ever comes, and
  // the next start does.
  c.Start();
  rig.Run(0.5);
  c.Crash();
  rig.Run(5);
  EXPECT_FALSE(c.running());
  c.Start();
  rig.Run(5);
  EXPECT_NE(FindDocument(c, "Sign On"), 0u);

  // A crash while the client is closing: the close never completes twice.
  c.SendMessageA(FindFrame(c), win::kWmClose, 0, 0);
  c.Crash();
  rig.Run(3);
  EXPECT_EQ(std::count(rig.events.client.begin(), rig.events.client.end(),
                       std::string("closes")),
            3);
}

}  // namespace
}  // namespace quorvex
