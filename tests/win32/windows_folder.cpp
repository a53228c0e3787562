#include "windows_folder.h"

#include <windows.h>

#include <fstream>
#include <sstream>

#include "standin_process.h"
#include "win32/win32_profile_file.h"

namespace quorvex::test {

namespace {

// The saves, one file each, and a list of what was saved ("1 PATH" for a
// file that existed, "0 PATH" for one that did not).
std::string SaveFolder() {
  char dir[MAX_PATH];
  ::GetTempPathA(MAX_PATH, dir);
  return std::string(dir) + "qv_windows_folder";
}

std::string ListFile() { return SaveFolder() + "\\saved.txt"; }

std::string SaveOf(std::size_t i) {
  return SaveFolder() + "\\" + std::to_string(i);
}

bool Exists(const std::string& path) {
  const DWORD a = ::GetFileAttributesA(path.c_str());
  return a != INVALID_FILE_ATTRIBUTES && !(a & FILE_ATTRIBUTE_DIRECTORY);
}

// Puts back what the list says, then forgets the saves.
void Restore() {
  std::ifstream in(ListFile());
  if (!in) return;
  std::string line;
  for (std::size_t i = 0; std::getline(in, line); ++i) {
    if (line.size() < 3) continue;
    const std::string path = line.substr(2);
    // The private profile functions may still hold the file: written
    // back through them, it is flushed first.
    ::WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str());
    if (line[0] == '1')
      ::CopyFileA(SaveOf(i).c_str(), path.c_str(), FALSE);
    else
      ::DeleteFileA(path.c_str());
    ::DeleteFileA(SaveOf(i).c_str());
  }
  in.close();
  ::DeleteFileA(ListFile().c_str());
}

}  // namespace

std::string WindowsFolder::QueueFile() {
  char self[MAX_PATH];
  const DWORD n = ::GetModuleFileNameA(nullptr, self, MAX_PATH);
  std::string path(self, n);
  return path.substr(0, path.find_last_of('\\')) + "\\Quorvex.INI";
}

WindowsFolder::WindowsFolder(std::vector<std::string> more) {
  // What a test ended by its watchdog left.
  Restore();
  files_ = {"C:\\Windows\\Win.INI", "C:\\Windows\\RestartSettings.INI",
            "C:\\Windows\\z.exe", QueueFile()};
  files_.insert(files_.end(), more.begin(), more.end());
  ::CreateDirectoryA(SaveFolder().c_str(), nullptr);
  std::ostringstream list;
  for (std::size_t i = 0; i < files_.size(); ++i) {
    const bool exists = Exists(files_[i]);
    if (exists) ::CopyFileA(files_[i].c_str(), SaveOf(i).c_str(), FALSE);
    list << (exists ? "1 " : "0 ") << files_[i] << "\n";
  }
  std::ofstream(ListFile()) << list.str();
}

WindowsFolder::~WindowsFolder() { Restore(); }

void NameStandInInWinIni() {
  win32::Win32ProfileFile().WriteString("C:\\Windows\\Win.INI", "WAOL",
                                        "AppPath",
                                        StandInProcess::InstallFolder());
}

}  // namespace quorvex::test
