// The Machine on Linux: a root folder stands for the drives.
//
// "C:\Windows\Win.INI" is ROOT/C/Windows/Win.INI and "D:\x" is ROOT/D/x; a
// path without a drive ("\AOL.exe") is on drive C, and a relative one is
// taken from the program's folder (its working folder on Windows). "/" is
// accepted as a separator, "." and ".." are followed. Components that exist
// are matched ignoring case, as Windows does, so "RestartSettings.ini"
// finds RestartSettings.INI; new ones are created as spelled.
//
// Starting a program and rebooting are left to hooks set by the owner (the
// simulated machine, the scenario runner); without a hook they do nothing.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "ports/machine.h"

namespace quorvex {

class FolderMachine : public Machine {
 public:
  // Bytes copied between two progress calls of CopyFileBytes.
  static constexpr std::int64_t kCopyChunk = 64 * 1024;

  explicit FolderMachine(std::filesystem::path root);

  const std::filesystem::path& root() const { return root_; }
  void SetAppPath(std::string path) { app_path_ = std::move(path); }
  void SetExeName(std::string name) { exe_name_ = std::move(name); }
  void SetWindowsDirectory(std::string path) { windows_ = std::move(path); }
  void SetRunProgramHook(std::function<void(std::string_view)> hook) {
    run_program_ = std::move(hook);
  }
  void SetRebootHook(std::function<void()> hook) { reboot_ = std::move(hook); }

  std::string AppPath() const override { return app_path_; }
  std::string ExeName() const override { return exe_name_; }
  std::string WindowsDirectory() const override { return windows_; }

  std::string HostPath(std::string_view windows_path) const override;
  // A file (not a folder) is there; an empty path never is.
  bool FileExists(std::string_view windows_path) const override;
  // Removes a file; a missing file is no error.
  void RemoveFile(std::string_view windows_path) override;
  // -1 when there is no such file.
  std::int64_t FileLength(std::string_view windows_path) const override;
  // Copies in chunks of kCopyChunk, calling `progress` after each (once
  // with 0, 0 for an empty file). Creates the target's missing folders.
  // False when the source is missing, both name the same file, or the
  // target cannot be written.
  bool CopyFileBytes(
      std::string_view from, std::string_view to,
      const std::function<void(std::int64_t, std::int64_t)>& progress) override;

  // Through the same durable writes as the profile files and the registry
  // (sim/replace_file.h); missing folders are created.
  bool AppendToFile(std::string_view windows_path,
                    std::string_view text) override;
  bool MoveFileOver(std::string_view from, std::string_view to) override;

  void RunProgram(std::string_view windows_path) override;
  void Reboot() override;

 private:
  std::filesystem::path Resolve(std::string_view windows_path) const;

  std::filesystem::path root_;
  std::string app_path_ = "C:\\Program Files\\Quorvex";
  std::string exe_name_ = "Quorvex";
  std::string windows_ = "C:\\Windows";
  std::function<void(std::string_view)> run_program_;
  std::function<void()> reboot_;
};

}  // namespace quorvex
