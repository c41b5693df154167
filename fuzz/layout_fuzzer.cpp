// The layout parser. The head of the packed input is the layout file "d/main.lnk", the files are those it can include.
#include <cstddef>
#include <cstdint>
#include <new>
#include <set>
#include <string>
#include <string_view>

#include "check.h"
#include "layout/layout_parser.h"
#include "memory_budget.h"
#include "packed_input.h"

namespace kiln::fuzz {
namespace {

constexpr size_t budget = 512 << 10;

AsLayout parse(std::string_view input) {
  test::MemoryHost host;
  const std::string_view text = unpack(input, host);
  AsLayout layout;
  parseLayout(layout, host, "d/main.lnk", text);
  return layout;
}

void checkError(const std::string& error) {
  require(error.find('\n') == std::string::npos, "an error of more than one line");
  require(error.find(": ") != std::string::npos || error.starts_with("The file “"), "an error without a path");
}

void checkLayout(const AsLayout& layout) {
  require(!layout.cloakedPending, "a cloaked entry is still open");
  require(layout.mainRegion.size() % 2 == 0, "half a region");
  require(layout.hasBanking || !(layout.codeWindowSplit || layout.hasRegc), "bank windows without banking");
  const std::set<std::string> ids(layout.cloakedIds.begin(), layout.cloakedIds.end());
  require(ids.size() == layout.cloakedIds.size(), "a duplicate cloaked id");
}

void checkParsing(std::string_view input) {
  const AsLayout layout = parse(input);
  if (layout.error.empty()) {
    checkLayout(layout);
  } else {
    checkError(layout.error);
  }
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
