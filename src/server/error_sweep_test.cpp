// The error window's text decides who is told of a full mailbox: only a
// text with something before its first dash lists names. The client is
// made to show such texts exactly, the forward going to someone whose
// mailbox is full, and the sweep runs as the serving loop runs it.
#include "server/error_sweep.h"

#include <initializer_list>

#include "client/error_boxes.h"
#include "client/mailbox.h"
#include "server/forward_job.h"
#include "testing/server_test_fixture.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ErrorSweepTest : public ServerTest {
 protected:
  void Launch(int mails) { LaunchSweeping(mails); }
  void Queue(std::initializer_list<const char*> lines) {
    for (const char* line : lines) frm.lists.pending.Append(line);
    frm.lists.pending.RefreshLabel(frm.counts.lblPending);
  }
  Lines Pending() const { return frm.lstPending().Items(); }
};

// The name of the line is what comes before the dash, however short; the
// dash second in the text is enough.
TEST_F(ErrorSweepTest, ADashRightAfterAOneLetterNameTellsAFullMailbox) {
  sim.SetFullMailbox("q");
  sim.SetErrorLine("q", "q-Mailbox is full");
  Launch(8);
  Queue({"q-5", "amy-5", "q-6", "q-7", "q~cats"});
  RunMailJob(MailJobs(), c, under_way);

  EXPECT_EQ(Pending(), (Lines{"q-7", "q~cats"}));
  EXPECT_EQ(frm.lists.ReplyQueue.Items(), Lines{"q-mailbox"});
  EXPECT_EQ(FindErrorWindow(sim), 0u);
}

// A text whose first character is the dash names nobody, though a later
// line reads as a name and a reason: nothing is dropped or told.
TEST_F(ErrorSweepTest, AnErrorTextOpeningWithADashTellsNoFullMailbox) {
  sim.SetFullMailbox("bob");
  sim.SetErrorLine("bob", "- 1 -\r\nbob - Mailbox is full");
  Launch(8);
  Queue({"bob-5", "amy-5", "bob-6"});
  RunMailJob(MailJobs(), c, under_way);

  EXPECT_EQ(Pending(), Lines{"bob-6"});
  EXPECT_TRUE(frm.lists.ReplyQueue.Items().empty());
  EXPECT_EQ(FindErrorWindow(sim), 0u);
}

}  // namespace
}  // namespace quorvex
