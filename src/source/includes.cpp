#include "source/includes.h"

#include <utility>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/utf8.h"

namespace kiln {
namespace {

// The path before its last separator, not normalised, so that every candidate is the path that the source gives.
std::string_view directoryAsWritten(std::string_view path) {
  const size_t slash = path.find_last_of(pathSeparators);
  if (slash == std::string_view::npos) return {};
  return path.substr(0, slash == 0 ? 1 : slash);
}

std::optional<IncludedFile> readWellFormed(const FileReader& files, std::string_view directory, std::string_view name) {
  std::string path = directory.empty() ? std::string(name) : concat({directory, "/", name});
  std::optional<std::string> text = files.readFile(path);
  if (!text.has_value() || !isStrictUtf8(*text)) return std::nullopt;
  return IncludedFile{std::move(path), std::move(*text)};
}

}  // namespace

std::optional<IncludedFile> findInclude(const FileReader& files, const std::vector<std::string>& directories,
                                        std::string_view name, std::string_view includingPath) {
  std::optional<IncludedFile> file = readWellFormed(files, directoryAsWritten(includingPath), name);
  for (size_t i = 0; !file.has_value() && i < directories.size(); ++i) {
    file = readWellFormed(files, directories[i], name);
  }
  return file;
}

std::string_view includeName(std::string_view argument) {
  const std::string_view name = trimWhitespace(argument);
  const std::string_view unquoted = withoutEnclosing(name, '"', '"');
  return unquoted.size() != name.size() ? unquoted : withoutEnclosing(name, '<', '>');
}

}  // namespace kiln
