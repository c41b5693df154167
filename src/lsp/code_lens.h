// What is shown above a label: the size and the time of its routine, and how often it is used.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

// The references have the command "kiln.showReferences" with the document's URI and the label's position, for editors
// that know it.
Answer findCodeLenses(Session& session, const Json& params);

}  // namespace kiln
