// Which names stand in any operand of the program, for checks that seldom ask. What they mean there does not matter.
#pragma once

#include <string_view>
#include <unordered_set>

#include "base/name_hash.h"
#include "passes/assembler.h"

namespace kiln {

class UsedNames {
 public:
  explicit UsedNames(const Assembler& assembler) : assembler_(assembler) {}

  // True when some operand, list or assignment has the name as it is written; local ones with their dot. The first call
  // reads the whole program.
  bool contains(std::string_view name);

 private:
  void collect();
  void addNamesOf(std::string_view text);

  const Assembler& assembler_;
  bool areCollected_ = false;
  std::unordered_set<std::string_view, NameHash> names_;
};

}  // namespace kiln
