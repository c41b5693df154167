// The words of a program that a rename changes: "main.loop" names two things, "main" and its "loop".
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "inspect/macro_uses.h"
#include "lsp/analysis.h"

namespace kiln {

struct NamePart {
  std::string_view text;  // a view into the text of a file, without "." and ">" in front and without "__bank_"
  Thing thing;
  uint32_t id;
};

class NameParts {
 public:
  // The program has to stay.
  explicit NameParts(const Analysis& analysis);

  // The part at this place, its end included; null when there is none.
  const NamePart* at(const char* place) const;
  // Those that begin there: a label in a macro's body is a local one of every scope that calls it.
  std::span<const NamePart> beginningAt(const char* place) const;
  // All that name the same thing.
  std::vector<const NamePart*> of(Thing thing, uint32_t id) const;

 private:
  void add(std::string_view text, Thing thing, uint32_t id) { parts_.push_back({text, thing, id}); }
  void addSymbol(std::string_view written, uint32_t id);
  void addUncalledBodies();
  void addWords(std::string_view code, const MacroUse& macro);

  const Analysis& analysis_;
  std::vector<NamePart> parts_;    // by place
  std::vector<uint32_t> byThing_;  // their indices
};

}  // namespace kiln
