// Text for the interface of Windows, which is UTF-16.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiln {

// What is not valid in one encoding becomes U+FFFD in the other.
std::wstring toWide(std::string_view utf8);
std::string toUtf8(std::wstring_view wide);

// The path as the system takes it; absent when it contains a NUL, where the system would end it. One that is too long
// for a plain path, with the current folder when it is relative, is made absolute and marked as long.
std::optional<std::wstring> systemPath(const std::string& path);

}  // namespace kiln
