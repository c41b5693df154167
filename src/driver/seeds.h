// The symbols that every source starts with.
#pragma once

#include <string>
#include <vector>

#include "host/file_reader.h"
#include "passes/assembler.h"

namespace kiln {

// The definitions of the symbol files, later ones in the place of earlier ones of their name. Files that cannot be used
// give nothing; when there is no definition at all, these are the built-in Atari equates.
std::vector<NamedValue> loadSeeds(const FileReader& files, const std::vector<std::string>& symbolFiles);

}  // namespace kiln
