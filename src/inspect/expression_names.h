// The names that the evaluator looks up for a statement, and where they are written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/source_map.h"
#include "inspect/statement_walk.h"
#include "source/expression.h"

namespace kiln {

// When the names of a statement are looked up, and so which of them have a value.
enum class LookUp : uint8_t {
  Never,
  AtStart,  // the predefined ones: the count of .space
  InOrder,  // those of the lines above: assignments, .org and the like
  AtEnd,    // all: operands of instructions, and lists
};

LookUp lookUpOf(Kind kind);

// Finds what the evaluator looks up.
class ExpressionNames {
 public:
  ExpressionNames() : evaluator_(noSymbols_, unknown_) {}

  // The texts that are looked up as names for a statement, in order: everything that is no number, names or not. In an
  // operand, local names have their scope. Valid until the next call.
  const std::vector<std::string_view>& of(const AsLine& line);

 private:
  void addItems(std::string_view list);

  const SymbolTable noSymbols_;
  MessageList unknown_;  // the evaluator's messages, one for each name
  Evaluator evaluator_;
  std::vector<std::string_view> names_;
  std::string scratch_;
};

// "undefined symbol 'NAME', using 0", which the evaluator says of an unknown name.
std::string undefinedMessage(std::string_view name);
// The name in such a message; empty for other messages.
std::string_view undefinedName(std::string_view message);

// Where the statement has a name that it uses. `name` may have the statement's scope in front. The text after the word,
// or the whole statement, when it cannot be found; the word when the text is too long for a search.
std::string_view usedName(const Statement& statement, std::string_view name);
// The same, but in the line for which a macro or a rewriter made the statement, if the name is there, too.
std::string_view writtenName(const SourceMap& map, const Statement& statement, std::string_view name);

}  // namespace kiln
