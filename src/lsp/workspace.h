// Which programs there are, and which files they are made of.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lsp/analysis.h"
#include "lsp/documents.h"
#include "lsp/editor_host.h"

namespace kiln {

// Finds the programs of a document, and keeps what is known about them until a file of theirs changes.
class Workspace {
 public:
  // The disk, and the documents, have to outlive it. `programPath` is this program's own path.
  Workspace(const Host& disk, const Documents& documents, std::string programPath)
      : files_(disk, documents), documents_(documents), programPath_(std::move(programPath)) {}

  const EditorHost& files() const { return files_; }
  const std::string& programPath() const { return programPath_; }

  // The folders that the editor shows, as paths.
  void setFolders(std::vector<std::string> folders);

  // What changes invalidates: the text of a file, or which files there are.
  void fileChanged(const std::string& path);
  void filesChanged();

  // The programs that the document is part of, at least one: by the ".kiln" in its folder or above; without one, the
  // files that nothing includes; or else the document on its own. Valid until the next change.
  std::vector<const Analysis*> programsOf(const std::string& path);
  // All programs of the open documents.
  std::vector<const Analysis*> programsOfOpenDocuments();

  // The program as it would be with these texts, by path, in place of the files'.
  std::unique_ptr<Analysis> analyseWith(const CommandLine& commandLine,
                                        const std::map<std::string, std::string>& texts) const;

 private:
  struct SourceFile {
    std::vector<std::string> includes;  // paths, whether there is such a file or not
  };

  const Analysis& analysisOf(const CommandLine& commandLine);
  std::vector<CommandLine> commandLinesOf(const std::string& path);
  std::vector<CommandLine> projectLines(const std::string& projectPath) const;
  std::vector<std::string> rootsOf(const std::string& path);
  void readFolders();
  void readFolder(const std::string& folder, std::vector<std::string>& folders);
  void readSource(const std::string& path);

  EditorHost files_;
  const Documents& documents_;
  const std::string programPath_;
  std::vector<std::string> folders_;
  std::vector<std::unique_ptr<Analysis>> analyses_;
  bool areSourcesRead_ = false;
  std::map<std::string, SourceFile> sources_;  // the ".asm" files of the folders and what they include, by path
};

}  // namespace kiln
