// "file:" URIs, which editors use for paths.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiln {

// The path without "." and ".." in it, so that one file has one path; absent for other URIs.
std::optional<std::string> pathOfUri(std::string_view uri);
std::string uriOfPath(std::string_view path);

// The path without "." and "..": "/a/c" for "/a/./b/../c". Links are not followed.
std::string plainPath(std::string_view path);

}  // namespace kiln
