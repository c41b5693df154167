// Calls that are not expanded, because of what else is in their lines or because they are in a macro.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class MacroLines {
 public:
  MacroLines(const Program& program, Findings& findings) : program_(program), findings_(findings) {}

  // To be called once for each statement, in order.
  void visit(const Statement& statement) {
    if (statement.parsed->kind == Kind::Empty) visitVanished(statement);
  }

 private:
  void visitVanished(const Statement& statement);
  void reportInMacro(const Statement& statement, const SourceNotes::Made& made, const Macro* macro);
  void reportShared(const Statement& statement);

  const Program& program_;
  Findings& findings_;
};

}  // namespace kiln
