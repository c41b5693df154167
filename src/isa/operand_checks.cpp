#include "isa/operand_checks.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

// Code generators name what they mean; a name that comes out as address 0 is seldom meant.
void warnOfZeroAddress(const Operand& operand, MessageList& warnings) {
  const bool isAddress = operand.mode >= Mode::ZeroPage && operand.mode <= Mode::Indirect;
  if (operand.value != 0 || !isAddress) return;
  const auto isNamePart = [](char c) { return isIdentifierStart(c) || static_cast<unsigned char>(c) >= 0x80; };
  if (std::none_of(operand.expression.begin(), operand.expression.end(), isNamePart)) return;
  warnings.add({linePrefix(operand.line), mnemonicText(operand.mnemonic), " ", operand.expression,
                " resolves to $0000 — probable undefined symbol (compiler internal error?)"});
}

// The offset is judged by its low 16 bits, so that a branch reaches across the end of the address space; the message
// shows it whole.
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

void checkFrameSize(const Operand& operand, MessageList& errors) {
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

bool isFrameInstruction(Mnemonic mnemonic) { return mnemonic == Mnemonic::PSH || mnemonic == Mnemonic::PLL; }

}  // namespace

void encodeOperand(const Operand& operand, Diagnostics& diagnostics, std::vector<uint8_t>& bytes) {
  warnOfZeroAddress(operand, diagnostics.warnings);
  if (operand.mode == Mode::Relative) return encodeBranch(operand, diagnostics.errors, bytes);
  bytes.push_back(lowByte(operand.value));
  if (isStackMode(operand.mode)) return checkStackOffset(operand, diagnostics.errors);
  if (operand.mode == Mode::Immediate) {
    if (isFrameInstruction(operand.mnemonic)) checkFrameSize(operand, diagnostics.errors);
    return;
  }
  if (instructionSize(operand.mode) == 3) return bytes.push_back(highByte(operand.value));
  if (operand.mode == Mode::IndexedIndirectX || operand.mode == Mode::IndirectIndexedY) {
    checkZeroPagePointer(operand, diagnostics.warnings);
  }
}

}  // namespace kiln
