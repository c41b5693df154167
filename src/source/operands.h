// Operand text: which addressing mode it spells, which part of it is the value, and its references to local labels.
#pragma once

#include <string>
#include <string_view>

#include "base/text_store.h"
#include "isa/opcodes.h"

namespace kiln {

// An operand without the spaces next to its commas. The view is into `operand` or into `scratch`.
std::string_view withoutCommaSpaces(std::string_view operand, std::string& scratch);

// The mode that the operand of an instruction other than a branch spells; it is trimmed and has no spaces next to its
// commas. Every operand spells one. A zero-page mode may be meant for its absolute form, as the value tells.
Mode classifyOperand(std::string_view operand);
// The same for an operand that has no comma at all.
Mode classifyWithoutComma(std::string_view operand);

// The value expression of an operand in this mode, which has no spaces next to its commas: the text without the mode's
// own characters, trimmed.
std::string_view valueExpression(std::string_view operand, Mode mode);

// The operand with the scope set before the dot of each reference to a local label. It is `operand` itself when there
// is no such reference or no scope.
std::string_view qualifyReferences(std::string_view operand, std::string_view scope, TextStore& texts);

}  // namespace kiln
