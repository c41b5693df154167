// Where a thing is defined and used.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer findDefinition(Session& session, const Json& params);
Answer findReferences(Session& session, const Json& params);
Answer highlight(Session& session, const Json& params);

}  // namespace kiln
