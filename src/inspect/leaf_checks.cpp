#include "inspect/leaf_checks.h"

#include <algorithm>
#include <functional>

#include "base/format.h"
#include "base/hex.h"
#include "base/text.h"
#include "inspect/expression_names.h"
#include "inspect/name_text.h"
#include "inspect/other_operators.h"
#include "inspect/wording.h"
#include "source/literals.h"

namespace kiln {
namespace {

constexpr size_t longestSearch = 1000;  // in characters: a line may have a million mistakes
constexpr std::string_view commentNote = "write ';' before a comment";

bool isBinaryDigit(char c) { return c == '0' || c == '1'; }
bool isSign(char c) { return c == '+' || c == '-'; }

template <typename Predicate>
bool isAllOf(std::string_view text, Predicate predicate) {
  return !text.empty() && std::all_of(text.begin(), text.end(), predicate);
}

bool isPlainNumber(std::string_view leaf) {
  if (leaf.front() == '$') return leaf.size() <= 17 && isAllOf(leaf.substr(1), isHexDigit);
  if (leaf.front() == '%') return leaf.size() <= 65 && isAllOf(leaf.substr(1), isBinaryDigit);
  return isDecimalLiteral(leaf) || isTrailingHLiteral(leaf);
}

bool hasBlank(std::string_view text) { return std::any_of(text.begin(), text.end(), isBlank); }

// A number with "$" or "%", as parseRadix() reads it.
struct RadixNumber {
  explicit RadixNumber(std::string_view leaf) : isHex(leaf.front() == '$') {
    std::string_view text = leaf.substr(1);
    while (!text.empty() && isWhitespace(text.front()))
      text.remove_prefix(1);
    if (isHex && text.size() > 2 && startsWithIgnoringCase(text, "0x") && isHexDigit(text[2])) text.remove_prefix(2);
    const auto isDigitOfIt = [this](char c) { return isHex ? isHexDigit(c) : isBinaryDigit(c); };
    const auto end = std::find_if_not(text.begin(), text.end(), isDigitOfIt);
    rest = text.substr(static_cast<size_t>(end - text.begin()));
    digits = text.substr(0, text.size() - rest.size());
    read = leaf.substr(0, leaf.size() - rest.size());
  }

  bool isTooLong() const {
    const size_t first = std::min(digits.find_first_not_of('0'), digits.size());
    return digits.size() - first > (isHex ? 16 : 64);
  }

  bool isHex;
  std::string_view read;  // up to the last digit
  std::string_view digits;
  std::string_view rest;
};

}  // namespace

bool isInLine(const Statement& statement, std::string_view text) {
  const char* const begin = statement.line.data();
  const std::less<> isBefore;
  return !isBefore(text.data(), begin) && !isBefore(begin + statement.line.size(), text.data() + text.size());
}

std::string_view inSource(const Statement& statement, std::string_view text) {
  if (isInLine(statement, text)) return text;
  if (statement.argument.size() > longestSearch) return statement.argument;
  const size_t at = statement.argument.find(text);
  return at == std::string_view::npos ? statement.argument : statement.argument.substr(at, text.size());
}

bool LeafChecks::visit(const Statement& statement, std::string_view expression) {
  statement_ = &statement;
  expression_ = expression;
  reported_ = 0;
  hasZero_ = false;
  leaves_ = &walker_.find(expression);
  for (size_t i = 0; i < leaves_->size(); ++i)
    visitLeaf(i);
  return hasZero_;
}

void LeafChecks::visitLeaf(size_t index) {
  const std::string_view leaf = (*leaves_)[index];
  if (leaf.empty()) return checkMissing(index);
  if (isPlainName(leaf) || isPlainNumber(leaf)) return;
  if (leaf.front() == '$' || leaf.front() == '%') return checkNumber(leaf);
  checkUndefined(leaf);
}

// An empty operand counts as 0: "5*-3" is 5*0-3, and "5--3" is 5-0-3. Only "5+-3" and "5++3" come out as they look.
void LeafChecks::checkMissing(size_t index) {
  const std::string_view leaf = (*leaves_)[index];
  const auto at = static_cast<size_t>(leaf.data() - expression_.data());
  if (at < reported_) return;
  const std::string_view before = trimRight(expression_.substr(0, at));
  const std::string_view after = trimLeft(expression_.substr(at));
  const bool hasSign = !after.empty() && isSign(after.front());
  if (hasSign && before.ends_with('+')) return;
  hasZero_ = true;
  if (before.empty()) {
    const std::string_view text = statement_->rest;
    add(Check::NumberEndsEarly, text, concat({inQuotes(text), " has no number, which counts as 0"}));
  } else if (!hasSign) {
    const std::string_view last = before.substr(before.size() - 1);
    add(Check::NumberEndsEarly, last, concat({"nothing comes after '", last, "', which counts as 0"}));
  } else if (const std::string_view next = (*leaves_)[index + 1]; !next.empty()) {
    reportSigned(before.substr(before.size() - 1), after, next);
  }
}

// `after` begins with the sign, which follows an operator, and `next` is the operand after it.
void LeafChecks::reportSigned(std::string_view before, std::string_view after, std::string_view next) {
  const std::string_view sign = after.substr(0, 1);
  const std::string reason = concat({": between '", before, "' and '", sign, "' is nothing, which counts as 0"});
  const std::string_view between = trimLeft(after.substr(1));
  if (between.data() != next.data()) {
    return add(Check::MinusSign, sign, concat({"'", sign, "' is no sign", reason}),
               concat({"write '(0", sign, "...)'"}));
  }
  const std::string_view number = after.substr(0, static_cast<size_t>(next.data() + next.size() - after.data()));
  const std::string replacement = sign == "-" ? concat({"(0", number, ")"}) : std::string(next);
  add(Check::MinusSign, number, concat({inQuotes(number), " is not a signed number", reason}),
      concat({"write ", inQuotes(replacement)}), replacement);
}

void LeafChecks::checkNumber(std::string_view leaf) {
  const RadixNumber number(leaf);
  if (number.isTooLong()) {
    return add(Check::CutValue, leaf, concat({inQuotes(leaf), " has more than 64 bits and counts as 0-1"}));
  }
  const bool isSigned =
      leaf.size() == 1 && expression_.substr(static_cast<size_t>(leaf.data() - expression_.data())).starts_with("$-");
  const bool isComplete = number.rest.empty() || number.rest == "\r";
  if (isComplete && !number.digits.empty()) return;
  hasZero_ = hasZero_ || number.digits.empty();
  const std::string readAs = number.digits.empty() ? inQuotes(leaf) + " counts as 0"
                                                   : concat({inQuotes(leaf), " is read as ", inQuotes(number.read)});
  if (const OtherOperator* const other = otherOperatorIn(number.rest)) {
    return add(Check::ForeignOperator, leaf, concat({readAs, ": there is no operator '", other->spelling, "'"}),
               std::string(other->instead));
  }
  if (isComplete) {
    return add(Check::NumberEndsEarly, leaf, readAs + ": it has no digits", isSigned ? "write '0-$'" : "");
  }
  const char next = number.rest.front();
  if (isBlank(next) || static_cast<unsigned char>(next) >= 0x80) {
    return add(Check::NumberEndsEarly, leaf, readAs + ": the rest is ignored", std::string(commentNote));
  }
  const std::string_view kind = number.isHex ? "' is not a hexadecimal digit" : "' is not a binary digit";
  add(Check::NumberEndsEarly, leaf, concat({readAs, ": '", number.rest.substr(0, 1), kind}));
}

void LeafChecks::checkUndefined(std::string_view leaf) {
  if (symbols_.resolve(leaf) != nullptr) return;
  hasZero_ = true;
  findings_.explain(undefinedMessage(leaf));
  const bool isReported = static_cast<size_t>(leaf.data() - expression_.data()) < reported_;
  if (!isReported && !leaf.ends_with('\r')) reportUndefined(leaf);
}

void LeafChecks::reportUndefined(std::string_view leaf) {
  const char front = leaf.front();
  if (front == '\'' || front == '"') return reportCharacter(leaf);
  if (isSign(front)) return reportSign(leaf);
  if (leaf == "*") {
    return add(Check::ForeignOperator, leaf, "'*' is not the current address but an unknown name, which counts as 0",
               "write a label before the statement, and its name for the address");
  }
  if (const OtherOperator* const other = otherOperatorIn(leaf)) {
    return add(Check::ForeignOperator, leaf,
               concat({inQuotes(leaf), " is read as one name, which counts as 0: there is no operator '",
                       other->spelling, "'"}),
               std::string(other->instead));
  }
  isDigit(front) ? reportDigits(leaf) : reportName(leaf);
}

// The quotes may be around an operator, at which the expression is cut.
void LeafChecks::reportCharacter(std::string_view leaf) {
  const std::string_view text = expression_.substr(static_cast<size_t>(leaf.data() - expression_.data()));
  const size_t close = text.find(text.front(), 1);
  const std::string_view literal = close == std::string_view::npos ? leaf : text.substr(0, close + 1);
  reported_ = static_cast<size_t>(literal.data() + literal.size() - expression_.data());
  const bool isCharacter = close == 2 || (close == std::string_view::npos && literal.size() == 2);
  const std::string finding = concat({shortened(literal), " is not a number but an unknown name, which counts as 0"});
  if (!isCharacter || static_cast<unsigned char>(literal[1]) >= 0x80) {
    return add(Check::CharacterLiteral, literal, finding, "write the number of each character");
  }
  const std::string code = decimal(literal[1]);
  add(Check::CharacterLiteral, literal, finding, concat({"write ", code}), code);
}

void LeafChecks::reportSign(std::string_view leaf) {
  if (isAllOf(expression_, isSign)) {
    reported_ = expression_.size() + 1;
    return add(Check::Undefined, expression_, concat({inQuotes(expression_), " is an unknown name, which counts as 0"}),
               "write a label with a name: there are no others");
  }
  const std::string replacement = leaf.front() == '-' ? concat({"0", leaf}) : std::string(trimLeft(leaf.substr(1)));
  add(Check::MinusSign, leaf, concat({inQuotes(leaf), " is not a number but an unknown name, which counts as 0"}),
      concat({"write ", inQuotes(replacement)}), replacement);
}

void LeafChecks::reportDigits(std::string_view leaf) {
  const std::string finding = concat({inQuotes(leaf), " is not a number but an unknown name, which counts as 0"});
  const std::string_view digits = leaf.substr(std::min<size_t>(2, leaf.size()));
  const bool isHex = startsWithIgnoringCase(leaf, "0x") && isAllOf(digits, isHexDigit);
  const bool isBinary = startsWithIgnoringCase(leaf, "0b") && isAllOf(digits, isBinaryDigit);
  if (isHex || isBinary) {
    const std::string replacement = concat({isHex ? "$" : "%", digits});
    add(Check::NumberEndsEarly, leaf, finding, concat({"write ", inQuotes(replacement)}), replacement);
  } else if (isAllOf(leaf, isHexDigit)) {
    addAlternative(Check::NumberEndsEarly, leaf, finding, concat({"write '$", leaf, "' for a hexadecimal number"}),
                   concat({"$", leaf}));
  } else {
    add(Check::NumberEndsEarly, leaf, finding, hasBlank(leaf) ? std::string(commentNote) : "");
  }
}

void LeafChecks::reportName(std::string_view leaf) {
  if (findings_.wants(Check::Vanished) && lost_.contains(leaf)) return;
  std::string note;
  const std::string_view rest = leaf.substr(1);
  if (leaf.front() == '#') note = "write it without the '#'";
  if (leaf.front() == '@') note = concat({"write ", inQuotes(concat({".", rest})), " for a local label"});
  if (leaf.front() == '[' || leaf.front() == ']') note = "write '(' and ')'";
  if (leaf.ends_with(')')) note = "'<a' and '>a' are the low and the high byte of a; there are no functions";
  if (note.empty() && hasBlank(leaf)) note = commentNote;
  std::string alternative;
  if (leaf.front() == '#') alternative = rest;
  if (leaf.front() == '@') alternative = concat({".", rest});
  addAlternative(Check::Undefined, leaf, concat({inQuotes(leaf), " is an unknown name, which counts as 0"}),
                 std::move(note), std::move(alternative));
}

void LeafChecks::addAlternative(Check check, std::string_view at, std::string text, std::string note,
                                std::string alternative) {
  Findings::Report report{.at = inSource(*statement_, at), .text = std::move(text)};
  if (!note.empty()) report.notes.emplace_back(report.at, std::move(note));
  if (!alternative.empty() && isInLine(*statement_, at)) report.alternatives.push_back(std::move(alternative));
  findings_.add(check, std::move(report));
}

void LeafChecks::add(Check check, std::string_view at, std::string text, std::string note, std::string replacement) {
  Findings::Report report{.at = inSource(*statement_, at), .text = std::move(text)};
  if (!note.empty()) report.notes.emplace_back(report.at, std::move(note));
  if (!replacement.empty() && isInLine(*statement_, at)) report.fix.emplace_back(at, std::move(replacement));
  findings_.add(check, std::move(report));
}

}  // namespace kiln
