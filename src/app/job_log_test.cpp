#include "app/job_log.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "ports/virtual_host.h"
#include "sim/folder_machine.h"
#include "testing/temp_folder.h"

namespace quorvex {
namespace {

const CivilTime kWhen{2026, 11, 5, 4, 7, 9, 500};

TEST(LogLineTest, FieldsAreTimeOutcomeRequestersWhatAndReadBack) {
  EXPECT_EQ(FormatLogLine(kWhen, {JobOutcome::kSent, "(bob)(amy)", "send 5"}),
            "2026-11-05 04:07:09\tsent\tbob, amy\tsend 5\r\n");
  EXPECT_EQ(FormatLogLine(kWhen, {JobOutcome::kBanned, "mr x", "by the user"}),
            "2026-11-05 04:07:09\tbanned\tmr x\tby the user\r\n");
  // Nobody and nothing are "-"; what a person typed cannot break the line.
  EXPECT_EQ(FormatLogLine(kWhen, {JobOutcome::kStarted, "", ""}),
            "2026-11-05 04:07:09\tstarted\t-\t-\r\n");
  const std::string typed = FormatLogLine(
      kWhen, {JobOutcome::kFindMailed, "(eve)", "find a\tb\r\nc"});
  EXPECT_EQ(typed, "2026-11-05 04:07:09\tfind mailed\teve\tfind a b  c\r\n");

  const auto grouped = ParseLogLine(FormatLogLine(
      kWhen, {JobOutcome::kLostWithSignOff, "(bob)(amy)(cy)", "send list"}));
  ASSERT_TRUE(grouped);
  EXPECT_EQ(grouped->time, "2026-11-05 04:07:09");
  EXPECT_EQ(grouped->outcome, "lost with a sign-off");
  EXPECT_EQ(grouped->requesters,
            (std::vector<std::string>{"bob", "amy", "cy"}));
  EXPECT_EQ(grouped->what, "send list");
  const auto none = ParseLogLine("2026-11-05 04:07:09\tstopped\t-\t-");
  ASSERT_TRUE(none);
  EXPECT_TRUE(none->requesters.empty());
  EXPECT_EQ(none->what, "");
  EXPECT_FALSE(ParseLogLine("2026-11-05 04:07:09\tsent\tbob"));
}

TEST(LogLineTest, EveryOutcomeHasAWordOfItsOwn) {
  std::set<std::string> words;
  for (int o = 0; o <= static_cast<int>(JobOutcome::kLogIncomplete); ++o)
    words.insert(OutcomeWord(static_cast<JobOutcome>(o)));
  EXPECT_EQ(words.size(),
            static_cast<std::size_t>(JobOutcome::kLogIncomplete) + 1);
  EXPECT_FALSE(words.count("?"));
}

class JobLogTest : public ::testing::Test {
 protected:
  std::string Read(const std::string& windows_path) {
    return TempFolder::Read(machine.HostPath(windows_path));
  }
  // A line of exactly `size` bytes.
  JobEvent EventOfSize(std::size_t size) {
    const std::size_t fixed =
        FormatLogLine(host.Now(), {JobOutcome::kSent, "x", ""}).size() - 1;
    return {JobOutcome::kSent, "x", std::string(size - fixed, 'w')};
  }

  TempFolder root{"qv_job_log_"};
  FolderMachine machine{root.path()};
  VirtualHost host{kWhen};
};

TEST_F(JobLogTest, LinesAreAppendedBesideTheQueueFile) {
  JobLog log(machine, host);
  EXPECT_EQ(log.Path(), "C:\\Program Files\\Quorvex\\Quorvex.log");
  ASSERT_TRUE(log.Write({JobOutcome::kStarted, "", "program"}));
  ASSERT_TRUE(log.Write({JobOutcome::kSent, "(bob)", "send 1"}));
  EXPECT_EQ(Read(log.Path()),
            "2026-11-05 04:07:09\tstarted\t-\tprogram\r\n"
            "2026-11-05 04:07:09\tsent\tbob\tsend 1\r\n");
  // A program started again appends to what the last one wrote.
  JobLog again(machine, host);
  ASSERT_TRUE(again.Write({JobOutcome::kStopped, "", "program"}));
  EXPECT_EQ(Read(log.Path()),
            "2026-11-05 04:07:09\tstarted\t-\tprogram\r\n"
            "2026-11-05 04:07:09\tsent\tbob\tsend 1\r\n"
            "2026-11-05 04:07:09\tstopped\t-\tprogram\r\n");
}

TEST_F(JobLogTest, RollsWhenALineWouldGoPastTheLimit) {
  constexpr std::int64_t kLimit = 200;
  JobLog log(machine, host, kLimit);
  // 120 + 81 bytes: one byte past the limit, so the file of 120 becomes
  // the old one before the line goes in.
  ASSERT_TRUE(log.Write(EventOfSize(120)));
  ASSERT_TRUE(log.Write(EventOfSize(81)));
  EXPECT_EQ(machine.FileLength(log.OldPath()), 120);
  EXPECT_EQ(machine.FileLength(log.Path()), 81);
  // 81 + 119: exactly the limit, still the same file.
  ASSERT_TRUE(log.Write(EventOfSize(119)));
  EXPECT_EQ(machine.FileLength(log.Path()), 200);
  EXPECT_EQ(machine.FileLength(log.OldPath()), 120);
  // The next line rolls again: the oldest lines go.
  ASSERT_TRUE(log.Write(EventOfSize(30)));
  EXPECT_EQ(machine.FileLength(log.OldPath()), 200);
  EXPECT_EQ(machine.FileLength(log.Path()), 30);
  EXPECT_EQ(log.failures(), 0);
}

TEST_F(JobLogTest, ALineLongerThanTheLimitStandsAlone) {
  JobLog log(machine, host, 50);
  // An empty log takes it, and is not rolled over the older one for it.
  TempFolder::Write(machine.HostPath(log.OldPath()), "older");
  TempFolder::Write(machine.HostPath(log.Path()), "");
  ASSERT_TRUE(log.Write(EventOfSize(80)));
  EXPECT_EQ(machine.FileLength(log.Path()), 80);
  EXPECT_EQ(Read(log.OldPath()), "older");
  ASSERT_TRUE(log.Write(EventOfSize(30)));
  EXPECT_EQ(machine.FileLength(log.OldPath()), 80);
  EXPECT_EQ(machine.FileLength(log.Path()), 30);
}

// A disk that fills and is freed again: while `failing`, no file is
// written or moved.
class FlakyMachine : public FolderMachine {
 public:
  using FolderMachine::FolderMachine;
  bool AppendToFile(std::string_view path, std::string_view text) override {
    return !failing && FolderMachine::AppendToFile(path, text);
  }
  bool MoveFileOver(std::string_view from, std::string_view to) override {
    return !failing && FolderMachine::MoveFileOver(from, to);
  }
  bool failing = true;
};

TEST_F(JobLogTest, AFailedWriteIsCountedAndNothingElseHappens) {
  FlakyMachine full(root.path());
  JobLog log(full, host, 50);
  EXPECT_FALSE(log.Write({JobOutcome::kSent, "(bob)", "send 1"}));
  EXPECT_EQ(log.failures(), 1);
  // A full log that cannot be moved aside takes no more lines.
  TempFolder::Write(full.HostPath(log.Path()), std::string(45, 'x'));
  EXPECT_FALSE(log.Write(EventOfSize(30)));
  EXPECT_EQ(full.FileLength(log.Path()), 45);
  EXPECT_EQ(log.failures(), 2);
}

TEST_F(JobLogTest, TheFirstLineWrittenAgainSaysHowManyWereLost) {
  FlakyMachine flaky(root.path());
  JobLog log(flaky, host);
  std::vector<int> heard;
  const int id =
      log.Subscribe([&](const JobLog& l) { heard.push_back(l.failures()); });
  EXPECT_FALSE(log.Write({JobOutcome::kSent, "(bob)", "send 1"}));
  EXPECT_FALSE(log.Write({JobOutcome::kSent, "(amy)", "send 2"}));
  EXPECT_EQ(heard, (std::vector<int>{1, 2}));
  flaky.failing = false;
  ASSERT_TRUE(log.Write({JobOutcome::kStopped, "", "serving"}));
  ASSERT_TRUE(log.Write({JobOutcome::kStarted, "", "serving 3 mails"}));
  // One lost later is owned up to on its own; the total stays.
  flaky.failing = true;
  EXPECT_FALSE(log.Write({JobOutcome::kSent, "(cy)", "send 3"}));
  flaky.failing = false;
  ASSERT_TRUE(log.Write({JobOutcome::kStopped, "", "program"}));
  EXPECT_EQ(Read(log.Path()),
            "2026-11-05 04:07:09\tlog incomplete\t-\t2 lines of Quorvex.log "
            "could not be written\r\n"
            "2026-11-05 04:07:09\tstopped\t-\tserving\r\n"
            "2026-11-05 04:07:09\tstarted\t-\tserving 3 mails\r\n"
            "2026-11-05 04:07:09\tlog incomplete\t-\t1 line of Quorvex.log "
            "could not be written\r\n"
            "2026-11-05 04:07:09\tstopped\t-\tprogram\r\n");
  EXPECT_EQ(log.failures(), 3);
  EXPECT_EQ(log.unreported(), 0);
  log.Unsubscribe(id);
}

TEST_F(JobLogTest, EventsOfOneMomentAreOneWriteKeptOrLostTogether) {
  FlakyMachine flaky(root.path());
  JobLog log(flaky, host);
  const std::vector<JobEvent> cleared = {
      {JobOutcome::kRemovedByUser, "(bob)(amy)", "send 5"},
      {JobOutcome::kRemovedByUser, "(cy)", "send list"}};
  EXPECT_FALSE(log.Write(cleared));
  EXPECT_EQ(log.failures(), 2);  // each line lost is counted
  EXPECT_EQ(machine.FileLength(log.Path()), -1);
  flaky.failing = false;
  ASSERT_TRUE(log.Write(cleared));
  EXPECT_TRUE(log.Write(std::vector<JobEvent>{}));  // nothing, no line
  EXPECT_EQ(Read(log.Path()),
            "2026-11-05 04:07:09\tlog incomplete\t-\t2 lines of Quorvex.log "
            "could not be written\r\n"
            "2026-11-05 04:07:09\tremoved by the user\tbob, amy\tsend 5\r\n"
            "2026-11-05 04:07:09\tremoved by the user\tcy\tsend list\r\n");
}

}  // namespace
}  // namespace quorvex
