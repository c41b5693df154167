// The files of a handle, as the operating system of its runs.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "host/host.h"

namespace kiln {

// Keeps what is printed. There are no folders, no variables and nothing is written.
class MemoryFiles final : public Host {
 public:
  // Is asked for a file that is not there, which it may add.
  std::function<void(const std::string& path)> reader;

  // A file that the reader adds is forgotten by the next begin().
  void add(const std::string& path, std::string bytes);
  void remove(const std::string& path) { files_.erase(path); }

  // To be called before each run.
  void begin();
  // What the run has printed to standard error.
  const std::string& printed() const { return printed_; }

  std::optional<std::string> readFile(const std::string& path) const override;
  bool exists(const std::string& path) const override { return find(path) != nullptr; }
  bool isDirectory(const std::string&) const override { return false; }
  bool wasRead(const std::string& path) const override { return read_.contains(path); }
  bool writeFile(const std::string&, std::span<const std::string_view>) override { return false; }
  std::optional<std::vector<std::string>> listDirectory(const std::string&) const override { return std::nullopt; }
  std::optional<std::string> environment(const std::string&) const override { return std::nullopt; }
  void printError(std::string_view text) override { printed_ += text; }
  void printOutput(std::string_view) override {}

 private:
  struct File {
    std::string bytes;
    bool isFromReader;
  };

  const File* find(const std::string& path) const;

  std::map<std::string, File> files_;
  mutable std::set<std::string> read_;
  mutable bool isReaderAsked_ = false;
  std::string printed_;
};

}  // namespace kiln
