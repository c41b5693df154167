// Operands and items: numbers, modes, values that do not fit.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class ValueChecks {
 public:
  ValueChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order.
  void visit(const Statement& statement);

 private:
  const Program& program_;
  Findings& findings_;
};

}  // namespace kiln
