// The symbols that are defined before the first line.
#pragma once

#include <string>
#include <vector>

#include "host/file_reader.h"
#include "passes/assembler.h"

namespace kiln {

// The definitions in the symbol files, or the built-in Atari equates when there are none. The last definition of a name
// counts. Files that cannot be used are ignored.
Seeds loadSeeds(const FileReader& files, const std::vector<std::string>& symbolFiles);

}  // namespace kiln
