#include "server/forward_job.h"

#include <algorithm>
#include <utility>

#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/window_ops.h"
#include "requests/request_parser.h"
#include "server/error_sweep.h"
#include "server/forward_job_test_rig.h"
#include "server/serve_engine.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ForwardJobTest : public ForwardJobRig {};

TEST_F(ForwardJobTest, OneForwardServesEveryoneWhoAskedForTheMail) {
  frm.settings.LAscii = "<";
  frm.settings.RAscii = ">";
  frm.frmMessages.mail_text().text = "enjoy";
  Launch(8);
  Queue({"bob-5", "amy-3", "joe smith-5"});
  RunMailJob(frm, c);

  ASSERT_EQ(seen.mails.size(), 1u);
  EXPECT_EQ(seen.mails[0].to, "(bob)(joe smith)");
  EXPECT_EQ(seen.mails[0].body,
            "<font face=tahoma color=#003377></B></U></I><quorvex\xC2\xB0"
            "\xC2\xB7\xC2\xB2 mail server -by- kestrin>\r\n"
            "<mail number <B><U>5</B></U>>\r\nenjoy\r\n");
  EXPECT_EQ(Forwarded("joe smith"), Lines{"mail 5"});
  // One notify line, naming the first; the chat adds the decorations.
  EXPECT_EQ(Said(), Lines{"<bob mail <U>5</U> sent>"});
  EXPECT_EQ(Pending(), Lines{"amy-3"});
  EXPECT_EQ(frm.lblSent.caption(), "total: 2");
  EXPECT_EQ(statuses.front(), "status: opening mail");
  EXPECT_EQ(FindForwardWindow(sim), 0u);
}

TEST_F(ForwardJobTest, ADeadMailIsAnnouncedCachedAndItsOtherRequestsDropped) {
  sim.SetDeadMail(4);
  Launch(6);
  for (bool send_later : {true, false}) {
    SCOPED_TRACE(send_later);
    frm.settings.MailMethod = send_later;
    frm.dead_mails.clear();
    frm.lstPending().Clear();
    seen.chats.clear();
    Queue({"bob-4", "amy-2", "ann-4"});
    // Requests that come in while the mail is being forwarded.
    host.Schedule(0.1, [this] { Queue({"zed-4", "amy~4", "lee-4"}); });
    RunMailJob(frm, c);

    EXPECT_EQ(Said(), (Lines{"bob mail <U>4</U> is a dead mail",
                             "zed mail <U>4</U> is a dead mail",
                             "lee mail <U>4</U> is a dead mail"}));
    EXPECT_EQ(frm.dead_mails, Lines{"4"});
    EXPECT_EQ(Pending(), (Lines{"amy-2", "amy~4"}));
    EXPECT_FALSE(frm.forward_error);
    EXPECT_EQ(FindForwardWindow(sim), 0u);
  }
}

TEST_F(ForwardJobTest, FullMailboxesAreDroppedAndToldWhileOthersGetTheMail) {
  sim.SetFullMailbox("bob");
  Launch(8);
  Queue({"bob-5", "amy-5", "bob-6", "bob-7", "bob~cats", "amy-8"});
  RunMailJob(frm, c);

  EXPECT_EQ(Forwarded("amy"), Lines{"mail 5"});
  EXPECT_TRUE(Forwarded("bob").empty());
  // Of bob's two adjacent requests only the first goes; finds stay.
  EXPECT_EQ(Pending(), (Lines{"bob-7", "bob~cats", "amy-8"}));
  EXPECT_EQ(frm.ReplyQueue.Items(), Lines{"bob-mailbox"});
  EXPECT_EQ(Said(), Lines{"bob mail <U>5</U> sent"});
  EXPECT_EQ(FindErrorWindow(sim), 0u);
}

TEST_F(ForwardJobTest, SigningOffEndsTheStepAndLosesTheGroup) {
  Launch(8);
  Queue({"bob-5", "amy-5", "joe-6"});
  sim.SignOffAfter(0.01);
  RunMailJob(frm, c);
  EXPECT_TRUE(Said().empty());
  EXPECT_EQ(Pending(), Lines{"joe-6"});
  EXPECT_EQ(frm.counters.session, 2);  // taken is counted, sent or not
  RunMailJob(frm, c);                  // already signed off
  EXPECT_TRUE(Pending().empty());
  EXPECT_TRUE(seen.mails.empty());
}

TEST_F(ForwardJobTest, TheSecondClockAnswersAFullMailboxOutsideAForward) {
  sim.SetFullMailbox("bob");
  Launch(3);
  Queue({"bob-1", "bob~x", "amy-2"});
  // A mail written by hand and sent now, as the user might.
  PostClickIcon(sim, FindToolbarIcon(sim, 2));
  Run(1);
  const Hwnd write = FindDocument(sim, kWriteMail);
  ASSERT_NE(write, 0u);
  SetText(sim, FindChild(sim, write, "_AOL_Edit"), "bob");
  ClickIcon(sim, FindNthChild(sim, write, "_AOL_Icon", 16));
  Run(3);
  EXPECT_EQ(FindErrorWindow(sim), 0u);
  EXPECT_EQ(Pending(), (Lines{"bob~x", "amy-2"}));
  EXPECT_EQ(frm.ReplyQueue.Items(), Lines{"bob-mailbox"});
  EXPECT_EQ(statuses, Lines{"status: pausing 2 secs"});
  EXPECT_FALSE(frm.in_sweep);
}

// The serving loop with its real jobs: people ask in the room, and
// afterwards every mailbox holds exactly what its owner asked for.
TEST_F(ForwardJobTest, EndToEndEveryRequesterGetsExactlyWhatTheyAskedFor) {
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
  ASSERT_EQ(frm.lstLists.Items(), Lines{"1 31"});

  const std::pair<const char*, const char*> lines[] = {
      {"Bob", "/srv send 5"},      {"Amy", "/srv send 5"},
      {"Bob", "/srv send 7"},      {"Amy", "/srv send list"},
      {"Joe", "/srv find mail 2"}, {"Ann", "/srv send 3"},
      {"Kim", "/srv send 9"},      {"Lee", "/srv send 10-12"}};
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

  auto sorted = [this](const std::string& who) {
    Lines v = Forwarded(who);
    std::sort(v.begin(), v.end());
    return v;
  };
  EXPECT_EQ(sorted("bob"), (Lines{"mail 5", "mail 7"}));
  EXPECT_EQ(sorted("amy"), (Lines{" quorvex list number 1 ", "mail 5"}));
  EXPECT_EQ(sorted("lee"), (Lines{"mail 10", "mail 11", "mail 12"}));
  EXPECT_EQ(Received("ann") + Received("kim"), 0u);
  EXPECT_EQ(Received("joe"), 1u);  // the find results
  const Lines said = Said();
  for (const char* line :
       {"(ann) you have a full mailbox", "kim mail <U>9</U> is a dead mail",
        "lee mail <U>9</U> is a dead mail"})
    EXPECT_NE(std::find(said.begin(), said.end(), line), said.end()) << line;
  EXPECT_TRUE(frm.lstPending().Empty());
  EXPECT_TRUE(frm.ReplyQueue.Empty());
}

}  // namespace
}  // namespace quorvex
