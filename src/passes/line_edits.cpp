#include "passes/line_edits.h"

namespace kiln {

void applyEdits(std::vector<std::string_view>& source, const std::vector<LineEdit>& edits) {
  size_t size = source.size();
  for (const LineEdit& edit : edits)
    size += edit.lines.size() - 1;
  std::vector<std::string_view> edited;
  edited.reserve(size);
  size_t copied = 0;
  for (const LineEdit& edit : edits) {
    edited.insert(edited.end(), source.begin() + static_cast<std::ptrdiff_t>(copied),
                  source.begin() + static_cast<std::ptrdiff_t>(edit.index));
    edited.insert(edited.end(), edit.lines.begin(), edit.lines.end());
    copied = edit.index + 1;
  }
  edited.insert(edited.end(), source.begin() + static_cast<std::ptrdiff_t>(copied), source.end());
  source = std::move(edited);
}

}  // namespace kiln
