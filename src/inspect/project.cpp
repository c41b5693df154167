#include "inspect/project.h"

#include "base/paths.h"
#include "base/text.h"

namespace kiln {
namespace {

// Of a relative folder it is not known how deep it is: from here on up there are only more roots.
constexpr int mostLevels = 64;

std::vector<std::string> splitArguments(std::string_view line) {
  std::vector<std::string> arguments;
  bool isQuoted = false, isInArgument = false;
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

std::string folderAbove(const std::string& folder) {
  const bool isRelative = !folder.starts_with('/');
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
    if (current == "/") break;
    current = folderAbove(current);
  }
  return std::nullopt;
}

void moveToProject(Options& options, const std::string& projectPath) {
  const std::string folder = directoryPart(projectPath);
  const auto move = [&folder](std::string& path) {
    if (!folder.empty() && !path.empty() && !path.starts_with('/')) path = joinPaths(folder, path);
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
