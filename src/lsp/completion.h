// What can be written at the cursor.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer complete(Session& session, const Json& params);

}  // namespace kiln
