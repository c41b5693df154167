#include "host/real_host.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace kiln {
namespace {

class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
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

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

// Reads to the end of the file, however long it claims to be: pipes and devices claim nothing.
bool readAll(int descriptor, std::string& bytes) {
  size_t size = 0;
  while (true) {
    if (size == bytes.size()) bytes.resize(bytes.size() + bytes.size() / 2 + 4096);
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    if (count == 0) break;
    size += static_cast<size_t>(count);
  }
  bytes.resize(size);
  return true;
}

// The system's calls end a path at its first NUL, and would so reach another file than the one named.
bool isNameable(const std::string& path) { return path.find('\0') == std::string::npos; }

bool readStatus(const std::string& path, struct stat& status) {
  return isNameable(path) && ::stat(path.c_str(), &status) == 0;
}

int openFile(const std::string& path, int flags) {
  return isNameable(path) ? ::open(path.c_str(), flags | O_CLOEXEC, 0666) : -1;
}

}  // namespace

std::optional<std::string> RealHost::readFile(const std::string& path) const {
  const FileDescriptor file(openFile(path, O_RDONLY));
  if (!file.isOpen()) return std::nullopt;
  std::string bytes;
  struct stat status {};
  // One byte more than the file holds: the read that finds its end needs no growth, and the line end that is joined
  // to the last source line has its place.
  if (::fstat(file.number(), &status) == 0 && status.st_size > 0) bytes.resize(static_cast<size_t>(status.st_size) + 1);
  if (!readAll(file.number(), bytes)) return std::nullopt;
  return bytes;
}

bool RealHost::exists(const std::string& path) const {
  struct stat status {};
  return readStatus(path, status);
}

bool RealHost::isDirectory(const std::string& path) const {
  struct stat status {};
  return readStatus(path, status) && S_ISDIR(status.st_mode);
}

bool RealHost::writeFile(const std::string& path, std::string_view bytes) {
  FileDescriptor file(openFile(path, O_WRONLY | O_CREAT | O_TRUNC));
  return file.isOpen() && writeAll(file.number(), bytes) && file.close();
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
void RealHost::printError(std::string_view text) { (void)writeAll(STDERR_FILENO, text); }

void RealHost::printOutput(std::string_view text) { (void)writeAll(STDOUT_FILENO, text); }

}  // namespace kiln
