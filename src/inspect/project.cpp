#include "inspect/project.h"

#include <array>

#include "base/paths.h"
#include "base/text.h"

namespace kiln {
namespace {

// Of a relative folder it is not known how deep it is: from here on up there are only more roots.
constexpr int mostLevels = 64;

std::vector<std::string> splitArguments(std::string_view line) {
  std::vector<std::string> arguments;
  bool isQuoted = false;
  bool isInArgument = false;
  for (char c : line) {
    if (isBlank(c) && !isQuoted) {
      isInArgument = false;
      continue;
    }
    if (!isInArgument) arguments.emplace_back();
    isInArgument = true;
    if (c == '"') {
      isQuoted = !isQuoted;
    } else {
      arguments.back().push_back(c);
    }
  }
  return arguments;
}

// Keeps a complaint about a command line, without the program's name, which is empty, in front.
class ComplaintReader final : public Console {
 public:
  void printError(std::string_view text) override { text_ += text; }
  void printOutput(std::string_view) override {}
  std::string text() const { return text_.substr(2, text_.find('\n') - 2); }

 private:
  std::string text_;
};

std::string folderAbove(const std::string& folder) {
  const bool isRelative = !isAbsolute(folder);
  if (isRelative && (folder.empty() || lastComponent(folder) == "..")) return joinPaths(folder, "..");
  return directoryPart(folder);
}

}  // namespace

std::vector<ProjectLine> readProjectLines(std::string_view text) {
  std::vector<ProjectLine> lines;
  Fields fields(text, '\n');
  std::string_view field;
  for (uint32_t number = 1; fields.next(field); ++number) {
    field = trimWhitespace(field);
    if (!field.empty() && !field.starts_with('#')) lines.push_back({number, splitArguments(field)});
  }
  return lines;
}

std::optional<std::string> findProject(const FileReader& files, const std::string& folder) {
  std::string current = folder;
  for (int level = 0; level < mostLevels; ++level) {
    std::string path = joinPaths(current, projectFileName);
    if (files.exists(path) && !files.isDirectory(path)) return path;
    if (!current.empty() && current.size() == rootSize(current)) break;
    current = folderAbove(current);
  }
  return std::nullopt;
}

std::string addProjectLine(const ProjectLine& line, const std::string& projectPath, Options& options) {
  constexpr std::array paths = {&Options::output, &Options::listing, &Options::layout, &Options::symbolFile};
  const Options before = options;
  for (auto path : paths)
    (options.*path).reset();
  options.includePaths.clear();
  options.program = "";
  ComplaintReader complaints;
  const std::optional<int> status = scanArguments(line.arguments, complaints, options);
  if (status.has_value()) return *status == 0 ? "this option makes no program" : complaints.text();
  if (options.inputs.empty()) return "no input files";
  moveToProject(options, projectPath);
  options.program = before.program;
  options.includePaths.insert(options.includePaths.begin(), before.includePaths.begin(), before.includePaths.end());
  for (auto path : paths) {
    if (!(options.*path).has_value()) options.*path = before.*path;
  }
  return "";
}

void moveToProject(Options& options, const std::string& projectPath) {
  const std::string folder = directoryPart(projectPath);
  const auto move = [&folder](std::string& path) {
    if (!folder.empty() && !path.empty() && !isAbsolute(path)) path = joinPaths(folder, path);
  };
  for (std::vector<std::string>* paths : {&options.inputs, &options.includePaths}) {
    for (std::string& path : *paths)
      move(path);
  }
  for (std::optional<std::string>* path : {&options.output, &options.listing, &options.layout, &options.symbolFile}) {
    if (path->has_value()) move(**path);
  }
}

}  // namespace kiln
