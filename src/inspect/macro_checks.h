// All checks of macros.
#pragma once

#include "inspect/findings.h"
#include "inspect/macro_ends.h"
#include "inspect/macro_labels.h"
#include "inspect/macro_lines.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class MacroChecks {
 public:
  MacroChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order, before other checks: what is wrong with a macro's line explains
  // what they would find.
  void visit(const Statement& statement) {
    if (!hasMacros_) return;
    ends_.visit(statement);
    labels_.visit(statement);
    lines_.visit(statement);
  }

 private:
  const bool hasMacros_;
  const MacroUses uses_;
  MacroEnds ends_;
  MacroLabels labels_;
  MacroLines lines_;
};

}  // namespace kiln
