#include "win32/win32_profile_file.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>
#include <string>

namespace quorvex::win32 {
namespace {

class Win32ProfileFileTest : public testing::Test {
 protected:
  Win32ProfileFileTest() {
    char dir[MAX_PATH];
    ::GetTempPathA(MAX_PATH, dir);
    path_ = std::string(dir) + "qv_profile_" +
            std::to_string(::GetCurrentProcessId()) + ".ini";
  }
  ~Win32ProfileFileTest() override { ::DeleteFileA(path_.c_str()); }
  std::string Read() {
    std::ifstream in(path_, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  std::string path_;
  Win32ProfileFile ini;
};

TEST_F(Win32ProfileFileTest, ReadsAndWritesWithThePlatformsRules) {
  EXPECT_EQ(ini.GetString(path_, "WAOL", "AppPath", "none"), "none");
  ini.WriteString(path_, "Quorvex", "ChatName", "Lobby °2");
  ini.WriteString(path_, "Quorvex", "Pending 0", "bob-5");
  ini.WriteString(path_, "Windows", "load", "C:\\Windows\\z.exe");
  // The file holds the client's code page.
  EXPECT_NE(Read().find("ChatName=Lobby \xB0"
                        "2"),
            std::string::npos);
  EXPECT_EQ(ini.GetString(path_, "quorvex", "CHATNAME", ""), "Lobby °2");

  // A key written empty stays, empty; a deleted key reads the default.
  ini.WriteString(path_, "Windows", "load", "");
  EXPECT_EQ(ini.GetString(path_, "Windows", "load", "x"), "");
  ini.WriteString(path_, "Quorvex", "Pending 0", std::nullopt);
  EXPECT_EQ(ini.GetString(path_, "Quorvex", "Pending 0", "gone"), "gone");

  // Quotes around a value are taken off, as the program relies on.
  ini.WriteString(path_, "Quorvex", "Pending 1", "\" spaced \"");
  EXPECT_EQ(ini.GetString(path_, "Quorvex", "Pending 1", ""), " spaced ");

  // A value longer than the first buffer comes back whole.
  const std::string long_value(5000, 'q');
  ini.WriteString(path_, "Quorvex", "Long", long_value);
  EXPECT_EQ(ini.GetString(path_, "Quorvex", "Long", ""), long_value);

  const auto dump = ini.Dump(path_);
  ASSERT_EQ(dump.size(), 2u);
  EXPECT_EQ(dump.at("Quorvex").size(), 3u);
  EXPECT_EQ(dump.at("Windows").at("load"), "");
}

// A damaged file may hold a value of 100 KB: it is read whole (the
// program cuts it), and the values after it are still found.
TEST_F(Win32ProfileFileTest, AHundredKilobyteValueIsReadWhole) {
  const std::string room = "Lobby" + std::string(100000, 'x');
  std::ofstream(path_, std::ios::binary)
      << "[Quorvex]\r\nChatName=" << room << "\r\nTotalSent=5\r\n";
  EXPECT_EQ(ini.GetString(path_, "Quorvex", "ChatName", ""), room);
  EXPECT_EQ(ini.GetString(path_, "Quorvex", "TotalSent", ""), "5");
}

}  // namespace
}  // namespace quorvex::win32
