#include "host/real_host.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "base/format.h"
#include "base/text_store.h"

namespace kiln {
namespace {

class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() {
    if (number_ >= 0) ::close(number_);
  }

  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  // Closes now, for those who want to know whether that worked: some file systems tell of a full disk only here.
  bool close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

bool writeAll(int descriptor, std::span<const std::string_view> parts) {
  for (std::string_view bytes : parts) {
    while (!bytes.empty()) {
      const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      bytes.remove_prefix(static_cast<size_t>(count));
    }
  }
  return true;
}

// Reads to the end of the file, however long it claims to be: pipes and devices claim nothing. A read that could have
// had more and ends where the file is said to end has met the end, which saves one call in each of 10,000 small files.
bool readAll(int descriptor, size_t claimedSize, std::string& bytes) {
  size_t size = 0;
  while (true) {
    if (size == bytes.size()) bytes.resize(bytes.size() + bytes.size() / 2 + 4096);
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    size += static_cast<size_t>(count);
    if (count == 0 || size == claimedSize) break;
  }
  bytes.resize(size);
  return true;
}

// The system's calls end a path at its first NUL, and would so reach another file than the one named.
bool isNameable(const std::string& path) { return path.find('\0') == std::string::npos; }

bool readStatus(const std::string& path, struct stat& status) {
  return isNameable(path) && ::stat(path.c_str(), &status) == 0;
}

// True when the last call failed because the folder, or its file system, lets nobody make or rename a file in it.
bool isForbidden() { return errno == EACCES || errno == EPERM || errno == EROFS; }

// A new file beside the one that it shall become, removed again unless it does.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) {
    const std::string directory = target.substr(0, target.rfind('/') + 1);
    // Names are free unless a run with the same process number was killed while writing.
    for (int i = 0; i < 100 && !file_.isOpen(); ++i) {
      path_ = concat({directory, ".kiln-as-", decimal(::getpid()), "-", decimal(i)});
      file_ = FileDescriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
      if (!file_.isOpen() && errno != EEXIST) break;
    }
    isTemporary_ = file_.isOpen();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (isTemporary_) ::unlink(path_.c_str());
  }

  // When this is false, errno says why.
  bool isOpen() const { return file_.isOpen(); }
  bool write(std::span<const std::string_view> parts) { return writeAll(file_.number(), parts); }
  bool setMode(mode_t mode) { return ::fchmod(file_.number(), mode) == 0; }
  bool close() { return file_.close(); }
  // When this is false, errno says why.
  bool become(const std::string& target) {
    isTemporary_ = ::rename(path_.c_str(), target.c_str()) != 0;
    return !isTemporary_;
  }

 private:
  std::string path_;
  FileDescriptor file_{-1};
  bool isTemporary_ = false;
};

int openFile(const std::string& path, int flags) {
  return isNameable(path) ? ::open(path.c_str(), flags | O_CLOEXEC, 0666) : -1;
}

bool writeThrough(const std::string& path, int flags, std::span<const std::string_view> parts) {
  FileDescriptor file(openFile(path, O_WRONLY | O_TRUNC | flags));
  return file.isOpen() && writeAll(file.number(), parts) && file.close();
}

}  // namespace

RealHost::RealHost() {
  (void)std::signal(SIGPIPE, SIG_IGN);
  (void)std::signal(SIGXFSZ, SIG_IGN);
}

std::optional<std::string> RealHost::readFile(const std::string& path) const {
  const FileDescriptor file(openFile(path, O_RDONLY));
  if (!file.isOpen()) return std::nullopt;
  std::string bytes;
  struct stat status {};
  if (::fstat(file.number(), &status) != 0) return std::nullopt;
  // More room than the file needs: for the read that finds its end, for the line end after the last source line, and
  // for the padding of a text that is kept.
  const size_t claimedSize = status.st_size > 0 ? static_cast<size_t>(status.st_size) : 0;
  if (claimedSize != 0) bytes.reserve(claimedSize + 1 + TextStore::padding);
  if (claimedSize != 0) bytes.resize(claimedSize + 1);
  if (!readAll(file.number(), claimedSize, bytes)) return std::nullopt;
  if (S_ISREG(status.st_mode)) filesRead_.emplace_back(status.st_dev, status.st_ino);
  return bytes;
}

bool RealHost::wasRead(const std::string& path) const {
  struct stat status {};
  if (!readStatus(path, status)) return false;
  return std::find(filesRead_.begin(), filesRead_.end(), std::pair(status.st_dev, status.st_ino)) != filesRead_.end();
}

bool RealHost::exists(const std::string& path) const {
  struct stat status {};
  return readStatus(path, status);
}

bool RealHost::isDirectory(const std::string& path) const {
  struct stat status {};
  return readStatus(path, status) && S_ISDIR(status.st_mode);
}

// A regular file is written beside its target and renamed, so that there is the old one or the new one and nothing in
// between. Devices, pipes and links are there to be written through; a link keeps its other names. A file that may be
// written, in a folder where none may be made or renamed, is written in place.
bool RealHost::writeFile(const std::string& path, std::span<const std::string_view> parts) {
  if (!isNameable(path) || path.empty()) return false;
  struct stat status {};
  const bool isThere = ::lstat(path.c_str(), &status) == 0;
  if (isThere && (!S_ISREG(status.st_mode) || status.st_nlink > 1)) return writeThrough(path, O_CREAT, parts);
  if (isThere && ::access(path.c_str(), W_OK) != 0) return false;
  TemporaryFile file(path);
  if (!file.isOpen()) return isThere && isForbidden() && writeThrough(path, 0, parts);
  if (!file.write(parts)) return false;
  if (isThere && !file.setMode(status.st_mode & 07777)) return false;
  if (!file.close()) return false;
  return file.become(path) || (isThere && isForbidden() && writeThrough(path, 0, parts));
}

std::optional<std::vector<std::string>> RealHost::listDirectory(const std::string& path) const {
  DIR* const directory = ::opendir(path.c_str());
  if (directory == nullptr) return std::nullopt;
  std::vector<std::string> names;
  while (const dirent* const entry = ::readdir(directory)) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  ::closedir(directory);
  return names;
}

std::optional<std::string> RealHost::environment(const std::string& name) const {
  const char* const value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return value;
}

// A console that cannot be written to leaves nobody to tell: the exit status still says how the run went.
void RealHost::printError(std::string_view text) { (void)writeAll(STDERR_FILENO, {&text, 1}); }

void RealHost::printOutput(std::string_view text) { (void)writeAll(STDOUT_FILENO, {&text, 1}); }

}  // namespace kiln
