// A run of the program, from its arguments to its exit status.
#pragma once

#include <span>
#include <string>

#include "host/host.h"

namespace kiln {

// `arguments` begins with the program's own path. 0 = success, 1 = any failure.
int run(Host& host, std::span<const std::string> arguments);

}  // namespace kiln
