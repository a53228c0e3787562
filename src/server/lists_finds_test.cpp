#include "server/lists_finds.h"

#include "client/client_tree.h"
#include "client/window_ops.h"
#include "server/forward_job.h"
#include "server/forward_job_test_rig.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

// The "[ n ] - title" lines of a mail body.
Lines TitleLines(const std::string& body) {
  Lines out;
  std::size_t at = 0;
  while ((at = body.find("[ ", at)) != std::string::npos) {
    const auto end = body.find("\r\n", at);
    out.push_back(body.substr(at, end - at));
    at = end;
  }
  return out;
}

class ListsTest : public ForwardJobRig {
 protected:
  // List mails 1 to `lists`, as an earlier run left them, then `mails`
  // mails; the list collection made as the start makes it.
  void LaunchWithLists(int mails, int lists) {
    for (int k = 1; k <= lists; ++k)
      sim.AddMail(" quorvex list number " + std::to_string(k) + " ");
    Launch(mails);
    CollectLists(frm);
    statuses.clear();
  }
};

TEST_F(ListsTest, CollectListsFindsTheListMailsOfTheMailbox) {
  const char* titles[] = {"song a", "\xC2\xB7[ quorvex list number 2 ]",
                          "my quorvex list number", "velo-grid list number 1",
                          " quorvex list number 10 "};
  for (const char* t : titles) frm.lstMails.Add(t);
  EXPECT_EQ(CollectLists(frm), 2);
  EXPECT_EQ(frm.lstLists.Items(), (Lines{"2 2", "10 5"}));
  EXPECT_EQ(frm.lblLists.caption(), "lists: 2");
}

TEST_F(ListsTest, BuildingListsWritesThemToTheUserAndServesThemAfter) {
  frm.settings.ListSize = 50;
  frm.settings.LAscii = "<";
  frm.settings.RAscii = ">";
  Launch(120);
  BuildLists(frm, c);

  ASSERT_EQ(seen.mails.size(), 3u);
  for (int k = 1; k <= 3; ++k) {
    const SimMail& m = seen.mails[k - 1];
    EXPECT_EQ(m.to, kUser);
    EXPECT_EQ(m.subject, "< quorvex list number " + std::to_string(k) + " >");
    EXPECT_NE(m.body.find("\r\n<list number <B><U>" + std::to_string(k) +
                          "</B></U>>\r\n\r\n[ "),
              std::string::npos);
  }
  const Lines last = TitleLines(seen.mails[2].body);
  ASSERT_EQ(last.size(), 20u);
  EXPECT_EQ(last.front(), "[ 101 ] - mail 101");
  EXPECT_EQ(last.back(), "[ 120 ] - mail 120");
  EXPECT_EQ(TitleLines(seen.mails[0].body).size(), 50u);
  EXPECT_EQ(TitleLines(seen.mails[1].body).front(), "[ 51 ] - mail 51");

  // Back in the mailbox, read again and collected for serving.
  EXPECT_EQ(sim.IncomingTitles().size(), 123u);
  EXPECT_EQ(frm.lstMails.Count(), 123);
  EXPECT_EQ(frm.lstLists.Items(), (Lines{"1 121", "2 122", "3 123"}));
  EXPECT_EQ(frm.lblLists.caption(), "lists: 3");
  EXPECT_EQ(frm.lblMails.caption(), "mails: 123");
  EXPECT_EQ(
      Lines(statuses.begin(), statuses.begin() + 5),
      (Lines{"status: making/sending list #1", "status: pausing for 2 seconds",
             "status: making/sending list #2", "status: pausing for 2 seconds",
             "status: making/sending list #3"}));
  EXPECT_TRUE(Shown("status: flashing lists"));
  EXPECT_EQ(sim.FindWindow("_AOL_Modal", "Automatic AOL"), 0u);
  EXPECT_EQ(FindDocument(sim, kWriteMail), 0u);
}

TEST_F(ListsTest, TheAutomaticSessionSendsTheMailWaitingAndCloses) {
  Launch(2);
  // A mail put in "Mail Waiting to be Sent" with Send Later.
  PostClickIcon(sim, FindToolbarIcon(sim, 2));
  Run(1);
  const Hwnd write = FindDocument(sim, kWriteMail);
  ASSERT_NE(write, 0u);
  SetText(sim, FindChild(sim, write, "_AOL_Edit"), "ann");
  ClickIcon(sim, FindNthChild(sim, write, "_AOL_Icon", 17));
  ASSERT_EQ(sim.WaitingCount(), 1);

  RunAutomaticAol(c);
  EXPECT_EQ(sim.WaitingCount(), 0);
  EXPECT_EQ(Received("ann"), 1u);
  EXPECT_EQ(sim.FindWindow("_AOL_Modal", "Automatic AOL"), 0u);

  // Signed off, the session does not run and nothing waits for it.
  sim.SignOff();
  RunAutomaticAol(c);
  EXPECT_EQ(sim.FindWindow("_AOL_Modal", "Automatic AOL"), 0u);
}

TEST_F(ListsTest, ListsGoToEveryoneWaitingWithANoteAfterEach) {
  frm.frmMessages.lstChat.Add("done");
  LaunchWithLists(5, 2);
  ASSERT_EQ(frm.lstLists.Items(), (Lines{"1 1", "2 2"}));
  frm.ListSeconds = 31;
  Queue({"bob-list", "amy-3", "amy-list"});
  RunListJob(frm, c);

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
  EXPECT_EQ(frm.counters.session, 4);  // two people, two lists each
  EXPECT_EQ(frm.ListSeconds, 0);
  EXPECT_EQ(Lines(statuses.begin(), statuses.begin() + 4),
            (Lines{"status: opening list", "status: clicking forward",
                   "status: sending list", "status: sent list"}));
  EXPECT_EQ(statuses.back(), "status: scanning chat");

  // Nobody waiting: nothing is sent or said.
  RunListJob(frm, c);
  EXPECT_EQ(seen.mails.size(), 2u);
  EXPECT_EQ(Said().size(), 2u);
  EXPECT_EQ(Pending(), Lines{"amy-3"});
}

TEST_F(ListsTest, ListNotifyOffAndADeadListMail) {
  frm.settings.ListNotify = false;
  sim.SetDeadMail(1);
  LaunchWithLists(5, 3);
  frm.dead_mails = {"3"};  // list 3 was refused before
  Queue({"bob-list", "amy-1"});
  RunListJob(frm, c);
  EXPECT_EQ(Forwarded("bob"), Lines{" quorvex list number 2 "});
  EXPECT_EQ(frm.dead_mails, (Lines{"3", "1"}));
  // A list mail the client refuses is a dead mail like any other.
  EXPECT_EQ(Said(), (Lines{"lists <U>1-3</U> are being processed",
                           "bob mail <U>1</U> is a dead mail",
                           "amy mail <U>1</U> is a dead mail",
                           "lists <U>1-3</U> were sent"}));
  EXPECT_TRUE(Pending().empty());
}

class FindsTest : public ForwardJobRig {};

TEST_F(FindsTest, FindLinesIgnoreCaseAndPauseOnlyWithASpeed) {
  ListBox titles("lstMails");
  for (const char* t : {"dogs", "my cats", "CATALOG", "bobcat"}) titles.Add(t);
  Run(0.7);  // off the whole second, so that a pause has to wait
  const double before = host.Elapsed();
  int count = -1;
  EXPECT_EQ(FindLines(c, titles, "Cat", 0, &count),
            "[ 2 ] - my cats\r\n[ 3 ] - CATALOG\r\n[ 4 ] - bobcat\r\n");
  EXPECT_EQ(count, 3);
  EXPECT_EQ(host.Elapsed(), before);  // speed 0: no pause at all
  EXPECT_EQ(FindLines(c, titles, "zebra", 0.6899f, &count), "");
  EXPECT_EQ(count, 0);
  EXPECT_GT(host.Elapsed(), before);
}

TEST_F(FindsTest, ResultsAreMailedToEveryoneWhoSearchedTheSameText) {
  frm.settings.LAscii = "<";
  frm.settings.MailMethod = false;
  for (const char* t : {"dogs", "my cats", "Cat Stevens"}) sim.AddMail(t);
  Launch(0);
  Queue({"bob~cat", "amy~dog", "joe~cat"});
  RunFindJob(frm, c);

  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "(bob)(joe)");
  EXPECT_TRUE(m.send_now);
  EXPECT_EQ(m.subject, "<quorvex find results for ");
  EXPECT_NE(m.body.find("</I><quorvex"), std::string::npos);
  EXPECT_NE(m.body.find("\r\n<B><U>2</B></U> find results for <B><U>cat</B>"
                        "</U>\r\n[ 2 ] - my cats\r\n[ 3 ] - Cat Stevens\r\n"),
            std::string::npos);
  Run(1);  // the client delivers after the job
  EXPECT_EQ(Received("joe"), 1u);
  EXPECT_EQ(Said(), Lines{"<bob results for <U>cat</U> sent"});
  EXPECT_EQ(frm.lblSent.caption(), "total: 1");
  EXPECT_EQ(frm.lblSession.caption(), "session: 1");
  EXPECT_EQ(frm.counters.SentCount, 1);
  EXPECT_EQ(statuses, (Lines{"status: finding find", "status: sending find",
                             "status: sent find"}));
  EXPECT_EQ(Pending(), Lines{"amy~dog"});
}

TEST_F(FindsTest, AFindWithoutResultsIsAnsweredInTheRoom) {
  Launch(3);
  Queue({"amy~zebra", "bob-2"});
  RunFindJob(frm, c);
  EXPECT_TRUE(seen.mails.empty());
  EXPECT_EQ(Said(), Lines{"amy no results for <U>zebra</U> found"});
  EXPECT_EQ(statuses.back(), "status: no find found");
  EXPECT_EQ(frm.counters.session, 0);
  // No find queued: nothing happens.
  RunFindJob(frm, c);
  EXPECT_EQ(Said().size(), 1u);
  EXPECT_EQ(Pending(), Lines{"bob-2"});
}

}  // namespace
}  // namespace quorvex
