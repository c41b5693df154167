#include "isa/operand_checks.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

// A name with the address 0 is probably undefined.
void warnOfZeroAddress(const Operand& operand, MessageList& warnings) {
  if (operand.value != 0) return;
  const auto isNamePart = [](char c) { return isIdentifierStart(c) || static_cast<unsigned char>(c) >= 0x80; };
  if (std::none_of(operand.expression.begin(), operand.expression.end(), isNamePart)) return;
  warnings.add({linePrefix(operand.line), mnemonicText(operand.mnemonic), " ", operand.expression,
                " resolves to $0000 — probable undefined symbol (compiler internal error?)"});
}

// Only the low 16 bits of the distance are checked, as a branch can cross the end of the address space. The message
// shows all of it.
void encodeBranch(const Operand& operand, MessageList& errors, std::vector<uint8_t>& bytes) {
  const uint32_t next = operand.pc + 2;
  const int64_t distance = wrappingSubtract(operand.value, int64_t{next});
  const int32_t reach = low16Signed(distance);
  if (reach > 127 || reach < -128) {
    errors.add({linePrefix(operand.line), "branch out of range (", decimal(distance), ") — ",
                mnemonicText(operand.mnemonic), " ", operand.text, " at ", dollarHex(operand.pc), " → ",
                dollarHex(operand.value)});
  }
  bytes.push_back(lowByte(distance));
}

void checkStackOffset(const Operand& operand, MessageList& errors) {
  if (operand.value >= -128 && operand.value <= 127) return;
  errors.add({linePrefix(operand.line), mnemonicText(operand.mnemonic), " ", operand.text, " — signed-8-bit ",
              operand.mode == Mode::StackRelative ? "offset" : "stack adjustment", " out of range (",
              decimal(operand.value), "); pell SP-relative addressing only reaches ±128 bytes"});
}

// Only the frame instructions check their immediate value.
void checkFrameSize(const Operand& operand, MessageList& errors) {
  if (operand.mnemonic != Mnemonic::PSH && operand.mnemonic != Mnemonic::PLL) return;
  if (operand.value >= 0 && operand.value <= 255) return;
  errors.add({linePrefix(operand.line), mnemonicText(operand.mnemonic), " #", decimal(operand.value),
              " — immediate out of range (0..255); larger frames must chain PSH/PLL pairs (see STACK-ABI.md §6.1)"});
}

void checkZeroPagePointer(const Operand& operand, MessageList& warnings) {
  if (operand.value >= 0 && operand.value <= 255) return;
  warnings.add({linePrefix(operand.line), mnemonicText(operand.mnemonic), " ", operand.text,
                " — indirect-indexed addressing requires a zero-page operand (got ", dollarHex(operand.value),
                "). The symbol resolves to main memory (data-section spill?); the runtime read will go through ZP ",
                dollarHex(lowByte(operand.value), 2),
                " which holds unrelated bytes. Likely a codegen-side ZP-pressure issue; if this code path executes "
                "the program will misbehave."});
}

}  // namespace

void encodeOperand(const Operand& operand, Diagnostics& diagnostics, std::vector<uint8_t>& bytes) {
  const ModeRow& row = rowOf(operand.mode);
  if (row.operand == OperandKind::BranchTarget) return encodeBranch(operand, diagnostics.errors, bytes);
  bytes.push_back(lowByte(operand.value));
  if (row.size == 3) bytes.push_back(highByte(operand.value));
  switch (row.operand) {
    case OperandKind::Immediate:
      return checkFrameSize(operand, diagnostics.errors);
    case OperandKind::Address:
      return warnOfZeroAddress(operand, diagnostics.warnings);
    case OperandKind::ZeroPagePointer:
      return checkZeroPagePointer(operand, diagnostics.warnings);
    case OperandKind::StackOffset:
      return checkStackOffset(operand, diagnostics.errors);
    case OperandKind::None:
    case OperandKind::BranchTarget:
      return;
  }
}

}  // namespace kiln
