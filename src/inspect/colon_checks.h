// Colons and equals signs that make labels and assignments of other statements.
#pragma once

#include <optional>
#include <string_view>
#include <unordered_set>

#include "inspect/line_reporter.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "inspect/used_names.h"

namespace kiln {

class ColonChecks {
 public:
  ColonChecks(const Program& program, UsedNames& used, LineReporter& reporter);

  // For a statement with a label. True when it is misread.
  bool visitLabel(const Statement& statement);
  // For an assignment. True when it is misread.
  bool visitAssignment(const Statement& statement);
  // For an instruction whose operand begins with "=". True, as it is misread.
  bool reportMnemonicName(const Statement& statement);

 private:
  bool visitPlainLabel(const Statement& statement);
  bool visitOperand(const Statement& statement);
  bool isLabelOfCall(const Statement& statement);
  void reportSeparator(const Statement& statement);
  void reportGreedyColon(const Statement& statement);

  const Program& program_;
  UsedNames& used_;
  LineReporter& reporter_;
  std::optional<std::unordered_set<const char*>> calls_;  // where the lines of macro calls begin; made on first need
};

}  // namespace kiln
