// What a Commodore 64 shows of a program that starts from BASIC.
#pragma once

#include <string>
#include <string_view>

#include "png.h"

namespace kiln::screenshot {

// Runs a PRG file to its end and draws the texts that it prints, on the system's screen. An empty picture, with `error`
// set, when it has no SYS or does not end.
Picture drawCommodore(std::string_view file, std::string& error);

}  // namespace kiln::screenshot
