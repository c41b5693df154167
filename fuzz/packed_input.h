// Several files in one fuzz input. A line "@@NAME" starts the file NAME, which ends at the next such line. The text
// before the first file is the head:
//
//     -L
//     a.lnk
//     a.asm
//     @@a.asm
//      LDA #1
//     @@a.lnk
//     [banking]
#pragma once

#include <string_view>

#include "support/memory_host.h"

namespace kiln::fuzz {

// Puts the files of the input and their directories into the host; "@@$NAME" sets the environment variable NAME
// instead. Returns the head, a view into the input.
std::string_view unpack(std::string_view input, test::MemoryHost& host);

}  // namespace kiln::fuzz
