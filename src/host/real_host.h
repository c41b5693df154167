// The operating system itself.
#pragma once

#include <sys/types.h>

#include <utility>
#include <vector>

#include "host/host.h"

namespace kiln {

class RealHost final : public Host {
 public:
  // Ignores the signals for a closed pipe and for a file that is too large, so that these writes fail instead of ending
  // the program.
  RealHost();

  std::optional<std::string> readFile(const std::string& path) const override;
  bool exists(const std::string& path) const override;
  bool isDirectory(const std::string& path) const override;
  bool wasRead(const std::string& path) const override;
  bool writeFile(const std::string& path, std::span<const std::string_view> parts) override;
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override;
  std::optional<std::string> environment(const std::string& name) const override;
  void printError(std::string_view text) override;
  void printOutput(std::string_view text) override;

  // True when standard output is a terminal.
  static bool isOnTerminal();

 private:
  mutable std::vector<std::pair<dev_t, ino_t>> filesRead_;
};

}  // namespace kiln
