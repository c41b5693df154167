#include "lsp/analysis.h"

#include <algorithm>
#include <functional>
#include <new>
#include <stdexcept>

#include "base/paths.h"
#include "base/text.h"
#include "inspect/checker.h"
#include "inspect/project.h"
#include "inspect/recording_host.h"

namespace kiln {

Analysis::Analysis(const EditorHost& files, const std::string& programPath, CommandLine commandLine)
    : commandLine_(std::move(commandLine)) {
  try {
    analyse(files, programPath);
  } catch (const std::bad_alloc&) {
    error_ = "out of memory";
  } catch (const std::length_error&) {
    error_ = "out of memory";
  }
}

void Analysis::analyse(const EditorHost& files, const std::string& programPath) {
  EditorHost host = files;
  RecordingHost reader(host);
  Options options;
  const ProjectLine line = {commandLine_.projectLine, commandLine_.arguments};
  error_ = addProjectLine(line, commandLine_.projectPath, options);
  if (!error_.empty()) return;
  const std::vector<std::string> arguments = {programPath};
  program_ = assembleProgram(reader, arguments, options);
  for (const std::string& path : reader.pathsRead())
    pathsRead_.insert(plainPath(path));
  error_ = program_->error;
  if (!error_.empty()) return;
  findings_ = checkProgram(*program_, CheckLevels());
  StatementWalk walk(program_->assembler);
  Statement statement;
  while (walk.next(statement)) {
    if (map().fileOf(statement.text) != nullptr) byPlace_.push_back(statements_.size());
    statements_.push_back(statement);
  }
  std::sort(byPlace_.begin(), byPlace_.end(), [this](size_t a, size_t b) {
    return std::less<>()(statements_[a].text.data(), statements_[b].text.data());
  });
  names_.emplace(*program_, statements_);
  if (program_->isAssembled) placements_ = placeStatements(*program_);
}

const SourceNotes::File* Analysis::sourceAt(std::string_view path) const {
  if (program_ == nullptr) return nullptr;
  for (const SourceNotes::File& file : program_->notes.files) {
    if (file.path == path || plainPath(file.path) == path) return &file;
  }
  return nullptr;
}

std::vector<size_t> Analysis::statementsIn(std::string_view text) const {
  const auto isBefore = [this](size_t index, const char* place) {
    return std::less<>()(statements_[index].text.data(), place);
  };
  const auto first = std::lower_bound(byPlace_.begin(), byPlace_.end(), text.data(), isBefore);
  const auto last = std::lower_bound(first, byPlace_.end(), text.data() + text.size(), isBefore);
  return {first, last};
}

const Statement* Analysis::statementAt(const char* place) const {
  const auto after = std::upper_bound(byPlace_.begin(), byPlace_.end(), place, [this](const char* at, size_t index) {
    return std::less<>()(at, statements_[index].text.data());
  });
  if (after == byPlace_.begin()) return nullptr;
  const Statement& statement = statements_[*std::prev(after)];
  return std::less<>()(statement.text.data() + statement.text.size(), place) ? nullptr : &statement;
}

}  // namespace kiln
