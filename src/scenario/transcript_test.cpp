#include "scenario/transcript.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/temp_folder.h"

namespace quorvex::scenario {
namespace {

// Each line of the file reads "00:00:00.000  a: x" at this clock: 19 bytes
// with its end of line.
constexpr std::streamoff kLine = 19;

TEST(TranscriptFileTest, LinesAreOnDiskAtOnceAndTheFileStartsAfreshAtItsLimit) {
  TempFolder folder("quorvex-transcript-");
  const auto path = folder / "room.txt";
  const std::string line = "00:00:00.000  a: x\n";
  ASSERT_EQ(static_cast<std::streamoff>(line.size()), kLine);
  // The limit is reached exactly by two lines: the third starts afresh.
  {
    TranscriptFile log(path, 2 * kLine, [] { return 0.0; });
    log.observer().OnChat("a", "x");
    EXPECT_EQ(TempFolder::Read(path), line);  // read while still open
    log.observer().OnChat("a", "x");
    EXPECT_EQ(TempFolder::Read(path), line + line);
    log.observer().OnChat("a", "x");
    EXPECT_EQ(TempFolder::Read(path), line);
  }
  // One byte more and the third line still fits; the fourth starts afresh.
  {
    TranscriptFile log(path, 2 * kLine + 1, [] { return 0.0; });
    EXPECT_EQ(TempFolder::Read(path), "");  // a new log, a new file
    for (int i = 0; i < 3; ++i) log.observer().OnChat("a", "x");
    EXPECT_EQ(TempFolder::Read(path), line + line + line);
    log.observer().OnIm("a", "x");
    EXPECT_EQ(TempFolder::Read(path), "00:00:00.000  [im] to a: x\n");
  }
}

}  // namespace
}  // namespace quorvex::scenario
