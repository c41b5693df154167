// Instructions and lists use the last value of a name, assignments the one that it has at their place. So a counter
//
//     n    = 0
//     red  = n
//     n    = n+1
//     blue = n
//
// works, as long as only assignments use it, and so does a default that a later file replaces before its first use.
#include "inspect/assigned_twice.h"

#include <map>

#include "base/format.h"
#include "inspect/expression_names.h"
#include "inspect/statement_walk.h"

namespace kiln {
namespace {

// A definition that another one with another value follows.
struct Change {
  std::string_view replaced = {};  // null data: none
  int64_t value = 0;               // that it gave
  std::string_view replacement = {};
};

// A name on the way through the program.
struct Name {
  uint32_t symbol = 0;
  int64_t last = 0;                    // the value that counts
  std::string_view definition = {};    // the one before the current place; null data: none
  int64_t value = 0;                   // that it gives
  bool isUsed = false;                 // since that definition
  bool isCounter = false;              // some definition uses the name itself
  Change change = {};                  // the last one
  Change uselessChange = {};           // the first of those whose `replaced` has no use
  std::string_view surprisedUse = {};  // gets another value than the definition before it gives
};

class AssignedTwice {
 public:
  AssignedTwice(const Program& program, const NameDefinitions& definitions, Findings& findings)
      : program_(program),
        definitions_(definitions),
        findings_(findings),
        values_(program.iteration().symbols),
        evaluator_(values_, ignored_) {}

  void follow(uint32_t symbol);
  void walk();
  void report() const;

 private:
  void use(const Statement& statement);
  void define(std::string_view text, std::string_view written, int64_t value);
  Name* find(std::string_view name);
  bool areInOneFile(std::string_view a, std::string_view b) const;

  const Program& program_;
  const NameDefinitions& definitions_;
  Findings& findings_;
  SymbolTable values_;  // those of the names at the current place; the last ones of all others
  MessageList ignored_;
  Evaluator evaluator_;
  ExpressionNames expressions_;
  std::map<uint32_t, Name> names_;       // by symbol
  std::unordered_set<uint32_t> hashes_;  // of their names, which other names may have, too
};

void AssignedTwice::follow(uint32_t symbol) {
  const Symbol& entry = program_.iteration().symbols.symbols()[symbol];
  names_[symbol] = {.symbol = symbol, .last = entry.value};
  hashes_.insert(symbolHash(entry.name));
}

void AssignedTwice::walk() {
  StatementWalk walk(program_.assembler);
  Statement statement;
  while (walk.next(statement)) {
    const AsLine& line = *statement.parsed;
    if (line.hasLabel) define(statement.symbol.text(), statement.label, line.address);
    use(statement);
    if (line.kind != Kind::Assign) continue;
    if (find(line.assignName()) == nullptr) continue;
    define(line.assignName(), line.assignName(), evaluator_.evaluate(line.assignValue()));
    ignored_.clear();
  }
}

void AssignedTwice::use(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  const LookUp lookUp = lookUpOf(line.kind);
  const bool isOtherName = line.nameHash != 0 && !hashes_.contains(line.nameHash);
  if (isOtherName || (lookUp != LookUp::AtEnd && lookUp != LookUp::InOrder)) return;
  for (std::string_view text : expressions_.of(line)) {
    Name* const name = find(text);
    if (name == nullptr) continue;
    name->isUsed = true;
    name->isCounter = name->isCounter || (line.kind == Kind::Assign && find(line.assignName()) == name);
    const bool differs = name->definition.data() != nullptr && name->value != name->last;
    if (lookUp == LookUp::AtEnd && differs && name->surprisedUse.data() == nullptr) {
      name->surprisedUse = writtenName(*program_.map, statement, text);
    }
  }
}

void AssignedTwice::define(std::string_view text, std::string_view written, int64_t value) {
  Name* const name = find(text);
  if (name == nullptr) return;
  if (name->definition.data() != nullptr && name->value != value) {
    name->change = {name->definition, name->value, written};
    const bool isUseless = !name->isUsed && areInOneFile(name->definition, written);
    if (isUseless && name->uselessChange.replaced.data() == nullptr) name->uselessChange = name->change;
  }
  name->definition = written;
  name->value = value;
  name->isUsed = false;
  values_.set(text, value);
}

// The followed name that the evaluator means; null for others.
Name* AssignedTwice::find(std::string_view name) {
  if (!hashes_.contains(symbolHash(name))) return nullptr;
  const Symbol* const symbol = definitions_.find(name);
  if (symbol == nullptr) return nullptr;
  const auto found = names_.find(symbol->index);
  return found == names_.end() ? nullptr : &found->second;
}

bool AssignedTwice::areInOneFile(std::string_view a, std::string_view b) const {
  return program_.map->placeOf(a).file == program_.map->placeOf(b).file;
}

// Nothing is lost when a counter counts on after its last use and begins anew.
void AssignedTwice::report() const {
  for (const auto& [symbol, name] : names_) {
    const bool isSurprise = name.surprisedUse.data() != nullptr;
    const Change& change = isSurprise ? name.change : name.uselessChange;
    if (change.replaced.data() == nullptr || (!isSurprise && name.isCounter)) continue;
    const std::string was = concat({"it is ", decimal(change.value), " here"});
    Findings::Report report{.at = change.replacement};
    if (isSurprise) {
      report.text = concat({"'", change.replacement, "' has several values: instructions and lists use the last one, ",
                            decimal(name.last), ", everywhere"});
      report.notes = {{change.replaced, was},
                      {name.surprisedUse, concat({"and ", decimal(name.last), " is used here"})}};
    } else {
      report.text = concat({"'", change.replacement, "' gets another value before anything has used the one above"});
      report.notes = {{change.replaced, was + ", without effect"}};
    }
    findings_.add(Check::AssignedTwice, std::move(report));
  }
}

}  // namespace

void checkAssignedTwice(const Program& program, const NameDefinitions& definitions,
                        const std::unordered_set<uint32_t>& symbols, Findings& findings) {
  if (symbols.empty()) return;
  AssignedTwice check(program, definitions, findings);
  for (uint32_t symbol : symbols)
    check.follow(symbol);
  check.walk();
  check.report();
}

}  // namespace kiln
