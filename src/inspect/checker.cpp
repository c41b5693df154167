#include "inspect/checker.h"

#include "inspect/file_checks.h"
#include "inspect/flow_checks.h"
#include "inspect/include_checks.h"
#include "inspect/line_checks.h"
#include "inspect/macro_checks.h"
#include "inspect/memory_checks.h"
#include "inspect/messages.h"
#include "inspect/name_checks.h"
#include "inspect/statement_walk.h"
#include "inspect/value_checks.h"

namespace kiln {

std::vector<Finding> checkProgram(const Program& program, const CheckLevels& levels) {
  Findings findings(*program.map, levels);
  checkFiles(program, findings);
  checkIncludes(program, findings);
  MacroChecks macros(program, findings);
  LineChecks lines(program, findings);
  NameChecks names(program, findings);
  ValueChecks values(program, findings);
  FlowChecks flow(program, findings);
  MemoryChecks memory(program, findings);
  StatementWalk walk(program.assembler);
  Statement statement;
  while (walk.next(statement)) {
    macros.visit(statement);
    statement.isMisread = lines.visit(statement);
    names.visit(statement);
    if (!statement.isMisread) values.visit(statement);
    flow.visit(statement);
    memory.visit(statement);
  }
  names.finish();
  memory.finish();
  // Last, as the others explain some of the messages.
  reportMessages(program, findings);
  return findings.take();
}

}  // namespace kiln
