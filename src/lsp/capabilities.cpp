#include "lsp/capabilities.h"

#include "lsp/semantic_tokens.h"

namespace kiln {

Json capabilities(Encoding encoding) {
  constexpr int incremental = 2;
  return {
      {"positionEncoding", encoding == Encoding::Utf8 ? "utf-8" : "utf-16"},
      {"textDocumentSync", {{"openClose", true}, {"change", incremental}, {"save", true}}},
      {"workspace", {{"workspaceFolders", {{"supported", true}, {"changeNotifications", true}}}}},
      {"definitionProvider", true},
      {"referencesProvider", true},
      {"documentHighlightProvider", true},
      {"hoverProvider", true},
      {"inlayHintProvider", true},
      {"codeLensProvider", {{"resolveProvider", false}}},
      {"semanticTokensProvider", {{"legend", semanticTokensLegend()}, {"full", true}, {"range", true}}},
      {"documentSymbolProvider", true},
      {"workspaceSymbolProvider", true},
      {"foldingRangeProvider", true},
      {"renameProvider", {{"prepareProvider", true}}},
      {"completionProvider", {{"triggerCharacters", {".", "#", "<", ">", "(", "\"", "/"}}}},
      {"signatureHelpProvider", {{"triggerCharacters", {" ", ","}}}},
      {"codeActionProvider", {{"codeActionKinds", {"quickfix", "refactor.rewrite", "source.fixAll"}}}},
      {"documentFormattingProvider", true},
      {"documentRangeFormattingProvider", true},
  };
}

}  // namespace kiln
