#include "win32/win32_machine.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace quorvex::win32 {
namespace {

class Win32MachineTest : public testing::Test {
 protected:
  Win32MachineTest() {
    char dir[MAX_PATH];
    ::GetTempPathA(MAX_PATH, dir);
    dir_ = std::string(dir) + "qv_machine_" +
           std::to_string(::GetCurrentProcessId());
    ::CreateDirectoryA(dir_.c_str(), nullptr);
  }
  ~Win32MachineTest() override {
    for (const char* f : {"\\a.bin", "\\b.bin", "\\Z.EXE"})
      ::DeleteFileA((dir_ + f).c_str());
    ::RemoveDirectoryA(dir_.c_str());
  }
  std::string dir_;
  Win32Machine m;
};

TEST_F(Win32MachineTest, KnowsItsOwnPathAndTheWindowsFolder) {
  EXPECT_EQ(m.ExeName(), "qv_win32_test");
  char self[MAX_PATH];
  ::GetModuleFileNameA(nullptr, self, MAX_PATH);
  EXPECT_EQ(m.AppPath() + "\\" + m.ExeName() + ".exe", self);
  EXPECT_TRUE(m.FileExists(self));
  EXPECT_FALSE(m.WindowsDirectory().empty());
}

TEST_F(Win32MachineTest, FilesAreFoundIgnoringCaseCopiedAndRemoved) {
  std::string data(2 * Win32Machine::kCopyChunk + 100, '\0');
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7);
  std::ofstream(dir_ + "\\a.bin", std::ios::binary) << data;

  EXPECT_TRUE(m.FileExists(dir_ + "\\A.BIN"));
  EXPECT_FALSE(m.FileExists(dir_));  // a folder is not a file
  EXPECT_FALSE(m.FileExists(""));
  EXPECT_EQ(m.FileLength(dir_ + "\\a.bin"),
            static_cast<std::int64_t>(data.size()));
  EXPECT_EQ(m.FileLength(dir_ + "\\none"), -1);

  std::vector<std::pair<std::int64_t, std::int64_t>> calls;
  ASSERT_TRUE(m.CopyFileBytes(
      dir_ + "\\a.bin", dir_ + "\\z.exe",
      [&](std::int64_t d, std::int64_t t) { calls.emplace_back(d, t); }));
  const std::int64_t n = static_cast<std::int64_t>(data.size());
  EXPECT_EQ(calls, (decltype(calls){{Win32Machine::kCopyChunk, n},
                                    {2 * Win32Machine::kCopyChunk, n},
                                    {n, n}}));
  std::ifstream in(dir_ + "\\Z.EXE", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), data);
  in.close();

  // A missing source copies nothing.
  EXPECT_FALSE(m.CopyFileBytes(dir_ + "\\none", dir_ + "\\b.bin", nullptr));
  EXPECT_FALSE(m.FileExists(dir_ + "\\b.bin"));

  m.RemoveFile(dir_ + "\\Z.exe");
  EXPECT_FALSE(m.FileExists(dir_ + "\\z.exe"));
  m.RemoveFile(dir_ + "\\z.exe");  // gone: no error
}

}  // namespace
}  // namespace quorvex::win32
