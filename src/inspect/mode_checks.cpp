#include "inspect/mode_checks.h"

#include <array>

#include "base/arithmetic.h"
#include "base/diagnostics.h"
#include "base/format.h"
#include "base/text.h"
#include "inspect/leaf_checks.h"
#include "inspect/wording.h"

namespace kiln {
namespace {

// The text between the parentheses when they begin and end the text and belong to each other; empty otherwise.
std::string_view insideParentheses(std::string_view text) {
  if (text.size() < 3 || text.front() != '(' || text.back() != ')') return {};
  ptrdiff_t depth = 0;
  for (size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at] == '(') ++depth;
    if (text[at] == ')' && --depth == 0) return {};
  }
  return text.substr(1, text.size() - 2);
}

// True when a parenthesis closes that was not opened: the one that opened it was taken for the mode's.
bool closesTooMany(std::string_view text) {
  ptrdiff_t depth = 0;
  for (char c : text) {
    if (c == '(') ++depth;
    if (c == ')' && --depth < 0) return true;
  }
  return false;
}

bool isZeroPage(const AsLine& line) { return absoluteForm(line.mode) != line.mode; }

// The zero-page mode with the same spelling; the mode itself when there is none.
Mode zeroPageForm(Mode mode) {
  for (const ModeRow& row : modeRows) {
    if (row.absolute == mode && row.mode != mode) return row.mode;
  }
  return mode;
}

// "0+" in front makes parentheses, and a first number, part of the arithmetic.
void addWithZero(Check check, const Statement& statement, std::string_view at, std::string text, Findings& findings) {
  const std::string_view place = inSource(statement, at);
  Findings::Report report{.at = place, .text = std::move(text)};
  report.notes.emplace_back(place, concat({"write ", inQuotes(concat({"0+", place}))}));
  if (isInLine(statement, at)) report.fix.emplace_back(at.substr(0, 0), "0+");
  findings.add(check, std::move(report));
}

// What to write for an operand in parentheses that has no indirect mode.
std::string withoutIndirect(const Statement& statement) {
  const std::string_view written = statement.argument;
  const std::string_view inside = insideParentheses(written);
  const std::string_view pointer = inside.substr(0, inside.find(','));
  if (inside.empty()) return concat({"write ", inQuotes(concat({"0+", written}))});
  std::string address = concat({"write ", inQuotes(pointer), " for the address"});
  if (opcodeFor(statement.parsed->mnemonic, Mode::IndirectIndexedY) < 0) return address;
  return concat({address, ", or ", inQuotes(concat({"(", pointer, "),Y"})), " or ",
                 inQuotes(concat({"(", pointer, ",X)"})), " for what it points to"});
}

// The finding explains the assembler's error.
void reportNoIndirect(const Statement& statement, Findings& findings) {
  const AsLine& line = *statement.parsed;
  const std::string_view mnemonic = mnemonicText(line.mnemonic);
  findings.explain(concat({linePrefix(line.lineNumber), "invalid addressing mode for ", mnemonic}));
  Findings::Report report{.at = statement.argument};
  report.text =
      concat({"parentheses make ", inQuotes(statement.argument), " indirect, and ", mnemonic, " has no such mode"});
  report.notes.emplace_back(statement.argument, withoutIndirect(statement));
  findings.addError(std::move(report), Check::AccidentalIndirect);
}

// How a zero-page address is written for two bytes: a sum keeps its names, for they may move.
std::string shortForm(std::string_view expression, const std::string& number) {
  const bool beginsWithName = isIdentifierStart(expression.front()) || expression.front() == '.';
  return beginsWithName ? concat({"$0+", expression}) : number;
}

}  // namespace

bool checkModeParentheses(const Statement& statement, std::string_view expression, Findings& findings) {
  const AsLine& line = *statement.parsed;
  if (rowOf(line.mode).before != "(" || !findings.wants(Check::AccidentalIndirect)) return false;
  if (line.mode == Mode::Indirect && opcodeFor(line.mnemonic, Mode::Indirect) < 0) {
    reportNoIndirect(statement, findings);
    return true;
  }
  if (!closesTooMany(expression)) return false;
  addWithZero(Check::AccidentalIndirect, statement, line.operand(),
              concat({inQuotes(inSource(statement, line.operand())),
                      " is indirect: its first and its last parenthesis belong to the mode"}),
              findings);
  return true;
}

// Parentheses with a sum in them are arithmetic, unless it is an address in the zero page, where pointers are.
bool checkIndexedParentheses(const CheckedOperand& operand, Findings& findings) {
  const AsLine& line = *operand.statement.parsed;
  if (line.mode != Mode::AbsoluteX && line.mode != Mode::ZeroPageX) return false;
  const std::string_view inside = insideParentheses(operand.expression);
  if (inside.empty()) return false;
  const bool isPointer = operand.value.has_value() && *operand.value >= 0 && *operand.value <= 255;
  if (!isPointer && inside.find_first_of("+-*/") != std::string_view::npos) return false;
  const std::string_view at = inSource(operand.statement, line.operand());
  Findings::Report report{.at = at};
  report.text =
      concat({inQuotes(at), " is read as ", inQuotes(concat({inside, ",X"})), ": there is no such indirect mode"});
  report.notes.emplace_back(at, concat({"write ", inQuotes(concat({"(", inside, ",X)"})), " or ",
                                        inQuotes(concat({"(", inside, "),Y"})), " for what it points to"}));
  findings.add(Check::AccidentalIndirect, std::move(report));
  return true;
}

void checkVector(const CheckedOperand& operand, Findings& findings) {
  const AsLine& line = *operand.statement.parsed;
  if (line.mode != Mode::Indirect || line.mnemonic != Mnemonic::JMP || !operand.value.has_value()) return;
  const uint32_t vector = low16(*operand.value);
  if ((vector & 0xFF) != 0xFF) return;
  Findings::Report report{.at = operand.statement.rest};
  report.text = concat({"the vector crosses a page: a 6502 reads its low byte from ", dollarHex(vector),
                        ", and its high byte from ", dollarHex(vector & 0xFF00)});
  report.notes.emplace_back(report.at, "move the vector by a byte");
  findings.add(Check::PageWrapJump, std::move(report));
}

bool checkFirstNumber(const CheckedOperand& operand, Findings& findings) {
  const AsLine& line = *operand.statement.parsed;
  const bool beginsWithNumber = operand.expression.starts_with('$') || operand.expression.starts_with('%');
  const bool fits = !operand.value.has_value() || (*operand.value >= -255 && *operand.value <= 255);
  if (!isZeroPage(line) || !beginsWithNumber || fits) return false;
  if (opcodeFor(line.mnemonic, absoluteForm(line.mode)) < 0) return false;
  const std::string_view at = inSource(operand.statement, operand.expression);
  addWithZero(Check::FirstNumber, operand.statement, operand.expression,
              concat({inQuotes(at), " is ", valueText(*operand.value), ", but its first number makes it ",
                      dollarHex(lowByte(*operand.value), 2), " in the zero page"}),
              findings);
  return true;
}

void checkSize(const CheckedOperand& operand, Findings& findings) {
  if (!operand.value.has_value()) return;
  const AsLine& line = *operand.statement.parsed;
  const Mode shorter = zeroPageForm(line.mode);
  if (shorter == line.mode || opcodeFor(line.mnemonic, shorter) < 0) return;
  if (*operand.value < 1 || *operand.value > 255) return;
  const std::string_view at = inSource(operand.statement, operand.expression);
  const std::string number = dollarHex(*operand.value, 2);
  Findings::Report report{.at = at};
  report.text = concat({inQuotes(at), " is ", number, " in the zero page, but takes three bytes"});
  const std::string_view definition = line.nameHash != 0 ? ", or define the name with -D or in a symbol file," : "";
  report.notes.emplace_back(
      at, concat({"write ", inQuotes(shortForm(operand.expression, number)), definition, " for two bytes"}));
  findings.add(Check::ThreeBytes, std::move(report));
}

void checkOpcode(const Statement& statement, Findings& findings) {
  struct Opcode {
    Mnemonic mnemonic;
    std::string_view on65C02;
  };
  constexpr std::array opcodes = {Opcode{Mnemonic::PHX, "$DA"}, Opcode{Mnemonic::PHY, "$5A"},
                                  Opcode{Mnemonic::PLX, "$FA"}, Opcode{Mnemonic::PLY, "$7A"}};
  for (const auto& [mnemonic, on65C02] : opcodes) {
    if (statement.parsed->mnemonic != mnemonic) continue;
    const std::string here = dollarHex(opcodeFor(mnemonic, Mode::Implied), 2);
    Findings::Report report{.at = statement.word};
    report.text = concat(
        {inQuotes(statement.word), " has the opcode ", here, " of the pell machine, not ", on65C02, " of the 65C02"});
    report.notes.emplace_back(statement.word, concat({"write '.byte ", on65C02, "' for the 65C02"}));
    findings.add(Check::OtherOpcode, std::move(report));
  }
}

}  // namespace kiln
