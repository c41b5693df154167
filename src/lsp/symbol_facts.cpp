#include "lsp/symbol_facts.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/format.h"
#include "inspect/name_definitions.h"

namespace kiln {
namespace {

using Is = SymbolFacts::Kind;

// Places in files, where a file that is included again is the file of the first time.
class FilePlaces {
 public:
  explicit FilePlaces(const Analysis& analysis) : map_(analysis.map()) {
    std::unordered_map<std::string_view, const SourceNotes::File*> byPath;
    for (const SourceNotes::File& file : map_.notes().files) {
      const auto [first, isNew] = byPath.try_emplace(file.path, &file);
      if (!isNew) firsts_.emplace(&file, first->second);
    }
  }

  const char* of(std::string_view text) const {
    if (firsts_.empty()) return text.data();
    const SourceNotes::File* const file = map_.fileOf(text);
    const auto first = firsts_.find(file);
    return first == firsts_.end() ? text.data() : first->second->text.data() + (text.data() - file->text.data());
  }

 private:
  const SourceMap& map_;
  std::unordered_map<const SourceNotes::File*, const SourceNotes::File*> firsts_;  // of those included again
};

class Describer {
 public:
  explicit Describer(const Analysis& analysis)
      : analysis_(analysis), symbols_(analysis.program().iteration().symbols), facts_(symbols_.symbols().size()) {}

  std::vector<SymbolFacts> run() {
    for (const Statement& statement : analysis_.statements())
      addDefinitions(statement);
    countUses();
    return std::move(facts_);
  }

 private:
  void addDefinitions(const Statement& statement) {
    const AsLine& line = *statement.parsed;
    if (line.hasLabel) {
      const Is kind = statement.label.starts_with('.') ? Is::LocalLabel : Is::Label;
      define(symbols_.find(statement.symbol.text(), statement.symbol.hash()), kind, statement);
    }
    if (line.kind == Kind::Assign) define(symbols_.find(line.assignName()), Is::Name, statement);
    if (line.kind == Kind::Bank) define(symbols_.find(concat({bankPrefix, line.operand()})), Is::Bank, statement);
  }

  void define(const Symbol* symbol, Is kind, const Statement& statement) {
    if (symbol == nullptr) return;
    facts_[symbol->index].kind = kind;
    facts_[symbol->index].definition = &statement;
  }

  void countUses() {
    const FilePlaces places(analysis_);
    std::vector<std::pair<const char*, uint32_t>> uses;
    for (const Occurrence& occurrence : analysis_.names().all()) {
      if (occurrence.thing != Thing::Symbol || occurrence.isDefinition) continue;
      uses.emplace_back(places.of(occurrence.text), occurrence.id);
    }
    std::sort(uses.begin(), uses.end());
    uses.erase(std::unique(uses.begin(), uses.end()), uses.end());
    for (const auto& [place, id] : uses)
      ++facts_[id].uses;
  }

  const Analysis& analysis_;
  const SymbolTable& symbols_;
  std::vector<SymbolFacts> facts_;
};

}  // namespace

std::vector<SymbolFacts> describeSymbols(const Analysis& analysis) { return Describer(analysis).run(); }

}  // namespace kiln
