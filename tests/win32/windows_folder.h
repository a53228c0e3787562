// The files of the machine that the program under test reads and writes
// for real: Win.INI, RestartSettings.INI and the restart copy z.exe in the
// Windows folder, and Quorvex.INI beside the program. Tests share one Wine
// prefix, so each test that runs the program on these files keeps them as
// they were: saved when it begins, put back when it ends. A test ended by
// its watchdog leaves its save behind; the next one puts it back first.
#pragma once

#include <string>
#include <vector>

namespace quorvex::test {

class WindowsFolder {
 public:
  // Saves the files above and `more` (Windows paths).
  explicit WindowsFolder(std::vector<std::string> more = {});
  ~WindowsFolder();
  WindowsFolder(const WindowsFolder&) = delete;
  WindowsFolder& operator=(const WindowsFolder&) = delete;

  // Quorvex.INI beside this program.
  static std::string QueueFile();

 private:
  std::vector<std::string> files_;
};

// Names the stand-in client's install folder in Win.INI ("WAOL"
// "AppPath"), where the program finds the client's program to start it
// again. A WindowsFolder saved Win.INI before.
void NameStandInInWinIni();

}  // namespace quorvex::test
