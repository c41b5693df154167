// What the lines of a macro do not do: end it, call it, define another one.
#pragma once

#include "inspect/findings.h"
#include "inspect/macro_uses.h"
#include "inspect/program.h"

namespace kiln {

// True when the body has taken in lines that are not its own.
bool checkMacroBody(const Program& program, const MacroUse& use, Findings& findings);

}  // namespace kiln
