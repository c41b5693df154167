#include "inspect/macro_checks.h"

#include <vector>

#include "inspect/macro_bodies.h"
#include "inspect/macro_calls.h"

namespace kiln {

MacroChecks::MacroChecks(const Program& program, Findings& findings)
    : hasMacros_(program.notes.macros.count() != 0),
      uses_(program.notes),
      ends_(program, findings),
      labels_(program, findings),
      lines_(program, findings) {
  std::vector<bool> isBroken;
  for (const MacroUse& use : uses_.all()) {
    const bool endsEarly = ends_.check(use);
    const bool endsLate = checkMacroBody(program, use, findings);
    isBroken.push_back(endsEarly || endsLate);
    labels_.collect(use);
  }
  labels_.explainErrors();
  MacroCalls(program, uses_, findings).check(isBroken);
}

}  // namespace kiln
