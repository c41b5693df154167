#include "source/includes.h"

#include "base/format.h"
#include "base/text.h"
#include "base/utf8.h"

namespace kiln {
namespace {

// The path before its last "/", not normalised, so that every candidate is the path that the source gives.
std::string_view directoryAsWritten(std::string_view path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return path.substr(0, slash == 0 ? 1 : slash);
}

std::optional<std::string> readWellFormed(const FileReader& files, std::string_view directory, std::string_view name) {
  std::optional<std::string> text =
      files.readFile(directory.empty() ? std::string(name) : concat({directory, "/", name}));
  if (text.has_value() && !isStrictUtf8(*text)) text.reset();
  return text;
}

}  // namespace

std::optional<std::string> findInclude(const FileReader& files, const std::vector<std::string>& directories,
                                       std::string_view name, std::string_view includingPath) {
  std::optional<std::string> text = readWellFormed(files, directoryAsWritten(includingPath), name);
  for (size_t i = 0; !text.has_value() && i < directories.size(); ++i) {
    text = readWellFormed(files, directories[i], name);
  }
  return text;
}

std::string_view includeName(std::string_view argument) {
  const std::string_view name = trimWhitespace(argument);
  const std::string_view unquoted = withoutEnclosing(name, '"', '"');
  return unquoted.size() != name.size() ? unquoted : withoutEnclosing(name, '<', '>');
}

}  // namespace kiln
