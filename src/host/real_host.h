// The operating system itself.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "host/host.h"

namespace kiln {

// What may be read. A server reads what a stranger's project names, again and again: only regular files of at most 1
// GB, so that it never waits for a pipe or fills the memory from a device, and it keeps no list of them for wasRead().
enum class Reading : uint8_t { All, RegularFiles };

// What tells a file from all others: its device or volume, and its number there.
using FileIdentity = std::pair<uint64_t, uint64_t>;

// The arguments of main(), the program's own name first, in UTF-8.
std::vector<std::string> readArguments(int argc, char** argv);

class RealHost final : public Host {
 public:
  // Ignores the signals for a closed pipe and for a file that is too large, so that these writes fail instead of ending
  // the program.
  explicit RealHost(Reading reading = Reading::All);

  std::optional<std::string> readFile(const std::string& path) const override;
  bool exists(const std::string& path) const override;
  bool isDirectory(const std::string& path) const override;
  bool wasRead(const std::string& path) const override;
  bool writeFile(const std::string& path, std::span<const std::string_view> parts) override;
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override;
  std::optional<std::string> environment(const std::string& name) const override;
  void printError(std::string_view text) override;
  void printOutput(std::string_view text) override;

  // True when standard output is a terminal, which understands colours then.
  static bool isOnTerminal();

 private:
  const Reading reading_;
  mutable std::vector<FileIdentity> filesRead_;
};

}  // namespace kiln
