// Files as the editor has them: the open documents, and on the disk everything else. Nothing is written.
#pragma once

#include <string>

#include "host/host.h"
#include "lsp/documents.h"

namespace kiln {

class EditorHost final : public Host {
 public:
  // Both have to outlive it.
  EditorHost(const Host& disk, const Documents& documents) : disk_(disk), documents_(documents) {}

  // The same disk with other documents before it, which have to outlive the result.
  EditorHost with(const Documents& documents) const { return {disk_, documents}; }

  std::optional<std::string> readFile(const std::string& path) const override;
  bool exists(const std::string& path) const override;
  bool isDirectory(const std::string& path) const override { return disk_.isDirectory(path); }
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override {
    return disk_.listDirectory(path);
  }
  std::optional<std::string> environment(const std::string& name) const override { return disk_.environment(name); }

  // What a run of the assembler would write is nobody's concern here.
  bool wasRead(const std::string&) const override { return false; }
  bool writeFile(const std::string&, std::span<const std::string_view>) override { return false; }
  void printError(std::string_view) override {}
  void printOutput(std::string_view) override {}

 private:
  const Document* documentAt(const std::string& path) const;

  const Host& disk_;
  const Documents& documents_;
};

}  // namespace kiln
