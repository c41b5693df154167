#include "inspect/name_text.h"

#include "source/expression.h"

namespace kiln {
namespace {

bool joins(char a, char b) { return isNameCharacter(a) && isNameCharacter(b); }

}  // namespace

bool isPlainName(std::string_view text) { return !text.empty() && leadingSymbol(text) == text; }

std::string_view takeNameLike(std::string_view& text) {
  size_t begin = 0;
  while (begin < text.size() && !isNameCharacter(text[begin]))
    ++begin;
  size_t end = begin;
  while (end < text.size() && isNameCharacter(text[end]))
    ++end;
  const std::string_view word = text.substr(begin, end - begin);
  text.remove_prefix(end);
  return word;
}

std::string_view findName(std::string_view text, std::string_view name) {
  for (size_t at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1)) {
    const size_t end = at + name.size();
    const bool begins = at == 0 || !isNameCharacter(text[at - 1]);
    if (begins && (end == text.size() || !isNameCharacter(text[end]))) return text.substr(at, name.size());
  }
  return {};
}

std::string_view findWhole(std::string_view text, std::string_view word) {
  if (word.empty()) return {};
  for (size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
    const size_t end = at + word.size();
    const bool joinsBefore = at > 0 && joins(text[at - 1], word.front());
    if (!joinsBefore && (end == text.size() || !joins(word.back(), text[end]))) return text.substr(at, word.size());
  }
  return {};
}

}  // namespace kiln
