#include "lsp/completion_items.h"

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "inspect/name_definitions.h"
#include "inspect/name_text.h"
#include "inspect/wording.h"
#include "isa/opcodes.h"
#include "source/statements.h"

namespace kiln {
namespace {

using Items = std::vector<CompletionItem>;

constexpr size_t mostFiles = 2000;

enum Group : char { Nearest = '0', Names = '1', Given = '2', Others = '3', Directives = '4' };

// The macro whose body the place is in; null for other places.
const Macro* macroAround(const Analysis& analysis, const char* place) {
  const std::less_equal<> isUpTo;
  for (const Macro& macro : analysis.program().notes.macros.all()) {
    if (macro.body.empty()) continue;
    const std::string_view last = macro.body.back().text;
    if (isUpTo(macro.body.front().text.data(), place) && isUpTo(place, last.data() + last.size())) return &macro;
  }
  return nullptr;
}

// The full label that local names at the place belong to; empty without one.
std::string_view scopeAt(const Target& target, const char* place) {
  const Analysis& analysis = target.analysis;
  if (const Statement* const statement = analysis.statementAt(place)) return statement->scope;
  const std::string_view text = target.source.text;
  const std::vector<size_t> after = analysis.statementsIn(text.substr(static_cast<size_t>(place - text.data())));
  // Files that are included between two statements have scopes of their own.
  if (!after.empty()) return after.front() == 0 ? "" : analysis.statements()[after.front() - 1].scope;
  const std::vector<size_t> before = analysis.statementsIn(text);
  return before.empty() ? "" : analysis.statements()[before.back()].scope;
}

bool writesSmallMnemonics(const Target& target) {
  int balance = 0;
  for (size_t index : target.analysis.statementsIn(target.source.text)) {
    const Statement& statement = target.analysis.statements()[index];
    if (statement.parsed->kind == Kind::Instruction) balance += statement.word == toLower(statement.word) ? 1 : -1;
  }
  return balance > 0;
}

// "$", "}" and "\" mean something in a snippet.
std::string inSnippet(std::string_view text) {
  std::string escaped;
  for (char c : text) {
    if (c == '$' || c == '}' || c == '\\') escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

CompletionItem itemOf(const Macro& macro, bool hasSnippets) {
  std::string_view head = macro.head;
  const std::string_view name = takeWord(head);
  CompletionItem item{std::string(name), ItemKind::Macro, Names, shortened(trim(head))};
  if (macro.parameters.empty()) return item;
  item.text = concat({hasSnippets ? inSnippet(name) : name, " "});
  item.isSnippet = hasSnippets;
  const size_t count = std::min(macro.parameters.size(), mostParameters);
  for (size_t i = 0; hasSnippets && i < count; ++i) {
    item.text +=
        concat({i == 0 ? "${" : ",${", decimal(static_cast<int64_t>(i + 1)), ":", inSnippet(macro.parameters[i]), "}"});
  }
  return item;
}

void addMacros(const Target& target, bool hasSnippets, Items& items) {
  const MacroTable& macros = target.analysis.program().notes.macros;
  for (const Macro& macro : macros.all()) {
    std::string_view head = macro.head;
    const std::string_view name = takeWord(head);
    if (!name.empty() && macros.find(name) == &macro) items.push_back(itemOf(macro, hasSnippets));
  }
}

void addMnemonics(bool areSmall, Items& items) {
  for (size_t i = 1; i <= mnemonicCount; ++i) {
    const std::string_view text = mnemonicText(static_cast<Mnemonic>(i));
    items.push_back({areSmall ? toLower(text) : std::string(text), ItemKind::Word, Others});
  }
}

// With the space that most of them need.
void addDirective(std::string_view spelling, Items& items) {
  items.push_back({std::string(trimRight(spelling)), ItemKind::Word, Directives, "", std::string(spelling)});
}

void addStatements(const Session& session, const Target& target, const TypedText& typed, const char* place,
                   Items& items) {
  // Calls and includes have their line to themselves, and there are none in a macro.
  const bool isCallable = typed.isFirst && macroAround(target.analysis, place) == nullptr;
  if (isCallable) addMacros(target, session.hasSnippets, items);
  addMnemonics(writesSmallMnemonics(target), items);
  for (const KindRow& row : kindRows) {
    if (!row.spelling.empty()) addDirective(row.spelling, items);
  }
  if (!isCallable || typed.isAfterLabel) return;
  addDirective(".include ", items);
  addDirective(".macro ", items);
}

enum class Meaning : uint8_t { Given, Label, Assigned };

// What each symbol is, by index.
std::vector<Meaning> meaningsOf(const Analysis& analysis) {
  const SymbolTable& symbols = analysis.program().iteration().symbols;
  std::vector<Meaning> meanings(symbols.symbols().size(), Meaning::Given);
  for (const Statement& statement : analysis.statements()) {
    const AsLine& line = *statement.parsed;
    const Symbol* const label =
        line.hasLabel ? symbols.find(statement.symbol.text(), statement.symbol.hash()) : nullptr;
    if (label != nullptr) meanings[label->index] = Meaning::Label;
    const Symbol* const assigned = line.kind == Kind::Assign ? symbols.find(line.assignName()) : nullptr;
    if (assigned != nullptr) meanings[assigned->index] = Meaning::Assigned;
  }
  return meanings;
}

class Operands {
 public:
  Operands(const Target& target, const TypedText& typed, const char* place)
      : analysis_(target.analysis),
        typed_(typed),
        macro_(macroAround(target.analysis, place)),
        scope_(macro_ == nullptr ? scopeAt(target, place) : std::string_view()),
        wantsFullNames_(typed.typed.find('.', 1) != std::string_view::npos || !typed.isScoped) {}

  void addTo(Items& items) const {
    addParameters(items);
    const std::vector<Meaning> meanings = meaningsOf(analysis_);
    for (const Symbol& symbol : analysis_.program().iteration().symbols.symbols()) {
      const bool isMade = symbol.name.starts_with(longBranchLabel) || symbol.name.starts_with("_kxb_");
      if (!isMade && isPlainName(symbol.name)) addSymbol(symbol, meanings[symbol.index], items);
    }
  }

 private:
  void addParameters(Items& items) const {
    if (macro_ == nullptr) return;
    const size_t count = std::min(macro_->parameters.size(), mostParameters);
    for (size_t i = 0; i < count; ++i)
      items.push_back({std::string(macro_->parameters[i]), ItemKind::Parameter, Nearest});
  }

  bool isOfScope(std::string_view name) const {
    return !scope_.empty() && name.size() > scope_.size() && name.starts_with(scope_) && name[scope_.size()] == '.';
  }

  void addSymbol(const Symbol& symbol, Meaning meaning, Items& items) const {
    const std::string_view name = symbol.name;
    if (isOfScope(name) && typed_.isScoped) {
      items.push_back({std::string(name.substr(scope_.size())), ItemKind::LocalLabel, Nearest, detailOf(symbol)});
    }
    const bool isLocal = name.find('.', 1) != std::string_view::npos;
    if (isLocal && !wantsFullNames_) return;
    if (meaning == Meaning::Given) {
      items.push_back(
          {std::string(name), ItemKind::BuiltIn, symbol.seed != 0 ? Others : Given, valueText(symbol.value)});
    } else {
      const ItemKind kind = meaning == Meaning::Assigned ? ItemKind::Constant : ItemKind::Label;
      items.push_back({std::string(name), kind, isLocal ? Given : Names, detailOf(symbol)});
    }
  }

  // Values of a program that does not assemble may be wrong.
  std::string detailOf(const Symbol& symbol) const {
    return analysis_.placements() == nullptr ? "" : valueText(symbol.value);
  }

  const Analysis& analysis_;
  const TypedText& typed_;
  const Macro* macro_;
  std::string_view scope_;
  bool wantsFullNames_;  // of local labels
};

// The banks of all other lines.
void addBanks(const Analysis& analysis, const TypedText& typed, Items& items) {
  std::set<std::string_view> names;
  for (const Statement& statement : analysis.statements()) {
    const bool isTyped = statement.argument.data() == typed.word.data();
    if (statement.parsed->kind == Kind::Bank && !isTyped) names.insert(statement.argument);
  }
  const SymbolTable& symbols = analysis.program().iteration().symbols;
  for (std::string_view name : names) {
    const Symbol* const symbol = symbols.find(concat({bankPrefix, name}));
    items.push_back({std::string(name), ItemKind::Bank, Names, symbol == nullptr ? "" : decimal(symbol->value)});
  }
}

bool isSourceName(std::string_view name) {
  return endsWithIgnoringCase(name, ".asm") || endsWithIgnoringCase(name, ".inc") || endsWithIgnoringCase(name, ".s");
}

void addFiles(const EditorHost& files, const std::string& folder, const std::string& document,
              std::set<std::string>& seen, Items& items) {
  std::vector<std::string> names = files.listDirectory(folder).value_or(std::vector<std::string>());
  std::sort(names.begin(), names.end());
  if (names.size() > mostFiles) names.resize(mostFiles);
  for (std::string& name : names) {
    const std::string path = joinPaths(folder, name);
    if (name.starts_with('.') || path == document) continue;
    const bool isSource = isSourceName(name);
    if (!isSource && !files.isDirectory(path)) continue;
    if (!isSource) name += '/';
    if (seen.insert(name).second) {
      items.push_back({std::move(name), isSource ? ItemKind::File : ItemKind::Folder, isSource ? Nearest : Names});
    }
  }
}

// Where the assembler looks: beside the file, then in the folders of -I.
void addPaths(const Session& session, const Target& target, const TypedText& typed, Items& items) {
  if (isAbsolute(typed.folder)) return;
  std::vector<std::string> folders = {directoryPart(target.document.path)};
  const std::vector<std::string>& more = target.analysis.program().options.includePaths;
  folders.insert(folders.end(), more.begin(), more.end());
  std::set<std::string> seen;
  for (const std::string& folder : folders)
    addFiles(session.workspace.files(), joinPaths(folder, typed.folder), target.document.path, seen, items);
}

}  // namespace

std::vector<CompletionItem> completionItems(const Session& session, const Target& target, const TypedText& typed,
                                            const char* place) {
  Items items;
  switch (typed.slot) {
    case Slot::Nothing:
      break;
    case Slot::Statement:
      addStatements(session, target, typed, place, items);
      break;
    case Slot::Operand:
      Operands(target, typed, place).addTo(items);
      break;
    case Slot::IncludePath:
      addPaths(session, target, typed, items);
      break;
    case Slot::BankName:
      addBanks(target.analysis, typed, items);
      break;
  }
  std::stable_sort(items.begin(), items.end(), [](const auto& a, const auto& b) { return a.group < b.group; });
  return items;
}

}  // namespace kiln
