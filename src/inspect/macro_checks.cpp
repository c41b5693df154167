#include "inspect/macro_checks.h"

namespace kiln {

void checkMacros(const Program&, Findings&) {}

}  // namespace kiln
