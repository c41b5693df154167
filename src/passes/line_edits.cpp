#include "passes/line_edits.h"

namespace kiln {

void applyEdits(SourceLines& source, const std::vector<LineEdit>& edits, SourceNotes* notes) {
  SourceLines edited;
  LineReader reader(source.pieces());
  std::string_view line;
  auto edit = edits.begin();
  bool isKept = false;  // the line before is in the list as it was
  for (size_t index = 0; reader.next(line); ++index) {
    if (edit == edits.end() || edit->index != index) {
      appendLine(edited, line, isKept && reader.follows());
      isKept = true;
      continue;
    }
    for (std::string_view replacement : edit->lines) {
      edited.add(replacement);
      // Lines may be added after one that is kept, which then does not come from itself.
      if (notes != nullptr && replacement.data() != line.data())
        notes->made.push_back({.text = replacement, .origin = line, .pattern = {}});
    }
    isKept = false;
    ++edit;
  }
  source = std::move(edited);
}

}  // namespace kiln
