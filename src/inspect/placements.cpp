#include "inspect/placements.h"

#include "base/arithmetic.h"
#include "inspect/placed_segments.h"

namespace kiln {
namespace {

// Listens to the placements of all statements, which are those that the emission has made.
class StatementPlacer {
 public:
  explicit StatementPlacer(const Program& program)
      : iteration_(program.iteration()),
        evaluator_(iteration_.symbols, ignored_),
        walker_(iteration_, evaluator_, low16(program.assembler.settings.banking.bankWindowLow), *this),
        counters_(program.assembler.settings.banking),
        output_(outputKindOf(program)) {}

  Placements run() {
    const std::vector<AsLine>& lines = iteration_.statements.lines;
    placements_.statements.reserve(lines.size());
    for (const AsLine& line : lines)
      place(line);
    return std::move(placements_);
  }

  void openSegment(const Opening& opening, const AsLine& line) {
    SegmentBank& segment = placements_.segments.emplace_back();
    isOpen_ = true;
    size_ = 0;
    segment.value = writtenBank(output_, opening, counters_);
    if (line.kind == Kind::Bank) segment.name = line.operand();
  }
  void fillGap(uint32_t size) { size_ += size; }
  uint32_t placeBytes(const AsLine& line, uint32_t) {
    size_ += byteCount(line);
    return line.size;
  }
  void closeSegment() {
    isOpen_ = false;
    size_ = 0;
  }

 private:
  void place(const AsLine& line) {
    const auto count = static_cast<uint32_t>(placements_.segments.size());
    StatementPlace place{size_, isOpen_ ? count - 1 : count, walker_.pc()};
    walker_.step(line);
    if (rowOf(line.kind).moves) place.address = walker_.pc();
    placements_.statements.push_back(place);
  }

  const Iteration& iteration_;
  MessageList ignored_;
  Evaluator evaluator_;
  PlacementWalker<StatementPlacer> walker_;
  BankCounters counters_;
  const OutputKind output_;
  Placements placements_;
  bool isOpen_ = false;
  uint64_t size_ = 0;  // of the open segment
};

}  // namespace

uint64_t byteCount(const AsLine& line) {
  if (line.kind == Kind::String) return line.operand().size() + 1;
  return emitsBytes(line.kind) ? line.size : 0;
}

Placements placeStatements(const Program& program) { return StatementPlacer(program).run(); }

const BankValue* bankAt(const Placements& placements, const StatementPlace& place) {
  if (place.segment >= placements.segments.size()) return nullptr;
  const std::optional<BankValue>& value = placements.segments[place.segment].value;
  return value.has_value() ? &*value : nullptr;
}

}  // namespace kiln
