// Names as text: what they consist of, and where they are in a longer text.
#pragma once

#include <string_view>

#include "base/text.h"

namespace kiln {

// Names consist of these.
constexpr bool isNameCharacter(char c) { return isIdentifierCharacter(c) || c == '.'; }

// True for letters, digits, "_" and "." that do not begin with a digit.
bool isPlainName(std::string_view text);

// Takes the next run of such characters off the front of `text`; empty when there is none left. It may be a number.
std::string_view takeNameLike(std::string_view& text);

// True when a "$" stands before the word, which is a part of the text: then it is a hexadecimal number.
inline bool isHexadecimal(std::string_view text, std::string_view word) {
  const auto at = static_cast<size_t>(word.data() - text.data());
  return at != 0 && text[at - 1] == '$';
}

// The first place of the name in the text that has none of these characters before and after it; null data when there
// is none.
std::string_view findName(std::string_view text, std::string_view name);

// The same for a word that may begin or end with other characters, as a macro's parameter does: they may touch
// anything.
std::string_view findWhole(std::string_view text, std::string_view word);

}  // namespace kiln
