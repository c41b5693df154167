// The assembler's warnings about operands with the address 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/diagnostics.h"
#include "inspect/statement_walk.h"

namespace kiln {

// They have the line and the operand, and come in the order of the statements.
class ZeroAddresses {
 public:
  explicit ZeroAddresses(const MessageList& warnings);

  // True when the next warning may be about a statement of this line.
  bool mayWarnOf(uint32_t lineNumber) const { return next_ != warnings_.size() && warnings_[next_].line <= lineNumber; }
  // The warning about the statement; empty when there is none. Statements have to be asked for in order. `expression`
  // is that of the operand.
  std::string_view take(const AsLine& line, std::string_view expression);

 private:
  struct Warning {
    uint32_t line;
    std::string_view text;
  };

  std::vector<Warning> warnings_;
  size_t next_ = 0;
};

}  // namespace kiln
