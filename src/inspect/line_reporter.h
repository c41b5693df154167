// How the checks of lines report a statement.
#pragma once

#include <string>
#include <string_view>

#include "inspect/findings.h"
#include "inspect/statement_walk.h"

namespace kiln {

class LineReporter {
 public:
  explicit LineReporter(Findings& findings) : findings_(findings) {}

  // Adds a finding about a statement that is not what its writer meant, and explains what the assembler says of it. A
  // line of a macro's body is reported at the first call alone, unless the mistake is in the arguments.
  void add(Check check, const Statement& statement, Findings::Report report);

  // Explains the message that nothing defines this name.
  void explainUndefined(std::string_view name);

 private:
  void explainMessages(const Statement& statement);
  void explainValue(std::string_view expression);

  Findings& findings_;
  std::string scratch_;
};

// "this line" when the line has nothing besides the statement, else "this statement".
std::string_view extentOf(const Statement& statement);

// The empty text after this one, for an edit that inserts something.
inline std::string_view endOf(std::string_view text) { return text.substr(text.size()); }

// From the begin of one text to the end of another in the same line.
inline std::string_view spanOf(std::string_view first, std::string_view last) {
  return {first.data(), static_cast<size_t>(last.data() + last.size() - first.data())};
}

// A finding about the colon at this place of the text, which was meant to separate statements. `text` says what became
// of it.
Findings::Report separatorReport(std::string_view code, size_t colon, std::string text);

}  // namespace kiln
