#include "lsp/workspace.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/paths.h"
#include "base/text.h"
#include "inspect/project.h"
#include "lsp/uri.h"
#include "source/includes.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr size_t mostSources = 1000;
constexpr size_t mostFolders = 4000;

bool isSource(std::string_view path) { return endsWithIgnoringCase(path, ".asm"); }

}  // namespace

void Workspace::setFolders(std::vector<std::string> folders) {
  folders_ = std::move(folders);
  filesChanged();
}

void Workspace::fileChanged(const std::string& path) {
  if (lastComponent(path) == projectFileName) return filesChanged();
  std::erase_if(analyses_, [&path](const auto& analysis) { return analysis->hasRead(path); });
  // What the file includes may have changed.
  if (areSourcesRead_ && sources_.contains(path)) areSourcesRead_ = false;
}

void Workspace::filesChanged() {
  analyses_.clear();
  areSourcesRead_ = false;
}

const Analysis& Workspace::analysisOf(const CommandLine& commandLine) {
  for (const auto& analysis : analyses_) {
    if (analysis->commandLine() == commandLine) return *analysis;
  }
  analyses_.push_back(std::make_unique<Analysis>(files_, programPath_, commandLine));
  return *analyses_.back();
}

std::unique_ptr<Analysis> Workspace::analyseWith(const CommandLine& commandLine,
                                                 const std::map<std::string, std::string>& texts) const {
  Documents documents = documents_;
  for (const auto& [path, text] : texts)
    documents.open({uriOfPath(path), path, nullptr, text});
  return std::make_unique<Analysis>(files_.with(documents), programPath_, commandLine);
}

std::vector<const Analysis*> Workspace::programsOf(const std::string& path) {
  std::vector<const Analysis*> programs;
  for (const CommandLine& commandLine : commandLinesOf(path)) {
    const Analysis& analysis = analysisOf(commandLine);
    if (analysis.sourceAt(path) != nullptr) programs.push_back(&analysis);
  }
  if (programs.empty()) programs.push_back(&analysisOf({{path}, "", 0}));
  return programs;
}

std::vector<const Analysis*> Workspace::programsOfOpenDocuments() {
  std::vector<const Analysis*> all;
  for (const auto& [path, document] : documents_.all()) {
    if (lastComponent(path) == projectFileName) {
      for (const CommandLine& commandLine : projectLines(path))
        all.push_back(&analysisOf(commandLine));
    } else {
      const std::vector<const Analysis*> programs = programsOf(path);
      all.insert(all.end(), programs.begin(), programs.end());
    }
  }
  std::set<const Analysis*> seen;
  std::erase_if(all, [&seen](const Analysis* analysis) { return !seen.insert(analysis).second; });
  return all;
}

std::vector<CommandLine> Workspace::commandLinesOf(const std::string& path) {
  const std::optional<std::string> project = findProject(files_, directoryPart(path));
  if (project.has_value()) return projectLines(*project);
  std::vector<CommandLine> lines;
  for (std::string& root : rootsOf(path))
    lines.push_back({{std::move(root)}, "", 0});
  return lines;
}

std::vector<CommandLine> Workspace::projectLines(const std::string& projectPath) const {
  std::vector<CommandLine> lines;
  for (ProjectLine& line : readProjectLines(files_.readFile(projectPath).value_or("")))
    lines.push_back({std::move(line.arguments), projectPath, line.number});
  return lines;
}

// The files that nothing includes and that include this one, directly or through others; perhaps the file itself.
std::vector<std::string> Workspace::rootsOf(const std::string& path) {
  readFolders();
  readSource(path);
  std::map<std::string_view, std::vector<std::string_view>> includedBy;
  for (const auto& [source, file] : sources_) {
    for (const std::string& included : file.includes)
      includedBy[included].push_back(source);
  }
  std::set<std::string_view> reached = {path};
  std::vector<std::string_view> open = {path};
  std::vector<std::string> roots;
  while (!open.empty()) {
    const std::string_view current = open.back();
    open.pop_back();
    const auto above = includedBy.find(current);
    if (above == includedBy.end()) {
      roots.emplace_back(current);
      continue;
    }
    for (std::string_view source : above->second) {
      if (reached.insert(source).second) open.push_back(source);
    }
  }
  std::sort(roots.begin(), roots.end());
  return roots;
}

void Workspace::readFolders() {
  if (areSourcesRead_) return;
  areSourcesRead_ = true;
  sources_.clear();
  // A link may lead to a folder above it, so that there is no end.
  std::vector<std::string> folders = folders_;
  for (size_t i = 0; i < std::min(folders.size(), mostFolders); ++i)
    readFolder(std::string(folders[i]), folders);
  // These may not be on the disk yet, or in another folder.
  for (const auto& [path, document] : documents_.all()) {
    if (isSource(path)) readSource(path);
  }
}

// Reads the sources in a folder, and adds the folders in it.
void Workspace::readFolder(const std::string& folder, std::vector<std::string>& folders) {
  std::vector<std::string> names = files_.listDirectory(folder).value_or(std::vector<std::string>());
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    std::string path = joinPaths(folder, name);
    if (isSource(name)) {
      if (sources_.size() < mostSources) readSource(path);
    } else if (!name.starts_with('.') && files_.isDirectory(path)) {
      folders.push_back(std::move(path));
    }
  }
}

// Reads what a file includes, and what these files include.
void Workspace::readSource(const std::string& path) {
  std::vector<std::string> open = {path};
  while (!open.empty() && sources_.size() < 2 * mostSources) {
    const std::string current = std::move(open.back());
    open.pop_back();
    if (sources_.contains(current)) continue;
    const std::optional<std::string> text = files_.readFile(current);
    if (!text.has_value()) continue;
    SourceFile& file = sources_[current];
    Fields lines(*text, '\n');
    std::string_view line;
    while (lines.next(line)) {
      line = trim(line);
      constexpr std::string_view directive = ".include ";
      if (!startsWithIgnoringCase(line, directive)) continue;
      const std::string_view name = includeName(withoutComment(line).substr(directive.size()));
      file.includes.push_back(plainPath(joinPaths(directoryPart(current), name)));
      open.push_back(file.includes.back());
    }
  }
}

}  // namespace kiln
