// Text as bytes: ASCII classes, trimming, comparing without letter case, splitting. The locale does not matter.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kiln {

// The blanks, space and tab, are all that trim() removes. It keeps a carriage return.
constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isIdentifierStart(char c) { return isLetter(c) || c == '_'; }
constexpr bool isIdentifierCharacter(char c) { return isIdentifierStart(c) || isDigit(c); }
constexpr bool isWhitespace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
constexpr char toUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }
std::string toLower(std::string_view text);

// True when the text begins like a label or an assigned name: with a letter, "_" or ".", or with ">" and more after it.
constexpr bool beginsLikeLabel(std::string_view text) {
  if (text.empty()) return false;
  const char c = text.front();
  return isIdentifierStart(c) || c == '.' || (c == '>' && text.size() > 1);
}

constexpr std::string_view trimLeft(std::string_view text) {
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  return text;
}
constexpr std::string_view trimRight(std::string_view text) {
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}
constexpr std::string_view trim(std::string_view text) { return trimRight(trimLeft(text)); }

// Like trim, but removes all ASCII white space, including line ends.
std::string_view trimWhitespace(std::string_view text);

// The text without its first and last character when they are `open` and `close`. One character can be both: the result
// is empty then.
std::string_view withoutEnclosing(std::string_view text, char open, char close);

// True when the text is a view into the whole one, its end included.
inline bool isPartOf(std::string_view text, std::string_view whole) {
  const std::less_equal<> upTo;
  return text.data() != nullptr && upTo(whole.data(), text.data()) &&
         upTo(text.data() + text.size(), whole.data() + whole.size());
}

bool equalIgnoringCase(std::string_view a, std::string_view b);

// `lowerPrefix` must be lower case.
constexpr bool startsWithIgnoringCase(std::string_view text, std::string_view lowerPrefix) {
  if (text.size() < lowerPrefix.size()) return false;
  for (size_t i = 0; i < lowerPrefix.size(); ++i) {
    if (toLower(text[i]) != lowerPrefix[i]) return false;
  }
  return true;
}

// `lowerSuffix` must be lower case.
constexpr bool endsWithIgnoringCase(std::string_view text, std::string_view lowerSuffix) {
  if (text.size() < lowerSuffix.size()) return false;
  const std::string_view end = text.substr(text.size() - lowerSuffix.size());
  for (size_t i = 0; i < lowerSuffix.size(); ++i) {
    if (toLower(end[i]) != lowerSuffix[i]) return false;
  }
  return true;
}

// Iterates over the fields of a text: N separators make N + 1 fields, some perhaps empty.
class Fields {
 public:
  Fields(std::string_view text, char separator) : rest_(text), separator_(separator) {}

  // Moves to the next field; false when there are no more.
  bool next(std::string_view& field) {
    if (done_) return false;
    const size_t at = rest_.find(separator_);
    done_ = at == std::string_view::npos;
    field = rest_.substr(0, at);
    if (!done_) rest_.remove_prefix(at + 1);
    return true;
  }

 private:
  std::string_view rest_;
  char separator_;
  bool done_ = false;
};

// Takes the first word, up to the next blank, off the front of `text`. Empty when there is none.
constexpr std::string_view takeWord(std::string_view& text) {
  text = trimLeft(text);
  size_t end = 0;
  while (end < text.size() && !isBlank(text[end]))
    ++end;
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(end);
  return word;
}

}  // namespace kiln
