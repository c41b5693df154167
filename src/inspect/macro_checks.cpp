#include "inspect/macro_checks.h"

#include "inspect/macro_bodies.h"
#include "inspect/macro_calls.h"

namespace kiln {

MacroChecks::MacroChecks(const Program& program, Findings& findings)
    : hasMacros_(program.notes.macros.count() != 0),
      uses_(program.notes),
      ends_(program, findings),
      labels_(program, findings),
      lines_(program, findings) {
  for (const MacroUse& use : uses_.all()) {
    ends_.check(use);
    checkMacroBody(program, use, findings);
    labels_.collect(use);
  }
  labels_.explainErrors();
  MacroCalls(program, uses_, findings).check();
}

}  // namespace kiln
