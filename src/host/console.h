// Where messages go.
#pragma once

#include <string_view>

namespace kiln {

class Console {
 public:
  virtual ~Console() = default;

  // Writes the text to standard error, unchanged and unbuffered.
  virtual void printError(std::string_view text) = 0;
  // Writes the text to standard output, which is for the version line only.
  virtual void printOutput(std::string_view text) = 0;
};

}  // namespace kiln
