#include "requests/request_parser.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "model/text_util.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class RequestParserTest : public ::testing::Test {
 protected:
  RequestParserTest() {
    settings.Handle = "Srv";
    for (int i = 1; i <= 10; ++i) lstMails.Add("mail " + std::to_string(i));
  }
  void Say(const std::string& speaker, const std::string& text) {
    HandleChatLine(ctx, speaker, text);
  }
  Lines Pending() const { return pending.list().Items(); }
  // Marks the label so that a test can see whether the line refreshed it.
  void Mark() { lblPending.Set("unrefreshed"); }

  Settings settings;
  BanningOptions banning;
  PendingQueue pending;
  ListBox lstBanned{"lstBanned"};
  ListBox lstMails{"lstMails"};
  ListBox ReplyQueue{"ReplyQueue"};
  Label lblPending{"lblPending", "pending: 0"};
  RequestContext ctx{settings, banning,    pending,   lstBanned,
                     lstMails, ReplyQueue, lblPending};
};

TEST_F(RequestParserTest, SingleMails) {
  lstBanned.Add("ZED");
  // Lines that queue nothing and leave the label alone.
  Mark();
  Say("zEd", "/srv send 6");  // banned, whatever the case
  for (const char* line : {" /srv send 6", "/srv send 123456", "/srv send"})
    Say("bob", line);
  EXPECT_EQ(lblPending.caption(), "unrefreshed");
  // Refused, but any line beginning with "/" refreshes the label.
  for (const char* line :
       {"/srv send 99999", "/srv send 0", "/srv send abc", "/hello"}) {
    Mark();
    Say("bob", line);
    EXPECT_EQ(lblPending.caption(), "pending: 0") << line;
  }
  Say("Bob", "/SRV SEND 5");
  Say("bob", "/srv send 7abc");
  Say("bob", "/srv send 2.5");
  Say("bob", "/srv sendx8");  // the character after the key is skipped
  Say("amy", "/srv send  3 ");
  EXPECT_EQ(Pending(), (Lines{"bob-5", "bob-7", "bob-2.5", "bob-8", "amy-3"}));
  EXPECT_TRUE(ReplyQueue.Empty());
}

TEST_F(RequestParserTest, DuplicatesAndPendingLimit) {
  banning.cmbMails.text = "5";
  Say("bob", "/srv send 9");
  Say("bob", "/srv send 3");
  // 4 - 1 + 2 = 5 is allowed; 3 is already pending.
  Say("bob", "/srv send 1-4");
  EXPECT_EQ(Pending(), (Lines{"bob-9", "bob-3", "bob-1", "bob-2", "bob-4"}));
  Say("bob", "/srv send 10");  // 5 + 1 > 5
  EXPECT_EQ(ReplyQueue.Items(), (Lines{"bob-duplication", "bob-pending"}));

  // The list word: a duplicate stops without refreshing the label.
  banning.chkPending.value = 0;
  Say("bob", "/srv send list");
  Mark();
  Say("bob", "/srv send list");
  EXPECT_EQ(lblPending.caption(), "unrefreshed");
  // bob's duplication order still waits: he is told once.
  EXPECT_EQ(ReplyQueue.Items(), (Lines{"bob-duplication", "bob-pending"}));
  EXPECT_EQ(pending.PendingCount("bob"), 6);
}

TEST_F(RequestParserTest, RepeatsWaitOncePerPersonAndKind) {
  banning.cmbMails.text = "2";
  Say("bob", "/srv send 1");
  Say("amy", "/srv send 1");
  // Hundreds of repeats: each person keeps one order of each kind.
  for (int i = 0; i < 300; ++i) {
    for (const char* who : {"bob", "amy"}) {
      Say(who, "/srv send 1");
      Say(who, "/srv thanks");
      Say(who, "/srv send status");
    }
    Say("bob", "/srv send 2-4");  // 4 - 2 + 1 > 2
  }
  EXPECT_EQ(
      ReplyQueue.Items(),
      (Lines{"bob-duplication", "bob-thankyou", "bob-status", "amy-duplication",
             "amy-thankyou", "amy-status", "bob-pending"}));
  EXPECT_EQ(Pending(), (Lines{"bob-1", "amy-1"}));
  // Once an order is answered and gone, the next repeat is told again.
  ReplyQueue.Remove(0);
  Say("amy", "/srv send 1");
  Say("bob", "/srv send 1");
  EXPECT_EQ(ReplyQueue.Items().back(), "bob-duplication");
  EXPECT_EQ(ReplyQueue.Count(), 7);
}

TEST_F(RequestParserTest, WhileTheMailboxIsReadTheCountBeforeHolds) {
  // The start emptied lstMails and has read two titles of ten so far.
  int before = 10;
  ctx.mails_while_reading = &before;
  lstMails.Clear();
  lstMails.Add("mail 1");
  lstMails.Add("mail 2");
  Say("bob", "/srv send 10");
  Say("bob", "/srv send 11");
  Say("amy", "/srv send 9-12");
  EXPECT_EQ(Pending(), (Lines{"bob-10", "amy-9", "amy-10"}));
  // A mailbox that was empty before the start has nothing to ask for
  // until it is read, whatever the read has found so far.
  before = 0;
  Say("cal", "/srv send 1");
  EXPECT_EQ(Pending().back(), "amy-10");
  // Once read, the list itself counts again.
  before = -1;
  Say("joe", "/srv send 3");
  Say("joe", "/srv send 2");
  EXPECT_EQ(Pending().back(), "joe-2");
}

TEST_F(RequestParserTest, Ranges) {
  Say("bob", "/srv send 4-4");
  Say("bob", "/srv send 7-3");
  EXPECT_TRUE(pending.list().Empty());

  settings.BlockMax = 3;
  Mark();
  Say("bob", "/srv send 1-5");  // span 4 > 3: dropped, label untouched
  EXPECT_EQ(lblPending.caption(), "unrefreshed");
  Say("bob", "/srv send 8-11");  // numbers beyond the mails are skipped
  EXPECT_EQ(Pending(), (Lines{"bob-8", "bob-9", "bob-10"}));

  // The smallest limit: one step from x to y.
  settings.BlockMax = 1;
  pending.list().Clear();
  Say("bob", "/srv send 1-3");
  Say("bob", "/srv send 5-6");
  EXPECT_EQ(Pending(), (Lines{"bob-5", "bob-6"}));

  // No limit at all: a huge range still ends at the last mail.
  settings.BlockMax = 0;
  banning.chkPending.value = 0;
  pending.list().Clear();
  Say("amy", "/srv send 1-99999999999");
  EXPECT_EQ(pending.PendingCount("amy"), 10);
  EXPECT_EQ(pending.list().Item(9), "amy-10");
  Say("joe", "/srv send 7.5 - 1e300");
  EXPECT_EQ(Pending().back(), "joe-9.5");
  EXPECT_EQ(pending.PendingCount("joe"), 3);

  // Without x-y ranges the line is a single mail.
  settings.BlocksXYEnable = false;
  Say("ann", "/srv send 3-7");
  EXPECT_EQ(Pending().back(), "ann-3");
}

TEST_F(RequestParserTest, WordsAndFinds) {
  for (bool scroll : {true, false}) {
    settings.ScrollThankyou = settings.ScrollStatus = scroll;
    for (const char* l : {"/srv send status", "/srv send thanks a lot",
                          "/srv thank you", "/srv thanks"})
      Say("bob", l);
  }
  // Each spelling queues the order; the repeats fold into the one waiting.
  EXPECT_EQ(ReplyQueue.Items(), (Lines{"bob-status", "bob-thankyou"}));
  ReplyQueue.Clear();
  settings.ScrollThankyou = settings.ScrollStatus = true;
  for (const char* l : {"/srv send thanks a lot", "/srv thank you"}) {
    Say("bob", l);
    EXPECT_EQ(ReplyQueue.Items(), (Lines{"bob-thankyou"})) << l;
    ReplyQueue.Clear();
  }
  settings.FindMin = 3;
  settings.FindMax = 6;
  Mark();
  Say("bob", "/srv find ab");       // 2 < 3
  Say("bob", "/srv find abcdefg");  // 7 > 6
  EXPECT_EQ(lblPending.caption(), "unrefreshed");
  Say("bob", "/srv find a c de");
  Say("bob", "/srv find a c de");  // finds may repeat
  Say("amy", "/srv find c & d");
  settings.FindsXYEnable = false;
  Say("joe", "/srv find c&d");
  settings.FindsEnable = false;
  Say("joe", "/srv find cats");
  EXPECT_EQ(Pending(),
            (Lines{"bob~a c de", "bob~a c de", "amy~c", "amy~d", "joe~c&d"}));
}

TEST_F(RequestParserTest, HandleWithDashOrAmpersand) {
  // The second part is read after the first "-" or "&" of the whole line,
  // which is then the handle's.
  settings.Handle = "a-b";
  Say("bob", "/a-b send 3-7");  // the second number reads as 0
  EXPECT_TRUE(pending.list().Empty());
  settings.Handle = "x&y";
  Say("bob", "/x&y find ca&dog");
  EXPECT_EQ(Pending(), (Lines{"bob~ca", "bob~y find ca&dog"}));
}

TEST(ForEachInRangeTest, MatchesTheOneByOneLoop) {
  auto slow = [](double x, double y, double last) {
    std::vector<double> out;
    for (double i = x; i <= y; i += 1)
      if (i > 0 && i <= last) out.push_back(i);
    return out;
  };
  auto fast = [](double x, double y, double last) {
    std::vector<double> out;
    ForEachInRange(x, y, last, [&](double i) { out.push_back(i); });
    return out;
  };
  for (double x : {-5000.25, -3.7, -1.0, -0.5, 0.0, 0.1, 1.0, 2.5, 9.0})
    for (double y : {-2.0, 0.0, 3.0, 7.5, 12.0, 400.0})
      EXPECT_EQ(fast(x, y, 10), slow(x, y, 10)) << x << " " << y;
  EXPECT_EQ(fast(-123456.9, 1e300, 3), slow(-123456.9, 10, 3));
  // Where adding one no longer changes the value the old loop never ended.
  EXPECT_TRUE(fast(-1e300, 5, 10).empty());
  EXPECT_TRUE(fast(-1e17, 5, 10).empty());
  EXPECT_EQ(fast(-9007199254740992.0 - 2, 1, 10), std::vector<double>{1});
}

TEST_F(RequestParserTest, AnyBytesAreHandled) {
  std::mt19937 rng(11);
  const std::vector<std::string> heads = {"/srv send ", "/srv find ", "/srv ",
                                          "/",          "/srv send",  ""};
  const std::string alphabet = "0123456789-&~. eE+list/\xFF\x80";
  banning.chkPending.value = 0;
  settings.BlockMax = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = heads[rng() % heads.size()];
    int n = rng() % 12;
    for (int i = 0; i < n; ++i)
      text += (round % 3 == 0) ? static_cast<char>(rng() % 256)
                               : alphabet[rng() % alphabet.size()];
    std::string speaker(rng() % 4, static_cast<char>('a' + rng() % 3));
    Say(speaker, text);
  }
  // Every mail entry asks for a mail that exists.
  for (const auto& line : Pending()) {
    if (line.find('~') != std::string::npos) continue;
    size_t dash = line.find('-');
    ASSERT_NE(dash, std::string::npos) << line;
    std::string wanted = line.substr(dash + 1);
    if (wanted == "list") continue;
    double n = Val(wanted);
    EXPECT_TRUE(n > 0 && n <= 10) << line;
  }
}

}  // namespace
}  // namespace quorvex
