#include "sim/replace_file.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <system_error>
#include <thread>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace quorvex {
namespace {

std::string Reason() { return std::strerror(errno); }

#ifdef _WIN32
int OpenForWrite(const std::filesystem::path& p) {
  return _wopen(p.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY,
                _S_IREAD | _S_IWRITE);
}
int OpenForAppend(const std::filesystem::path& p) {
  return _wopen(p.c_str(), _O_WRONLY | _O_CREAT | _O_APPEND | _O_BINARY,
                _S_IREAD | _S_IWRITE);
}
int WriteSome(int fd, const char* data, std::size_t size) {
  unsigned chunk = size > (1u << 30) ? (1u << 30) : static_cast<unsigned>(size);
  return _write(fd, data, chunk);
}
int FlushToDisk(int fd) { return _commit(fd); }
int CloseFile(int fd) { return _close(fd); }
// The folder's entry cannot be flushed on its own there: MoveFileEx writes
// it through when the rename is done.
bool FlushFolder(const std::filesystem::path&, std::string*) { return true; }
#else
int OpenForWrite(const std::filesystem::path& p) {
  return ::open(p.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
}
int OpenForAppend(const std::filesystem::path& p) {
  return ::open(p.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
}
ssize_t WriteSome(int fd, const char* data, std::size_t size) {
  return ::write(fd, data, size);
}
int FlushToDisk(int fd) { return ::fsync(fd); }
int CloseFile(int fd) { return ::close(fd); }
// The rename lives in the folder: until the folder is flushed, a power cut
// may bring back the old name (or neither name on some file systems).
bool FlushFolder(const std::filesystem::path& folder, std::string* error) {
  const std::filesystem::path dir = folder.empty() ? "." : folder;
  int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) {
    *error = "cannot open folder " + dir.string() + ": " + Reason();
    return false;
  }
  bool ok = ::fsync(fd) == 0 || errno == EINVAL;  // some file systems refuse
  if (!ok) *error = "cannot flush folder " + dir.string() + ": " + Reason();
  ::close(fd);
  return ok;
}
#endif

// Writes the whole of `contents` to the open file and flushes it to disk;
// closes it either way.
bool WriteAndClose(int fd, const std::filesystem::path& name,
                   std::string_view contents, std::string* error) {
  const char* p = contents.data();
  std::size_t left = contents.size();
  while (left > 0) {
    auto n = WriteSome(fd, p, left);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      *error = "cannot write " + name.string() + ": " + Reason();
      CloseFile(fd);
      return false;
    }
    p += n;
    left -= static_cast<std::size_t>(n);
  }
  if (FlushToDisk(fd) != 0) {
    *error = "cannot flush " + name.string() + ": " + Reason();
    CloseFile(fd);
    return false;
  }
  if (CloseFile(fd) != 0) {
    *error = "cannot close " + name.string() + ": " + Reason();
    return false;
  }
  return true;
}

// Writes and flushes the whole of `contents` to a new file `tmp`.
bool WriteDurably(const std::filesystem::path& tmp, std::string_view contents,
                  std::string* error) {
  int fd = OpenForWrite(tmp);
  if (fd < 0) {
    *error = "cannot create " + tmp.string() + ": " + Reason();
    return false;
  }
  return WriteAndClose(fd, tmp, contents, error);
}

bool MakeParentFolder(const std::filesystem::path& path, std::string* error) {
  if (!path.has_parent_path()) return true;
  std::error_code ec;
  std::filesystem::create_directories(path.parent_path(), ec);
  if (ec)
    *error = "cannot create folder " + path.parent_path().string() + ": " +
             ec.message();
  return !ec;
}

}  // namespace

namespace {
constexpr int kRenameAttempts = 100;  // a second at most
}  // namespace

std::filesystem::path ReplacementPath(const std::filesystem::path& path) {
  std::filesystem::path tmp = path;
  tmp += ".tmp";
  return tmp;
}

bool MoveFileOver(const std::filesystem::path& from,
                  const std::filesystem::path& to, std::string* error) {
  namespace fs = std::filesystem;
  std::error_code ec;
  // On Windows a reader holding the file open makes the rename fail for a
  // moment: try again briefly before giving up.
  for (int attempt = 0; attempt < kRenameAttempts; ++attempt) {
    fs::rename(from, to, ec);
    if (!ec) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  if (ec) {
    *error = "cannot replace " + to.string() + ": " + ec.message();
    return false;
  }
  return FlushFolder(to.parent_path(), error);
}

bool ReplaceFileContents(const std::filesystem::path& path,
                         std::string_view contents, std::string* error) {
  namespace fs = std::filesystem;
  if (!MakeParentFolder(path, error)) return false;
  // Temporary file, flushed; renamed over the old one; the folder flushed.
  // A crash at any point leaves the old file or the new one, whole.
  const fs::path tmp = ReplacementPath(path);
  std::error_code ec;
  if (!WriteDurably(tmp, contents, error)) {
    fs::remove(tmp, ec);
    return false;
  }
  if (!MoveFileOver(tmp, path, error)) {
    fs::remove(tmp, ec);
    return false;
  }
  return true;
}

bool AppendFileContents(const std::filesystem::path& path,
                        std::string_view text, std::string* error) {
  if (!MakeParentFolder(path, error)) return false;
  std::error_code ec;
  const bool is_new = !std::filesystem::exists(path, ec);
  int fd = OpenForAppend(path);
  if (fd < 0) {
    *error = "cannot open " + path.string() + ": " + Reason();
    return false;
  }
  if (!WriteAndClose(fd, path, text, error)) return false;
  // A new file's name lives in the folder, like a rename.
  return !is_new || FlushFolder(path.parent_path(), error);
}

}  // namespace quorvex
