#include "sim/ini_profile_file.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "testing/temp_folder.h"

namespace quorvex {
namespace {

namespace fs = std::filesystem;

class IniProfileFileTest : public testing::Test {
 protected:
  void WriteText(const std::string& text) { TempFolder::Write(file_, text); }
  std::string ReadText() { return TempFolder::Read(file_); }

  const TempFolder folder_{"qv_ini_"};
  const std::string file_ = (folder_ / "Windows" / "Win.INI").string();
  IniProfileFile ini_;
};

TEST_F(IniProfileFileTest, MissingFileReadsAsDefaultsAndIsCreatedByAWrite) {
  EXPECT_EQ(ini_.GetString(file_, "Quorvex", "TotalPending", "none"), "none");
  ini_.WriteString(file_, "Quorvex", "TotalPending", std::nullopt);
  EXPECT_FALSE(fs::exists(file_));  // deleting creates nothing

  ini_.WriteString(file_, "Quorvex", "TotalPending", "2");
  ini_.WriteString(file_, "Quorvex", "Pending 0", "bob-7");
  ini_.WriteString(file_, "Windows", "load", "");
  EXPECT_EQ(ReadText(),
            "[Quorvex]\r\nTotalPending=2\r\nPending 0=bob-7\r\n"
            "[Windows]\r\nload=\r\n");
  // An empty value is a value, not a missing key.
  EXPECT_EQ(ini_.GetString(file_, "Windows", "load", "none"), "");
}

TEST_F(IniProfileFileTest, RewritesKeepOtherLinesAndPlaces) {
  WriteText(
      "; written by hand\n"
      "stray line before any section\n"
      "[Windows]\n"
      "Load = C:\\old.exe\n"
      "run=\n"
      "; keep=me\n"
      "\n"
      "[Desktop]\n"
      "Wallpaper=none");
  // Names match ignoring case; the key stays in place with its spelling.
  ini_.WriteString(file_, "WINDOWS", "load", "C:\\Windows\\z.exe");
  ini_.WriteString(file_, "windows", "NewKey", "1");
  ini_.WriteString(file_, "desktop", "Pattern", "(None)");
  ini_.WriteString(file_, "Quorvex", "ChatName", "Lobby");
  ini_.WriteString(file_, "Windows", "RUN", std::nullopt);
  EXPECT_EQ(ReadText(),
            "; written by hand\r\n"
            "stray line before any section\r\n"
            "[Windows]\r\n"
            "Load=C:\\Windows\\z.exe\r\n"
            "; keep=me\r\n"
            "NewKey=1\r\n"
            "\r\n"
            "[Desktop]\r\n"
            "Wallpaper=none\r\n"
            "Pattern=(None)\r\n"
            "[Quorvex]\r\n"
            "ChatName=Lobby\r\n");
  // A comment is no key, even with an "=" in it.
  EXPECT_EQ(ini_.GetString(file_, "Windows", "; keep", "d"), "d");
}

TEST_F(IniProfileFileTest, ReadingStripsBlanksAndOnePairOfQuotes) {
  WriteText(
      "\xEF\xBB\xBF[S]\r\n"  // a UTF-8 mark before the first section
      "  plain  =  a b  \r\n"
      "double=\" x \"\r\n"
      "single='y'\r\n"
      "mixed=\"z'\r\n"
      "twice=\"\"w\"\"\r\n"
      "lone=\"\r\n"
      "tab=\tt\t\r\n"
      "plain=second\r\n"
      "[s]\r\n"
      "other=hidden\r\n"
      "[Empty]\r\n");
  // The first section and the first key of a name are the ones read.
  EXPECT_EQ(ini_.GetString(file_, "S", "other", "d"), "d");

  ProfileFile::Sections want = {{"S",
                                 {{"plain", "a b"},
                                  {"double", " x "},
                                  {"single", "y"},
                                  {"mixed", "\"z'"},
                                  {"twice", "\"w\""},
                                  {"lone", "\""},
                                  {"tab", "t"}}},
                                {"Empty", {}}};
  EXPECT_EQ(ini_.Dump(file_), want);
}

// Blanks, quotes and "a=b" also round-trip in tests/scenarios/queue_roundtrip.
TEST_F(IniProfileFileTest, AwkwardValuesRoundTripThroughProfileQuote) {
  const std::string values[] = {"",     "\"",  "\"\"", "'x\"",  "\t",
                                "; no", "[x]", "  ",   "\"a\" "};
  for (size_t i = 0; i < std::size(values); ++i)
    ini_.WriteString(file_, "Quorvex", "Pending " + std::to_string(i),
                     ProfileQuote(values[i]));
  for (size_t i = 0; i < std::size(values); ++i)
    EXPECT_EQ(
        ini_.GetString(file_, "Quorvex", "Pending " + std::to_string(i), "?"),
        values[i]);

  // Line breaks cannot live in a line: they become blanks.
  ini_.WriteString(file_, "Quorvex", "Multi", "one\r\ntwo\nthree");
  EXPECT_EQ(ini_.GetString(file_, "Quorvex", "Multi", ""), "one  two three");
}

TEST_F(IniProfileFileTest, AFileThatCannotBeReplacedIsLeftAlone) {
  fs::create_directories(file_);  // a folder where the file should be
  ini_.WriteString(file_, "Quorvex", "TotalPending", "1");
  EXPECT_NE(ini_.last_error(), "");
  EXPECT_TRUE(fs::is_directory(file_));
  EXPECT_EQ(ini_.GetString(file_, "Quorvex", "TotalPending", "d"), "d");
}

// Many keys in one rewrite give the file that writing them one by one
// gives: sections old and new, names in other cases, keys written twice,
// blank and comment lines in the way.
TEST_F(IniProfileFileTest, OneRewriteMatchesWritesOneByOne) {
  const std::string one = (folder_ / "one.ini").string();
  const std::string all = (folder_ / "all.ini").string();
  const std::vector<std::string> starts = {
      "",
      "[A]\r\nk1=old\r\n\r\n; note\r\n\r\n[b]\r\nK2 = "
      "x\r\n[a]\r\nk1=second\r\n",
      "loose line\r\n[C]\r\n[A]\r\n\r\n"};
  std::mt19937 rng(5);
  const std::vector<std::string> sections = {"A", "a", "B", "C", "new", "NEW"};
  const std::vector<std::string> keys = {"k1", "K1", "k2", "k3", " k4 "};
  for (const std::string& start : starts) {
    for (int round = 0; round < 10; ++round) {
      TempFolder::Write(one, start);
      TempFolder::Write(all, start);
      std::vector<ProfileEntry> entries;
      const int n = static_cast<int>(rng() % 12);
      for (int i = 0; i < n; ++i) {
        ProfileEntry e{sections[rng() % sections.size()],
                       keys[rng() % keys.size()], "v" + std::to_string(i)};
        ini_.WriteString(one, e.section, e.key, e.value);
        entries.push_back(e);
      }
      ini_.WriteEntries(all, entries);
      ASSERT_EQ(TempFolder::Read(all), TempFolder::Read(one))
          << "start " << start << ", round " << round;
    }
  }
}

}  // namespace
}  // namespace quorvex
