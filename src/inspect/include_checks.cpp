#include "inspect/include_checks.h"

#include <optional>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "source/includes.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view includeWord = ".include ";

// Of a circle of hundreds of files the first ones will do.
constexpr int mostInCircle = 10;

std::string_view codeOf(std::string_view line) { return trim(withoutComment(line)); }

// The name in an .include line.
std::string_view nameIn(std::string_view line) { return includeName(codeOf(line).substr(includeWord.size())); }

bool isNamed(std::string_view path, std::string_view name) {
  if (!path.ends_with(name)) return false;
  return path.size() == name.size() || isSeparator(path[path.size() - name.size() - 1]);
}

class IncludeChecker {
 public:
  IncludeChecker(const Program& program, Findings& findings)
      : program_(program), map_(*program.map), findings_(findings) {}

  // The same message may come from several lines, not all of which have an explanation.
  void checkErrors() {
    const MessageList& errors = program_.assembler.diagnostics.errors;
    for (size_t i = 0; i < program_.notes.errorLines.size(); ++i) {
      const std::string_view line = program_.notes.errorLines[i];
      if (line.data() == nullptr) continue;
      const bool isCircle = errors[i].ends_with("': it includes itself");
      const bool isExplained = isCircle ? explainCircle(line) : explainMissing(line);
      if (!isExplained) findings_.addError({.at = codeOf(line), .text = std::string(errors[i])});
      findings_.explain(errors[i]);
    }
  }

  void checkFiles() {
    if (!findings_.wants(Check::IncludeElsewhere)) return;
    for (const SourceNotes::File& file : program_.notes.files) {
      if (file.includeLine.data() != nullptr) checkFolder(file);
    }
  }

 private:
  bool explainCircle(std::string_view line) {
    if (!findings_.wants(Check::IncludeCircle)) return false;
    const std::string_view name = nameIn(line);
    Findings::Report report{.at = codeOf(line),
                            .text = concat({"'", name,
                                            "' includes itself, which would never end: remove one of the "
                                            "includes that lead here"})};
    const SourceNotes::File* file = map_.fileOf(line);
    for (int i = 0; i < mostInCircle && file != nullptr && !isNamed(file->path, name); ++i) {
      if (file->includeLine.data() == nullptr) break;
      report.notes.emplace_back(codeOf(file->includeLine), concat({"'", file->path, "' is included here"}));
      file = map_.fileOf(file->includeLine);
    }
    findings_.addError(std::move(report), Check::IncludeCircle);
    return true;
  }

  // The folder in which an include is expected: that of the file as it was opened. It is looked up in that of the name
  // as it was written. Absent when they are the same.
  std::optional<std::string> expectedPath(std::string_view line) const {
    const SourceNotes::File* const file = map_.fileOf(line);
    if (file == nullptr) return std::nullopt;
    const std::string opened = directoryPart(file->path);
    if (opened == directoryPart(writtenPath(*file))) return std::nullopt;
    return joinPaths(opened, nameIn(line));
  }

  // The path whose folder the includes of the file are looked up in. All inputs are one source, with the first path.
  std::string_view writtenPath(const SourceNotes::File& file) const {
    return file.includeLine.data() == nullptr ? program_.options.inputs.front() : nameIn(file.includeLine);
  }

  // What to write so that the expected file is found; empty when nothing short does it.
  std::string advice(std::string_view line, const std::string& path) const {
    const SourceNotes::File& file = *map_.fileOf(line);
    const std::string_view written = writtenPath(file);
    const std::string folder = file.includeLine.data() == nullptr ? directoryPart(file.path) : directoryPart(written);
    const std::string name = joinPaths(folder, nameIn(line));
    const std::optional<IncludedFile> found =
        findInclude(*program_.files, program_.options.includePaths, name, written);
    if (!found.has_value() || normalisePath(found->path) != path) return "";
    return concat({": write '", name, "' for that"});
  }

  void checkFolder(const SourceNotes::File& file) {
    const std::optional<std::string> path = expectedPath(file.includeLine);
    if (!path.has_value() || *path == normalisePath(file.path)) return;
    const std::optional<std::string> other = program_.files->readFile(*path);
    if (!other.has_value() || *other == file.text) return;
    findings_.add(Check::IncludeElsewhere,
                  {.at = codeOf(file.includeLine),
                   .text = concat({"this is '", file.path, "', not '", *path, "' beside the including file",
                                   advice(file.includeLine, *path)})});
  }

  bool explainMissing(std::string_view line) {
    if (!findings_.wants(Check::IncludeElsewhere)) return false;
    const std::optional<std::string> path = expectedPath(line);
    if (!path.has_value() || !program_.files->exists(*path) || program_.files->isDirectory(*path)) return false;
    findings_.addError({.at = codeOf(line),
                        .text = concat({"'", nameIn(line), "' is not found, although there is '", *path,
                                        "' beside the including file", advice(line, *path)})},
                       Check::IncludeElsewhere);
    return true;
  }

  const Program& program_;
  const SourceMap& map_;
  Findings& findings_;
};

}  // namespace

void checkIncludes(const Program& program, Findings& findings) {
  IncludeChecker checker(program, findings);
  checker.checkErrors();
  checker.checkFiles();
}

}  // namespace kiln
