// Paths as text, with "/" as the only separator. Nothing here accesses a file system.
#pragma once

#include <string>
#include <string_view>

namespace kiln {

// Replaces each run of "/" by one, and removes one at the end unless it is the whole path.
std::string normalisePath(std::string_view path);

// The normalised path a/b, or b when a is empty.
std::string joinPaths(std::string_view a, std::string_view b);

// The text after the last "/"; the whole path when it has none.
std::string_view lastComponent(std::string_view path);

// The normalised path without its last component: "/" for "/a", empty for "a".
std::string directoryPart(std::string_view path);

// The text after the last "." of the last component. Empty when there is none, when the "." comes first, and when the
// text has a blank.
std::string_view pathExtension(std::string_view path);

// The normalised path without its extension and the "." before it.
std::string pathStem(std::string_view path);

}  // namespace kiln
