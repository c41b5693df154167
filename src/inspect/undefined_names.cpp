#include "inspect/undefined_names.h"

#include <algorithm>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "inspect/expression_names.h"
#include "inspect/name_text.h"
#include "inspect/wording.h"
#include "source/line_text.h"
#include "source/seeds.h"

namespace kiln {
namespace {

constexpr std::string_view stagerPrefix = "_kxb_";
constexpr size_t mostChanges = 2;  // that NearNames accepts

// The name that a statement defines, as its uses in the same scope are written: the label, or what it assigns to.
std::string_view definedName(std::string_view statement) {
  const size_t end = statement.find_first_of(":=");
  if (!beginsLikeLabel(statement) || end == std::string_view::npos) return {};
  const std::string_view name = trim(statement.substr(0, end));
  return name.starts_with('>') ? name.substr(1) : name;
}

// ".loop" of "main.loop"; empty for other names.
std::string_view localPart(std::string_view name) {
  const size_t dot = name.find('.', 1);
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot);
}

bool isBranchStatement(std::string_view statement) {
  std::string_view rest = statement.substr(statement.find(':') + 1);
  return isBranch(mnemonicOf(takeWord(rest)));
}

std::string_view withoutMark(std::string_view name) {
  return name.starts_with('.') || name.starts_with('>') ? name.substr(1) : name;
}

// The number that a name looks like, with "$": "FFh" and "D01A" do. Empty for other names.
std::string numberLike(std::string_view name) {
  const bool endsInH = toLower(name.back()) == 'h';
  if (endsInH) name.remove_suffix(1);
  const bool hasSize = name.size() == 2 || name.size() == 4 || (endsInH && name.size() == 1);
  if (!hasSize || !std::all_of(name.begin(), name.end(), isHexDigit)) return "";
  if (!endsInH && std::none_of(name.begin(), name.end(), isDigit)) return "";
  return concat({"$", name});
}

// "FFh", but no word such as "beach".
bool isWrittenWithH(std::string_view number) {
  const auto isSmall = [](char c) { return c >= 'a' && c <= 'z'; };
  return toLower(number.back()) == 'h' && std::none_of(number.begin(), number.end() - 1, isSmall);
}

// What defines the name after "__bank_".
std::string bankHint(std::string_view rest) {
  if (rest == "code_reg" || rest == "data_reg") return "it is defined when this bank register is set";
  if (rest == "current") return "it is defined in programs that call into other banks";
  return concat({"'.bank ", rest, "' defines it"});
}

}  // namespace

UndefinedNames::UndefinedNames(const Program& program, const NameDefinitions& definitions, Findings& findings)
    : program_(program), definitions_(definitions), findings_(findings) {}

void UndefinedNames::addUse(const Statement& statement, std::string_view name) {
  if (seen_.find(name) != nullptr) return;
  const std::string_view kept = texts_.join({name});
  seen_.enter(HashedName(kept));
  findings_.explain(undefinedMessage(name));
  const bool isUnscoped = name.starts_with('.') && !rowOf(statement.parsed->kind).qualifies;
  // The names of the call stager have no values when an error comes first.
  if (name.starts_with(stagerPrefix)) return;
  uses_.push_back({kept, writtenName(*program_.map, statement, name), statement.scope, isUnscoped});
}

void UndefinedNames::addVanished(const Statement& statement) {
  if (statement.parsed->kind == Kind::Assign) {
    const std::string_view name = statement.parsed->assignName();
    vanished_.insert(name.substr(name.find_last_of(" \t") + 1));
    return;
  }
  vanished_.insert(statement.word);
  // A local label without its colon.
  if (statement.word.starts_with('.')) vanished_.insert(texts_.join({statement.scope, statement.word}));
  std::string_view argument = statement.argument;
  if (statement.word.starts_with('.')) vanished_.insert(takeWord(argument));
}

void UndefinedNames::report() {
  // The missing file may define any name.
  if (uses_.empty() || !program_.notes.errorLines.empty()) return;
  collectElsewhere();
  for (const Use& use : uses_) {
    if (!isExplained(use)) report(use);
  }
}

void UndefinedNames::collectElsewhere() {
  const char* last = nullptr;
  for (const SourceNotes::Made& made : program_.notes.made) {
    if (made.pattern.data() != nullptr || std::exchange(last, made.origin.data()) == made.origin.data()) continue;
    // The call stager keeps labels, and replaces no branches.
    std::vector<std::string_view> names;
    bool hasBranch = false;
    StatementTexts statements(withoutComment(made.origin));
    while (const std::optional<std::string_view> statement = statements.next()) {
      const std::string_view name = definedName(*statement);
      if (!name.empty()) names.push_back(name);
      hasBranch = hasBranch || isBranchStatement(*statement);
    }
    if (hasBranch) lost_.insert(names.begin(), names.end());
  }
  for (const Macro& macro : program_.notes.macros.all())
    parameters_.insert(macro.parameters.begin(), macro.parameters.end());
}

// True when another check reports the mistake that leaves the name without a definition.
bool UndefinedNames::isExplained(const Use& use) const {
  const bool isVanished = vanished_.contains(use.name) || vanished_.contains(use.written);
  if (findings_.wants(Check::Vanished) && isVanished) return true;
  const bool isLost = lost_.contains(use.written) || lost_.contains(localPart(use.name));
  if (findings_.wants(Check::LostWithBranch) && isLost) return true;
  return findings_.wants(Check::MacroArguments) && isLostParameter(use);
}

// True for a macro's parameter that is still there after the call, which has too few arguments then.
bool UndefinedNames::isLostParameter(const Use& use) const {
  if (!parameters_.contains(use.name)) return false;
  const SourceNotes::Made* const made = program_.map->madeLine(use.written);
  return made != nullptr && findName(made->pattern, use.name).data() != nullptr;
}

void UndefinedNames::report(const Use& use) {
  Findings::Report report{.at = use.written};
  const Symbol* const elsewhere = addHints(use, report);
  const bool isInPlace = use.written == use.name || use.written == localPart(use.name);
  if (!isInPlace) report.alternatives.clear();
  const std::string number = numberLike(use.name);
  Check check = Check::Undefined;
  if (use.isUnscoped && elsewhere != nullptr) {
    check = Check::LocalInList;
    report.text = concat({inQuotes(use.name),
                          " gets no scope here, so it is an unknown name and counts as 0: write the "
                          "full name, such as ",
                          inQuotes(elsewhere->name)});
    report.alternatives.emplace_back(elsewhere->name);
  } else if (!number.empty() && report.notes.empty()) {
    check = Check::NumberLikeName;
    report.text = concat(
        {inQuotes(use.name), " is a name, which nothing defines: it counts as 0; write ", number, " for the number"});
    if (use.written == use.name && isWrittenWithH(use.name)) {
      report.fix.emplace_back(use.written, number);
    } else if (isInPlace) {
      report.alternatives.push_back(number);
    }
  } else if (use.written != use.name && use.written == localPart(use.name)) {
    report.text =
        concat({inQuotes(use.written), " is not defined in the scope ", inQuotes(use.scope), ": it counts as 0"});
  } else {
    report.text = concat({inQuotes(use.name), " is not defined: it counts as 0"});
  }
  findings_.add(check, std::move(report));
}

// Adds notes. Returns a local label of another scope that has the name.
const Symbol* UndefinedNames::addHints(const Use& use, Findings::Report& report) {
  // Without a symbol file, all built-in names are defined.
  if (!program_.assembler.settings.seeds.files.empty() && isBuiltInName(use.name)) {
    report.addNote("it is a built-in name, but a symbol file replaces all of these");
  }
  if (use.name.starts_with(bankPrefix)) {
    report.addNote(bankHint(use.name.substr(bankPrefix.size())));
  }
  const std::string_view bare = withoutMark(use.written);
  const Symbol* elsewhere = nullptr;
  near_.begin(use.written);
  for (const Symbol& symbol : program_.iteration().symbols.symbols()) {
    if (comparisonsLeft_ == 0) break;
    --comparisonsLeft_;
    offer(use, symbol.name);
    const bool isLonger = symbol.name.size() > bare.size() + 1;
    if (elsewhere != nullptr || !isLonger || symbol.name[symbol.name.size() - bare.size() - 1] != '.') continue;
    if (symbol.name.ends_with(bare)) elsewhere = &symbol;
  }
  report.addNote(near_.hint());
  report.alternatives.assign(near_.names().begin(), near_.names().end());
  if (elsewhere == nullptr) return nullptr;
  report.notes.emplace_back(definitions_.first(*elsewhere).text,
                            concat({"a local label of another scope has this name: ", inQuotes(elsewhere->name)}));
  return elsewhere;
}

// Offers a global name, or a local one of the same scope as it would be written there.
void UndefinedNames::offer(const Use& use, std::string_view symbol) {
  const std::string_view scope = use.scope;
  if (symbol.size() > scope.size() && !scope.empty() && symbol[scope.size()] == '.' && symbol.starts_with(scope)) {
    return near_.offer(symbol.substr(scope.size()));
  }
  if (symbol.size() > use.written.size() + mostChanges || symbol.size() + mostChanges < use.written.size()) return;
  if (symbol.find('.') == std::string_view::npos || use.written.find('.', 1) != std::string_view::npos) {
    near_.offer(symbol);
  }
}

}  // namespace kiln
