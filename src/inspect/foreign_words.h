// Words of other assemblers and processors, and what to write here in their place.
#pragma once

#include <string_view>

namespace kiln {

struct ForeignWords {
  std::string_view words;        // in lower case, without a leading "." or the like, with blanks between them
  std::string_view replacement;  // can take the place of each; empty: nothing can
  bool followsName;              // may come second: "size EQU 5", "table DB 1,2"
  std::string_view advice;
};

// The row of a word in any letter case, with or without a leading ".", "!" or "#"; null when there is none.
const ForeignWords* foreignWordOf(std::string_view word);

}  // namespace kiln
