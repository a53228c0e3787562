#include "sim/folder_machine.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "model/text_util.h"
#include "testing/temp_folder.h"

namespace quorvex {
namespace {

namespace fs = std::filesystem;

class FolderMachineTest : public testing::Test {
 protected:
  void WriteFile(const fs::path& relative, const std::string& contents) {
    TempFolder::Write(root_ / relative, contents);
  }
  static std::string ReadFile(const fs::path& p) { return TempFolder::Read(p); }

  const TempFolder root_{"qv_folder_machine_"};
  FolderMachine m{root_};
};

TEST_F(FolderMachineTest, ResolvesWindowsPathsIgnoringCaseOfWhatExists) {
  // Nothing exists yet: spelled as given, drive C by default, a relative
  // path in the program's folder.
  const std::pair<const char*, fs::path> fresh[] = {
      {"C:\\Windows\\Win.INI", "C/Windows/Win.INI"},
      {"\\AOL.exe", "C/AOL.exe"},
      {"d:/Games/x.txt", "D/Games/x.txt"},
      {"C:\\Windows\\..\\.\\\\Temp\\a", "C/Temp/a"},
      {"Quorvex.INI", "C/Program Files/Quorvex/Quorvex.INI"}};
  for (const auto& [windows, host] : fresh)
    EXPECT_EQ(m.HostPath(windows), (root_ / host).make_preferred().string())
        << windows;
  m.SetAppPath("E:\\Bots");
  EXPECT_EQ(m.HostPath("q.ini"), (root_ / "E" / "Bots" / "q.ini").string());

  WriteFile("c/WINDOWS/RestartSettings.INI", "x");
  // On Windows the folder is case-blind itself: any spelling is the file.
  auto same = [](const std::string& a, const fs::path& b) {
#ifdef _WIN32
    return EqualsIgnoreCase(a, b.string());
#else
    return a == b.string();
#endif
  };
  EXPECT_TRUE(same(m.HostPath("C:\\Windows\\RestartSettings.ini"),
                   root_ / "c" / "WINDOWS" / "RestartSettings.INI"));
  // Existing folders matched, the missing rest spelled as given.
  EXPECT_TRUE(same(m.HostPath("C:\\windows\\New\\z.exe"),
                   root_ / "c" / "WINDOWS" / "New" / "z.exe"));
  EXPECT_TRUE(m.FileExists("c:\\windows\\restartsettings.ini"));
  EXPECT_FALSE(m.FileExists("C:\\Windows"));  // a folder is not a file
  EXPECT_EQ(m.FileLength("C:\\WINDOWS\\RESTARTSETTINGS.INI"), 1);
  EXPECT_EQ(m.FileLength("C:\\Windows\\none"), -1);

  m.RemoveFile("C:\\Windows\\restartsettings.ini");
  EXPECT_FALSE(m.FileExists("C:\\Windows\\RestartSettings.INI"));
  m.RemoveFile("C:\\Windows\\restartsettings.ini");  // gone: no error
  m.RemoveFile("C:\\Windows");                       // never a folder
  EXPECT_TRUE(fs::is_directory(root_ / "c" / "WINDOWS"));
}

TEST_F(FolderMachineTest, CopiesInChunksWithProgress) {
  std::string data(2 * FolderMachine::kCopyChunk + 100, '\0');
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7);
  WriteFile("C/Program Files/Quorvex/Quorvex.exe", data);

  using Calls = std::vector<std::pair<std::int64_t, std::int64_t>>;
  Calls calls;
  auto progress = [&](std::int64_t done, std::int64_t total) {
    calls.emplace_back(done, total);
  };
  ASSERT_TRUE(m.CopyFileBytes("C:\\Program Files\\Quorvex\\QUORVEX.exe",
                              "C:\\Windows\\z.exe", progress));
  const auto total = static_cast<std::int64_t>(data.size());
  const auto chunk = FolderMachine::kCopyChunk;
  EXPECT_EQ(calls, (Calls{{chunk, total}, {2 * chunk, total}, {total, total}}));
  EXPECT_EQ(ReadFile(root_ / "C" / "Windows" / "z.exe"), data);

  // Copying over an existing file replaces it.
  WriteFile("C/Windows/small.txt", "abc");
  ASSERT_TRUE(m.CopyFileBytes("C:\\Windows\\small.txt", "C:\\Windows\\Z.EXE",
                              progress));
  EXPECT_EQ(ReadFile(root_ / "C" / "Windows" / "z.exe"), "abc");

  WriteFile("C/empty", "");
  calls.clear();
  EXPECT_TRUE(m.CopyFileBytes("C:\\empty", "C:\\empty2", progress));
  EXPECT_EQ(calls, (Calls{{0, 0}}));

  EXPECT_FALSE(m.CopyFileBytes("C:\\missing", "C:\\x", progress));
  EXPECT_FALSE(m.FileExists("C:\\x"));
  // Onto itself (under another spelling): refused, the file kept whole.
  EXPECT_FALSE(m.CopyFileBytes("C:\\Windows\\small.txt",
                               "c:\\windows\\SMALL.TXT", progress));
  EXPECT_EQ(ReadFile(root_ / "C" / "Windows" / "small.txt"), "abc");
}

}  // namespace
}  // namespace quorvex
