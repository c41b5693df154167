#include "source/statements.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "base/text.h"
#include "source/directives.h"
#include "source/operands.h"

namespace kiln {
namespace {

constexpr std::string_view statementSeparator = " : ";

// A statement knows the lengths of its texts in 32 bits.
constexpr size_t longestLine = 0xFFFFFFFF;

// The characters that mean something in a line or an operand before anything is known about it. A table tells them from
// all others in one step, and most lines have none or one.
enum Special : uint8_t { Quote = 1, Semicolon = 2, Colon = 4, Equals = 8, Comma = 16, Dot = 32, Space = 64, Tab = 128 };

constexpr std::array<uint8_t, 256> makeSpecials() {
  std::array<uint8_t, 256> specials{};
  specials['"'] = Quote;
  specials[';'] = Semicolon;
  specials[':'] = Colon;
  specials['='] = Equals;
  specials[','] = Comma;
  specials['.'] = Dot;
  specials[' '] = Space;
  specials['\t'] = Tab;
  return specials;
}

constexpr std::array<uint8_t, 256> specials = makeSpecials();

uint8_t specialOf(char c) { return specials[static_cast<unsigned char>(c)]; }

// All kinds of special characters in the text.
uint8_t specialsOf(std::string_view text) {
  uint8_t all = 0;
  for (char c : text)
    all |= specialOf(c);
  return all;
}

// What one walk over a physical line tells.
struct LineShape {
  std::string_view code;  // without its comment, trimmed
  uint8_t specials = 0;   // in the code
  bool splits = false;    // it may be more than one statement
  bool marked = false;    // the long-branch rewriter wrote it
};

// Lets the last statement stand for one more line when it is one without text. Its mark tells a spill something, so
// that those with a mark stay alone.
bool extendsEmpty(std::vector<AsLine>& statements) {
  if (statements.empty()) return false;
  AsLine& last = statements.back();
  if (last.kind != Kind::Empty || last.isText || last.longBranchMarked) return false;
  ++last.address;
  return true;
}

// A line longer than this is searched for what would make it more than one plain statement; searching is quicker by the
// character and dearer by the line than walking (data lists gain a tenth of their whole time, short lines would lose).
constexpr size_t longLine = 40;

bool isPlain(std::string_view line) {
  for (char c : {'"', ';', ':', '='}) {
    if (line.find(c) != std::string_view::npos) return false;
  }
  return true;
}

LineShape shapeOf(std::string_view line) {
  LineShape shape;
  if (line.size() > longLine && isPlain(line)) {
    shape.code = trim(line);
    shape.specials = Dot;
    return shape;
  }
  bool quoted = false;
  size_t begin = 0;
  while (begin < line.size() && isBlank(line[begin]))
    ++begin;
  size_t end = line.size();
  for (size_t i = begin; i < line.size(); ++i) {
    const uint8_t special = specialOf(line[i]);
    shape.specials |= special;
    if ((special & (Quote | Semicolon | Colon)) == 0) continue;
    if (special == Quote) quoted = !quoted;
    if (special == Colon) shape.splits = shape.splits || (i > 0 && line[i - 1] == ' ');
    if (special == Semicolon && !quoted) {
      end = i;
      break;
    }
  }
  shape.code = trimRight(line.substr(begin, end - begin));
  // Where there is a mark there is a semicolon, the first of them in the code or right behind it.
  if ((shape.specials & Semicolon) != 0) shape.marked = line.find(longBranchComment) != std::string_view::npos;
  return shape;
}

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
  line.operand = text;
  return true;
}

bool isShift(Mnemonic mnemonic) {
  return mnemonic == Mnemonic::ASL || mnemonic == Mnemonic::LSR || mnemonic == Mnemonic::ROL ||
         mnemonic == Mnemonic::ROR;
}

}  // namespace

// Most lines that are asked about have no semicolon at all.
std::string_view withoutComment(std::string_view line) {
  if (line.find(';') == std::string_view::npos) return line;
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
  if (line.size() > longestLine) throw std::length_error("line");
  const LineShape shape = shapeOf(line);
  const auto append = [&](std::string_view text) {
    AsLine& statement = statements.emplace_back();
    statement.lineNumber = lineNumber;
    statement.longBranchMarked = shape.marked;
    statement.isText = !text.empty();
    if (statement.isText) parseStatement(text, shape.specials, statement);
  };
  if (shape.code.empty() && !shape.marked && extendsEmpty(statements)) return;
  if (!shape.splits) return append(shape.code);
  StatementTexts texts(withoutComment(line));
  const size_t before = statements.size();
  std::string_view text;
  while (texts.next(text)) {
    // Of a line that holds millions of statements, doubling the room would take half as much memory again as they need.
    const size_t count = statements.size();
    if (count == statements.capacity()) {
      statements.reserve(count + std::max(texts.estimateAhead(count - before + 1), count / 16) + 16);
    }
    append(text);
  }
}

// `specials` are those of the whole line: what it does not have, no statement of it has.
void StatementParser::parseStatement(std::string_view text, uint8_t specials, AsLine& line) {
  if ((specials & Colon) != 0) takeLabel(text, line);
  if (!line.label.empty()) {
    openScope(line);
    ++definitionCount_;
  }
  if (text.empty()) {
    if (!line.label.empty()) line.kind = Kind::LabelOnly;
    return;
  }
  if ((specials & Equals) != 0 && parseAssignment(text, line)) {
    ++definitionCount_;
    return;
  }
  if (!parseDirective(text, evaluator_, line)) parseInstruction(text, line);
  // The text of a .string is data, and data lists name their labels in full.
  const bool qualifies = line.kind == Kind::Instruction || line.kind == Kind::Org || line.kind >= Kind::Space;
  if (qualifies && (specials & Dot) != 0) qualifyOperand(line);
}

// A word that is no mnemonic leaves the statement empty: it vanishes without a message.
void StatementParser::parseInstruction(std::string_view text, AsLine& line) {
  if (text.size() > 3 && !isBlank(text[3])) return;
  line.mnemonic = mnemonicOf(text.substr(0, 3));
  if (line.mnemonic == Mnemonic::None) return;
  line.kind = Kind::Instruction;
  const std::string_view words = trimLeft(text.substr(3));
  if (!words.empty()) {
    parseOperand(words, line);
  } else if (isShift(line.mnemonic)) {
    line.mode = Mode::Accumulator;
  }
  line.size = instructionSize(line.mode);
}

void StatementParser::parseOperand(std::string_view words, AsLine& line) {
  const uint8_t inside = specialsOf(words);
  const std::string_view operand = (inside & (Space | Tab)) != 0 ? joinWords(words) : words;
  if (operand.size() == 1 && toUpper(operand.front()) == 'A') {
    line.mode = Mode::Accumulator;
    return;
  }
  line.hasCommaSpaces = (inside & Comma) != 0 && (inside & (Space | Tab)) != 0;
  const std::string_view closed = line.hasCommaSpaces ? withoutCommaSpaces(operand, scratch_) : operand;
  if (isBranch(line.mnemonic)) {
    line.mode = Mode::Relative;
  } else {
    line.mode = (inside & Comma) != 0 ? classifyOperand(closed) : classifyWithoutComma(closed);
  }
  const std::string_view expression = valueExpression(closed, line.mode);
  const uint32_t hash = nameHash(expression);
  // The hash is that of an expression that stands in the operand as it is.
  line.operand = {operand, line.hasCommaSpaces ? 0 : hash};
  const Mode absolute = absoluteForm(line.mode);
  if (absolute == line.mode) return;
  const int64_t size = evaluator_.evaluateForSize(expression, hash);
  const bool isZeroPage = size >= 0 && size <= 255;
  if (!isZeroPage || (opcodeFor(line.mnemonic, line.mode) < 0 && opcodeFor(line.mnemonic, absolute) >= 0)) {
    line.mode = absolute;
  }
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

// Qualifies a local label with the scope; any other opens a scope of its own.
void StatementParser::openScope(AsLine& line) {
  std::string_view label = line.label;
  if (label.front() == '.') {
    if (!scope_.empty()) label = texts_.join({scope_, label});
  } else if (!line.labelLocal && label.substr(0, longBranchLabel.size()) != longBranchLabel) {
    scope_ = label;
  }
  line.label = {label, symbolHash(label)};
}

void StatementParser::qualifyOperand(AsLine& line) {
  const std::string_view qualified = qualifyReferences(line.operand, scope_, texts_);
  // A scope may hold anything, commas and spaces included.
  if (qualified.data() == line.operand.text().data()) return;
  line.hasCommaSpaces = true;
  line.operand = {qualified, line.kind == Kind::Instruction ? nameHash(valueExpression(qualified, line.mode)) : 0};
}

}  // namespace kiln
