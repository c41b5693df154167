// The operating system on Windows. Paths and arguments are UTF-8 inside and UTF-16 outside.
#include <windows.h>
// The one above has to come first.
#include <shellapi.h>

#include <algorithm>
#include <utility>

#include "base/format.h"
#include "base/paths.h"
#include "base/text_store.h"
#include "host/real_host.h"
#include "host/windows_text.h"

namespace kiln {
namespace {

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~FileHandle() { close(); }

  HANDLE get() const { return handle_; }
  bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  // True for a file on a disk, false for pipes and devices such as NUL and CON.
  bool isOnDisk() const { return ::GetFileType(handle_) == FILE_TYPE_DISK; }
  bool close() {
    const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
    return handle == INVALID_HANDLE_VALUE || ::CloseHandle(handle) != 0;
  }

 private:
  HANDLE handle_;
};

constexpr DWORD mostAtOnce = DWORD{1} << 20;
constexpr uint64_t largestOfServer = uint64_t{1} << 30;

// Others may read, write and replace the file at the same time, as they may elsewhere.
constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

FileHandle openFile(const std::string& path, DWORD access, DWORD disposition) {
  const std::optional<std::wstring> name = systemPath(path);
  if (!name.has_value()) return FileHandle(INVALID_HANDLE_VALUE);
  return FileHandle(
      ::CreateFileW(name->c_str(), access, sharedWithAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::optional<std::string> readAll(HANDLE handle, uint64_t claimedSize) {
  std::string bytes;
  bytes.reserve(static_cast<size_t>(claimedSize) + 1 + TextStore::padding);
  while (true) {
    const size_t size = bytes.size();
    bytes.resize(size + std::min<size_t>(mostAtOnce, bytes.capacity() > size ? bytes.capacity() - size : mostAtOnce));
    DWORD count = 0;
    const bool isRead =
        ::ReadFile(handle, bytes.data() + size, static_cast<DWORD>(bytes.size() - size), &count, nullptr);
    bytes.resize(size + count);
    if (!isRead && ::GetLastError() != ERROR_BROKEN_PIPE) return std::nullopt;
    if (count == 0) return bytes;
  }
}

bool writeAll(HANDLE handle, std::string_view text) {
  while (!text.empty()) {
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min<size_t>(text.size(), mostAtOnce));
    if (::WriteFile(handle, text.data(), size, &count, nullptr) == 0 || count == 0) return false;
    text.remove_prefix(count);
  }
  return true;
}

bool writeAll(HANDLE handle, std::span<const std::string_view> parts) {
  return std::all_of(parts.begin(), parts.end(), [handle](std::string_view part) { return writeAll(handle, part); });
}

// A console takes UTF-16, whatever its code page is; pipes and files get the bytes.
void print(DWORD stream, std::string_view text) {
  const HANDLE handle = ::GetStdHandle(stream);
  DWORD mode = 0;
  if (::GetConsoleMode(handle, &mode) == 0) {
    (void)writeAll(handle, text);
    return;
  }
  const std::wstring wide = toWide(text);
  DWORD count = 0;
  (void)::WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &count, nullptr);
}

DWORD attributesOf(const std::string& path) {
  const std::optional<std::wstring> name = systemPath(path);
  return name.has_value() ? ::GetFileAttributesW(name->c_str()) : INVALID_FILE_ATTRIBUTES;
}

std::optional<FileIdentity> identityOf(const FileHandle& file) {
  BY_HANDLE_FILE_INFORMATION about;
  if (!file.isOpen() || !file.isOnDisk() || ::GetFileInformationByHandle(file.get(), &about) == 0) return std::nullopt;
  return FileIdentity(about.dwVolumeSerialNumber, uint64_t{about.nFileIndexHigh} << 32 | about.nFileIndexLow);
}

// A new file in the folder of its target. It either becomes the target or is removed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) {
    const std::string folder = target.substr(0, target.find_last_of(pathSeparators) + 1);
    // Names are free unless a run with the same process number was killed while writing.
    for (int i = 0; i < 100 && !file_.isOpen(); ++i) {
      path_ = concat({folder, ".kiln-as-", decimal(::GetCurrentProcessId()), "-", decimal(i)});
      file_ = openFile(path_, GENERIC_WRITE, CREATE_NEW);
      if (!file_.isOpen() && ::GetLastError() != ERROR_FILE_EXISTS) break;
    }
    isTemporary_ = file_.isOpen();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    file_.close();
    if (isTemporary_) ::DeleteFileW(systemPath(path_)->c_str());
  }

  bool write(std::span<const std::string_view> parts) {
    return file_.isOpen() && writeAll(file_.get(), parts) && file_.close();
  }
  // False when another program keeps the target open, or it must not be written.
  bool become(const std::string& target) {
    const std::optional<std::wstring> name = systemPath(target);
    isTemporary_ =
        !name.has_value() || ::MoveFileExW(systemPath(path_)->c_str(), name->c_str(), MOVEFILE_REPLACE_EXISTING) == 0;
    return !isTemporary_;
  }

 private:
  std::string path_;
  FileHandle file_{INVALID_HANDLE_VALUE};
  bool isTemporary_ = false;
};

// Into a device, such as NUL, the parts are written as they are. False for everything else.
bool isDevice(const std::string& path) {
  const FileHandle file = openFile(path, GENERIC_WRITE, OPEN_EXISTING);
  return file.isOpen() && !file.isOnDisk();
}

}  // namespace

std::vector<std::string> readArguments(int argc, char** argv) {
  int count = 0;
  LPWSTR* const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i)
    arguments.push_back(toUtf8(wide[i]));
  ::LocalFree(static_cast<HLOCAL>(wide));
  return arguments;
}

RealHost::RealHost(Reading reading) : reading_(reading) {}

std::optional<std::string> RealHost::readFile(const std::string& path) const {
  const FileHandle file = openFile(path, GENERIC_READ, OPEN_EXISTING);
  if (!file.isOpen()) return std::nullopt;
  const bool isForServer = reading_ == Reading::RegularFiles;
  LARGE_INTEGER size{};
  if (file.isOnDisk()) (void)::GetFileSizeEx(file.get(), &size);
  const auto claimedSize = static_cast<uint64_t>(size.QuadPart);
  if (isForServer && (!file.isOnDisk() || claimedSize > largestOfServer)) return std::nullopt;
  std::optional<std::string> bytes = readAll(file.get(), claimedSize);
  const std::optional<FileIdentity> identity = identityOf(file);
  if (bytes.has_value() && identity.has_value() && !isForServer) filesRead_.push_back(*identity);
  return bytes;
}

bool RealHost::wasRead(const std::string& path) const {
  const std::optional<FileIdentity> identity = identityOf(openFile(path, 0, OPEN_EXISTING));
  return identity.has_value() && std::find(filesRead_.begin(), filesRead_.end(), *identity) != filesRead_.end();
}

bool RealHost::exists(const std::string& path) const { return attributesOf(path) != INVALID_FILE_ATTRIBUTES; }

bool RealHost::isDirectory(const std::string& path) const {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Writes a new file and renames it to its target, so that there is always a whole file, the old one or the new one.
bool RealHost::writeFile(const std::string& path, std::span<const std::string_view> parts) {
  if (path.empty()) return false;
  if (isDevice(path)) {
    FileHandle device = openFile(path, GENERIC_WRITE, OPEN_EXISTING);
    return device.isOpen() && writeAll(device.get(), parts);
  }
  const DWORD attributes = attributesOf(path);
  const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
  if (isThere && (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) return false;
  TemporaryFile file(path);
  return file.write(parts) && file.become(path);
}

std::optional<std::vector<std::string>> RealHost::listDirectory(const std::string& path) const {
  const std::optional<std::wstring> pattern = systemPath(joinPaths(path, "*"));
  if (!pattern.has_value()) return std::nullopt;
  WIN32_FIND_DATAW found;
  const HANDLE search = ::FindFirstFileW(pattern->c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return std::nullopt;
  std::vector<std::string> names;
  do {
    std::string name = toUtf8(found.cFileName);
    if (name != "." && name != "..") names.push_back(std::move(name));
  } while (::FindNextFileW(search, &found) != 0);
  ::FindClose(search);
  return names;
}

std::optional<std::string> RealHost::environment(const std::string& name) const {
  const std::wstring wideName = toWide(name);
  const DWORD size = ::GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
  if (size == 0) return std::nullopt;
  std::wstring value(size, L'\0');
  value.resize(::GetEnvironmentVariableW(wideName.c_str(), value.data(), size));
  return toUtf8(value);
}

void RealHost::printError(std::string_view text) { print(STD_ERROR_HANDLE, text); }

void RealHost::printOutput(std::string_view text) { print(STD_OUTPUT_HANDLE, text); }

bool RealHost::isOnTerminal() {
  const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return ::GetConsoleMode(output, &mode) != 0 &&
         ::SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace kiln
