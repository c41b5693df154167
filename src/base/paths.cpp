#include "base/paths.h"

#include <algorithm>
#include <vector>

#include "base/format.h"
#include "base/text.h"

namespace kiln {

std::string normalisePath(std::string_view path) {
  std::string normal;
  normal.reserve(path.size());
  const size_t root = rootSize(path);
  for (char c : path) {
    if (!isSeparator(c) || normal.size() < root || normal.empty() || !isSeparator(normal.back())) normal.push_back(c);
  }
  if (normal.size() > root && isSeparator(normal.back())) normal.pop_back();
  return normal;
}

std::string joinPaths(std::string_view a, std::string_view b) {
  return a.empty() ? normalisePath(b) : normalisePath(concat({a, isSeparator(a.back()) ? "" : "/", b}));
}

std::string_view lastComponent(std::string_view path) {
  const size_t slash = path.find_last_of(pathSeparators);
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string directoryPart(std::string_view path) {
  std::string normal = normalisePath(path);
  const size_t slash = normal.find_last_of(pathSeparators);
  if (slash == std::string::npos) return "";
  normal.resize(std::max(slash, rootSize(normal)));
  return normal;
}

std::string plainPath(std::string_view path) {
  std::vector<std::string_view> names;
  const size_t root = rootSize(path);
  for (size_t begin = root; begin < path.size();) {
    const size_t end = std::min(path.find_first_of(pathSeparators, begin), path.size());
    const std::string_view name = path.substr(begin, end - begin);
    begin = end + 1;
    if (name.empty() || name == ".") continue;
    const bool canGoUp = !names.empty() && names.back() != "..";
    if (name != ".." || (!canGoUp && root == 0)) {
      names.push_back(name);
    } else if (canGoUp) {
      names.pop_back();
    }
  }
  std::string plain(path.substr(0, root));
  if (isWindows) std::replace(plain.begin(), plain.end(), '\\', '/');
  for (std::string_view name : names)
    plain.append(name).push_back('/');
  if (plain.size() > root) plain.pop_back();
  return plain.empty() ? "." : plain;
}

std::string uriPath(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  constexpr std::string_view unreserved = "-._~";
  std::string uri;
  for (char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (isSeparator(c)) {
      uri.push_back('/');
    } else if (isIdentifierCharacter(c) || unreserved.find(c) != std::string_view::npos) {
      uri.push_back(c);
    } else {
      uri += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return uri;
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
