// Labels and names: defined twice, not at all, or too early.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class NameChecks {
 public:
  NameChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order.
  void visit(const Statement& statement);
  // After the last statement.
  void finish();

 private:
  const Program& program_;
  Findings& findings_;
};

}  // namespace kiln
