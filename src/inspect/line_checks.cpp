#include "inspect/line_checks.h"

namespace kiln {

LineChecks::LineChecks(const Program& program, Findings& findings) : program_(program), findings_(findings) {}

void LineChecks::visit(const Statement&) {}

}  // namespace kiln
