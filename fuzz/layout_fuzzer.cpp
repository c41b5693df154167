// The layout parser. The head of the packed input is the layout file "d/main.lnk", its texts are the files that it may
// include.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "layout/layout_parser.h"
#include "memory_budget.h"
#include "packed_input.h"

namespace kiln::fuzz {
namespace {

constexpr size_t budget = 512 << 10;
constexpr const char* mainPath = "d/main.lnk";

class PackedFiles final : public FileReader {
 public:
  explicit PackedFiles(const PackedInput& packed) {
    for (const auto& [name, text] : packed.texts)
      files_.emplace(name, text);
  }
  std::optional<std::string> readFile(const std::string& path) const override {
    const auto file = files_.find(path);
    return file == files_.end() ? std::nullopt : std::optional(file->second);
  }
  bool exists(const std::string& path) const override { return files_.count(path) != 0; }
  bool isDirectory(const std::string&) const override { return false; }

 private:
  std::map<std::string, std::string> files_;
};

// What a merge may fill in, as numbers.
std::vector<uint32_t> mergedFields(const AsLayout& layout) {
  std::vector<uint32_t> fields = {
      layout.hasBanking,   layout.codeWindowSplit, layout.hasRegc,    layout.codeWindowLo,
      layout.codeWindowHi, layout.codeHalfLo,      layout.codeHalfHi, layout.dataWindowLo,
      layout.dataWindowHi, layout.codeReg,         layout.dataReg,    layout.regcWindowLo,
      layout.regcWindowHi, layout.regcPageSize,    layout.regcRegLo,  layout.regcRegHi,
  };
  fields.insert(fields.end(), layout.mainRegion.begin(), layout.mainRegion.end());
  return fields;
}

AsLayout parse(const PackedFiles& files, std::string_view text) {
  AsLayout layout;
  parseLayout(layout, files, mainPath, text);
  return layout;
}

void checkError(const std::string& error) {
  require(error.find('\n') == std::string::npos, "an error of more than one line");
  require(error.find(": ") != std::string::npos || error.starts_with("The file \xE2\x80\x9C"),
          "an error without a path");
}

void checkLayout(const AsLayout& layout) {
  require(!layout.cloakedPending, "a cloaked entry left open");
  require(layout.mainRegion.size() % 2 == 0, "half a region");
  require(!layout.codeWindowSplit || layout.hasBanking, "split without banking");
  require(!layout.hasRegc || layout.hasBanking, "regc without banking");
  std::vector<std::string> ids = layout.cloakedIds;
  std::sort(ids.begin(), ids.end());
  require(std::adjacent_find(ids.begin(), ids.end()) == ids.end(), "a cloaked id twice");
}

void checkMerge(const AsLayout& layout) {
  AsLayout merged = layout;
  mergeLayout(merged, layout);
  require(mergedFields(merged) == mergedFields(layout), "a merge with itself changes a layout");
  merged = AsLayout();
  mergeLayout(merged, layout);
  require(mergedFields(merged) == mergedFields(layout), "a merge into nothing is no copy");
  require(merged.error.empty() && merged.cloakedIds.empty(), "a merge takes more than it should");
}

void checkParsing(std::string_view input) {
  const PackedInput packed = unpack(input);
  const PackedFiles files(packed);
  const AsLayout layout = parse(files, packed.head);
  const AsLayout again = parse(files, packed.head);
  require(layout.error == again.error && layout.cloakedIds == again.cloakedIds &&
              mergedFields(layout) == mergedFields(again),
          "the same file gives another layout");
  if (layout.error.empty()) {
    checkLayout(layout);
  } else {
    checkError(layout.error);
  }
  checkMerge(layout);
}

}  // namespace
}  // namespace kiln::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const kiln::fuzz::MemoryBudget limit(kiln::fuzz::budget);
    kiln::fuzz::checkParsing({reinterpret_cast<const char*>(data), size});
  } catch (const std::bad_alloc&) {
  }
  return 0;
}
