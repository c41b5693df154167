#include "lsp/methods.h"

#include <algorithm>

#include "lsp/code_actions.h"
#include "lsp/code_lens.h"
#include "lsp/completion.h"
#include "lsp/folding.h"
#include "lsp/formatting.h"
#include "lsp/hover.h"
#include "lsp/inlay_hints.h"
#include "lsp/navigation.h"
#include "lsp/rename.h"
#include "lsp/semantic_tokens.h"
#include "lsp/signature_help.h"
#include "lsp/symbols.h"

namespace kiln {
namespace {

// clang-format off
constexpr Method methods[] = {
    {"textDocument/codeAction",           listCodeActions},
    {"textDocument/codeLens",             findCodeLenses},
    {"textDocument/completion",           complete},
    {"textDocument/definition",           findDefinition},
    {"textDocument/documentHighlight",    highlight},
    {"textDocument/documentSymbol",       documentSymbols},
    {"textDocument/foldingRange",         foldingRanges},
    {"textDocument/formatting",           format},
    {"textDocument/hover",                hover},
    {"textDocument/inlayHint",            findInlayHints},
    {"textDocument/prepareRename",        prepareRename},
    {"textDocument/rangeFormatting",      formatRange},
    {"textDocument/references",           findReferences},
    {"textDocument/rename",               rename},
    {"textDocument/semanticTokens/full",  findSemanticTokens},
    {"textDocument/semanticTokens/range", findSemanticTokensInRange},
    {"textDocument/signatureHelp",        helpWithSignature},
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
