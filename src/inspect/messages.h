// The assembler's own messages, with their true places.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

// Reports each message that no check has explained, once.
void reportMessages(const Program& program, Findings& findings);

}  // namespace kiln
