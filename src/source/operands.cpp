#include "source/operands.h"

#include <algorithm>

#include "base/text.h"

namespace kiln {
namespace {

bool isPseudoWord(std::string_view word) {
  return word == "byte" || word == "word" || word == "org" || word == "dbyte" || word == "end";
}

Mode classifyParenthesised(std::string_view operand) {
  if (endsWithIgnoringCase(operand, "),Y")) return Mode::IndirectIndexedY;
  if (endsWithIgnoringCase(operand, ",X)")) return Mode::IndexedIndirectX;
  return operand.back() == ')' ? Mode::Indirect : Mode::Implied;
}

// Modes whose operand has a comma outside every pair of parentheses; Implied stands for "none of them".
Mode classifyStack(std::string_view operand) {
  if (operand.front() == '(' && endsWithIgnoringCase(operand, ",SP),Y")) return Mode::StackIndirectY;
  if (endsWithIgnoringCase(operand, ",SP,X")) return Mode::StackRelativeX;
  if (endsWithIgnoringCase(operand, ",SP")) return Mode::StackRelative;
  return startsWithIgnoringCase(operand, "sp,") ? Mode::StackAdjust : Mode::Implied;
}

}  // namespace

std::string_view withoutCommaSpaces(std::string_view operand, std::string& scratch) {
  if (operand.find(" ,") == std::string_view::npos && operand.find(", ") == std::string_view::npos) return operand;
  scratch.clear();
  for (size_t i = 0; i < operand.size();) {
    if (operand[i] != ' ') {
      scratch.push_back(operand[i++]);
      continue;
    }
    const size_t end = std::min(operand.find_first_not_of(' ', i), operand.size());
    const bool beforeComma = end < operand.size() && operand[end] == ',';
    const bool afterComma = i > 0 && operand[i - 1] == ',';
    if (!beforeComma && !afterComma) scratch.append(end - i, ' ');
    i = end;
  }
  return scratch;
}

Mode classifyOperand(std::string_view operand) {
  const Mode stackMode = classifyStack(operand);
  if (stackMode != Mode::Implied) return stackMode;
  if (operand.front() == '(') {
    const Mode indirectMode = classifyParenthesised(operand);
    if (indirectMode != Mode::Implied) return indirectMode;
  }
  if (operand.front() == '#') return Mode::Immediate;
  if (endsWithIgnoringCase(operand, ",X")) return Mode::ZeroPageX;
  if (endsWithIgnoringCase(operand, ",Y")) return Mode::ZeroPageY;
  return classifyWithoutComma(operand);
}

Mode classifyWithoutComma(std::string_view operand) {
  if (operand.front() == '#') return Mode::Immediate;
  if (operand.front() == '(' && operand.back() == ')') return Mode::Indirect;
  return Mode::ZeroPage;
}

std::string_view valueExpression(std::string_view operand, Mode mode) {
  const Decoration decoration = decorations[static_cast<size_t>(mode)];
  operand.remove_prefix(decoration.front);
  operand.remove_suffix(decoration.back);
  return trim(operand);
}

std::string_view qualifyReferences(std::string_view operand, std::string_view scope, TextStore& texts) {
  if (scope.empty() || operand.find('.') == std::string_view::npos) return operand;
  std::string qualified;
  size_t copied = 0;
  for (size_t dot = operand.find('.'); dot != std::string_view::npos; dot = operand.find('.', dot + 1)) {
    if (dot > 0 && isIdentifierCharacter(operand[dot - 1])) continue;
    size_t end = dot + 1;
    while (end < operand.size() && isIdentifierCharacter(operand[end]))
      ++end;
    const std::string_view word = operand.substr(dot + 1, end - dot - 1);
    if (word.empty() || !isIdentifierStart(word.front()) || isPseudoWord(word)) continue;
    qualified.append(operand, copied, dot - copied).append(scope);
    copied = dot;
  }
  if (copied == 0 && qualified.empty()) return operand;
  return texts.join({qualified, operand.substr(copied)});
}

}  // namespace kiln
