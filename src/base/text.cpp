#include "base/text.h"

namespace kiln {

std::string toLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    c = toLower(c);
  return lower;
}

std::string_view trimWhitespace(std::string_view text) {
  while (!text.empty() && isWhitespace(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isWhitespace(text.back()))
    text.remove_suffix(1);
  return text;
}

std::string_view withoutEnclosing(std::string_view text, char open, char close) {
  if (text.empty() || text.front() != open || text.back() != close) return text;
  return text.size() == 1 ? "" : text.substr(1, text.size() - 2);
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (toLower(a[i]) != toLower(b[i])) return false;
  }
  return true;
}

}  // namespace kiln
