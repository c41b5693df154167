// Labels in macros, which each call defines once more.
#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "inspect/findings.h"
#include "inspect/macro_uses.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class MacroLabels {
 public:
  MacroLabels(const Program& program, Findings& findings) : program_(program), findings_(findings) {}

  // Looks for the labels of a macro that is called more than once.
  void collect(const MacroUse& use);
  // Explains the errors about full labels. To be called once, after the last collect().
  void explainErrors();
  // Looks for local labels. To be called once for each statement, in order, after the last collect().
  void visit(const Statement& statement) {
    if (statement.parsed->labelLocal && hasLocals_) visitLocal(statement);
  }

 private:
  struct Label {
    std::string_view text;  // in the body
    const MacroUse* use;
    bool isParameter;  // or has one in it, so that the calls may define different labels
    bool isReported = false;
  };

  Label* labelOf(const SourceNotes::Made* made);
  void visitLocal(const Statement& statement);
  void report(Label& label, std::string_view again, bool isError);

  const Program& program_;
  Findings& findings_;
  std::unordered_map<const char*, Label> labels_;  // by the begin of the line of the body
  bool hasLocals_ = false;
  // Where each symbol is first defined, if by a local label: the line of the body, or a statement outside of macros.
  std::vector<const char*> firsts_;
};

}  // namespace kiln
