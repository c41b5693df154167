#include "inspect/used_names.h"

#include "base/text.h"
#include "inspect/statement_walk.h"

namespace kiln {
namespace {

bool isNamePart(char c) { return isIdentifierCharacter(c) || c == '.'; }

}  // namespace

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
  for (size_t begin = 0; begin < text.size(); ++begin) {
    if (!isNamePart(text[begin])) continue;
    size_t end = begin;
    while (end < text.size() && isNamePart(text[end]))
      ++end;
    if (!isDigit(text[begin])) names_.insert(text.substr(begin, end - begin));
    begin = end;
  }
}

}  // namespace kiln
