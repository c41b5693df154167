// Where a program names its things: labels, assigned names, macros, their parameters, included files, banks.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

// Of a macro; those after them are not looked at.
inline constexpr size_t mostParameters = 64;

enum class Thing : uint8_t {
  Symbol,     // a label, an assigned or a built-in name, or a bank, which is "__bank_" and its name; id = Symbol::index
  Macro,      // id = its place among all definitions
  Parameter,  // id = its macro's * mostParameters + its own place
  File,       // an include; id = the included file's place in the notes
};

struct Occurrence {
  std::string_view text;  // a view into the text of a file
  Thing thing;
  uint32_t id;
  bool isDefinition;
};

class NameIndex {
 public:
  // The program was read; it need not assemble. `statements` are all of its statements.
  NameIndex(const Program& program, const std::vector<Statement>& statements);

  // In the order of their places in memory, so that those of a file are together, in their order.
  const std::vector<Occurrence>& all() const { return all_; }
  // What is named at this place, its end included; null when nothing is.
  const Occurrence* at(const char* place) const;
  // All places that name the same thing, in the order of all().
  std::vector<const Occurrence*> sameAs(const Occurrence& occurrence) const;
  // The first definition of a thing; null for built-in names and the like.
  const Occurrence* definitionOf(Thing thing, uint32_t id) const;

 private:
  std::vector<Occurrence> all_;
};

}  // namespace kiln
