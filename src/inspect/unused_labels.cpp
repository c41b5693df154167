#include "inspect/unused_labels.h"

#include <optional>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "inspect/name_text.h"
#include "source/line_text.h"

namespace kiln {
namespace {

// A staged call, and a long branch, no longer has the name that the source has.
void markReplaced(const Program& program, const NameDefinitions& definitions, std::vector<bool>& isUsed) {
  const char* last = nullptr;
  for (const SourceNotes::Made& made : program.notes.made) {
    if (made.pattern.data() != nullptr || std::exchange(last, made.origin.data()) == made.origin.data()) continue;
    StatementTexts statements(withoutComment(made.origin));
    while (const std::optional<std::string_view> statement = statements.next()) {
      std::string_view rest = statement->substr(statement->find(':') + 1);
      for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest)) {
        const Symbol* const symbol = definitions.find(word);
        if (symbol != nullptr) isUsed[symbol->index] = true;
      }
    }
  }
}

// The scope of a local name that is used is in use.
void markScopes(const std::vector<Symbol>& symbols, const NameDefinitions& definitions, std::vector<bool>& isUsed) {
  for (const Symbol& symbol : symbols) {
    const size_t dot = isUsed[symbol.index] ? symbol.name.find('.', 1) : std::string_view::npos;
    if (dot == std::string_view::npos) continue;
    const Symbol* const scope = definitions.find(symbol.name.substr(0, dot));
    if (scope != nullptr) isUsed[scope->index] = true;
  }
}

bool isStart(const Program& program, const Symbol& symbol) {
  const std::vector<AsSegment>& segments = program.assembler.segments;
  return symbol.name == program.options.entry || (!segments.empty() && symbol.value == segments.front().start);
}

bool isInInput(const Program& program, std::string_view text) {
  const Place place = program.map->placeOf(text);
  return place.line != 0 && place.file->includeLine.data() == nullptr;
}

}  // namespace

void checkUnusedLabels(const Program& program, const NameDefinitions& definitions, std::vector<bool> isUsed,
                       Findings& findings) {
  markReplaced(program, definitions, isUsed);
  markScopes(program.iteration().symbols.symbols(), definitions, isUsed);
  for (size_t i = 0; i < definitions.all().size(); ++i) {
    const auto& [text, isAssignment] = definitions.all()[i];
    const Symbol& symbol = definitions.symbolOf(i);
    if (isAssignment || isUsed[symbol.index] || !isPlainName(symbol.name) || symbol.name.starts_with("__")) continue;
    if (isStart(program, symbol) || !isInInput(program, text)) continue;
    findings.add(Check::Unused, {.at = text, .text = concat({"nothing uses the label '", text, "'"})});
  }
}

}  // namespace kiln
