// The Machine port on Windows: real files by their Windows paths, the
// program's own path, starting programs with normal focus and rebooting
// through ExitWindowsEx with the shutdown privilege.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "ports/machine.h"

namespace quorvex::win32 {

class Win32Machine : public Machine {
 public:
  // Bytes copied between two progress calls of CopyFileBytes.
  static constexpr std::int64_t kCopyChunk = 64 * 1024;
  // Asks the system to restart with these ExitWindowsEx flags; true when
  // it accepted. Tests replace it so that nothing reboots.
  using ExitWindowsFn = std::function<bool(unsigned flags)>;

  Win32Machine();

  std::string AppPath() const override { return app_path_; }
  std::string ExeName() const override { return exe_name_; }
  std::string WindowsDirectory() const override;
  // Windows paths are host paths here.
  std::string HostPath(std::string_view windows_path) const override {
    return std::string(windows_path);
  }
  bool FileExists(std::string_view windows_path) const override;
  void RemoveFile(std::string_view windows_path) override;
  std::int64_t FileLength(std::string_view windows_path) const override;
  bool CopyFileBytes(
      std::string_view from, std::string_view to,
      const std::function<void(std::int64_t, std::int64_t)>& progress) override;
  // Appended with FILE_APPEND_DATA and flushed (FlushFileBuffers); the
  // move is MoveFileEx with MOVEFILE_WRITE_THROUGH, replacing the target.
  bool AppendToFile(std::string_view windows_path,
                    std::string_view text) override;
  bool MoveFileOver(std::string_view from, std::string_view to) override;
  void RunProgram(std::string_view windows_path) override;
  // ExitWindowsEx(EWX_REBOOT) after taking the shutdown privilege, which
  // later Windows versions require.
  void Reboot() override;

  void SetExitWindows(ExitWindowsFn fn) { exit_windows_ = std::move(fn); }
  // The real call: takes the privilege, then ExitWindowsEx.
  static bool RealExitWindows(unsigned flags);

 private:
  std::string app_path_;
  std::string exe_name_;
  ExitWindowsFn exit_windows_ = &Win32Machine::RealExitWindows;
};

}  // namespace quorvex::win32
