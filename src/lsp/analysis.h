// All that is known about one program.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "inspect/findings.h"
#include "inspect/placements.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "lsp/editor_host.h"
#include "lsp/name_index.h"

namespace kiln {

// A command line of kiln-as.
struct CommandLine {
  std::vector<std::string> arguments;  // without the program's name
  std::string projectPath;             // of the ".kiln" that has it; empty for a file on its own
  uint32_t projectLine = 0;            // its line there, from 1

  bool operator==(const CommandLine&) const = default;
};

// Fixed once made. All texts of the program are kept.
class Analysis {
 public:
  // Assembles and checks. `programPath` is this program's own path, near which the toolchain's home is looked for.
  Analysis(const EditorHost& files, const std::string& programPath, CommandLine commandLine);

  const CommandLine& commandLine() const { return commandLine_; }
  // Why the command line makes no program; empty when it does. There is nothing else to know then.
  const std::string& error() const { return error_; }

  // What the others need: everything that was read, perhaps with errors in it.
  const Program& program() const { return *program_; }
  const SourceMap& map() const { return *program_->map; }
  const std::vector<Finding>& findings() const { return findings_; }
  // In their order, those of macros included.
  const std::vector<Statement>& statements() const { return statements_; }
  const NameIndex& names() const { return *names_; }
  // Null when the program does not assemble.
  const Placements* placements() const { return placements_.has_value() ? &*placements_ : nullptr; }

  // True when the program is made of this file, or would be if the file could be used.
  bool hasRead(const std::string& path) const { return pathsRead_.contains(path); }
  // The file's text in the program; null when it is no source of it. Of several inclusions, the first.
  const SourceNotes::File* sourceAt(std::string_view path) const;
  // The statements that stand in the lines [begin, end) of this text, in order, by their index. Those that a macro
  // makes of a line are not among them.
  std::vector<size_t> statementsIn(std::string_view text) const;
  // The statement at the place; null when there is none.
  const Statement* statementAt(const char* place) const;

 private:
  void analyse(const EditorHost& files, const std::string& programPath);

  CommandLine commandLine_;
  std::string error_;
  std::unique_ptr<Program> program_;
  std::vector<Finding> findings_;
  std::vector<Statement> statements_;
  std::vector<size_t> byPlace_;  // the statements that stand in files, by address
  std::optional<NameIndex> names_;
  std::optional<Placements> placements_;
  std::unordered_set<std::string> pathsRead_;
};

}  // namespace kiln
