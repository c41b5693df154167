// Names whose definition is written in the manner of another assembler: "@next:" and "size := 5".
#pragma once

#include <string_view>
#include <unordered_set>

#include "passes/assembler.h"

namespace kiln {

// What uses of these names come to is the fault of the definition, which is reported as vanished.
class LostDefinitions {
 public:
  explicit LostDefinitions(const Assembler& assembler) : assembler_(assembler) {}

  // The first call reads the whole program.
  bool contains(std::string_view name);

 private:
  void collect();

  const Assembler& assembler_;
  bool areCollected_ = false;
  std::unordered_set<std::string_view> names_;
};

}  // namespace kiln
