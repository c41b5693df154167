#include "lsp/directive_texts.h"

#include "base/text.h"

namespace kiln {
namespace {

// Of two that begin alike the longer one comes first.
// clang-format off
constexpr DirectiveText texts[] = {
    {".org address",                    "continues at another address"},
    {".byte list",                      "a byte for each item"},
    {".word list",                      "two bytes for each item"},
    {".long list",                      "four bytes for each item"},
    {".string text",                    "the text and a zero byte"},
    {".space count",                    "this number of zero bytes"},
    {".include name",                   "inserts another file"},
    {".macro name parameters",          "defines a macro"},
    {".code_regions list",              "where code may be placed"},
    {".spill_point",                    "begins a block that moves as a whole"},
    {".shadow_ranges list",             "which addresses are under the ROM"},
    {".shadow_stage address",           "where bytes for the shadow ranges are loaded"},
    {".bank name",                      "continues in a bank"},
    {".cloaked_segment_end",            "ends a cloaked segment"},
    {".cloaked_segment address,number", "begins a cloaked segment"},
};
// clang-format on

}  // namespace

std::span<const DirectiveText> directiveTexts() { return texts; }

const DirectiveText* textOfDirective(std::string_view word) {
  for (const DirectiveText& text : texts) {
    if (startsWithIgnoringCase(word, text.word())) return &text;
  }
  return nullptr;
}

}  // namespace kiln
