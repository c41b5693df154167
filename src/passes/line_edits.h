// Changes to the source lines, collected by a rewriter and applied together.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "source/source_lines.h"

namespace kiln {

// The line at `index` gives way to `lines`.
struct LineEdit {
  size_t index;
  std::vector<std::string_view> lines;
};

// The edits must stand in the order of their lines, at most one a line. One sweep, however many there are.
void applyEdits(SourceLines& source, const std::vector<LineEdit>& edits);

}  // namespace kiln
