// The symbols that are defined before the first line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/text_store.h"
#include "host/file_reader.h"
#include "source/symbols.h"

namespace kiln {

// The symbol files that can be used. Each iteration reads them anew: most runs have one, and need no copy of the
// symbols then (a tenth of the time of a short program with 4,000 symbols in 40 files).
struct Seeds {
  TextStore texts;
  std::vector<std::string_view> files;
};

// Reads the files. Those that cannot be used are ignored.
Seeds loadSeeds(const FileReader& files, const std::vector<std::string>& paths);

// Enters the definitions in the symbol files, or the built-in Atari equates when there are none, into an empty table.
// The last definition of a name counts. The names are views of the texts.
void enterSeeds(const Seeds& seeds, SymbolTable& symbols);

// True for the name of a built-in equate, in any letter case.
bool isBuiltInName(std::string_view name);

}  // namespace kiln
