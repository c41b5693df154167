// Data that execution passes may be code: opcodes that have no mnemonic, and BIT to skip an instruction. A JMP between
// such bytes is right. So data counts as data only when it follows a jump or a branch, begins a segment, or cannot be
// an opcode.
#include "inspect/region_checks.h"

#include "base/format.h"
#include "base/text.h"
#include "source/statements.h"

namespace kiln {
namespace {

bool isData(const AsLine& line) { return line.kind != Kind::Instruction; }

// True when no execution comes to data at this place.
bool isAfterJump(const CodeFlow& flow) {
  return flow.instruction == nullptr || endsExecution(*flow.instruction) || isBranch(flow.instruction->mnemonic);
}

// True for a text that a routine reads after its call.
bool isTextOfCall(const AsLine& line, const CodeFlow& flow) {
  return line.kind == Kind::String && flow.last == flow.instruction && flow.last != nullptr &&
         flow.last->mnemonic == Mnemonic::JSR;
}

// True when a JMP after the last statement is not executed.
bool isNeverReached(const CodeFlow& flow) {
  if (flow.last == nullptr) return false;
  return isData(*flow.last) ? flow.instruction != nullptr && endsExecution(*flow.instruction)
                            : endsExecution(*flow.last);
}

}  // namespace

void RegionChecks::noteInsertion(const AsLine& inserted) {
  target_ = inserted.operand();
  hasBridge_ = inserted.kind == Kind::Instruction || hasBridge_;
}

void RegionChecks::visit(const Statement& statement, const CodeFlow& flow) {
  const AsLine& line = *statement.parsed;
  if (rowOf(line.kind).moves) {
    moveBlock(statement);
  } else if (emitsBytes(line.kind) && line.size != 0) {
    if (target_.data() != nullptr) checkMoved(statement, flow);
    if (beforeBlock_.written.data() != nullptr && !line.hasLabel) reportLabel(beforeBlock_, blockTarget_, statement);
    label_ = beforeBlock_ = {};
    target_ = {};
    hasBridge_ = false;
  } else if (line.hasLabel) {
    label_ = {statement.label, line.address};
    beforeBlock_ = {};
  }
}

void RegionChecks::checkMoved(const Statement& statement, const CodeFlow& flow) {
  const AsLine& line = *statement.parsed;
  const bool isLabelled = line.hasLabel || label_.written.data() != nullptr;
  const bool isTable = isData(line) && (isAfterJump(flow) || line.kind != Kind::Byte);
  if (isTable && !line.hasLabel && isLabelled) {
    reportLabel(label_, target_, statement);
  } else if (!isLabelled && ((isTable && flow.last != nullptr && isData(*flow.last)) || isTextOfCall(line, flow))) {
    reportCut(statement);
  } else if (hasBridge_ && bytesSkippedAfter(flow, evaluator_) != 0) {
    reportCutSkip(statement);
  } else if (hasBridge_ && label_.written.data() == nullptr && isNeverReached(flow)) {
    reportBridge(statement, flow);
  }
}

// A block that moves at its ".spill_point" has no JMP to it.
void RegionChecks::moveBlock(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  const bool isSpillPoint = line.kind == Kind::Org && startsWithIgnoringCase(statement.word, ".spill_point");
  blockTarget_ = line.operand();
  const Label own = {statement.label, line.address};
  beforeBlock_ = isSpillPoint ? (line.hasLabel ? own : label_) : Label();
  label_ = {};
}

// The label of a long branch stays where the JMP is: the branch leads there as it is executed.
void RegionChecks::reportLabel(const Label& label, std::string_view target, const Statement& statement) {
  if (label.written.starts_with(longBranchLabel)) return;
  findings_.add(Check::LabelLeft, {.at = label.written,
                                   .text = concat({"'", label.written, "' stays at ", dollarHex(label.address),
                                                   ", and what it is for moves to ", target}),
                                   .notes = {{statement.text, "put the label in this line"}}});
}

void RegionChecks::reportCut(const Statement& statement) {
  findings_.add(
      Check::CutTable,
      {.at = statement.text,
       .text = concat({"this data moves to ", target_,
                       hasBridge_ ? ", with a JMP between it and the line above" : ", away from the line above",
                       ": write '.spill_point' above the whole data"})});
}

void RegionChecks::reportCutSkip(const Statement& statement) {
  findings_.add(Check::CutTable,
                {.at = statement.text,
                 .text = concat({"a JMP to ", target_,
                                 " is put before this line, and the .byte before it skips a part of that instead: "
                                 "branch over the line"})});
}

void RegionChecks::reportBridge(const Statement& statement, const CodeFlow& flow) {
  const bool needsNoLine = !isData(*flow.last) && flow.last->mnemonic != Mnemonic::BRA;
  findings_.add(Check::RegionBridge,
                {.at = statement.text,
                 .text = concat({"a JMP to ", target_, " is put before this line, and nothing reaches it: ",
                                 needsNoLine ? "put the line directly after the one that ends the routine"
                                             : "write '.spill_point' above the line"})});
}

}  // namespace kiln
