#include "inspect/statement_words.h"

#include <algorithm>

#include "base/text.h"

namespace kiln {

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

Mnemonic mnemonicAlone(std::string_view word) {
  const Mnemonic mnemonic = mnemonicOf(word);
  if (mnemonic == Mnemonic::None) return mnemonic;
  const bool standsAlone = opcodeFor(mnemonic, Mode::Implied) >= 0 || opcodeFor(mnemonic, Mode::Accumulator) >= 0;
  return standsAlone ? mnemonic : Mnemonic::None;
}

bool beginsStatement(std::string_view text, const MacroTable& macros) {
  const std::string_view word = takeWord(text);
  return mnemonicOf(word) != Mnemonic::None || directiveOf(word) != nullptr || macros.find(word) != nullptr;
}

bool isUsableName(std::string_view text) { return text.find_first_of(" \t\",#()+-*/=") == std::string_view::npos; }

}  // namespace kiln
