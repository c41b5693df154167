// Long branches: what was in their lines beside them, and what skips them.
#pragma once

#include <string_view>

#include "inspect/code_flow.h"
#include "inspect/findings.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class BranchChecks {
 public:
  BranchChecks(const Program& program, Evaluator& evaluator, Findings& findings)
      : program_(program), evaluator_(evaluator), findings_(findings) {}

  // To be called once for each statement, in order; `flow` is that before it.
  void visit(const Statement& statement, const CodeFlow& flow) {
    const AsLine& line = *statement.parsed;
    if (line.kind != Kind::Instruction || !statement.isFirst) return;
    if (line.longBranchMarked || line.mnemonic == Mnemonic::JMP) check(statement, flow);
  }

 private:
  void check(const Statement& statement, const CodeFlow& flow);
  void checkLostParts(const Statement& statement, std::string_view source);
  void explainLostLabel(std::string_view label, std::string_view scope);
  void checkSkip(const Statement& statement, const CodeFlow& flow, std::string_view source);

  const Program& program_;
  Evaluator& evaluator_;
  Findings& findings_;
};

}  // namespace kiln
