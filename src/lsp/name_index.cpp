#include "lsp/name_index.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <unordered_map>

#include "base/format.h"
#include "base/text.h"
#include "inspect/expression_names.h"
#include "inspect/macro_uses.h"
#include "inspect/name_text.h"
#include "source/includes.h"

namespace kiln {
namespace {

class Collector {
 public:
  Collector(const Program& program, std::vector<Occurrence>& all)
      : program_(program), symbols_(program.iteration().symbols), all_(all) {}

  void addStatement(const Statement& statement) {
    const AsLine& line = *statement.parsed;
    if (line.hasLabel) addSymbol(statement.label, statement.symbol.text(), true);
    if (line.kind == Kind::Assign) addSymbol(line.assignName(), line.assignName(), true, statement.rest);
    if (line.kind == Kind::Bank) addSymbol(statement.argument, concat({"__bank_", line.operand()}), true);
    for (std::string_view name : names_.of(line)) {
      if (isPlainName(name)) addUse(statement, name);
    }
  }

  void addMacros() {
    const std::vector<Macro>& macros = program_.notes.macros.all();
    std::unordered_map<const char*, size_t> byHead;
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

  // In the file: the place itself, or the one in the macro's body from which it was made.
  std::string_view placeInFile(std::string_view text) const {
    while (const SourceNotes::Made* const made = program_.map->madeLine(text)) {
      const std::string_view source = made->pattern.data() != nullptr ? made->pattern : made->origin;
      const std::string_view found = findName(withoutComment(source), text);
      if (found.data() == nullptr) return {};
      text = found;
    }
    return text;
  }

  void addSymbol(std::string_view written, std::string_view name, bool isDefinition, std::string_view within = {}) {
    const Symbol* symbol = symbols_.find(name);
    if (symbol == nullptr) symbol = symbols_.findIgnoringCase(name, symbolHash(name));
    if (symbol == nullptr) return;
    if (within.data() != nullptr) written = within.substr(0, written.size());
    add(placeInFile(written), Thing::Symbol, symbol->index, isDefinition);
  }

  void addUse(const Statement& statement, std::string_view name) {
    std::string_view written = usedName(statement, name);
    if (!name.ends_with(written)) return;
    // An argument of a macro call is found in the call.
    const SourceNotes::Made* const made = program_.map->madeLine(written);
    if (made != nullptr && made->pattern.data() != nullptr && findName(made->pattern, written).data() == nullptr) {
      written = writtenName(*program_.map, statement, name);
    }
    addSymbol(written, name, false);
  }

  void addMacro(const Macro& macro, size_t id) {
    std::string_view rest = macro.head;
    add(takeWord(rest), Thing::Macro, id, true);
    const size_t count = std::min(macro.parameters.size(), mostParameters);
    for (size_t i = 0; i < count; ++i) {
      add(macro.parameters[i], Thing::Parameter, id * mostParameters + i, true);
      for (const Macro::Line& line : macro.body)
        addParameterUses(line.text, macro.parameters[i], id * mostParameters + i);
    }
  }

  void addParameterUses(std::string_view line, std::string_view parameter, size_t id) {
    std::string_view rest = withoutComment(line);
    for (std::string_view found = findWhole(rest, parameter); found.data() != nullptr;
         found = findWhole(rest, parameter)) {
      add(found, Thing::Parameter, id, false);
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
  for (const Statement& statement : statements)
    collector.addStatement(statement);
  collector.addMacros();
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
