#include "source/statements.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "base/text.h"
#include "source/directives.h"
#include "source/operands.h"

namespace kiln {
namespace {

// A statement keeps the length of its operand in 32 bits.
constexpr size_t longestLine = 0xFFFFFFFF;

struct LabelledText {
  std::string_view label = {};  // without the ">" of a local one; empty when there is none
  bool isLocal = false;         // written with a leading "." or ">"
  std::string_view rest = {};   // trimmed
};

// Only the first character before the colon is tested, so everything up to the first colon is the label, blanks and
// quotes included.
LabelledText splitLabel(std::string_view text) {
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos) return {.rest = text};
  const std::string_view label = trim(text.substr(0, colon));
  if (!beginsLikeLabel(label)) return {.rest = text};
  const bool isLocal = label.front() == '>' || label.front() == '.';
  return {label.substr(label.front() == '>' ? 1 : 0), isLocal, trim(text.substr(colon + 1))};
}

bool parseAssignment(std::string_view text, AsLine& line) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) return false;
  const std::string_view name = trim(text.substr(0, equals));
  const std::string_view value = trim(text.substr(equals + 1));
  if (!beginsLikeLabel(name) || value.empty() || mnemonicOf(name) != Mnemonic::None) return false;
  line.kind = Kind::Assign;
  line.setOperand(text);
  return true;
}

}  // namespace

std::string_view writtenOperand(std::string_view statement) {
  std::string_view rest = splitLabel(statement).rest;
  takeWord(rest);
  return trim(rest);
}

std::string_view instructionExpression(const AsLine& line, std::string& scratch) {
  return valueExpression(withoutCommaSpaces(line.operand(), scratch), line.mode);
}

void StatementParser::parseLine(std::string_view line, uint32_t lineNumber, Statements& statements) {
  if (line.size() > longestLine) throw std::length_error("line");
  const LineShape shape(line);
  if (shape.splits()) {
    parseSeveral(withoutComment(line), shape, lineNumber, statements);
  } else if (!shape.code().empty() || shape.marked()) {
    append(shape.code(), shape, lineNumber, statements);
  }
}

void StatementParser::parseSeveral(std::string_view code, const LineShape& shape, uint32_t lineNumber,
                                   Statements& statements) {
  StatementTexts texts(code);
  std::vector<AsLine>& lines = statements.lines;
  const size_t before = lines.size();
  while (const std::optional<std::string_view> text = texts.next()) {
    // Only hostile lines hold millions of statements: doubling the room would take half as much memory again.
    const size_t count = lines.size();
    if (count == lines.capacity()) {
      lines.reserve(count + std::max(texts.estimateAhead(count - before + 1), count / 16) + 16);
    }
    append(*text, shape, lineNumber, statements);
  }
}

void StatementParser::append(std::string_view text, const LineShape& shape, uint32_t lineNumber,
                             Statements& statements) {
  AsLine& line = statements.lines.emplace_back();
  line.lineNumber = lineNumber;
  line.longBranchMarked = shape.marked();
  if (!text.empty()) parseStatement(text, shape, line, statements.labels);
  if (line.mode == Mode::Relative) ++statements.branches;
}

// A character that the line does not have, its statement does not have.
void StatementParser::parseStatement(std::string_view text, const LineShape& shape, AsLine& line,
                                     std::vector<HashedName>& labels) {
  if (shape.has(Colon)) {
    const LabelledText parts = splitLabel(text);
    text = parts.rest;
    if (!parts.label.empty()) {
      line.hasLabel = true;
      line.labelLocal = parts.isLocal;
      labels.push_back(openScope(parts.label, parts.isLocal));
    }
  }
  if (text.empty()) {
    line.kind = Kind::LabelOnly;
    return;
  }
  if (shape.has(Equals) && parseAssignment(text, line)) return;
  if (!parseDirective(text, evaluator_, line)) parseInstruction(text, shape, line);
  if (shape.has(Dot) && rowOf(line.kind).qualifies) qualifyOperand(line);
}

// A word that is no mnemonic leaves the statement empty: it vanishes without a message.
void StatementParser::parseInstruction(std::string_view text, const LineShape& shape, AsLine& line) {
  if (text.size() > 3 && !isBlank(text[3])) return;
  line.mnemonic = mnemonicOf(text.substr(0, 3));
  if (line.mnemonic == Mnemonic::None) return;
  line.kind = Kind::Instruction;
  const std::string_view words = trimLeft(text.substr(3));
  if (!words.empty()) {
    parseOperand(words, shape.specialsIn(words), line);
  } else if (opcodeFor(line.mnemonic, Mode::Accumulator) >= 0) {
    line.mode = Mode::Accumulator;
  }
  line.size = instructionSize(line.mode);
}

void StatementParser::parseOperand(std::string_view words, uint8_t specials, AsLine& line) {
  const bool hasBlanks = (specials & Blank) != 0;
  const bool hasComma = (specials & Comma) != 0;
  const std::string_view operand = hasBlanks ? joinWords(words) : words;
  if (operand.size() == 1 && toUpper(operand.front()) == 'A') {
    line.mode = Mode::Accumulator;
    return;
  }
  const std::string_view closed = hasComma && hasBlanks ? withoutCommaSpaces(operand, scratch_) : operand;
  if (isBranch(line.mnemonic)) {
    line.mode = Mode::Relative;
  } else {
    line.mode = hasComma ? classifyOperand(closed) : classifyWithoutComma(closed);
  }
  const std::string_view expression = valueExpression(closed, line.mode);
  line.nameHash = nameHash(expression);
  line.setOperand(operand);
  const Mode absolute = absoluteForm(line.mode);
  if (absolute == line.mode) return;
  const int64_t size = evaluator_.sizingValue(expression, line.nameHash);
  const bool isZeroPage = size >= 0 && size <= 255;
  if (!isZeroPage || (opcodeFor(line.mnemonic, line.mode) < 0 && opcodeFor(line.mnemonic, absolute) >= 0)) {
    line.mode = absolute;
  }
}

// The words with single spaces between them; the text itself when it is written so already.
std::string_view StatementParser::joinWords(std::string_view words) {
  if (words.find('\t') == std::string_view::npos && words.find("  ") == std::string_view::npos) return words;
  std::string joined;
  while (true) {
    const std::string_view word = takeWord(words);
    if (word.empty()) break;
    if (!joined.empty()) joined.push_back(' ');
    joined += word;
  }
  return texts_.join({joined});
}

// Qualifies a local label with the scope; any other opens a scope of its own.
HashedName StatementParser::openScope(std::string_view label, bool isLocal) {
  if (label.front() == '.') {
    if (!scope_.empty()) label = texts_.join({scope_, label});
  } else if (!isLocal && !label.starts_with(longBranchLabel)) {
    scope_ = label;
  }
  return HashedName(label);
}

void StatementParser::qualifyOperand(AsLine& line) {
  const std::string_view qualified = qualifyReferences(line.operand(), scope_, texts_);
  if (qualified.data() == line.operand().data()) return;
  line.setOperand(qualified);
  if (line.kind == Kind::Instruction) line.nameHash = nameHash(instructionExpression(line, scratch_));
}

}  // namespace kiln
