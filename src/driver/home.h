// The toolchain's home and the platform symbol files in it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/host.h"

namespace kiln {

// The directory of the toolchain's support files; absent when it is in none of the usual places.
std::optional<std::string> findSupportDirectory(const Host& host, const std::string& programPath);

// The paths of the Atari symbol files, then those of the generic ones, each sorted by name.
std::vector<std::string> listSymbolFiles(const Host& host, const std::string& supportDirectory);

}  // namespace kiln
