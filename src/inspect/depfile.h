// What a program's file depends on, as a rule for make and ninja.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kiln {

// False when a rule cannot have the path in it: neither program has an escape for its line end, tab, ";" or "|", or for
// a backslash at its end.
bool canBeInRule(std::string_view path);

// "OUTPUT: INPUTS...", and a rule without inputs for each input, so that make goes on when one of them is no longer
// there. All paths can be in a rule.
std::string renderDepfile(const std::string& output, std::span<const std::string> inputs);

}  // namespace kiln
