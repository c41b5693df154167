// Paths as text. "/" separates, and on Windows "\" too. Nothing here accesses a file system.
#pragma once

#include <string>
#include <string_view>

namespace kiln {

#ifdef _WIN32
inline constexpr bool isWindows = true;
#else
inline constexpr bool isWindows = false;
#endif

// The path is read as it is given: what comes out has the separators that went in.
inline constexpr std::string_view pathSeparators = isWindows ? "/\\" : "/";
constexpr bool isSeparator(char c) { return c == '/' || (isWindows && c == '\\'); }

// The length of the part in front that is no name: 1 for "/a", 0 for "a". On Windows 3 for "C:/a" and 2 for "//a".
constexpr size_t rootSize(std::string_view path) {
  const auto isAt = [path](size_t i) { return path.size() > i && isSeparator(path[i]); };
  if (isWindows && path.size() > 1 && path[1] == ':') return isAt(2) ? 3 : 2;
  if (isWindows && isAt(0) && isAt(1)) return 2;
  return isAt(0) ? 1 : 0;
}

// True when the path does not depend on the current folder.
constexpr bool isAbsolute(std::string_view path) { return rootSize(path) != 0; }

// Replaces each run of separators by its first one, and removes one at the end unless it belongs to the root.
std::string normalisePath(std::string_view path);

// The normalised path a/b, or b when a is empty.
std::string joinPaths(std::string_view a, std::string_view b);

// The text after the last separator; the whole path when it has none.
std::string_view lastComponent(std::string_view path);

// The normalised path without its last component: "/" for "/a", empty for "a".
std::string directoryPart(std::string_view path);

// The same text for all spellings of a path, such as "a", "./a" and "b/../a": without "." and, as far as it goes, "..",
// with "/" as its separator. Links are not followed. "." for the current folder.
std::string plainPath(std::string_view path);

// The path as a URI has it: the separators as "/", all bytes but these and the unreserved ones as "%XX".
std::string uriPath(std::string_view path);

// The text after the last "." of the last component. Empty when there is none, when the "." comes first, and when the
// text has a blank.
std::string_view pathExtension(std::string_view path);

// The normalised path without its extension and the "." before it.
std::string pathStem(std::string_view path);

}  // namespace kiln
