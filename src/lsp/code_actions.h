// What can be done about findings, and other changes of the code at a place.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

// For all findings of the lines in "range".
Answer listCodeActions(Session& session, const Json& params);

}  // namespace kiln
