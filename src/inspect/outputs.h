// The files that kiln-check writes about a program.
#pragma once

#include <span>
#include <string>

#include "host/host.h"
#include "inspect/check_options.h"
#include "inspect/program.h"

namespace kiln {

// Writes the files that the options ask for. `pathsRead` are the files that the program has been made of, which must
// be assembled. The result is empty, or says what cannot be written.
std::string writeOutputs(Host& host, const Program& program, const CheckOptions& options,
                         std::span<const std::string> pathsRead);

}  // namespace kiln
