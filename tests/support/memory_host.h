// An operating system in memory: files, folders and variables are what a test puts there.
#pragma once

#include <map>
#include <set>
#include <string>

#include "host/host.h"

namespace kiln::test {

// The parts of a file as one text.
inline std::string joined(std::span<const std::string_view> parts) {
  std::string text;
  for (std::string_view part : parts)
    text += part;
  return text;
}

class MemoryHost : public Host {
 public:
  std::map<std::string, std::string> files;
  std::set<std::string> directories;
  std::set<std::string> unreadable;  // files that exist and cannot be read, directories that cannot be listed
  std::set<std::string> unwritable;
  std::map<std::string, std::string> variables;
  std::string standardError;
  std::string standardOutput;
  std::map<std::string, std::string> written;

  std::optional<std::string> readFile(const std::string& path) const override {
    const auto file = files.find(path);
    if (file == files.end() || unreadable.count(path) != 0) return std::nullopt;
    read_.insert(path);
    return file->second;
  }
  bool exists(const std::string& path) const override { return files.count(path) != 0 || isDirectory(path); }
  bool isDirectory(const std::string& path) const override { return directories.count(path) != 0; }
  bool wasRead(const std::string& path) const override { return read_.count(path) != 0; }
  bool writeFile(const std::string& path, std::span<const std::string_view> parts) override {
    if (path.empty() || unwritable.count(path) != 0 || isDirectory(path)) return false;
    written[path] = joined(parts);
    return true;
  }
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override {
    if (!isDirectory(path) || unreadable.count(path) != 0) return std::nullopt;
    std::vector<std::string> names;
    // Backwards, so that code which needs an order has to sort.
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
      const size_t slash = file->first.rfind('/');
      if (slash != std::string::npos && file->first.substr(0, slash) == path) {
        names.push_back(file->first.substr(slash + 1));
      }
    }
    for (const std::string& directory : directories) {
      const size_t slash = directory.rfind('/');
      if (slash != std::string::npos && directory.substr(0, slash) == path)
        names.push_back(directory.substr(slash + 1));
    }
    return names;
  }
  std::optional<std::string> environment(const std::string& name) const override {
    const auto variable = variables.find(name);
    if (variable == variables.end()) return std::nullopt;
    return variable->second;
  }
  void printError(std::string_view text) override { standardError += text; }
  void printOutput(std::string_view text) override { standardOutput += text; }

 private:
  mutable std::set<std::string> read_;
};

}  // namespace kiln::test
