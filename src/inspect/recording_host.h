// A host that keeps the paths of the files that a run reads.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "host/host.h"

namespace kiln {

// Passes everything on to another host, which must outlive it.
class RecordingHost final : public Host {
 public:
  explicit RecordingHost(Host& host) : host_(host) {}

  // The files read so far, each once, in order.
  const std::vector<std::string>& pathsRead() const { return paths_; }

  std::optional<std::string> readFile(const std::string& path) const override;
  bool exists(const std::string& path) const override { return host_.exists(path); }
  bool isDirectory(const std::string& path) const override { return host_.isDirectory(path); }
  bool wasRead(const std::string& path) const override { return host_.wasRead(path); }
  bool writeFile(const std::string& path, std::span<const std::string_view> parts) override {
    return host_.writeFile(path, parts);
  }
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override {
    return host_.listDirectory(path);
  }
  std::optional<std::string> environment(const std::string& name) const override { return host_.environment(name); }
  void printError(std::string_view text) override { host_.printError(text); }
  void printOutput(std::string_view text) override { host_.printOutput(text); }

 private:
  Host& host_;
  mutable std::vector<std::string> paths_;
  mutable std::unordered_set<std::string> known_;
};

}  // namespace kiln
