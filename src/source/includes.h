// Finding the files that sources include.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/file_reader.h"

namespace kiln {

// The text of an included file: looked for beside the including file, whose path is taken as written, then in each of
// `directories`. A file that is not well-formed UTF-8 is passed over like one that cannot be read. Absent when no
// candidate is left.
std::optional<std::string> findInclude(const FileReader& files, const std::vector<std::string>& directories,
                                       std::string_view name, std::string_view includingPath);

// The name in the argument of ".include ": without white space around it and without its quotes or angle brackets.
std::string_view includeName(std::string_view argument);

}  // namespace kiln
