#include "lsp/name_index.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "inspect/expression_names.h"
#include "inspect/macro_uses.h"
#include "inspect/name_definitions.h"
#include "inspect/name_text.h"
#include "source/includes.h"

namespace kiln {
namespace {

// Longer lines of macros are not searched: for each of a million words in a line, that would take quadratic time.
constexpr size_t longestSearch = 4096;

class Collector {
 public:
  Collector(const Program& program, std::vector<Occurrence>& all)
      : program_(program), symbols_(program.iteration().symbols), all_(all) {}

  void addStatement(const Statement& statement) {
    const AsLine& line = *statement.parsed;
    if (line.hasLabel) addDefinition(statement.label, statement.symbol.text());
    if (line.kind == Kind::Assign) {
      const std::string_view name = line.assignName();
      addDefinition(statement.rest.substr(0, name.size()), name);
    }
    if (line.kind == Kind::Bank) addDefinition(statement.argument, concat({bankPrefix, line.operand()}));
    addUses(statement, names_.of(line));
    addReplaced(statement);
  }

  void addMacros() {
    const std::vector<Macro>& macros = program_.notes.macros.all();
    std::unordered_map<const char*, size_t> byHead;
    for (const SourceNotes::Call& call : program_.notes.calls)
      argumentsOf_.emplace(call.line.data(), call.arguments);
    for (size_t i = 0; i < macros.size(); ++i) {
      addMacro(macros[i], i);
      byHead.emplace(macros[i].head.data(), i);
    }
    for (const SourceNotes::Call& call : program_.notes.calls)
      addCall(call, byHead.at(call.macroHead.data()));
  }

  void addFiles() {
    const std::vector<SourceNotes::File>& files = program_.notes.files;
    for (size_t i = 0; i < files.size(); ++i) {
      if (files[i].includeLine.data() == nullptr) continue;
      std::string_view argument = withoutComment(files[i].includeLine);
      const size_t blank = argument.find(' ', argument.find('.'));
      if (blank != std::string_view::npos) add(includeName(argument.substr(blank)), Thing::File, i, false);
    }
  }

 private:
  void add(std::string_view text, Thing thing, size_t id, bool isDefinition) {
    if (text.empty() || program_.map->fileOf(text) == nullptr) return;
    all_.push_back({text, thing, static_cast<uint32_t>(id), isDefinition});
  }

  // Calls `use` with the places in files that the text comes from: its own; for a text that a macro makes, all in the
  // macro's body, or else in the arguments of the call; for one that a rewriter makes, all in the line that it
  // replaces.
  template <typename Use>
  void forEachPlace(std::string_view text, Use use) {
    open_.assign({text});
    while (!open_.empty()) {
      const std::string_view current = open_.back();
      open_.pop_back();
      const SourceNotes::Made* const made = program_.map->madeLine(current);
      if (made == nullptr) {
        use(current);
      } else if (made->pattern.data() == nullptr) {
        openAll(withoutComment(made->origin), text);
      } else if (!openAll(withoutComment(made->pattern), text)) {
        openAll(argumentsOf(made->origin), text);
      }
    }
  }

  // Opens all places of the word but those where it is a macro's parameter; false when there is none.
  bool openAll(std::string_view within, std::string_view word) {
    if (within.size() > longestSearch) return false;
    const size_t before = open_.size();
    for (std::string_view found = findWhole(within, word); found.data() != nullptr; found = findWhole(within, word)) {
      if (!parameterPlaces_.contains(found.data())) open_.push_back(found);
      within.remove_prefix(static_cast<size_t>(found.data() + found.size() - within.data()));
    }
    std::reverse(open_.begin() + static_cast<std::ptrdiff_t>(before), open_.end());
    return open_.size() > before;
  }

  std::string_view argumentsOf(std::string_view callLine) const {
    const auto found = argumentsOf_.find(callLine.data());
    return found == argumentsOf_.end() ? std::string_view() : found->second;
  }

  // The first place is that of the definition: in "loop: BNE loop", the other one is a use.
  void addDefinition(std::string_view written, std::string_view name) {
    const Symbol* const symbol = symbols_.resolve(name);
    if (symbol == nullptr) return;
    bool isFirst = true;
    forEachPlace(written, [&](std::string_view place) {
      if (std::exchange(isFirst, false)) add(place, Thing::Symbol, symbol->index, true);
    });
  }

  // Every word of the statement that is one of the names, with its scope in front or without it.
  void addUses(const Statement& statement, const std::vector<std::string_view>& names) {
    if (names.empty()) return;
    sorted_ = names;
    std::sort(sorted_.begin(), sorted_.end());
    sorted_.erase(std::unique(sorted_.begin(), sorted_.end()), sorted_.end());
    isFound_.assign(sorted_.size(), false);
    const bool isAssignment = statement.parsed->kind == Kind::Assign;
    std::string_view rest = isAssignment ? statement.rest.substr(statement.rest.find('=') + 1) : statement.argument;
    const std::string_view text = rest;
    const bool isMade = program_.map->fileOf(rest) == nullptr;
    for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest)) {
      if (isHexadecimal(text, word)) continue;
      size_t name = usedName(word);
      if (name == sorted_.size() && word.front() == '.') name = usedName(concat({statement.scope, word}));
      if (name == sorted_.size()) continue;
      // All places of a word that a macro has made are found at once.
      if (!isMade || !isFound_[name]) addUse(word, sorted_[name]);
      isFound_[name] = true;
    }
  }

  // The index among the names that the statement uses; their number when it is none of them.
  size_t usedName(std::string_view name) const {
    const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), name);
    return found == sorted_.end() || *found != name ? sorted_.size() : static_cast<size_t>(found - sorted_.begin());
  }

  void addUse(std::string_view written, std::string_view name) {
    const Symbol* const symbol = symbols_.resolve(name);
    if (symbol == nullptr) return;
    forEachPlace(written, [&](std::string_view place) { add(place, Thing::Symbol, symbol->index, false); });
  }

  // A staged call, and a long branch, no longer has the names of the line that it replaces.
  void addReplaced(const Statement& statement) {
    const SourceNotes::Made* const made = program_.map->madeLine(statement.text);
    if (made == nullptr || made->pattern.data() != nullptr) return;
    if (std::exchange(replaced_, made->origin.data()) == made->origin.data()) return;
    std::string_view rest = withoutComment(made->origin);
    if (rest.size() > longestSearch) return;
    for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest)) {
      if (isHexadecimal(made->origin, word)) continue;
      // The definition of ">name:" includes the ">".
      const auto at = static_cast<size_t>(word.data() - made->origin.data());
      if (rest.starts_with(':') && at != 0 && made->origin[at - 1] == '>') continue;
      addUse(word, word.front() == '.' ? concat({statement.scope, word}) : std::string(word));
    }
  }

  void addMacro(const Macro& macro, size_t id) {
    std::string_view rest = macro.head;
    add(takeWord(rest), Thing::Macro, id, true);
    const size_t count = std::min(macro.parameters.size(), mostParameters);
    for (size_t i = 0; i < count; ++i) {
      addParameter(macro.parameters[i], id * mostParameters + i, true);
      for (const Macro::Line& line : macro.body)
        addParameterUses(line.text, macro.parameters[i], id * mostParameters + i);
    }
  }

  void addParameter(std::string_view text, size_t id, bool isDefinition) {
    parameterPlaces_.insert(text.data());
    add(text, Thing::Parameter, id, isDefinition);
  }

  void addParameterUses(std::string_view line, std::string_view parameter, size_t id) {
    std::string_view rest = withoutComment(line);
    for (std::string_view found = findWhole(rest, parameter); found.data() != nullptr;
         found = findWhole(rest, parameter)) {
      addParameter(found, id, false);
      rest.remove_prefix(static_cast<size_t>(found.data() + found.size() - rest.data()));
    }
  }

  void addCall(const SourceNotes::Call& call, size_t macro) {
    std::string_view head = call.macroHead;
    add(findWhole(withoutComment(call.line), takeWord(head)), Thing::Macro, macro, false);
  }

  const Program& program_;
  const SymbolTable& symbols_;
  std::vector<Occurrence>& all_;
  ExpressionNames names_;
  std::unordered_set<const char*> parameterPlaces_;
  std::unordered_map<const char*, std::string_view> argumentsOf_;  // of the macro calls, by their lines
  std::vector<std::string_view> open_;
  const char* replaced_ = nullptr;        // the line that a rewriter replaced last
  std::vector<std::string_view> sorted_;  // the names that a statement uses
  std::vector<bool> isFound_;
};

auto orderOf(const Occurrence& occurrence) {
  return std::make_tuple(occurrence.text.data(), occurrence.text.size(), !occurrence.isDefinition, occurrence.thing,
                         occurrence.id);
}

bool areSame(const Occurrence& a, const Occurrence& b) {
  return a.text.data() == b.text.data() && a.thing == b.thing && a.id == b.id;
}

}  // namespace

NameIndex::NameIndex(const Program& program, const std::vector<Statement>& statements) {
  Collector collector(program, all_);
  collector.addMacros();
  for (const Statement& statement : statements)
    collector.addStatement(statement);
  collector.addFiles();
  std::sort(all_.begin(), all_.end(), [](const Occurrence& a, const Occurrence& b) { return orderOf(a) < orderOf(b); });
  all_.erase(std::unique(all_.begin(), all_.end(), areSame), all_.end());
}

const Occurrence* NameIndex::at(const char* place) const {
  auto after = std::upper_bound(all_.begin(), all_.end(), place, [](const char* at, const Occurrence& occurrence) {
    return std::less<>()(at, occurrence.text.data());
  });
  // One that begins at the place goes before one that ends there.
  const Occurrence* found = nullptr;
  for (int steps = 0; after != all_.begin() && steps < 4; ++steps) {
    const Occurrence& before = *--after;
    const char* const end = before.text.data() + before.text.size();
    if (!std::less<>()(end, place)) found = found == nullptr || end != place ? &before : found;
  }
  return found;
}

std::vector<const Occurrence*> NameIndex::sameAs(const Occurrence& occurrence) const {
  std::vector<const Occurrence*> same;
  for (const Occurrence& other : all_) {
    if (other.thing == occurrence.thing && other.id == occurrence.id) same.push_back(&other);
  }
  return same;
}

const Occurrence* NameIndex::definitionOf(Thing thing, uint32_t id) const {
  const auto definition = std::find_if(all_.begin(), all_.end(), [&](const Occurrence& occurrence) {
    return occurrence.isDefinition && occurrence.thing == thing && occurrence.id == id;
  });
  return definition == all_.end() ? nullptr : &*definition;
}

}  // namespace kiln
