// What an editor can fold.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

// Macros, routines, code regions, banks, and comments of three lines or more.
Answer foldingRanges(Session& session, const Json& params);

}  // namespace kiln
