// Operators of other assemblers, which are part of a name here.
#pragma once

#include <string_view>

namespace kiln {

struct OtherOperator {
  std::string_view spelling;
  std::string_view instead;  // what to write here
};

// The first such operator in a text; null when there is none.
const OtherOperator* otherOperatorIn(std::string_view text);

}  // namespace kiln
