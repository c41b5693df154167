#include "layout/layout_cloaked.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "base/format.h"
#include "base/text.h"
#include "layout/layout_values.h"

namespace kiln {
namespace {

constexpr std::string_view placeholder = "<n>";

// Only for hostile or mistyped files, which could fill the memory: the most ids, fewer if they are longer than usual.
constexpr int64_t maximumIds = 1'000'000;
constexpr int64_t usualIdSize = 32;

bool isTooMuch(int64_t count, std::string_view id) {
  const int64_t size = std::max(usualIdSize, static_cast<int64_t>(id.size()));
  return count > maximumIds * usualIdSize / size;
}

void setBanks(AsLayout& layout, uint32_t low, uint32_t high) {
  layout.cloakedBankLo = static_cast<int32_t>(low);
  layout.cloakedBankHi = static_cast<int32_t>(high);
}

void readBanks(AsLayout& layout, std::string_view value) {
  if (value == "none") return setBanks(layout, UINT32_MAX, UINT32_MAX);
  const size_t dash = value.find('-');
  const std::optional<uint32_t> low = parseLayoutNumber(value.substr(0, dash));
  const std::optional<uint32_t> high = dash == std::string_view::npos ? low : parseLayoutNumber(value.substr(dash + 1));
  if (low.has_value() && high.has_value()) setBanks(layout, *low, *high);
}

// The id with the number in place of each placeholder.
std::string numberedId(std::string_view id, std::string_view number) {
  std::string text;
  size_t at = 0;
  for (size_t found; (found = id.find(placeholder, at)) != std::string_view::npos; at = found + placeholder.size()) {
    text += id.substr(at, found - at);
    text += number;
  }
  text += id.substr(at);
  return text;
}

void closeSingle(AsLayout& layout, std::string_view path, bool hasPlaceholder) {
  const std::string& id = layout.cloakedIdTemplate;
  if (hasPlaceholder) {
    layout.error = concat({path, ": [cloaked] id '", id,
                           "' contains '<n>' but bank is not a range — placeholder is only valid with `bank = N-M`"});
  } else {
    layout.cloakedIds.push_back(id);
  }
}

void closeRange(AsLayout& layout, std::string_view path, bool hasPlaceholder) {
  const std::string& id = layout.cloakedIdTemplate;
  const int64_t low = layout.cloakedBankLo;
  const int64_t high = layout.cloakedBankHi;
  const int64_t count = static_cast<int64_t>(layout.cloakedIds.size()) + high - low + 1;
  const std::string range = concat({path, ": [cloaked] bank = ", decimal(low), "-", decimal(high), " (range) "});
  if (!hasPlaceholder) {
    layout.error = concat({range, "needs '<n>' placeholder in id (e.g. `id = ext<n>`); got '", id, "'"});
  } else if (isTooMuch(count, id)) {
    layout.error = concat({range, "is too long"});
  } else {
    // A large range gets exactly the room that it needs. Small ranges let the vector grow as usual.
    const size_t needed = static_cast<size_t>(count);
    if (needed > 2 * layout.cloakedIds.capacity()) layout.cloakedIds.reserve(needed);
    for (int64_t bank = low; bank <= high; ++bank)
      layout.cloakedIds.push_back(numberedId(id, decimal(bank)));
  }
}

}  // namespace

void openCloakedEntry(AsLayout& layout) {
  layout.cloakedPending = true;
  layout.cloakedBankLo = -1;
  layout.cloakedBankHi = -1;
  layout.cloakedIdTemplate = "lib";
}

void readCloakedKey(AsLayout& layout, std::string_view key, std::string_view value) {
  if (key == "bank") readBanks(layout, value);
  if (key == "id") layout.cloakedIdTemplate = value;
}

void closeCloakedEntry(AsLayout& layout, std::string_view path) {
  if (!layout.cloakedPending) return;
  layout.cloakedPending = false;
  const bool hasPlaceholder = layout.cloakedIdTemplate.find(placeholder) != std::string::npos;
  if (layout.cloakedBankLo < layout.cloakedBankHi) {
    closeRange(layout, path, hasPlaceholder);
  } else {
    closeSingle(layout, path, hasPlaceholder);  // one bank, none, or a reversed range
  }
}

void checkCloakedIds(AsLayout& layout, std::string_view path) {
  const std::vector<std::string>& ids = layout.cloakedIds;
  // Indices sorted by id, equal ids in the order of the list: all of them but the first are repetitions.
  std::vector<uint32_t> numbers(ids.size());
  std::iota(numbers.begin(), numbers.end(), 0);
  std::sort(numbers.begin(), numbers.end(), [&](uint32_t a, uint32_t b) {
    const int order = ids[a].compare(ids[b]);
    return order != 0 ? order < 0 : a < b;
  });
  uint32_t first = UINT32_MAX;
  for (size_t i = 1; i < numbers.size(); ++i) {
    if (ids[numbers[i]] == ids[numbers[i - 1]]) first = std::min(first, numbers[i]);
  }
  if (first == UINT32_MAX) return;
  layout.error = concat({path, ": duplicate [cloaked] id '", ids[first],
                         "' (check for overlapping `bank = N-M` ranges or repeated `id = ` lines)"});
}

}  // namespace kiln
