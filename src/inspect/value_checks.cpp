#include "inspect/value_checks.h"

namespace kiln {

ValueChecks::ValueChecks(const Program& program, Findings& findings) : program_(program), findings_(findings) {}

void ValueChecks::visit(const Statement&) {}

}  // namespace kiln
