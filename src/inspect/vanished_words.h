// Statements that vanish, and what may have been meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "inspect/line_reporter.h"
#include "inspect/near_names.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "inspect/used_names.h"

namespace kiln {

class VanishedWords {
 public:
  VanishedWords(const Program& program, UsedNames& used, LineReporter& reporter);

  // Reports a statement of Kind::Empty with some text after its label, if it has one.
  void report(const Statement& statement);
  // Reports a .cloaked_segment without an address. True, as it is misread.
  bool reportNoAddress(const Statement& statement);

 private:
  struct Suggestion {
    std::string hint;                // "did you mean ...?"
    std::vector<std::string> words;  // these words; none when no word is near
  };

  bool isOfMacro(const Statement& statement) const;
  bool reportDirective(const Statement& statement);
  bool reportMissingSpace(const Statement& statement);
  bool reportColon(const Statement& statement);
  bool reportEquals(const Statement& statement);
  bool reportMissingColon(const Statement& statement);
  bool reportForeignWord(const Statement& statement);
  void reportUnknown(const Statement& statement);

  bool isKnownName(const Statement& statement, std::string_view text) const;
  bool isLabelWithoutColon(const Statement& statement);
  Suggestion nearWords(std::string_view word);
  void offerMacros();

  const Program& program_;
  UsedNames& used_;
  LineReporter& reporter_;
  NearNames near_;
  size_t macrosLeft_ = 4'000'000;  // to be offered, so that many mistakes among many macros do not take for ever
};

}  // namespace kiln
