// The Machine port: files by their Windows paths, the program's own path,
// the Windows folder, starting programs and rebooting.
//
// On Linux a folder stands for drive C: ("C:\Windows\Win.INI" lives at
// ROOT/C/Windows/Win.INI); names are matched ignoring case, as on Windows.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quorvex {

class Machine {
 public:
  virtual ~Machine() = default;

  // App.Path: the program's folder, without a trailing "\".
  virtual std::string AppPath() const = 0;
  // App.EXEName: the executable's name without ".exe".
  virtual std::string ExeName() const = 0;
  // GetWindowsDirectoryA.
  virtual std::string WindowsDirectory() const = 0;

  // Where the file named by a Windows path really is (for the profile
  // file port). Existing names are matched ignoring case.
  virtual std::string HostPath(std::string_view windows_path) const = 0;

  virtual bool FileExists(std::string_view windows_path) const = 0;
  virtual void RemoveFile(std::string_view windows_path) = 0;
  virtual std::int64_t FileLength(std::string_view windows_path) const = 0;
  // Copies a file; `progress(bytes_done, bytes_total)` is called as it goes.
  // False when the source cannot be read or the target written.
  virtual bool CopyFileBytes(
      std::string_view from, std::string_view to,
      const std::function<void(std::int64_t, std::int64_t)>& progress) = 0;

  // Appends `text` to a file, creating it when missing, and flushes it to
  // disk before returning. False when it could not be written whole.
  virtual bool AppendToFile(std::string_view windows_path,
                            std::string_view text) = 0;
  // Renames a file over another one in one step (the target is replaced
  // whole or not at all) and flushes the change to disk. False when the
  // rename failed; both files are then as they were.
  virtual bool MoveFileOver(std::string_view from, std::string_view to) = 0;

  // Starts a program with normal focus.
  virtual void RunProgram(std::string_view windows_path) = 0;
  // ExitWindowsEx(EWX_REBOOT).
  virtual void Reboot() = 0;
};

}  // namespace quorvex
