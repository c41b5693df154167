// The meaning of each word, for colours.
#pragma once

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

// {"tokenTypes", "tokenModifiers"}: the names of the numbers in the answers.
Json semanticTokensLegend();

Answer findSemanticTokens(Session& session, const Json& params);
Answer findSemanticTokensInRange(Session& session, const Json& params);

}  // namespace kiln
