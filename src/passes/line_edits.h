// Changes to the source lines, collected by a rewriter and applied together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "source/source_lines.h"
#include "source/source_notes.h"

namespace kiln {

// The line at `index` is replaced by `lines`.
struct LineEdit {
  size_t index;
  std::vector<std::string_view> lines;
};

// The changes that a rewriter asks for.
struct Rewrite {
  struct Error {
    uint32_t line;  // from 1, in the expanded source
    std::string text;
  };

  std::vector<LineEdit> edits;  // in the order of their lines, at most one a line
  size_t count = 0;             // of the calls or branches to rewrite; 0 = no edits
  std::optional<Error> error;   // why it cannot be done
};

// Makes the edits in one sweep. `notes` may be null.
void applyEdits(SourceLines& source, const std::vector<LineEdit>& edits, SourceNotes* notes);

}  // namespace kiln
