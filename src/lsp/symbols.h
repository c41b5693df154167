// The outline of a document, and the search for a name in all programs.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer documentSymbols(Session& session, const Json& params);
Answer workspaceSymbols(Session& session, const Json& params);

}  // namespace kiln
