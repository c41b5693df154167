#include "lsp/code_lens.h"

#include <unordered_map>

#include "base/format.h"
#include "lsp/line_code.h"
#include "lsp/symbol_facts.h"
#include "source/statements.h"

namespace kiln {
namespace {

constexpr std::string_view showReferences = "kiln.showReferences";

std::string counted(uint64_t count, std::string_view what) {
  return concat({decimal(static_cast<int64_t>(count)), " ", what, count == 1 ? "" : "s"});
}

// From a full label to the next, or to where the source moves to another address.
struct RoutineCode {
  uint64_t size = 0;
  CycleSum cycles;

  // "12 bytes, 20 cycles"; the size alone where branches or calls make the time uncertain. Empty without any bytes.
  std::string text() const {
    if (size == 0) return "";
    std::string bytes = counted(size, "byte");
    if (!cycles.isKnown() || cycles.hasBranch() || cycles.hasCalls()) return bytes;
    const std::string most = counted(cycles.most(), "cycle");
    if (cycles.least() == cycles.most()) return concat({bytes, ", ", most});
    return concat({bytes, ", ", decimal(cycles.least()), " to ", most});
  }
};

// By the index of the statement that has the label.
std::unordered_map<size_t, RoutineCode> measureRoutines(const Analysis& analysis) {
  const Iteration& iteration = analysis.program().iteration();
  LabelReader labels(iteration.statements.labels);
  std::unordered_map<size_t, RoutineCode> routines;
  RoutineCode* open = nullptr;
  for (size_t i = 0; i < iteration.statements.lines.size(); ++i) {
    const AsLine& line = iteration.statements.lines[i];
    const HashedName label = labels.of(line);
    if (isStagerLabel(line, label.text())) open = nullptr;
    const bool begins = line.hasLabel && !line.labelLocal && !label.text().starts_with(longBranchLabel);
    if (begins) open = &routines.try_emplace(i, RoutineCode{0, CycleSum(analysis)}).first->second;
    if (open == nullptr) continue;
    open->size += byteCount(line);
    open->cycles.add(i);
    // Code that spills into the next region goes on there.
    if (rowOf(line.kind).moves && !line.autoSpill) open = nullptr;
  }
  return routines;
}

class LensFinder {
 public:
  explicit LensFinder(const Target& target)
      : target_(target),
        symbols_(target.analysis.program().iteration().symbols),
        facts_(describeSymbols(target.analysis)),
        positions_(target.index) {
    if (target.analysis.placements() != nullptr) routines_ = measureRoutines(target.analysis);
  }

  Json run() {
    for (size_t index : target_.analysis.statementsIn(target_.source.text)) {
      const Statement& statement = target_.analysis.statements()[index];
      if (statement.parsed->hasLabel && !statement.label.starts_with('.')) addLabel(statement);
    }
    return std::move(lenses_);
  }

 private:
  void addLabel(const Statement& statement) {
    const Symbol* const symbol = symbols_.find(statement.symbol.text(), statement.symbol.hash());
    if (symbol == nullptr) return;
    const auto begin = static_cast<size_t>(statement.label.data() - target_.source.text.data());
    const Position start = positions_.at(begin);
    const Range range = {start, positions_.at(begin + statement.label.size())};
    const auto routine = routines_.find(statement.index);
    const std::string size = routine == routines_.end() ? "" : routine->second.text();
    if (!size.empty()) lenses_.push_back({{"range", toJson(range)}, {"command", {{"title", size}, {"command", ""}}}});
    const size_t uses = facts_[symbol->index].uses;
    const std::string title = uses == 0 ? "no references" : counted(uses, "reference");
    const Json arguments = {target_.document.uri, toJson(start)};
    lenses_.push_back({{"range", toJson(range)},
                       {"command", {{"title", title}, {"command", showReferences}, {"arguments", arguments}}}});
  }

  const Target& target_;
  const SymbolTable& symbols_;
  const std::vector<SymbolFacts> facts_;
  std::unordered_map<size_t, RoutineCode> routines_;
  PositionWalk positions_;
  Json lenses_ = Json::array();
};

}  // namespace

Answer findCodeLenses(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  return LensFinder(*target).run();
}

}  // namespace kiln
