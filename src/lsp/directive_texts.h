// The manual's line about each directive.
#pragma once

#include <span>
#include <string_view>

namespace kiln {

struct DirectiveText {
  std::string_view form;  // with its argument: ".org address"
  std::string_view does;

  std::string_view word() const { return form.substr(0, form.find(' ')); }
};

std::span<const DirectiveText> directiveTexts();

// The directive that the word, in any letter case, is or begins with, as ".spill_pointer" does. Null when there is
// none.
const DirectiveText* textOfDirective(std::string_view word);

}  // namespace kiln
