#include "lsp/methods.h"

#include <algorithm>

#include "lsp/code_lens.h"
#include "lsp/folding.h"
#include "lsp/hover.h"
#include "lsp/inlay_hints.h"
#include "lsp/navigation.h"
#include "lsp/rename.h"
#include "lsp/semantic_tokens.h"
#include "lsp/symbols.h"

namespace kiln {
namespace {

// clang-format off
constexpr Method methods[] = {
    {"textDocument/codeLens",             findCodeLenses},
    {"textDocument/definition",           findDefinition},
    {"textDocument/documentHighlight",    highlight},
    {"textDocument/documentSymbol",       documentSymbols},
    {"textDocument/foldingRange",         foldingRanges},
    {"textDocument/hover",                hover},
    {"textDocument/inlayHint",            findInlayHints},
    {"textDocument/prepareRename",        prepareRename},
    {"textDocument/references",           findReferences},
    {"textDocument/rename",               rename},
    {"textDocument/semanticTokens/full",  findSemanticTokens},
    {"textDocument/semanticTokens/range", findSemanticTokensInRange},
    {"workspace/symbol",                  workspaceSymbols},
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
