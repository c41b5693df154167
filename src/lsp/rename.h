// Gives a thing another name, in all files of all programs, unless a program would not be the same then.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

Answer prepareRename(Session& session, const Json& params);
Answer rename(Session& session, const Json& params);

}  // namespace kiln
