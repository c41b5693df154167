// The text of operands: addressing mode, value expression, references to local labels.
#pragma once

#include <string>
#include <string_view>

#include "base/text_store.h"
#include "isa/opcodes.h"

namespace kiln {

// An operand without the spaces next to its commas. The view is into `operand` or into `scratch`.
std::string_view withoutCommaSpaces(std::string_view operand, std::string& scratch);

// The mode that the operand of an instruction other than a branch spells. The operand is not empty, is trimmed and has
// no spaces next to its commas. A zero-page mode is also the result for its absolute form, which has the same spelling.
Mode classifyOperand(std::string_view operand);
// The same for an operand without a comma.
Mode classifyWithoutComma(std::string_view operand);

// The operand without the mode's own characters, trimmed. The operand has no spaces next to its commas.
std::string_view valueExpression(std::string_view operand, Mode mode);

// The operand with the scope inserted before each reference to a local label. Returns `operand` itself when there is
// nothing to insert.
std::string_view qualifyReferences(std::string_view operand, std::string_view scope, TextStore& texts);

}  // namespace kiln
