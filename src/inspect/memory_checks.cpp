#include "inspect/memory_checks.h"

#include "inspect/writer_messages.h"

namespace kiln {
namespace {

// A file that cannot be included may have any origin, and errors in the layout end a run before it is fixed.
bool isLaidOut(const Program& program) {
  return program.error.empty() && program.notes.errorLines.empty() && !program.assembler.segments.empty();
}

}  // namespace

MemoryChecks::MemoryChecks(const Program& program, Findings& findings)
    : program_(program),
      findings_(findings),
      statements_(program.iteration().statements.lines),
      isLaidOut_(isLaidOut(program)),
      hasRegions_(program.iteration().codeRegions.count() != 0),
      output_(outputKindOf(program)),
      evaluator_(program.iteration().symbols, ignored_),
      walker_(program.iteration(), evaluator_, low16(program.assembler.settings.banking.bankWindowLow), *this),
      counters_(program.assembler.settings.banking),
      segmentChecks_(program, output_, segments_, findings),
      branchChecks_(program, evaluator_, findings),
      regionChecks_(evaluator_, findings),
      shadowChecks_(program, output_, segments_, findings),
      bankChecks_(program, output_, segments_, findings),
      bankCalls_(program, segments_, findings) {}

void MemoryChecks::follow(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  at_ = lastMove_;
  for (; next_ != statement.index; ++next_) {
    regionChecks_.noteInsertion(statements_[next_]);
    walker_.step(statements_[next_]);
  }
  at_ = statement.text;
  if (rowOf(line.kind).moves) lastMove_ = at_;
  branchChecks_.visit(statement, flow_);
  if (hasRegions_) regionChecks_.visit(statement, flow_);
  segmentChecks_.visit(statement);
  shadowChecks_.visit(statement);
  if (output_ == OutputKind::BankedXex) bankCalls_.visit(statement);
  walker_.step(line);
  flow_.pass(line);
  ++next_;
}

void MemoryChecks::finish() {
  reportWriterMessages(program_, segments_, shadowChecks_.stage(), findings_);
  if (!isLaidOut_) return;
  segmentChecks_.finish();
  shadowChecks_.finish();
  bankChecks_.finish();
  if (output_ == OutputKind::BankedXex) bankCalls_.finish();
}

void MemoryChecks::openSegment(const Opening& opening, const AsLine&) {
  PlacedSegment& segment = segments_.emplace_back();
  segment.at = at_;
  segment.start = opening.address;
  segment.bank = opening.bank;
  segment.isCloaked = opening.isCloaked;
  segment.written = writtenBank(output_, opening, counters_);
}

uint32_t MemoryChecks::placeBytes(const AsLine& line, uint32_t pc) {
  segments_.back().size += line.size;
  segmentChecks_.place(line, pc, at_);
  return line.size;
}

}  // namespace kiln
