#include "server/lists_finds.h"

#include "client/client_tree.h"
#include "server/forward_job_test_rig.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ListsFindsTest : public ForwardJobRig {
 protected:
  // List mails 1 to `lists`, as an earlier run left them, then `mails`
  // mails, collected as the start collects them.
  void LaunchWithLists(int mails, int lists) {
    for (int k = 1; k <= lists; ++k)
      sim.AddMail(kListMarker + std::to_string(k) + " ");
    Launch(mails);
    CollectLists(frm);
    statuses.clear();
  }
};

TEST_F(ListsFindsTest, CollectListsKeepsOnlyNumberedListMails) {
  for (const char* t :
       {"song a", "\xC2\xB7[ quorvex list number 2 ]", "my quorvex list number",
        "velo-grid list number 1", " quorvex list number 10 "})
    frm.lstMails.Add(t);
  EXPECT_EQ(CollectLists(frm), 2);
  EXPECT_EQ(frm.lstLists.Items(), (Lines{"2 2", "10 5"}));
  EXPECT_EQ(frm.lblLists.caption(), "lists: 2");
}

TEST_F(ListsFindsTest, BuiltListsGoToTheUserAndAreServedAfter) {
  frm.settings.ListSize = 50;
  frm.settings.LAscii = "<";
  frm.settings.RAscii = ">";
  Launch(120);
  BuildLists(frm, c);

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
  EXPECT_EQ(frm.lstLists.Items(), (Lines{"1 121", "2 122", "3 123"}));
  EXPECT_EQ(frm.lblMails.caption(), "mails: 123");
  EXPECT_EQ(statuses.front(), "status: making/sending list #1");
  EXPECT_EQ(sim.FindWindow("_AOL_Modal", "Automatic AOL"), 0u);
}

TEST_F(ListsFindsTest, ListsGoToEveryoneWaitingWithANoteAfterEach) {
  frm.frmMessages.lstChat.Add("done");
  LaunchWithLists(5, 2);
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
  EXPECT_EQ(statuses.front(), "status: opening list");

  // Nobody waiting: nothing is sent or said.
  RunListJob(frm, c);
  EXPECT_EQ(seen.mails.size(), 2u);
  EXPECT_EQ(Said().size(), 2u);
}

TEST_F(ListsFindsTest, FindResultsAreMailedToEveryoneWithTheSameText) {
  frm.settings.LAscii = "<";
  frm.settings.MailMethod = false;
  for (const char* t : {"dogs", "my cats", "Cat Stevens"}) sim.AddMail(t);
  Launch(0);
  Queue({"bob~cat", "amy~dog", "joe~cat", "kim~zebra"});
  RunFindJob(frm, c);

  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "(bob)(joe)");
  EXPECT_TRUE(m.send_now);
  EXPECT_EQ(m.subject, "<quorvex find results for ");
  EXPECT_NE(m.body.find("\r\n<B><U>2</B></U> find results for <B><U>cat</B>"
                        "</U>\r\n[ 2 ] - my cats\r\n[ 3 ] - Cat Stevens\r\n"),
            std::string::npos);
  EXPECT_EQ(Said(), Lines{"<bob results for <U>cat</U> sent"});
  EXPECT_EQ(frm.lblSession.caption(), "session: 1");
  EXPECT_EQ(frm.counters.SentCount, 1);
  EXPECT_EQ(Pending(), (Lines{"amy~dog", "kim~zebra"}));

  // No results: answered in the room, nothing counted.
  frm.lstPending().Clear();
  Queue({"kim~zebra"});
  RunFindJob(frm, c);
  EXPECT_EQ(seen.mails.size(), 1u);
  EXPECT_EQ(Said().back(), "<kim no results for <U>zebra</U> found");
  EXPECT_EQ(statuses.back(), "status: no find found");
  EXPECT_EQ(frm.counters.session, 1);
}

}  // namespace
}  // namespace quorvex
