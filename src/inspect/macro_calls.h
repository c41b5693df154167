// Calls of macros: their arguments, what comes of them, and what else is in their lines.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/findings.h"
#include "inspect/macro_uses.h"
#include "inspect/program.h"

namespace kiln {

class MacroCalls {
 public:
  MacroCalls(const Program& program, const MacroUses& uses, Findings& findings);

  // All calls, in their order. `isBroken` says of which macros the bodies are wrong, so that calls make no sense.
  void check(const std::vector<bool>& isBroken);

 private:
  // A word of the body that means something as it is, and a parameter in it.
  struct Inner {
    std::string_view word;
    std::string_view parameter;
    bool isNumber;
  };

  // What the lines of a macro make of its parameters.
  struct Traits {
    bool isKnown = false;
    std::vector<size_t> used;   // the indices of parameters that need an argument, rising
    std::vector<Inner> inners;  // not reported so far
    size_t comparisonsLeft = 1000;
  };

  struct Call {
    const SourceNotes::Call& noted;
    const MacroUse& use;
    std::span<const SourceNotes::Made> made;  // the lines that come of it
  };

  Traits& traitsOf(const MacroUse& use, size_t index);
  std::vector<bool> findUsed(const MacroUse& use, Traits& traits) const;
  void findInners(const MacroUse& use, const std::vector<bool>& isWhole, Traits& traits) const;

  void checkCall(const Call& call, size_t index);
  void checkLabel(const Call& call);
  bool checkStatements(const Call& call);
  void checkIgnored(const Call& call);
  void checkMissing(const Call& call, const Traits& traits);
  void checkEmpty(const Call& call);
  void checkNested(const Call& call);
  void checkInners(const Call& call, Traits& traits);
  void explainIn(const Call& call, std::string_view parameter);
  std::string replaced(const Call& call, std::string_view text, size_t firstParameter) const;
  std::string countsOf(const Call& call) const;

  const Program& program_;
  const MacroUses& uses_;
  Findings& findings_;
  std::vector<Traits> traits_;               // of each macro
  std::vector<std::string_view> arguments_;  // of the current call
};

}  // namespace kiln
