#include "inspect/code_flow.h"

#include "base/arithmetic.h"
#include "source/data_items.h"

namespace kiln {

bool endsExecution(const AsLine& line) {
  if (line.kind != Kind::Instruction) return false;
  return line.mnemonic == Mnemonic::JMP || line.mnemonic == Mnemonic::RTS || line.mnemonic == Mnemonic::RTI ||
         line.mnemonic == Mnemonic::BRA;
}

uint32_t bytesSkippedAfter(const CodeFlow& flow, Evaluator& evaluator) {
  if (flow.last == nullptr || flow.last->kind != Kind::Byte || flow.last->size != 1) return 0;
  if (flow.instruction == nullptr || endsExecution(*flow.instruction)) return 0;
  const int opcode = lowByte(evaluator.evaluate(DataItems(flow.last->operand()).next().value_or("")));
  if (opcode == opcodeFor(Mnemonic::BIT, Mode::Absolute)) return 2;
  return opcode == opcodeFor(Mnemonic::BIT, Mode::ZeroPage) ? 1 : 0;
}

}  // namespace kiln
