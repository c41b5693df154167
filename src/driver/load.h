// From the command line to the expanded source, and what else the programs do alike.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "driver/options.h"
#include "host/host.h"
#include "passes/assembler.h"

namespace kiln {

// The path from "-o", or the first input's with another extension; absent when that input has no file name.
std::optional<std::string> chooseOutputPath(const Options& options);

Format chooseFormat(const Options& options, const std::optional<std::string>& outputPath);

// Where an assembled program starts, 0..65535: at the symbol from "-e", or else at its first segment.
uint32_t chooseRunAddress(const Options& options, const Assembler& assembler);

// Reads the inputs, symbol files and layout that the options name; there is at least one input. Afterwards the settings
// are fixed and the expanded source is in `assembler.lines`. `arguments` begins with the program's own path. The result
// is empty, or says what cannot be read and why.
std::string load(const Host& host, std::span<const std::string> arguments, Options& options, Assembler& assembler);

}  // namespace kiln
