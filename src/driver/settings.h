// From what the user gave (options, environment, symbol files, layout) to the settings of the run.
#pragma once

#include <span>
#include <string>

#include "driver/options.h"
#include "host/host.h"
#include "passes/assembler.h"

namespace kiln {

// Fills the settings. A layout with banking switches banked output on in `options`. The result is the reason why the
// layout cannot be used, empty when there is none. `arguments` begins with the program's own path.
std::string settle(const Host& host, std::span<const std::string> arguments, Options& options, Settings& settings);

}  // namespace kiln
