#include "host/real_host.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
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
  // Closes now, and returns whether that worked: some file systems report a full disk only here.
  bool close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

// Writes many parts with one call: a program may have thousands of short segments.
bool writeAll(int descriptor, std::span<const std::string_view> parts) {
  std::array<iovec, 256> batch;
  size_t written = 0;  // of the first part
  while (!parts.empty()) {
    size_t count = 0;
    for (; count < std::min(parts.size(), batch.size()); ++count) {
      const std::string_view rest = parts[count].substr(count == 0 ? written : 0);
      batch[count] = {const_cast<char*>(rest.data()), rest.size()};  // NOLINT: only read
    }
    const ssize_t result = ::writev(descriptor, batch.data(), static_cast<int>(count));
    if (result < 0 && errno == EINTR) continue;
    if (result < 0) return false;
    written += static_cast<size_t>(result);
    const bool isStuck = result == 0 && written < parts.front().size();
    if (isStuck) return false;
    for (; !parts.empty() && written >= parts.front().size(); parts = parts.subspan(1))
      written -= parts.front().size();
  }
  return true;
}

constexpr off_t largestOfServer = off_t{1} << 30;

// A string zeroes what it grows by. It grows by as much as fits the cache, so that this is quick (2 % of the time of a
// source of data lists).
constexpr size_t mostGrowth = size_t{64} * 1024;

// Reads to the end of the file; `claimedSize` is 0 for pipes and devices. There is room for one more byte than claimed:
// a read that does not fill it is the last, which saves a call per file, and a line end can be appended without a copy.
std::optional<std::string> readAll(int descriptor, size_t claimedSize) {
  std::string bytes;
  // More room than the file needs: for the read that finds its end, for the line end after the last source line, and
  // for the padding of a text that is kept.
  bytes.reserve(claimedSize + 1 + TextStore::padding);
  size_t size = 0;
  while (true) {
    const size_t left = size <= claimedSize ? claimedSize + 1 - size : mostGrowth;
    if (size == bytes.size()) bytes.resize(size + std::min(left, mostGrowth));
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    size += static_cast<size_t>(count);
    if (count == 0 || size == claimedSize) break;
  }
  bytes.resize(size);
  return bytes;
}

// For the system a path ends at its first NUL, so that it would open another file.
bool isNameable(const std::string& path) { return path.find('\0') == std::string::npos; }

std::optional<struct stat> statusOf(const std::string& path) {
  struct stat status {};
  return isNameable(path) && ::stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

// True when the last call failed because files must not be created or renamed in the folder.
bool isForbidden() { return errno == EACCES || errno == EPERM || errno == EROFS; }

// False where the system or the file system has no such call.
bool swapFiles([[maybe_unused]] const std::string& a, [[maybe_unused]] const std::string& b) {
#ifdef RENAME_EXCHANGE
  return ::renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0;
#else
  return false;
#endif
}

// A new file in the folder of its target. It either becomes the target or is removed.
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
  // When this is false, errno says why. An old target changes places with the new file and is removed: ext4 starts
  // writing to the disk when a file is renamed over another, which costs a short program a sixth of its time.
  bool become(const std::string& target, bool isThere) {
    if (isThere && swapFiles(path_, target)) return true;
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

std::vector<std::string> readArguments(int argc, char** argv) { return {argv, argv + argc}; }

RealHost::RealHost(Reading reading) : reading_(reading) {
  (void)std::signal(SIGPIPE, SIG_IGN);
  (void)std::signal(SIGXFSZ, SIG_IGN);
}

std::optional<std::string> RealHost::readFile(const std::string& path) const {
  const bool isForServer = reading_ == Reading::RegularFiles;
  const FileDescriptor file(openFile(path, isForServer ? O_RDONLY | O_NONBLOCK : O_RDONLY));
  if (!file.isOpen()) return std::nullopt;
  struct stat status {};
  if (::fstat(file.number(), &status) != 0) return std::nullopt;
  if (isForServer && (!S_ISREG(status.st_mode) || status.st_size > largestOfServer)) return std::nullopt;
  std::optional<std::string> bytes = readAll(file.number(), static_cast<size_t>(std::max<off_t>(status.st_size, 0)));
  if (bytes.has_value() && S_ISREG(status.st_mode) && !isForServer)
    filesRead_.emplace_back(status.st_dev, status.st_ino);
  return bytes;
}

bool RealHost::wasRead(const std::string& path) const {
  const std::optional<struct stat> status = statusOf(path);
  if (!status.has_value()) return false;
  const FileIdentity identity(status->st_dev, status->st_ino);
  return std::find(filesRead_.begin(), filesRead_.end(), identity) != filesRead_.end();
}

bool RealHost::exists(const std::string& path) const { return statusOf(path).has_value(); }

bool RealHost::isDirectory(const std::string& path) const {
  const std::optional<struct stat> status = statusOf(path);
  return status.has_value() && S_ISDIR(status->st_mode);
}

// Writes a new file that takes the place of its target, so that there is always a whole file, the old or the new one.
// Writes in place into devices, pipes and links, and where the folder allows no new files. A file with several links
// stays one file.
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
  return file.become(path, isThere) || (isThere && isForbidden() && writeThrough(path, 0, parts));
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

// A failure is ignored, as there is nowhere to report it. The exit status does not depend on it.
void RealHost::printError(std::string_view text) { (void)writeAll(STDERR_FILENO, {&text, 1}); }

void RealHost::printOutput(std::string_view text) { (void)writeAll(STDOUT_FILENO, {&text, 1}); }

bool RealHost::isOnTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

}  // namespace kiln
