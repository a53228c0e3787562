// Forwarding mails, lists and find results, on a client launched with its
// mailbox read into lstMails and Timer2 running the error sweep as the
// serving loop runs it. That each number opens its own mail past other
// servers' lists runs whole in the foreign_list_mails scenario.
#include "server/forward_job.h"

#include <algorithm>
#include <initializer_list>

#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "server/dead_mail.h"
#include "server/error_sweep.h"
#include "server/lists_finds.h"
#include "testing/controls_later.h"
#include "testing/server_test_fixture.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ForwardJobTest : public ServerTest {
 protected:
  void Launch(int mails) {
    LaunchSweeping(mails);
    statuses.clear();
  }

  void Queue(std::initializer_list<const char*> lines) {
    for (const char* line : lines) frm.lists.pending.Append(line);
    frm.lists.pending.RefreshLabel(frm.counts.lblPending);
  }
  std::vector<std::string> Pending() const { return frm.lstPending().Items(); }

  // The titles forwarded to a person, in order.
  std::vector<std::string> Forwarded(const std::string& name) const {
    std::vector<std::string> titles;
    const SimPerson* p = world.FindPerson(name);
    if (p)
      for (const ReceivedMail& m : p->mailbox) titles.push_back(m.forward_of);
    return titles;
  }
};

TEST_F(ForwardJobTest, OneForwardServesEveryoneWhoAskedForTheMail) {
  frm.settings.LAscii = "<";
  frm.settings.RAscii = ">";
  frm.forms.frmMessages.mail_text().text = "enjoy";
  Launch(8);
  Queue({"bob-5", "amy-3", "joe smith-5"});
  RunMailJob(MailJobs(), c, under_way);

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
  EXPECT_EQ(frm.counts.lblSent.caption(), "total: 2");
  EXPECT_EQ(statuses.front(), "status: opening mail");
  EXPECT_EQ(FindForwardWindow(sim), 0u);
}

TEST_F(ForwardJobTest, AMailWindowWhoseIconsComeLaterIsForwardedAtOnce) {
  Launch(4);
  Queue({"bob-2"});
  // The client makes the mail's window, then its icons: the Forward icon
  // is clicked once it is there, not asked for again seconds later.
  ControlsLater late(sim, host);
  const ClientContext lc{late, host, frm.settings, nullptr};
  const double began = host.Elapsed();
  RunMailJob(MailJobs(), lc, under_way);
  EXPECT_EQ(Forwarded("bob"), Lines{"mail 2"});
  EXPECT_LT(host.Elapsed() - began, kAskAgainSeconds);
}

// A number is served as the mail it rounds to, the first and the last
// included; one that rounds to no mail of the box opens nothing.
TEST_F(ForwardJobTest, ANumberIsServedAsTheMailItRoundsTo) {
  Launch(8);
  Queue({"bob-0.4", "dan-1", "ann-2.5", "cal-8.4", "amy-8.6"});
  for (int i = 0; i < 5; ++i) RunMailJob(MailJobs(), c, under_way);
  EXPECT_EQ(Forwarded("dan"), Lines{"mail 1"});
  EXPECT_EQ(Forwarded("ann"), Lines{"mail 2"});
  EXPECT_EQ(Forwarded("cal"), Lines{"mail 8"});
  EXPECT_TRUE(Forwarded("bob").empty());
  EXPECT_TRUE(Forwarded("amy").empty());
  EXPECT_EQ(Said(), (Lines{"dan mail <U>1</U> sent", "ann mail <U>2.5</U> sent",
                           "cal mail <U>8.4</U> sent"}));
  EXPECT_TRUE(Pending().empty());
}

TEST_F(ForwardJobTest, AMailWhoseWindowNeverComesIsGivenUpAsDead) {
  Launch(3);
  // The mailbox no longer holds what the list says: the window captioned
  // "mail 2" cannot come.
  frm.lists.lstMails.Clear();
  for (const char* title : {"mail 1", "gone", "mail 3"})
    frm.lists.lstMails.Add(title);
  Queue({"ann-2"});
  const double start = host.Elapsed();
  RunMailJob(MailJobs(), c, under_way);
  EXPECT_GE(host.Elapsed() - start, 60);
  EXPECT_LT(host.Elapsed() - start, 70);
  EXPECT_EQ(Said().back(), DeadMailLine("ann", "2"));
  EXPECT_TRUE(IsDeadMail(frm.lists.dead_mails, "2"));
  EXPECT_TRUE(Forwarded("ann").empty());
  // The mail was asked for again at a pace, not on every poll: one window
  // for each request.
  const Hwnd mdi = FindMdiClient(sim);
  int opened = 0;
  for (Hwnd w = sim.FindWindowExA(mdi, 0, "AOL Child", "mail 2"); w;
       w = sim.FindWindowExA(mdi, w, "AOL Child", "mail 2"))
    ++opened;
  EXPECT_GE(opened, 2);
  EXPECT_LE(opened, 6);
}

TEST_F(ForwardJobTest, ADeadMailIsAnnouncedCachedAndItsOtherRequestsDropped) {
  sim.SetDeadMail(4);
  Launch(6);
  for (bool send_later : {true, false}) {
    SCOPED_TRACE(send_later);
    frm.settings.MailMethod = send_later;
    frm.lists.dead_mails.clear();
    frm.lstPending().Clear();
    seen.chats.clear();
    Queue({"bob-4", "amy-2", "ann-4"});
    // Requests that come in while the mail is being forwarded.
    host.Schedule(0.1, [this] { Queue({"zed-4", "amy~4", "lee-4"}); });
    RunMailJob(MailJobs(), c, under_way);

    EXPECT_EQ(Said(), (Lines{"bob mail <U>4</U> is a dead mail",
                             "zed mail <U>4</U> is a dead mail",
                             "lee mail <U>4</U> is a dead mail"}));
    EXPECT_EQ(frm.lists.dead_mails, Lines{"4"});
    EXPECT_EQ(Pending(), (Lines{"amy-2", "amy~4"}));
    EXPECT_FALSE(under_way.error());
    EXPECT_EQ(FindForwardWindow(sim), 0u);
  }
}

TEST_F(ForwardJobTest, ADeadMailsWalkEndsThoughPeopleKeepAskingForIt) {
  sim.SetDeadMail(4);
  Launch(6);
  Queue({"bob-4"});
  // pat asks for mail 4 again whenever it is not pending, for two minutes.
  std::function<void()> ask = [&] {
    if (!frm.lists.pending.Has("pat-4")) frm.lists.pending.Append("pat-4");
    if (host.Elapsed() < 120) host.Schedule(0.25, ask);
  };
  host.Schedule(0.25, ask);
  RunMailJob(MailJobs(), c, under_way);
  // The step ends after telling those queued when the walk began; pat's
  // later request waits for the next tick.
  EXPECT_LT(host.Elapsed(), 60);
  EXPECT_LE(Said().size(), 3u);
  EXPECT_EQ(Pending(), Lines{"pat-4"});
}

TEST_F(ForwardJobTest, FullMailboxesAreDroppedAndToldWhileOthersGetTheMail) {
  sim.SetFullMailbox("bob");
  Launch(8);
  Queue({"bob-5", "amy-5", "bob-6", "bob-7", "bob~cats", "amy-8"});
  RunMailJob(MailJobs(), c, under_way);

  EXPECT_EQ(Forwarded("amy"), Lines{"mail 5"});
  EXPECT_TRUE(Forwarded("bob").empty());
  // Of bob's two adjacent requests only the first goes; finds stay.
  EXPECT_EQ(Pending(), (Lines{"bob-7", "bob~cats", "amy-8"}));
  EXPECT_EQ(frm.lists.ReplyQueue.Items(), Lines{"bob-mailbox"});
  EXPECT_EQ(Said(), Lines{"bob mail <U>5</U> sent"});
  EXPECT_EQ(FindErrorWindow(sim), 0u);
}

TEST_F(ForwardJobTest, SigningOffEndsTheStepAndLosesTheGroup) {
  Launch(8);
  Queue({"bob-5", "amy-5", "joe-6"});
  sim.SignOffAfter(0.01);
  RunMailJob(MailJobs(), c, under_way);
  EXPECT_TRUE(Said().empty());
  EXPECT_EQ(Pending(), Lines{"joe-6"});
  EXPECT_EQ(frm.counts.counters.session, 2);  // taken is counted, sent or not
  RunMailJob(MailJobs(), c, under_way);       // already signed off
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
  EXPECT_EQ(frm.lists.ReplyQueue.Items(), Lines{"bob-mailbox"});
  EXPECT_EQ(statuses, Lines{"status: pausing 2 secs"});
  EXPECT_FALSE(under_way.in_sweep());
}

class ListsFindsTest : public ForwardJobTest {
 protected:
  // List mails 1 to `lists`, as an earlier run left them, then `mails`
  // mails, collected as the start collects them.
  void LaunchWithLists(int mails, int lists) {
    for (int k = 1; k <= lists; ++k)
      sim.AddMail(kListMarker + std::to_string(k) + " ");
    Launch(mails);
    CollectLists(MailJobs().mailbox);
    statuses.clear();
  }
};

TEST_F(ListsFindsTest, CollectListsKeepsOnlyNumberedListMails) {
  for (const char* t :
       {"song a", "\xC2\xB7[ quorvex list number 2 ]", "my quorvex list number",
        "velo-grid list number 1", " quorvex list number 10 ",
        " quorvex list number 0 ", " quorvex list number 9 ",
        " quorvex list number / ", " quorvex list number : "})
    frm.lists.lstMails.Add(t);
  EXPECT_EQ(CollectLists(MailJobs().mailbox), 4);
  EXPECT_EQ(frm.lists.lstLists.Items(), (Lines{"2 2", "10 5", "0 6", "9 7"}));
  EXPECT_EQ(frm.counts.lblLists.caption(), "lists: 4");
}

TEST_F(ListsFindsTest, BuiltListsGoToTheUserAndAreServedAfter) {
  frm.settings.ListSize = 50;
  frm.settings.LAscii = "<";
  frm.settings.RAscii = ">";
  Launch(120);
  BuildLists(MailJobs(), c);

  ASSERT_EQ(seen.mails.size(), 3u);
  EXPECT_EQ(seen.mails[2].to, kUser);
  EXPECT_EQ(seen.mails[2].subject, "< quorvex list number 3 >");
  EXPECT_NE(seen.mails[2].body.find("\r\n<list number <B><U>3</B></U>>\r\n\r\n"
                                    "[ 101 ] - mail 101\r\n"),
            std::string::npos);
  // 50 titles a list: list 1 ends where list 2 begins.
  EXPECT_NE(seen.mails[0].body.find("[ 50 ] - mail 50\r\n"), std::string::npos);
  EXPECT_EQ(seen.mails[0].body.find("[ 51 ]"), std::string::npos);
  // Back in the mailbox (after the automatic session), read again and
  // collected for serving.
  EXPECT_EQ(frm.lists.lstLists.Items(), (Lines{"1 121", "2 122", "3 123"}));
  EXPECT_EQ(frm.counts.lblMails.caption(), "mails: 123");
  EXPECT_EQ(statuses.front(), "status: making/sending list #1");
  EXPECT_EQ(sim.FindWindowA("_AOL_Modal", "Automatic AOL"), 0u);
}

// A pause between lists, none after the last: a mailbox of exactly two
// lists' worth makes two, and a last list of one title still comes.
TEST_F(ListsFindsTest, AFullOrNearlyEmptyLastListEndsTheLists) {
  auto pauses = [this] {
    return std::count(statuses.begin(), statuses.end(),
                      "status: pausing for 2 seconds");
  };
  frm.settings.ListSize = 50;
  Launch(100);
  BuildLists(MailJobs(), c);
  ASSERT_EQ(seen.mails.size(), 2u);
  EXPECT_NE(seen.mails[1].body.find("[ 100 ] - mail 100\r\n"),
            std::string::npos);
  EXPECT_EQ(pauses(), 1);

  // The two lists are mails 101 and 102 now.
  frm.settings.ListSize = 101;
  statuses.clear();
  BuildLists(MailJobs(), c);
  ASSERT_EQ(seen.mails.size(), 4u);
  EXPECT_NE(seen.mails[3].body.find("[ 102 ] - "), std::string::npos);
  EXPECT_EQ(pauses(), 1);
}

TEST_F(ListsFindsTest, ListsGoToEveryoneWaitingWithANoteAfterEach) {
  frm.forms.frmMessages.lstChat.Add("done");
  LaunchWithLists(5, 2);
  frm.serving.ListSeconds = 31;
  Queue({"bob-list", "amy-3", "amy-list"});
  RunListJob(MailJobs(), c, under_way);

  EXPECT_EQ(Forwarded("amy"),
            (Lines{" quorvex list number 1 ", " quorvex list number 2 "}));
  EXPECT_EQ(Forwarded("bob"), Forwarded("amy"));
  ASSERT_EQ(seen.mails.size(), 2u);
  EXPECT_EQ(seen.mails[0].to, "(amy)(bob)");
  EXPECT_NE(seen.mails[1].body.find("\r\nlist number <B><U>2</B></U>\r\n"),
            std::string::npos);
  EXPECT_EQ(Said(),
            (Lines{"amy list <U>1</U> done", "amy list <U>2</U> done"}));
  EXPECT_EQ(Pending(), Lines{"amy-3"});
  EXPECT_EQ(frm.counts.counters.session, 4);  // two people, two lists each
  EXPECT_EQ(frm.serving.ListSeconds, 0);
  EXPECT_EQ(statuses.front(), "status: opening list");

  // Nobody waiting: nothing is sent or said.
  RunListJob(MailJobs(), c, under_way);
  EXPECT_EQ(seen.mails.size(), 2u);
  EXPECT_EQ(Said().size(), 2u);
}

// Without a note after each list the room hears when the lists begin and
// when the last is sent.
TEST_F(ListsFindsTest, WithoutNotesTheRoomHearsTheStartAndTheEnd) {
  frm.settings.ListNotify = false;
  LaunchWithLists(5, 2);
  Queue({"bob-list"});
  RunListJob(MailJobs(), c, under_way);
  EXPECT_EQ(Forwarded("bob").size(), 2u);
  EXPECT_EQ(Said(), (Lines{"lists <U>1-2</U> are being processed",
                           "lists <U>1-2</U> were sent"}));
  EXPECT_EQ(statuses.back(), "status: scanning chat");
}

// A find reads the titles at its own pace: a pause between two titles,
// none before the first or after the last.
TEST_F(ListsFindsTest, AFindPausesBetweenTitlesOnly) {
  Launch(3);
  int count = 0;
  const double start = host.Elapsed();
  const std::string lines =
      FindLines(c, frm.lists.lstMails, "Mail 3", 1.0f, &count);
  // Two pauses of a second (each ends on the clock's next tick), not one
  // or three.
  EXPECT_GT(host.Elapsed() - start, 1.9);
  EXPECT_LT(host.Elapsed() - start, 2.9);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(lines, "[ 3 ] - mail 3\r\n");
}

TEST_F(ListsFindsTest, FindResultsAreMailedToEveryoneWithTheSameText) {
  frm.settings.LAscii = "<";
  frm.settings.MailMethod = false;
  for (const char* t : {"dogs", "my cats", "Cat Stevens"}) sim.AddMail(t);
  Launch(0);
  Queue({"bob~cat", "amy~dog", "joe~cat", "kim~zebra"});
  RunFindJob(MailJobs(), c);

  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "(bob)(joe)");
  EXPECT_TRUE(m.send_now);
  EXPECT_EQ(m.subject, "<quorvex find results for ");
  EXPECT_NE(m.body.find("\r\n<B><U>2</B></U> find results for <B><U>cat</B>"
                        "</U>\r\n[ 2 ] - my cats\r\n[ 3 ] - Cat Stevens\r\n"),
            std::string::npos);
  EXPECT_EQ(Said(), Lines{"<bob results for <U>cat</U> sent"});
  EXPECT_EQ(frm.counts.lblSession.caption(), "session: 1");
  EXPECT_EQ(frm.counts.counters.SentCount, 1);
  EXPECT_EQ(Pending(), (Lines{"amy~dog", "kim~zebra"}));

  // No results: answered in the room, nothing counted.
  frm.lstPending().Clear();
  Queue({"kim~zebra"});
  RunFindJob(MailJobs(), c);
  EXPECT_EQ(seen.mails.size(), 1u);
  EXPECT_EQ(Said().back(), "<kim no results for <U>zebra</U> found");
  EXPECT_EQ(statuses.back(), "status: no find found");
  EXPECT_EQ(frm.counts.counters.session, 1);
}

}  // namespace
}  // namespace quorvex
