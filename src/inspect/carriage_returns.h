// Carriage returns before line ends: the assembler takes them for a part of the last word.
#pragma once

#include <string_view>

namespace kiln {

// True when the line, without its line end, means something else because of a carriage return in it. In a comment,
// alone, after a label's colon or after a number with "$" or "%" it does no harm.
bool isSpoiledByReturn(std::string_view line);

}  // namespace kiln
