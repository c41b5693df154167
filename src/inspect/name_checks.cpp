#include "inspect/name_checks.h"

namespace kiln {

NameChecks::NameChecks(const Program& program, Findings& findings) : program_(program), findings_(findings) {}

void NameChecks::visit(const Statement&) {}

void NameChecks::finish() {}
}  // namespace kiln
