// How a text is taken apart: a "<" or ">" in front applies to the whole rest. Otherwise the text is cut at every "+"
// and "-" outside parentheses, else at every "*" and "/", but never at its first character; the parts are evaluated
// from left to right by the same rules. Depth is counted from the right end, which gives unbalanced parentheses their
// defined meaning. One walk finds all operators and orders them by depth and place; bisection then finds those of a
// part, and a stack of pending operations replaces recursion.
#include "source/expression.h"

#include <algorithm>
#include <array>

#include "base/arithmetic.h"
#include "base/text.h"
#include "source/literals.h"

namespace kiln {
namespace {

// What a character means between operands, as bits.
constexpr uint8_t sumSign = 1;
constexpr uint8_t productSign = 2;
constexpr uint8_t nesting = 4;

constexpr std::array<uint8_t, 256> makeMeanings() {
  std::array<uint8_t, 256> meanings{};
  for (char c : {'+', '-'})
    meanings[static_cast<unsigned char>(c)] = sumSign;
  for (char c : {'*', '/'})
    meanings[static_cast<unsigned char>(c)] = productSign;
  for (char c : {'(', ')', '<', '>'})
    meanings[static_cast<unsigned char>(c)] = nesting;
  return meanings;
}

constexpr std::array<uint8_t, 256> meanings = makeMeanings();

constexpr std::array<bool, 256> makeNameParts() {
  std::array<bool, 256> parts{};
  for (size_t i = 0; i < parts.size(); ++i)
    parts[i] = isIdentifierCharacter(static_cast<char>(i)) || static_cast<char>(i) == '.';
  return parts;
}

constexpr std::array<bool, 256> nameParts = makeNameParts();

uint8_t meaningOf(char c) { return meanings[static_cast<unsigned char>(c)]; }

// The meanings of all characters but the first, which is no operator.
uint8_t meaningsIn(std::string_view text) {
  uint8_t found = meaningOf(text.front()) & nesting;
  for (char c : text.substr(1))
    found |= meaningOf(c);
  return found;
}

int64_t combine(int64_t left, char sign, int64_t right) {
  switch (sign) {
    case '+':
      return wrappingAdd(left, right);
    case '-':
      return wrappingSubtract(left, right);
    case '*':
      return wrappingMultiply(left, right);
    default:
      return definedDivide(left, right);
  }
}

}  // namespace

// Most operands are a name, a name with "<" or ">" before it, or a name and a number: they need no stack.
int64_t Evaluator::expressionValue(std::string_view text) {
  const char front = text.front();
  if (front == '<' || front == '>') {
    const std::string_view rest = trim(text.substr(1));
    if (rest.empty() || meaningsIn(rest) != 0) return nestedValue(text);
    const int64_t value = leafValue(rest);
    return front == '<' ? lowByte(value) : highByte(value);
  }
  switch (meaningsIn(text)) {
    case 0:
      return leafValue(text);
    case sumSign:
      return sumValue(text);
    default:
      return nestedValue(text);
  }
}

int64_t Evaluator::sizingValue(std::string_view text, uint32_t hash) const {
  if (hash != 0) {
    const Symbol* const symbol = symbols_.find(text, hash);
    return symbol != nullptr ? symbol->value : 256;
  }
  text = trim(text);
  if (const int64_t literal = parsePlainLiteral(text); literal >= 0) return literal;
  if (!text.empty() && text.front() == '$') return parseRadix(text.substr(1), 16);
  if (!text.empty() && text.front() == '%') return parseRadix(text.substr(1), 2);
  if (isDecimalLiteral(text)) return parseDecimal(text);
  const Symbol* const symbol = symbols_.find(text);
  return symbol != nullptr ? symbol->value : 256;
}

// The same as nestedValue() for a sum of names and literals.
int64_t Evaluator::sumValue(std::string_view text) {
  int64_t value = 0;
  char sign = '+';
  size_t begin = 0;
  for (size_t end = 1; end <= text.size(); ++end) {
    if (end < text.size() && meaningOf(text[end]) == 0) continue;
    const std::string_view leaf = trim(text.substr(begin, end - begin));
    value = combine(value, sign, leaf.empty() ? 0 : leafValue(leaf));
    if (end == text.size()) break;
    sign = text[end];
    begin = end + 1;
  }
  return value;
}

int64_t Evaluator::nestedValue(std::string_view text) {
  findOperators(text);
  pending_.clear();
  Part part{0, text.size(), 0};
  int64_t value = 0;
  do {
    while (open(text, part)) {
    }
    const std::string_view leaf = text.substr(part.begin, part.end - part.begin);
    value = leaf.empty() ? 0 : leafValue(leaf);
  } while (close(value, part));
  return value;
}

void Evaluator::findOperators(std::string_view text) {
  sums_.clear();
  products_.clear();
  int64_t depth = 0;
  for (size_t at = text.size(); at-- > 0;) {
    const char c = text[at];
    if (c == ')') ++depth;
    if (c == '(') --depth;
    if (depth < 0 || (meaningOf(c) & (sumSign | productSign)) == 0) continue;
    std::vector<Operator>& found = meaningOf(c) == sumSign ? sums_ : products_;
    found.push_back({static_cast<size_t>(depth), at, c});
  }
  const auto byDepthAndPlace = [](const Operator& a, const Operator& b) {
    return a.depth != b.depth ? a.depth < b.depth : a.at < b.at;
  };
  for (std::vector<Operator>* found : {&sums_, &products_}) {
    std::reverse(found->begin(), found->end());
    if (!std::is_sorted(found->begin(), found->end(), byDepthAndPlace)) {
      std::sort(found->begin(), found->end(), byDepthAndPlace);
    }
  }
}

// Narrows the part to the piece of it that is evaluated first; false when it is a leaf, or empty.
bool Evaluator::open(std::string_view text, Part& part) {
  while (part.begin < part.end && isBlank(text[part.begin]))
    ++part.begin;
  while (part.begin < part.end && isBlank(text[part.end - 1]))
    --part.end;
  if (part.begin == part.end) return false;
  if (text[part.begin] == '<' || text[part.begin] == '>') {
    openPrefixes(text, part);
    return true;
  }
  if (openOperands(Pending::Kind::Sum, part) || openOperands(Pending::Kind::Product, part)) return true;
  if (text[part.begin] != '(' || text[part.end - 1] != ')') return false;
  ++part.begin;
  --part.end;
  ++part.depth;
  return true;
}

// A run of prefixes needs one entry only: the innermost makes a byte, of which any further ">" leaves 0 and any
// further "<" all.
void Evaluator::openPrefixes(std::string_view text, Part& part) {
  bool outerHigh = false;
  char innermost = '<';
  while (part.begin < part.end && (text[part.begin] == '<' || text[part.begin] == '>' || isBlank(text[part.begin]))) {
    const char c = text[part.begin++];
    if (isBlank(c)) continue;
    outerHigh = outerHigh || innermost == '>';
    innermost = c;
  }
  const Pending::Kind byteKind = innermost == '<' ? Pending::Kind::LowByte : Pending::Kind::HighByte;
  pending_.push_back({.kind = outerHigh ? Pending::Kind::Zero : byteKind});
}

// Cuts the part at its operators of one kind, and narrows it to the first operand; false when it has none.
bool Evaluator::openOperands(Pending::Kind kind, Part& part) {
  Pending pending{.kind = kind, .end = part.end, .depth = part.depth};
  if (kind == Pending::Kind::Product) {
    pending.sign = '*';
    pending.value = 1;
  }
  const std::vector<Operator>& candidates = operatorsOf(pending);
  const auto isBefore = [&part](const Operator& candidate, size_t at) {
    return candidate.depth != part.depth ? candidate.depth < part.depth : candidate.at < at;
  };
  const auto first = std::lower_bound(candidates.begin(), candidates.end(), part.begin + 1, isBefore);
  pending.nextOperator = static_cast<size_t>(first - candidates.begin());
  const size_t end = operandEnd(pending);
  if (end == part.end) return false;
  part.end = end;
  pending_.push_back(pending);
  return true;
}

const std::vector<Evaluator::Operator>& Evaluator::operatorsOf(const Pending& pending) const {
  return pending.kind == Pending::Kind::Sum ? sums_ : products_;
}

// Where the current operand ends: at its next operator, or with the whole sum or product.
size_t Evaluator::operandEnd(const Pending& pending) const {
  const std::vector<Operator>& candidates = operatorsOf(pending);
  if (pending.nextOperator == candidates.size()) return pending.end;
  const Operator& next = candidates[pending.nextOperator];
  return next.depth == pending.depth && next.at < pending.end ? next.at : pending.end;
}

// Gives the value to the operations that wait for it. True when an operand is left to evaluate, which becomes the
// current part; false when `value` is that of the whole text.
bool Evaluator::close(int64_t& value, Part& part) {
  for (; !pending_.empty(); pending_.pop_back()) {
    Pending& pending = pending_.back();
    switch (pending.kind) {
      case Pending::Kind::LowByte:
        value = lowByte(value);
        continue;
      case Pending::Kind::HighByte:
        value = highByte(value);
        continue;
      case Pending::Kind::Zero:
        value = 0;
        continue;
      case Pending::Kind::Sum:
      case Pending::Kind::Product:
        break;
    }
    value = combine(pending.value, pending.sign, value);
    const size_t end = operandEnd(pending);
    if (end == pending.end) continue;
    pending.value = value;
    pending.sign = operatorsOf(pending)[pending.nextOperator++].sign;
    part = {end + 1, operandEnd(pending), pending.depth};
    return true;
  }
  return false;
}

int64_t Evaluator::leafValue(std::string_view text) {
  if (text.front() == '$') return parseRadix(text.substr(1), 16);
  if (text.front() == '%') return parseRadix(text.substr(1), 2);
  return nameValue(text);
}

int64_t Evaluator::nameValue(std::string_view text) {
  const bool trailingH = isTrailingHLiteral(text);
  if (const Symbol* const symbol = symbols_.find(text)) {
    if (trailingH) warnOfAmbiguity(symbol->name);
    return symbol->value;
  }
  if (trailingH) return parseRadix(text.substr(0, text.size() - 1), 16);
  return isDecimalLiteral(text) ? parseDecimal(text) : unknownNameValue(text, symbolHash(text));
}

void Evaluator::warnOfAmbiguity(std::string_view name) {
  if (!ambiguousNames_.insert(name).second) return;
  warnings_.add({"label '", name,
                 "' is ambiguous with Z80-style hex literal; resolving to the label — rename it or use $",
                 name.substr(0, name.size() - 1), " to silence this warning"});
}

// The value of a name that is not in the table as it is written.
int64_t Evaluator::unknownNameValue(std::string_view text, uint32_t hash) {
  if (const Symbol* const symbol = symbols_.findIgnoringCase(text, hash)) return symbol->value;
  warnings_.add({"undefined symbol '", text, "', using 0"});
  return 0;
}

uint32_t nameHash(std::string_view text) {
  if (text.empty() || isDigit(text.front())) return 0;
  for (char c : text) {
    if (!nameParts[static_cast<unsigned char>(c)]) return 0;
  }
  return symbolHash(text);
}

std::string_view leadingSymbol(std::string_view expression) {
  expression = trim(expression);
  if (expression.empty() || !(isIdentifierStart(expression.front()) || expression.front() == '.')) return {};
  size_t end = 1;
  while (end < expression.size() && nameParts[static_cast<unsigned char>(expression[end])])
    ++end;
  return expression.substr(0, end);
}

}  // namespace kiln
