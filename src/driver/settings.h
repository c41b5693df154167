// The settings of the run, from the options, the environment, the symbol files and the layout.
#pragma once

#include <span>
#include <string>

#include "driver/options.h"
#include "host/host.h"
#include "passes/assembler.h"

namespace kiln {

// Fills the settings. A layout with banking sets `options.banked`. The result is the reason why the layout cannot be
// used, empty when it can. `arguments` begins with the program's own path.
std::string settle(const Host& host, std::span<const std::string> arguments, Options& options, Settings& settings);

}  // namespace kiln
