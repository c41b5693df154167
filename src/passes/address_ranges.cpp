#include "passes/address_ranges.h"

#include "base/arithmetic.h"
#include "base/text.h"

namespace kiln {

std::vector<uint32_t> parseAddressRanges(std::string_view list, uint32_t lineNumber, Evaluator& evaluator,
                                         Diagnostics& diagnostics) {
  std::vector<uint32_t> ranges;
  Fields entries(list, ',');
  std::string_view entry;
  while (entries.next(entry)) {
    entry = trim(entry);
    if (entry.empty()) continue;
    const size_t dash = entry.find('-');
    if (dash == std::string_view::npos) {
      diagnostics.errorAt(lineNumber, {"malformed .code_regions entry '", entry, "' (expected $START-$END)"});
      return ranges;
    }
    const int64_t start = evaluator.evaluate(entry.substr(0, dash));
    const int64_t end = evaluator.evaluate(entry.substr(dash + 1));
    if (start < 0 || end < start) {
      diagnostics.errorAt(lineNumber, {"invalid .code_regions range '", entry, "'"});
      return {};
    }
    ranges.push_back(low16(start));
    ranges.push_back(low16(end));
  }
  return ranges;
}

}  // namespace kiln
