#include "layout/layout_values.h"

#include <algorithm>

#include "base/text.h"

namespace kiln {
namespace {

// Takes a "$" and the hexadecimal digits behind it off the front; false when one or the other is missing.
bool takeHexadecimal(std::string_view& text, uint32_t& value) {
  if (!text.starts_with('$')) return false;
  size_t end = 1;
  for (value = 0; end < text.size() && isHexDigit(text[end]); ++end) {
    value = value * 16 + static_cast<uint32_t>(hexDigitValue(text[end]));
  }
  text.remove_prefix(end);
  return end > 1;
}

// A range at the very front of the text. It never looks past the next "$" unless it succeeds, which keeps the search
// for a range linear.
bool takeRange(std::string_view text, LayoutRange& range) {
  if (!takeHexadecimal(text, range.low)) return false;
  text = trimLeft(text);
  if (!text.starts_with('-')) return false;
  text = trimLeft(text.substr(1));
  return takeHexadecimal(text, range.high);
}

}  // namespace

std::optional<uint32_t> parseLayoutNumber(std::string_view text) {
  text = trim(text);
  uint32_t value = 0;
  if (takeHexadecimal(text, value)) return text.empty() ? std::optional(value) : std::nullopt;
  if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
  for (char digit : text)
    value = value * 10 + static_cast<uint32_t>(digit - '0');
  return value;
}

std::optional<LayoutRange> findLayoutRange(std::string_view text) {
  LayoutRange range;
  for (size_t at = text.find('$'); at != std::string_view::npos; at = text.find('$', at + 1)) {
    if (takeRange(text.substr(at), range)) return range;
  }
  return std::nullopt;
}

}  // namespace kiln
