// Addresses, bytes and cycles at the ends of lines; the names of parameters in macro calls.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer findInlayHints(Session& session, const Json& params);

}  // namespace kiln
