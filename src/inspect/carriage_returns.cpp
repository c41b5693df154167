#include "inspect/carriage_returns.h"

#include <algorithm>

#include "base/hex.h"
#include "base/text.h"
#include "source/line_text.h"

namespace kiln {
namespace {

// True for a text that ends with a number which ends at any other character.
bool endsWithNumber(std::string_view code) {
  const size_t sign = code.find_last_of("$%");
  if (sign == std::string_view::npos || sign + 1 == code.size()) return false;
  const std::string_view digits = code.substr(sign + 1);
  const bool isBinary = code[sign] == '%';
  return std::all_of(digits.begin(), digits.end(),
                     [isBinary](char c) { return isBinary ? c == '0' || c == '1' : hexDigitValue(c) >= 0; });
}

}  // namespace

bool isSpoiledByReturn(std::string_view line) {
  if (line.find('\r') == std::string_view::npos) return false;
  std::string_view code = trim(withoutComment(line));
  const size_t first = code.find('\r');
  if (first == std::string_view::npos) return false;
  if (first + 1 != code.size()) return true;
  code.remove_suffix(1);
  const bool isInclude = startsWithIgnoringCase(code, ".include ");
  return !code.empty() && !code.ends_with(':') && !isInclude && !endsWithNumber(code);
}

}  // namespace kiln
