// The operating system itself.
#pragma once

#include "host/host.h"

namespace kiln {

class RealHost final : public Host {
 public:
  std::optional<std::string> readFile(const std::string& path) const override;
  bool exists(const std::string& path) const override;
  bool isDirectory(const std::string& path) const override;
  bool writeFile(const std::string& path, std::string_view bytes) override;
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override;
  std::optional<std::string> environment(const std::string& name) const override;
  void printError(std::string_view text) override;
  void printOutput(std::string_view text) override;
};

}  // namespace kiln
