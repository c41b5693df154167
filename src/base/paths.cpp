#include "base/paths.h"

#include "base/format.h"
#include "base/text.h"

namespace kiln {

std::string normalisePath(std::string_view path) {
  std::string normal;
  normal.reserve(path.size());
  for (char c : path) {
    if (c != '/' || normal.empty() || normal.back() != '/') normal.push_back(c);
  }
  if (normal.size() > 1 && normal.back() == '/') normal.pop_back();
  return normal;
}

std::string joinPaths(std::string_view a, std::string_view b) {
  return a.empty() ? normalisePath(b) : normalisePath(concat({a, "/", b}));
}

std::string_view lastComponent(std::string_view path) {
  const size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string directoryPart(std::string_view path) {
  std::string normal = normalisePath(path);
  const size_t slash = normal.rfind('/');
  if (slash == std::string::npos) return "";
  normal.resize(slash == 0 ? 1 : slash);
  return normal;
}

std::string_view pathExtension(std::string_view path) {
  const std::string_view name = lastComponent(path);
  const size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return {};
  const std::string_view extension = name.substr(dot + 1);
  return extension.find_first_of(" \t") == std::string_view::npos ? extension : std::string_view{};
}

std::string pathStem(std::string_view path) {
  std::string normal = normalisePath(path);
  const size_t extension = pathExtension(normal).size();
  if (extension != 0) normal.resize(normal.size() - extension - 1);
  return normal;
}

}  // namespace kiln
