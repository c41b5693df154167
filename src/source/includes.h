// Finding the files that sources include.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/file_reader.h"

namespace kiln {

// A file that was found, with the path that it was opened with.
struct IncludedFile {
  std::string path;
  std::string text;
};

// An included file, from the directory of the including file, whose path is taken as written, or else from
// the first of `directories` that has it. A file that is not well-formed UTF-8 is skipped like one that cannot be read.
// Absent when there is no such file.
std::optional<IncludedFile> findInclude(const FileReader& files, const std::vector<std::string>& directories,
                                        std::string_view name, std::string_view includingPath);

// The name in the argument of ".include ": trimmed, without its quotes or angle brackets.
std::string_view includeName(std::string_view argument);

}  // namespace kiln
