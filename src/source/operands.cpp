#include "source/operands.h"

#include <algorithm>
#include <span>

#include "base/text.h"

namespace kiln {
namespace {

bool isPseudoWord(std::string_view word) {
  return word == "byte" || word == "word" || word == "org" || word == "dbyte" || word == "end";
}

// The compiler knows the characters of a mode that is a template argument. A loop over the rows makes a run over
// indexed operands 7 % longer.
template <Mode mode>
bool isSpelled(std::string_view operand) {
  constexpr const ModeRow& row = rowOf(mode);
  return startsWithIgnoringCase(operand, row.before) && endsWithIgnoringCase(operand, row.after);
}

// The first of the modes that the operand spells.
template <Mode... modes>
Mode firstSpelled(std::string_view operand) {
  Mode first = Mode::ZeroPage;
  (void)((isSpelled<modes>(operand) && (first = modes, true)) || ...);
  return first;
}

}  // namespace

std::string_view withoutCommaSpaces(std::string_view operand, std::string& scratch) {
  if (operand.find(' ') == std::string_view::npos || operand.find(',') == std::string_view::npos) return operand;
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

// A spelling comes before those that it ends with: ",sp,x" before ",x".
Mode classifyOperand(std::string_view operand) {
  using enum Mode;
  return firstSpelled<StackIndirectY, StackRelativeX, StackRelative, StackAdjust, IndirectIndexedY, IndexedIndirectX,
                      Indirect, Immediate, ZeroPageX, ZeroPageY>(operand);
}

Mode classifyWithoutComma(std::string_view operand) { return firstSpelled<Mode::Immediate, Mode::Indirect>(operand); }

std::string_view valueExpression(std::string_view operand, Mode mode) {
  operand.remove_prefix(rowOf(mode).before.size());
  operand.remove_suffix(rowOf(mode).after.size());
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
