#include "inspect/statement_words.h"

#include <algorithm>

#include "base/text.h"

namespace kiln {
namespace {

constexpr std::array<bool, 256> makeNameEnds() {
  std::array<bool, 256> ends{};
  for (char c : std::string_view(" \t\",#()+-*/="))
    ends[static_cast<unsigned char>(c)] = true;
  return ends;
}

constexpr std::array<bool, 256> endsNames = makeNameEnds();

std::string_view withoutSign(std::string_view label) {
  const bool hasSign = label.starts_with('.') || label.starts_with('>');
  return label.substr(hasSign ? 1 : 0);
}

}  // namespace

const DirectiveWord* directiveOf(std::string_view word) {
  if (!word.starts_with('.')) return nullptr;
  const auto isSame = [word](const DirectiveWord& directive) { return equalIgnoringCase(directive.word, word); };
  const auto found = std::find_if(directiveWords.begin(), directiveWords.end(), isSame);
  return found == directiveWords.end() ? nullptr : found;
}

const DirectiveWord* directiveInFrontOf(std::string_view word) {
  if (!word.starts_with('.')) return nullptr;
  for (const DirectiveWord& directive : directiveWords) {
    if (word.size() > directive.word.size() && startsWithIgnoringCase(word, directive.word)) return &directive;
  }
  return nullptr;
}

bool isCompleteAlone(std::string_view word) {
  const Mnemonic mnemonic = mnemonicOf(word);
  if (mnemonic == Mnemonic::None) return false;
  return opcodeFor(mnemonic, Mode::Implied) >= 0 || opcodeFor(mnemonic, Mode::Accumulator) >= 0;
}

bool beginsStatement(std::string_view text, const MacroTable& macros) {
  const std::string_view word = takeWord(text);
  return mnemonicOf(word) != Mnemonic::None || directiveOf(word) != nullptr || macros.find(word) != nullptr;
}

bool isUsableName(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return endsNames[static_cast<unsigned char>(c)]; });
}

bool isPlainLabel(std::string_view word) {
  const std::string_view name = withoutSign(word);
  return !name.empty() && isIdentifierStart(name.front()) &&
         std::all_of(name.begin(), name.end(), isIdentifierCharacter);
}

bool isProse(std::string_view text) {
  size_t words = 0;
  for (std::string_view word = takeWord(text); !word.empty(); word = takeWord(text)) {
    while (word.size() > 1 && (word.back() == ',' || word.back() == '.' || word.back() == ';' || word.back() == ')'))
      word.remove_suffix(1);
    if (!std::all_of(word.begin(), word.end(), [](char c) { return isLetter(c) || c == '-' || c == '\''; }))
      return false;
    ++words;
  }
  return words > 3;
}

size_t countWords(std::string_view text) {
  size_t count = 0;
  while (!takeWord(text).empty())
    ++count;
  return count;
}

}  // namespace kiln
