// Quotes and texts.
#pragma once

#include <string_view>

#include "inspect/line_reporter.h"
#include "inspect/statement_walk.h"

namespace kiln {

class TextChecks {
 public:
  explicit TextChecks(LineReporter& reporter) : reporter_(reporter) {}

  // For the first statement of a line with a quote. True when the rest of the line is misread.
  bool visitQuotedLine(const Statement& statement);
  // For a list. True when it is misread.
  bool visitList(const Statement& statement);
  // For a text that a .string stores. True when it goes on after the statement.
  bool visitString(const Statement& statement);

  // True for a statement that begins as a .string does.
  static bool isString(std::string_view text);
  // For a .string that became a label or an assignment.
  void reportCutText(const Statement& statement, std::string_view text, std::string_view sign);

 private:
  LineReporter& reporter_;
};

}  // namespace kiln
