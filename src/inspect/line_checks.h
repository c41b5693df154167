// What can be seen in a line alone: words that vanish, colons, quotes, texts.
#pragma once

#include "inspect/colon_checks.h"
#include "inspect/findings.h"
#include "inspect/line_reporter.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "inspect/text_checks.h"
#include "inspect/used_names.h"
#include "inspect/vanished_words.h"

namespace kiln {

class LineChecks {
 public:
  LineChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order, before the checks of names and values. True when the statement is
  // not what its writer meant, and has been reported: others have nothing to say of it.
  bool visit(const Statement& statement);

 private:
  bool visitOdd(const Statement& statement);
  bool visitMeaning(const Statement& statement);
  bool skipLine(const Statement& statement);

  UsedNames used_;
  LineReporter reporter_;
  VanishedWords vanished_;
  ColonChecks colons_;
  TextChecks texts_;
  uint32_t skippedLine_ = 0;  // the rest of this line is misread; lines count from 1
};

}  // namespace kiln
