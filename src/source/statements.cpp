#include "source/statements.h"

#include <utility>

#include "base/text.h"
#include "source/directives.h"
#include "source/operands.h"

namespace kiln {
namespace {

constexpr std::string_view statementSeparator = " : ";

// Takes the label off the front of `text`. Only the first character before the colon is looked at, so that everything
// up to the first colon is the label, blanks and quotes included.
void takeLabel(std::string_view& text, AsLine& line) {
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos) return;
  const std::string_view label = trim(text.substr(0, colon));
  if (!beginsLikeLabel(label)) return;
  line.labelLocal = label.front() == '>' || label.front() == '.';
  line.label = label.front() == '>' ? label.substr(1) : label;
  text = trim(text.substr(colon + 1));
}

bool parseAssignment(std::string_view text, AsLine& line) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) return false;
  const std::string_view name = trim(text.substr(0, equals));
  const std::string_view value = trim(text.substr(equals + 1));
  if (!beginsLikeLabel(name) || value.empty() || mnemonicOf(name) != Mnemonic::None) return false;
  line.kind = Kind::Assign;
  line.assignName = name;
  line.operand = value;
  return true;
}

bool isShift(Mnemonic mnemonic) {
  return mnemonic == Mnemonic::ASL || mnemonic == Mnemonic::LSR || mnemonic == Mnemonic::ROL ||
         mnemonic == Mnemonic::ROR;
}

}  // namespace

std::string_view withoutComment(std::string_view line) {
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    if (line[i] == ';' && !quoted) return line.substr(0, i);
  }
  return line;
}

bool StatementTexts::next(std::string_view& text) {
  while (!rest_.empty()) {
    const size_t separator = rest_.find(statementSeparator);
    text = trim(rest_.substr(0, separator));
    rest_ = separator == std::string_view::npos ? "" : rest_.substr(separator + statementSeparator.size());
    if (text.empty()) continue;
    found_ = true;
    return true;
  }
  text = trim(code_);
  return !std::exchange(found_, true);
}

std::string_view writtenOperand(std::string_view statement) {
  AsLine ignored;
  takeLabel(statement, ignored);
  takeWord(statement);
  return trim(statement);
}

void StatementParser::parseLine(std::string_view line, uint32_t lineNumber, std::vector<AsLine>& statements) {
  const bool marked = line.find(longBranchComment) != std::string_view::npos;
  StatementTexts texts(withoutComment(line));
  std::string_view text;
  while (texts.next(text)) {
    AsLine& statement = statements.emplace_back(parseStatement(text));
    statement.lineNumber = lineNumber;
    statement.longBranchMarked = marked;
    applyScope(statement);
  }
}

AsLine StatementParser::parseStatement(std::string_view text) {
  AsLine line;
  takeLabel(text, line);
  if (text.empty()) {
    if (!line.label.empty()) line.kind = Kind::LabelOnly;
  } else if (!parseAssignment(text, line) && !parseDirective(text, evaluator_, line)) {
    parseInstruction(text, line);
  }
  return line;
}

// A word that is no mnemonic leaves the statement empty: it vanishes without a message.
void StatementParser::parseInstruction(std::string_view text, AsLine& line) {
  line.mnemonic = mnemonicOf(takeWord(text));
  if (line.mnemonic == Mnemonic::None) return;
  line.kind = Kind::Instruction;
  const std::string_view words = trimLeft(text);
  if (!words.empty()) {
    parseOperand(words, line);
  } else if (isShift(line.mnemonic)) {
    line.mode = Mode::Accumulator;
  }
  line.size = instructionSize(line.mode);
}

void StatementParser::parseOperand(std::string_view words, AsLine& line) {
  const std::string_view operand = joinWords(words);
  if (equalIgnoringCase(operand, "A")) {
    line.mode = Mode::Accumulator;
    return;
  }
  line.operand = operand;
  line.mode = classifyOperand(withoutCommaSpaces(operand, scratch_), isBranch(line.mnemonic), evaluator_);
  const Mode absolute = absoluteForm(line.mode);
  if (opcodeFor(line.mnemonic, line.mode) < 0 && opcodeFor(line.mnemonic, absolute) >= 0) line.mode = absolute;
}

// The words with single spaces between them; the text itself when it stands so already.
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

void StatementParser::applyScope(AsLine& line) {
  if (!line.label.empty()) {
    if (line.label.front() == '.') {
      if (!scope_.empty()) line.label = texts_.join({scope_, line.label});
    } else if (!line.labelLocal && line.label.substr(0, longBranchLabel.size()) != longBranchLabel) {
      scope_ = line.label;
    }
  }
  // The text of a .string is data, and data lists and assigned values name their labels in full.
  const bool qualifies = line.kind == Kind::Instruction || line.kind == Kind::Org || line.kind >= Kind::Space;
  if (qualifies) line.operand = qualifyReferences(line.operand, scope_, texts_);
}

}  // namespace kiln
