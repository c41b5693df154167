// The assembler's own messages, with their true places.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

// Takes "PREFIXnumber: " off the text; 0, and the text as it was, when it does not begin so.
size_t takeLineNumber(std::string_view& text, std::string_view prefix);

// All messages of the assembler, each once, and of the writers, which have no place.
std::vector<Finding> listMessages(const Program& program);

// Reports each message that no check has explained, once.
void reportMessages(const Program& program, Findings& findings);

}  // namespace kiln
