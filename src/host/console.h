// Where messages go.
#pragma once

#include <string_view>

namespace kiln {

class Console {
 public:
  virtual ~Console() = default;

  // The text's bytes to standard error, as they are and at once.
  virtual void printError(std::string_view text) = 0;
  // The text's bytes to standard output; only the version line goes there.
  virtual void printOutput(std::string_view text) = 0;
};

}  // namespace kiln
