// What is at a place.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer hover(Session& session, const Json& params);

}  // namespace kiln
