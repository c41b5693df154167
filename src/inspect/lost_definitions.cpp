#include "inspect/lost_definitions.h"

#include "inspect/statement_walk.h"

namespace kiln {

bool LostDefinitions::contains(std::string_view name) {
  if (!areCollected_) collect();
  return names_.contains(name);
}

void LostDefinitions::collect() {
  areCollected_ = true;
  StatementWalk walk(assembler_);
  Statement statement;
  while (walk.next(statement)) {
    if (statement.parsed->kind != Kind::Empty) continue;
    if (statement.word.starts_with('@')) names_.insert(statement.word.substr(0, statement.word.find(':')));
    if (statement.rest.starts_with('=') && !statement.label.empty()) names_.insert(statement.label);
  }
}

}  // namespace kiln
