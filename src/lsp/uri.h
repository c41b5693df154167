// "file:" URIs, which editors use for paths.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiln {

// The path without "." and ".." in it, so that one file has one path; absent for other URIs.
std::optional<std::string> pathOfUri(std::string_view uri);
std::string uriOfPath(std::string_view path);

}  // namespace kiln
