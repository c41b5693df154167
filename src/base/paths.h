// Paths as text, with "/" as the only separator. Nothing here looks at a file system.
#pragma once

#include <string>
#include <string_view>

namespace kiln {

// Every run of "/" becomes one, and one at the end goes unless it is the whole path.
std::string normalisePath(std::string_view path);

// normalise(b) when a is empty, else normalise(a + "/" + b).
std::string joinPaths(std::string_view a, std::string_view b);

// The text after the last "/"; the whole path when it has none.
std::string_view lastComponent(std::string_view path);

// The normalised path without its last component: empty without a "/", "/" when the only "/" stands first.
std::string directoryPart(std::string_view path);

// The text after the last "." of the last component. Empty when there is none, when the "." stands first, and when
// the text holds a blank.
std::string_view pathExtension(std::string_view path);

// The normalised path without its extension and the "." before it.
std::string pathStem(std::string_view path);

}  // namespace kiln
