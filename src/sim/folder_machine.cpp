#include "sim/folder_machine.h"

#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "model/text_util.h"
#include "sim/replace_file.h"

namespace quorvex {

namespace {

namespace fs = std::filesystem;

// A Windows path taken apart: the drive letter and the components below
// the drive's root, "." and ".." applied.
struct WindowsPath {
  char drive = 'C';
  std::vector<std::string> parts;
};

void AppendParts(std::string_view rest, std::vector<std::string>* parts) {
  std::size_t pos = 0;
  while (pos <= rest.size()) {
    std::size_t sep = rest.find('\\', pos);
    if (sep == std::string_view::npos) sep = rest.size();
    std::string_view part = rest.substr(pos, sep - pos);
    if (part == "..") {
      if (!parts->empty()) parts->pop_back();
    } else if (!part.empty() && part != ".") {
      parts->emplace_back(part);
    }
    pos = sep + 1;
  }
}

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// `base` is where a relative path starts (nullptr: the root of drive C).
WindowsPath ParseWindowsPath(std::string_view path, const WindowsPath* base) {
  std::string p(path);
  for (char& c : p)
    if (c == '/') c = '\\';
  WindowsPath out;
  std::string_view rest = p;
  if (rest.size() >= 2 && IsLetter(rest[0]) && rest[1] == ':') {
    out.drive = UCase(rest.substr(0, 1))[0];
    rest.remove_prefix(2);
  } else if (rest.empty() || rest.front() != '\\') {
    if (base) out = *base;
  }
  AppendParts(rest, &out.parts);
  return out;
}

// The entry of `dir` named `name` ignoring case: the exact spelling when it
// exists, else the first such name in byte order; "" when there is none.
// The folder is listed even when the name as given exists: on a file
// system that ignores case itself (Windows), that test says nothing about
// the spelling on disk.
std::string FindIgnoringCase(const fs::path& dir, const std::string& name) {
  std::error_code ec;
  std::string found;
  for (auto it = fs::directory_iterator(dir, ec);
       !ec && it != fs::directory_iterator(); it.increment(ec)) {
    std::string entry = it->path().filename().string();
    if (entry == name) return entry;
    if (EqualsIgnoreCase(entry, name) && (found.empty() || entry < found))
      found = std::move(entry);
  }
  return found;
}

}  // namespace

FolderMachine::FolderMachine(fs::path root) : root_(std::move(root)) {}

fs::path FolderMachine::Resolve(std::string_view windows_path) const {
  const WindowsPath app = ParseWindowsPath(app_path_, nullptr);
  const WindowsPath wp = ParseWindowsPath(windows_path, &app);
  std::vector<std::string> parts{std::string(1, wp.drive)};
  parts.insert(parts.end(), wp.parts.begin(), wp.parts.end());

  fs::path at = root_;
  bool existing = true;
  for (const std::string& part : parts) {
    if (existing) {
      std::string found = FindIgnoringCase(at, part);
      if (!found.empty()) {
        at /= found;
        continue;
      }
      existing = false;
    }
    at /= part;
  }
  return at;
}

std::string FolderMachine::HostPath(std::string_view windows_path) const {
  return Resolve(windows_path).string();
}

bool FolderMachine::FileExists(std::string_view windows_path) const {
  if (windows_path.empty()) return false;
  std::error_code ec;
  return fs::is_regular_file(Resolve(windows_path), ec);
}

void FolderMachine::RemoveFile(std::string_view windows_path) {
  if (windows_path.empty()) return;
  fs::path p = Resolve(windows_path);
  std::error_code ec;
  if (fs::is_regular_file(p, ec)) fs::remove(p, ec);
}

std::int64_t FolderMachine::FileLength(std::string_view windows_path) const {
  if (windows_path.empty()) return -1;
  fs::path p = Resolve(windows_path);
  std::error_code ec;
  if (!fs::is_regular_file(p, ec)) return -1;
  auto size = fs::file_size(p, ec);
  return ec ? -1 : static_cast<std::int64_t>(size);
}

bool FolderMachine::AppendToFile(std::string_view windows_path,
                                 std::string_view text) {
  if (windows_path.empty()) return false;
  std::string error;
  return AppendFileContents(Resolve(windows_path), text, &error);
}

bool FolderMachine::MoveFileOver(std::string_view from, std::string_view to) {
  if (from.empty() || to.empty()) return false;
  std::error_code ec;
  const fs::path source = Resolve(from);
  if (!fs::is_regular_file(source, ec)) return false;
  std::string error;
  return quorvex::MoveFileOver(source, Resolve(to), &error);
}

bool FolderMachine::CopyFileBytes(
    std::string_view from, std::string_view to,
    const std::function<void(std::int64_t, std::int64_t)>& progress) {
  if (from.empty() || to.empty()) return false;
  const fs::path source = Resolve(from);
  const fs::path target = Resolve(to);
  std::error_code ec;
  if (!fs::is_regular_file(source, ec)) return false;
  // Opening the target would empty the source.
  if (fs::exists(target, ec) && fs::equivalent(source, target, ec))
    return false;
  const auto total = static_cast<std::int64_t>(fs::file_size(source, ec));
  if (ec) return false;
  if (target.has_parent_path())
    fs::create_directories(target.parent_path(), ec);

  std::ifstream in(source, std::ios::binary);
  std::ofstream out(target, std::ios::binary | std::ios::trunc);
  if (!in || !out) return false;
  std::vector<char> buffer(static_cast<std::size_t>(kCopyChunk));
  std::int64_t done = 0;
  if (total == 0 && progress) progress(0, 0);
  while (done < total) {
    in.read(buffer.data(), kCopyChunk);
    const std::streamsize got = in.gcount();
    if (got <= 0) break;  // the file shrank under us
    out.write(buffer.data(), got);
    if (!out) return false;
    done += got;
    if (progress) progress(done, total);
  }
  out.close();
  return !out.fail() && done == total;
}

void FolderMachine::RunProgram(std::string_view windows_path) {
  if (run_program_) run_program_(windows_path);
}

void FolderMachine::Reboot() {
  if (reboot_) reboot_();
}

}  // namespace quorvex
