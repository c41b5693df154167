// What the options make of an assembled program: the file, its name and its bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "driver/options.h"
#include "host/console.h"
#include "output/image.h"
#include "passes/assembler.h"

namespace kiln {

// The path from "-o", or the first input's with another extension; absent when that input has no file name.
std::optional<std::string> chooseOutputPath(const Options& options);

Format chooseFormat(const Options& options, const std::optional<std::string>& outputPath);

// Where an assembled program starts, 0..65535: at the symbol from "-e", or else at its first segment.
uint32_t chooseRunAddress(const Options& options, const Assembler& assembler);

// The bytes of the file, some of them borrowed from the segments. Prints the writer's warnings. Absent, perhaps after a
// printed message, when the format cannot hold the program.
std::optional<Image> buildImage(const Options& options, const Assembler& assembler, Console& console);

}  // namespace kiln
