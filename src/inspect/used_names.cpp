#include "inspect/used_names.h"

#include "base/text.h"
#include "inspect/name_text.h"
#include "inspect/statement_walk.h"

namespace kiln {

bool UsedNames::contains(std::string_view name) {
  if (!areCollected_) collect();
  return names_.contains(name);
}

void UsedNames::collect() {
  areCollected_ = true;
  StatementWalk walk(assembler_);
  Statement statement;
  while (walk.next(statement)) {
    const Kind kind = statement.parsed->kind;
    if (kind == Kind::Assign) {
      addNamesOf(statement.rest.substr(statement.rest.find('=')));
    } else if (kind != Kind::Empty && kind != Kind::LabelOnly && kind != Kind::String) {
      addNamesOf(statement.argument);
    }
  }
}

void UsedNames::addNamesOf(std::string_view text) {
  for (std::string_view name = takeNameLike(text); !name.empty(); name = takeNameLike(text)) {
    if (!isDigit(name.front())) names_.insert(name);
  }
}

}  // namespace kiln
