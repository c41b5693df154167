#include "layout/layout_values.h"

#include <algorithm>

#include "base/hex.h"
#include "base/text.h"

namespace kiln {
namespace {

// Takes "$" and one or more hexadecimal digits off the front of the text. A failure may take the "$".
std::optional<uint32_t> takeDollarHex(std::string_view& text) {
  if (!text.starts_with('$')) return std::nullopt;
  text.remove_prefix(1);
  const size_t size = text.size();
  const uint64_t value = takeHex(text);
  return text.size() < size ? std::optional(static_cast<uint32_t>(value)) : std::nullopt;
}

// The range that the text begins with. Reads no further than the next "$" unless it succeeds, which keeps the search
// for a range linear.
std::optional<LayoutRange> leadingRange(std::string_view text) {
  const std::optional<uint32_t> low = takeDollarHex(text);
  text = trimLeft(text);
  if (!low.has_value() || !text.starts_with('-')) return std::nullopt;
  text = trimLeft(text.substr(1));
  const std::optional<uint32_t> high = takeDollarHex(text);
  return high.has_value() ? std::optional(LayoutRange{*low, *high}) : std::nullopt;
}

}  // namespace

std::optional<uint32_t> parseLayoutNumber(std::string_view text) {
  text = trim(text);
  if (text.starts_with('$')) {
    const std::optional<uint32_t> value = takeDollarHex(text);
    return text.empty() ? value : std::nullopt;
  }
  if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
  uint32_t value = 0;
  for (char digit : text)
    value = value * 10 + static_cast<uint32_t>(digit - '0');
  return value;
}

std::optional<LayoutRange> findLayoutRange(std::string_view text) {
  for (size_t at = text.find('$'); at != std::string_view::npos; at = text.find('$', at + 1)) {
    if (const std::optional<LayoutRange> range = leadingRange(text.substr(at))) return range;
  }
  return std::nullopt;
}

}  // namespace kiln
