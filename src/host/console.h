// Where messages go.
#pragma once

#include <initializer_list>
#include <string_view>

#include "base/format.h"

namespace kiln {

class Console {
 public:
  virtual ~Console() = default;

  // Writes the text to standard error, unchanged and unbuffered.
  virtual void printError(std::string_view text) = 0;
  // Writes the text to standard output, which is for the version line only.
  virtual void printOutput(std::string_view text) = 0;
};

// Prints a message, given in pieces, to standard error. Always false, the result of a writer that fails.
inline bool fail(Console& console, std::initializer_list<std::string_view> pieces) {
  console.printError(concat(pieces));
  return false;
}

}  // namespace kiln
