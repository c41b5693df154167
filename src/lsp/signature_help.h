// The parameters of the macro that is being called.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer helpWithSignature(Session& session, const Json& params);

}  // namespace kiln
