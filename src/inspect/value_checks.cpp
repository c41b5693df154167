#include "inspect/value_checks.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/hex.h"
#include "base/text.h"
#include "inspect/low_high_check.h"
#include "inspect/mode_checks.h"
#include "inspect/wording.h"
#include "isa/operand_checks.h"
#include "source/data_items.h"
#include "source/literals.h"
#include "source/statements.h"

namespace kiln {
namespace {

// A negative number may be meant modulo the size: "ADC #0-200" subtracts 200.
bool fits(int64_t value, size_t bytes) {
  const int64_t most = (int64_t{1} << 8 * bytes) - 1;
  return value >= -most && value <= most;
}

bool hasLarge(const SymbolTable& symbols) {
  const auto isLarge = [](const Symbol& symbol) { return !fits(symbol.value, 2); };
  return std::any_of(symbols.symbols().begin(), symbols.symbols().end(), isLarge);
}

bool isAllHex(std::string_view digits) { return std::all_of(digits.begin(), digits.end(), isHexDigit); }

bool storesByte(Mode mode) { return mode == Mode::Immediate || absoluteForm(mode) != mode; }

// True for "<name" and ">name", the usual operands with a prefix.
bool isByteOfName(std::string_view text) {
  return text.size() > 1 && (text.front() == '<' || text.front() == '>') &&
         leadingSymbol(text.substr(1)).size() + 1 == text.size();
}

}  // namespace

ValueChecks::ValueChecks(const Program& program, Findings& findings)
    : findings_(findings),
      symbols_(program.iteration().symbols),
      evaluator_(symbols_, messages_),
      lost_(program.assembler),
      leaves_(program, lost_, findings),
      hasLargeSymbols_(hasLarge(symbols_)),
      wantsThreeBytes_(findings.wants(Check::ThreeBytes)) {}

void ValueChecks::visit(const Statement& statement) {
  if (statement.isMisread) return;
  switch (statement.parsed->kind) {
    case Kind::Instruction:
      return visitInstruction(statement);
    case Kind::Byte:
    case Kind::Word:
    case Kind::Long:
      return visitItems(statement);
    case Kind::Org:
    case Kind::Space:
    case Kind::ShadowStage:
    case Kind::CloakedSegment:
    case Kind::Assign:
      return visitArgument(statement);
    case Kind::CodeRegions:
    case Kind::ShadowRanges:
      return visitRanges(statement);
    default:
      return;
  }
}

void ValueChecks::visitInstruction(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  if (line.size == 1) {
    if (findings_.wants(Check::OtherOpcode)) checkOpcode(statement, findings_);
    return;
  }
  if (line.nameHash != 0 && isHarmless(line)) return;
  visitOperand(statement, instructionExpression(line, scratch_));
}

// True when the operand is a name that suits its mode whatever its value is.
bool ValueChecks::isHarmless(const AsLine& line) const {
  switch (rowOf(line.mode).operand) {
    case OperandKind::Immediate:
      return false;
    case OperandKind::Address:
      return !storesByte(line.mode) && line.mode != Mode::Indirect && !hasLargeSymbols_ && !wantsThreeBytes_;
    default:
      return true;
  }
}

void ValueChecks::visitOperand(const Statement& statement, std::string_view expression) {
  const AsLine& line = *statement.parsed;
  if (line.mode == Mode::Immediate && isByteOfName(expression)) return;
  const bool hasOtherMode = checkModeParentheses(statement, expression, findings_);
  if (hasOtherMode || opcodeFor(line.mnemonic, line.mode) < 0) return explainOperand(line, expression);
  const bool isSound = line.nameHash != 0 || parsePlainLiteral(expression) >= 0;
  if (!isSound && leaves_.visit(statement, expression)) return explainOperand(line, expression);
  const CheckedOperand operand{statement, expression, valueOf(expression, line.nameHash)};
  if (!isSound && checkIndexedParentheses(operand, findings_)) return;
  if (line.mode == Mode::Relative || !operand.value.has_value()) return;
  if (!isSound) checkLowHigh(statement, expression, storesByte(line.mode) ? 1 : 2, evaluator_, findings_);
  checkVector(operand, findings_);
  if (checkFirstNumber(operand, findings_)) return;
  if (storesByte(line.mode)) return checkByte(statement, expression, *operand.value);
  if (rowOf(line.mode).operand == OperandKind::Address) checkAddress(statement, expression, *operand.value);
  if (wantsThreeBytes_) checkSize(operand, findings_);
}

// A finding explains the messages about the operand: the value is not the one that was meant.
void ValueChecks::explainOperand(const AsLine& line, std::string_view expression) {
  Diagnostics diagnostics;
  std::vector<uint8_t> bytes;
  encodeOperand({.mnemonic = line.mnemonic,
                 .mode = line.mode,
                 .line = line.lineNumber,
                 .pc = line.address,
                 .text = line.operand(),
                 .expression = expression,
                 .value = evaluator_.evaluate(expression)},
                diagnostics, bytes);
  for (size_t i = 0; i < diagnostics.warnings.size(); ++i)
    findings_.explain(diagnostics.warnings[i]);
  for (size_t i = 0; i < messages_.size(); ++i)
    findings_.explain(messages_[i]);
  messages_.clear();
}

void ValueChecks::visitItems(const Statement& statement) {
  const size_t bytes = rowOf(statement.parsed->kind).itemSize;
  const int64_t most = (int64_t{1} << 8 * bytes) - 1;
  const bool digitsMayBeNames = symbols_.hasDigitNames();
  DataItems items(statement.parsed->operand());
  while (const std::optional<std::string_view> item = items.next()) {
    const int64_t literal = digitsMayBeNames ? -1 : parsePlainLiteral(*item);
    if (literal < 0 || literal > most) visitItem(statement, *item, bytes);
  }
}

void ValueChecks::visitItem(const Statement& statement, std::string_view item, size_t bytes) {
  if (isByteOfName(item)) return;
  const bool isName = leadingSymbol(item).size() == item.size();
  if (isName && bytes > 1 && !hasLargeSymbols_) return;
  if (!isName && leaves_.visit(statement, item)) return;
  const std::optional<int64_t> value = valueOf(item);
  if (!value.has_value()) return;
  if (!isName) checkLowHigh(statement, item, bytes, evaluator_, findings_);
  if (fits(*value, bytes)) return;
  std::string note;
  if (bytes == 1) note = fits(*value, 2) ? "write .word for two bytes" : "write .long for four bytes";
  if (bytes == 1 && *value > 0) note += concat({", or ", inQuotes(concat({"<", item})), " for the low byte"});
  if (bytes == 2) note = "write .long for four bytes";
  reportCut(statement, item, *value, bytes, std::move(note));
}

// An assigned name may stand for a large number; a stage beyond $FFFF has an error of the assembler. What follows a
// greedy equals sign is perhaps no number at all.
void ValueChecks::visitArgument(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  switch (line.kind) {
    case Kind::Assign:
      if (nameHash(line.assignName()) != 0) leaves_.visit(statement, line.assignValue());
      return;
    case Kind::Space:
    case Kind::ShadowStage:
      leaves_.visit(statement, line.operand());
      return;
    case Kind::CloakedSegment:
      return visitAddress(statement, line.firstItem());
    default:
      return visitAddress(statement, line.operand());
  }
}

void ValueChecks::visitRanges(const Statement& statement) {
  Fields entries(statement.parsed->operand(), ',');
  std::string_view entry;
  while (entries.next(entry)) {
    const size_t dash = entry.find('-');
    if (dash == std::string_view::npos) continue;
    visitAddress(statement, entry.substr(0, dash));
    visitAddress(statement, entry.substr(dash + 1));
  }
}

void ValueChecks::visitAddress(const Statement& statement, std::string_view expression) {
  expression = trim(expression);
  if (expression.empty() || leaves_.visit(statement, expression)) return;
  if (const std::optional<int64_t> value = valueOf(expression)) checkAddress(statement, expression, *value);
}

// The value, unless something in the expression is not defined.
std::optional<int64_t> ValueChecks::valueOf(std::string_view expression, uint32_t hash) {
  const int64_t value = evaluator_.evaluate(expression, hash);
  if (messages_.empty()) return value;
  messages_.clear();
  return std::nullopt;
}

// PSH and PLL have a message of the assembler.
void ValueChecks::checkByte(const Statement& statement, std::string_view expression, int64_t value) {
  const Mnemonic mnemonic = statement.parsed->mnemonic;
  if (fits(value, 1) || mnemonic == Mnemonic::PSH || mnemonic == Mnemonic::PLL) return;
  const std::string_view at = inSource(statement, expression);
  const bool isImmediate = statement.parsed->mode == Mode::Immediate;
  reportCut(statement, expression, value, 1,
            isImmediate ? concat({"write ", inQuotes(concat({"#<", at})), " for the low byte, or ",
                                  inQuotes(concat({"#>", at})), " for the next"})
                        : "this mode exists in the zero page only");
}

void ValueChecks::checkAddress(const Statement& statement, std::string_view expression, int64_t value) {
  if (!fits(value, 2)) reportCut(statement, expression, value, 2, "");
}

// "'start' is $2000 and does not fit one byte: only $00 is left".
void ValueChecks::reportCut(const Statement& statement, std::string_view expression, int64_t value, size_t bytes,
                            std::string note) {
  if (findings_.wants(Check::Vanished) && lost_.contains(leadingSymbol(expression))) return;
  const std::string_view at = inSource(statement, expression);
  const std::string number = valueText(value);
  const bool isNumber = at.starts_with('$') && isAllHex(at.substr(1));
  const uint64_t left = static_cast<uint64_t>(value) & ((uint64_t{1} << 8 * bytes) - 1);
  const std::string_view size = bytes == 1 ? "one byte" : bytes == 2 ? "two bytes" : "four bytes";
  Findings::Report report{.at = at};
  report.text = concat({inQuotes(at), isNumber ? "" : concat({" is ", number, " and"}), " does not fit ", size,
                        ": only ", dollarHex(static_cast<int64_t>(left), 2 * bytes), " is left"});
  if (!note.empty()) report.notes.emplace_back(at, std::move(note));
  findings_.add(Check::CutValue, std::move(report));
}

}  // namespace kiln
