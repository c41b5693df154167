// Where the program's bytes go: segments, long branches, code regions, shadow code, banks.
#pragma once

#include "inspect/bank_calls.h"
#include "inspect/bank_checks.h"
#include "inspect/branch_checks.h"
#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"
#include "inspect/region_checks.h"
#include "inspect/segment_checks.h"
#include "inspect/shadow_checks.h"
#include "inspect/statement_walk.h"
#include "passes/placement.h"

namespace kiln {

// Finds nothing unless the layout of the program is fixed.
class MemoryChecks {
 public:
  MemoryChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order.
  void visit(const Statement& statement) {
    if (isLaidOut_) follow(statement);
  }
  // After the last statement.
  void finish();

  // For the walk over the placements.
  void openSegment(const Opening& opening, const AsLine& line);
  void fillGap(uint32_t size) { segments_.back().size += size; }
  uint32_t placeBytes(const AsLine& line, uint32_t pc);
  void closeSegment() {}

 private:
  void follow(const Statement& statement);

  const Program& program_;
  Findings& findings_;
  const std::vector<AsLine>& statements_;
  const bool isLaidOut_;
  const bool hasRegions_;
  const OutputKind output_;
  MessageList ignored_;
  Evaluator evaluator_;
  PlacementWalker<MemoryChecks> walker_;
  BankCounters counters_;
  PlacedSegments segments_;
  CodeFlow flow_;
  SegmentChecks segmentChecks_;
  BranchChecks branchChecks_;
  RegionChecks regionChecks_;
  ShadowChecks shadowChecks_;
  BankChecks bankChecks_;
  BankCalls bankCalls_;
  size_t next_ = 0;  // the statement to be placed next
  std::string_view at_;
  std::string_view lastMove_;  // the last statement of the source that moved the address
};

}  // namespace kiln
