// The symbols that are defined before the first line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/file_reader.h"
#include "passes/assembler.h"

namespace kiln {

// The definitions in the symbol files, or the built-in Atari equates when there are none. The last definition of a name
// counts. Files that cannot be used are ignored.
Seeds loadSeeds(const FileReader& files, const std::vector<std::string>& symbolFiles);

// True for the name of a built-in equate, in any letter case.
bool isBuiltInName(std::string_view name);

}  // namespace kiln
