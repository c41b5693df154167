#include "lsp/methods.h"

#include <algorithm>

#include "lsp/code_lens.h"
#include "lsp/hover.h"
#include "lsp/inlay_hints.h"
#include "lsp/navigation.h"
#include "lsp/semantic_tokens.h"

namespace kiln {
namespace {

// clang-format off
constexpr Method methods[] = {
    {"textDocument/codeLens",             findCodeLenses},
    {"textDocument/definition",           findDefinition},
    {"textDocument/documentHighlight",    highlight},
    {"textDocument/hover",                hover},
    {"textDocument/inlayHint",            findInlayHints},
    {"textDocument/references",           findReferences},
    {"textDocument/semanticTokens/full",  findSemanticTokens},
    {"textDocument/semanticTokens/range", findSemanticTokensInRange},
};
// clang-format on

}  // namespace

std::span<const Method> methodRows() { return methods; }

const Method* findMethod(std::string_view name) {
  const auto* const row = std::find_if(std::begin(methods), std::end(methods),
                                       [name](const Method& method) { return method.name == name; });
  return row == std::end(methods) ? nullptr : row;
}

}  // namespace kiln
