// From the command line to the expanded source.
#pragma once

#include <span>
#include <string>

#include "driver/options.h"
#include "host/host.h"
#include "passes/assembler.h"

namespace kiln {

// Reads the inputs, symbol files and layout that the options name; there is at least one input. Afterwards the settings
// are fixed and the expanded source is in `assembler.lines`. `arguments` begins with the program's own path. The result
// is empty, or says what cannot be read and why.
std::string load(const Host& host, std::span<const std::string> arguments, Options& options, Assembler& assembler);

}  // namespace kiln
