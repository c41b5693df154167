// The words that a statement may begin with.
#pragma once

#include <array>
#include <string_view>

#include "isa/opcodes.h"
#include "source/kinds.h"
#include "source/macros.h"

namespace kiln {

struct DirectiveWord {
  std::string_view word;
  std::string_view example;  // of its argument; empty when it needs none
};

// clang-format off
inline constexpr std::array directiveWords = {
    DirectiveWord{".org",                 "$2000"},
    DirectiveWord{".byte",                "1,2"},
    DirectiveWord{".word",                "1,2"},
    DirectiveWord{".long",                "1,2"},
    DirectiveWord{".string",              "\"text\""},
    DirectiveWord{".space",               "16"},
    DirectiveWord{".code_regions",        "$2000-$3FFF,$6000-$7FFF"},
    DirectiveWord{".bank",                "name"},
    DirectiveWord{".spill_point",         ""},
    DirectiveWord{".shadow_ranges",       "$C000-$CFFF"},
    DirectiveWord{".shadow_stage",        "$4000"},
    DirectiveWord{".cloaked_segment_end", ""},
    DirectiveWord{".cloaked_segment",     "$5000"},
    DirectiveWord{".include",             "\"name\""},
    DirectiveWord{".macro",               "name"},
};
// clang-format on

constexpr bool hasEveryDirective() {
  for (const KindRow& row : kindRows) {
    bool isThere = row.spelling.empty();
    for (const DirectiveWord& directive : directiveWords)
      isThere = isThere || directive.word == row.spelling.substr(0, row.spelling.find(' '));
    if (!isThere) return false;
  }
  return true;
}
static_assert(hasEveryDirective());

// The directive in any letter case; null when the word is none.
const DirectiveWord* directiveOf(std::string_view word);

// The directive that the word begins with and goes on after, as ".bytes" and ".byte$10" do; null when there is none.
const DirectiveWord* directiveInFrontOf(std::string_view word);

// True for an instruction that needs no operand.
bool isCompleteAlone(std::string_view word);

// True when the first word of the text is an instruction, a directive or a macro.
bool beginsStatement(std::string_view text, const MacroTable& macros);

// True when an operand could use this as a name: it has no blank, quote, operator or other sign that ends a name.
bool isUsableName(std::string_view text);

// True for a label as people write them: letters, digits and "_", perhaps after "." or ">".
bool isPlainLabel(std::string_view word);

size_t countWords(std::string_view text);

// True for several words without anything that code has: a comment.
bool isProse(std::string_view text);

}  // namespace kiln
