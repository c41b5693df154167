#include "lsp/semantic_tokens.h"

#include "lsp/code_tokens.h"

namespace kiln {
namespace {

// Names of the protocol, which all themes know, in the order of TokenType and of the bits of TokenModifier; only
// "local" and "zeroPage" are our own.
constexpr const char* typeNames[] = {"function", "variable", "namespace", "macro",  "parameter",
                                     "number",   "keyword",  "decorator", "string", "comment"};
constexpr const char* modifierNames[] = {"definition", "local", "zeroPage", "defaultLibrary", "deprecated"};
static_assert(std::size(typeNames) == static_cast<size_t>(TokenType::Comment) + 1);
static_assert(1 << (std::size(modifierNames) - 1) == Vanished);

Json encode(const Target& target, std::string_view part) {
  const std::vector<SymbolFacts> facts = describeSymbols(target.analysis);
  std::vector<uint32_t> data;
  PositionWalk positions(target.index);
  Position last;
  for (const Token& token : findTokens(target.analysis, facts, part)) {
    const auto begin = static_cast<size_t>(token.text.data() - target.source.text.data());
    const Position start = positions.at(begin);
    const Position end = positions.at(begin + token.text.size());
    const bool isSameLine = start.line == last.line;
    data.insert(data.end(), {start.line - last.line, start.character - (isSameLine ? last.character : 0),
                             end.character - start.character, static_cast<uint32_t>(token.type), token.modifiers});
    last = start;
  }
  return {{"data", std::move(data)}};
}

}  // namespace

Json semanticTokensLegend() { return {{"tokenTypes", typeNames}, {"tokenModifiers", modifierNames}}; }

Answer findSemanticTokens(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  return encode(*target, target->source.text);
}

Answer findSemanticTokensInRange(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  return encode(*target, target->linesOf(rangeFrom(memberOf(params, {"range"}))));
}

}  // namespace kiln
