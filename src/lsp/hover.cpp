#include "lsp/hover.h"

#include <functional>

#include "base/format.h"
#include "base/paths.h"
#include "lsp/code_tokens.h"
#include "lsp/directive_texts.h"
#include "lsp/hover_code.h"
#include "lsp/hover_symbols.h"
#include "lsp/hover_text.h"

namespace kiln {
namespace {

// The token that the place is in or else at the end of; null when there is none.
const Token* tokenAt(const std::vector<Token>& tokens, const char* place) {
  const Token* found = nullptr;
  for (const Token& token : tokens) {
    if (std::less<>()(place, token.text.data())) break;
    if (!std::less<>()(token.text.data() + token.text.size(), place)) found = &token;
  }
  return found;
}

void describeNumber(const Analysis& analysis, std::string_view text, HoverText& hover) {
  MessageList ignored;
  Evaluator evaluator(analysis.program().iteration().symbols, ignored);
  hover.addParagraph(hover.number(evaluator.evaluate(text)));
}

void describeDirective(std::string_view word, HoverText& hover) {
  const DirectiveText* const directive = textOfDirective(word);
  if (directive != nullptr) hover.addParagraph(concat({hover.code(directive->form), ": ", directive->does}));
}

void describeFile(const Analysis& analysis, const Token& token, HoverText& hover) {
  if (token.occurrence == nullptr) return;
  hover.addParagraph(hover.code(plainPath(analysis.program().notes.files[token.occurrence->id].path)));
}

void describe(const Analysis& analysis, const std::vector<SymbolFacts>& facts, const Token& token,
              std::string_view line, HoverText& hover) {
  switch (token.type) {
    case TokenType::Label:
    case TokenType::Name:
    case TokenType::Bank:
      return describeSymbol(analysis, facts, token.occurrence->id, hover);
    case TokenType::Macro:
      return describeMacro(analysis, *token.occurrence, hover);
    case TokenType::Parameter:
      return describeParameter(analysis, *token.occurrence, hover);
    case TokenType::Number:
      return describeNumber(analysis, token.text, hover);
    case TokenType::Mnemonic:
      return describeInstruction(analysis, token, line, hover);
    case TokenType::Directive:
      return describeDirective(token.text, hover);
    case TokenType::String:
      return describeFile(analysis, token, hover);
    case TokenType::Comment:
      return;
  }
}

}  // namespace

Answer hover(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  const Position position = positionFrom(memberOf(params, {"position"}));
  const std::string_view line = target->linesOf({position, position});
  const std::vector<SymbolFacts> facts = describeSymbols(target->analysis);
  const std::vector<Token> tokens = findTokens(target->analysis, facts, line);
  const Token* const token = tokenAt(tokens, target->placeOf(position));
  if (token == nullptr) return Json();
  HoverText text(session.takesMarkdown);
  describe(target->analysis, facts, *token, line, text);
  if (text.empty()) return Json();
  return Json{{"contents", text.contents()}, {"range", toJson(target->rangeOf(token->text))}};
}

}  // namespace kiln
