// What execution passes before it comes to a statement.
#pragma once

#include <cstdint>

#include "source/expression.h"
#include "source/line.h"

namespace kiln {

// The last statements that took bytes. Both are null at the beginning of a segment.
struct CodeFlow {
  const AsLine* last = nullptr;         // an instruction or data
  const AsLine* instruction = nullptr;  // the same, or the last one before that data

  // To be called for each statement after it has been looked at.
  void pass(const AsLine& line) {
    if (rowOf(line.kind).moves) *this = {};
    if (!emitsBytes(line.kind) || line.size == 0) return;
    // Execution also passes the JMP of a long branch, by the inverted branch before it.
    if (last != nullptr && last->longBranchMarked && last == instruction && line.mnemonic == Mnemonic::JMP) return;
    last = &line;
    if (line.kind == Kind::Instruction) instruction = &line;
  }
};

// True for JMP, RTS, RTI and BRA.
bool endsExecution(const AsLine& line);

// The bytes of the next instruction that are skipped, because a single byte before it is the opcode of BIT: one or two;
// 0 = none.
uint32_t bytesSkippedAfter(const CodeFlow& flow, Evaluator& evaluator);

}  // namespace kiln
