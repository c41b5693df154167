// A run of kiln-check, from its arguments to its exit status.
#pragma once

#include <span>
#include <string>

#include "host/host.h"

namespace kiln {

// `arguments` begins with the program's own path. `isTerminal` says whether standard output is one. 0 = nothing found,
// 1 = findings, 2 = kiln-as would write no program, or the command line is wrong.
int runCheck(Host& host, std::span<const std::string> arguments, bool isTerminal);

}  // namespace kiln
