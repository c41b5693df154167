// What the JMP and the ".org" at the end of a code region do to data and labels.
#pragma once

#include <string_view>

#include "inspect/code_flow.h"
#include "inspect/findings.h"
#include "inspect/statement_walk.h"

namespace kiln {

class RegionChecks {
 public:
  RegionChecks(Evaluator& evaluator, Findings& findings) : evaluator_(evaluator), findings_(findings) {}

  // To be called for each statement that a spill has inserted, before the visit of the one that it is for.
  void noteInsertion(const AsLine& inserted);
  // To be called once for each other statement, in order; `flow` is that before it.
  void visit(const Statement& statement, const CodeFlow& flow);

 private:
  // A label without bytes in its line.
  struct Label {
    std::string_view written;  // null data: none
    uint32_t address = 0;
  };

  void checkMoved(const Statement& statement, const CodeFlow& flow);
  void moveBlock(const Statement& statement);
  void reportLabel(const Label& label, std::string_view target, const Statement& statement);
  void reportCut(const Statement& statement);
  void reportCutSkip(const Statement& statement);
  void reportBridge(const Statement& statement, const CodeFlow& flow);

  Evaluator& evaluator_;
  Findings& findings_;
  std::string_view target_;  // where the next statement moves to; null data when it does not move
  bool hasBridge_ = false;   // there is a JMP to it
  Label label_;              // the last one after the last statement that took bytes
  Label beforeBlock_;        // that of a block that has moved, until the block has a label or bytes
  std::string_view blockTarget_;
};

}  // namespace kiln
