// Lines with their parts in columns.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

// Edits that change blanks only, and no byte or message of any program of the document: they are assembled, and nothing
// is changed when that fails.
Answer format(Session& session, const Json& params);
Answer formatRange(Session& session, const Json& params);

}  // namespace kiln
