// Where the names of a program are defined.
#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "inspect/program.h"

namespace kiln {

// The symbol of a bank's number is this and the name of the bank.
inline constexpr std::string_view bankPrefix = "__bank_";

// Follows the statements in order. Symbols are numbered in the order in which they were entered, and their names are
// views of the texts that entered them. So a statement that defines the next symbol is recognised without a look-up.
class NameDefinitions {
 public:
  struct Definition {
    std::string_view text;  // the name as written: a label has its "." or ">"
    bool isAssignment = false;
  };

  explicit NameDefinitions(const Program& program);

  // Notes a definition. Returns the symbol when it had a value before; null for a new one. `name` is the real name, in
  // the text that was entered.
  const Symbol* define(HashedName name, const Definition& definition);
  // The same for the argument of ".bank", which defines "__bank_" and the name.
  void defineBank(std::string_view bank, std::string_view written);

  // The symbol that the evaluator uses for a name: perhaps one that is written in another letter case. Null when there
  // is none.
  const Symbol* find(std::string_view name) const { return symbols_.resolve(name); }

  // True for a name that is defined before the first line.
  bool isPredefined(const Symbol& symbol) const { return symbol.index < predefined_; }
  // True when the symbol has a value now.
  bool isDefined(const Symbol& symbol) const { return symbol.index < next_; }
  // The first definition in the source so far; empty when there is none.
  Definition first(const Symbol& symbol) const;
  // All first definitions, in the order of their symbols, the first of which is not predefined.
  const std::vector<Definition>& all() const { return definitions_; }
  const Symbol& symbolOf(size_t definition) const { return symbols_.symbols()[predefined_ + definition]; }

 private:
  const SymbolTable& symbols_;
  size_t predefined_ = 0;  // the number of these symbols
  size_t next_ = 0;        // the number of those with a value
  std::vector<Definition> definitions_;
  std::unordered_map<uint32_t, Definition> replacements_;  // of predefined symbols, by index
};

}  // namespace kiln
