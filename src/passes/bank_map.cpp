// A banked program has many pieces of code at the same addresses. Before calls between them can be staged, two things
// have to be known: in which bank each label will be, and where in main memory there is code that the generated
// routines can follow. Neither is known to the layout, which only counts addresses, so this pass follows the placements
// that the emission will make, with the numbers that the writer will give to the segments:
//
//             .org $2000
//     start:  JSR draw         $2000-$2002 are a run of main memory
//             .bank pictures
//     draw:   RTS              a segment at $4000: `draw` is in the bank that the writer gives this segment
//     pen = draw + 1           `pen` is in the bank of `draw`
//             .org $2003
//             RTS              $2003 is a run of its own, since an origin came before it
//
// Banks are numbered by segment and not by name, because the writer selects a bank for each segment. A ".bank" gives
// its number to the labels up to the next origin; labels after that are in no bank, even inside the bank window.
//
// The operands of origins are evaluated here once more, without warnings: the other passes report them.
#include "passes/bank_map.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "passes/placement.h"

namespace kiln {
namespace {

constexpr uint32_t addressCount = 0x10000;

// Listens to the placements of all statements.
class BankMapper {
 public:
  BankMapper(Iteration& iteration, const BankedSettings& settings, const MainMemory& mainMemory)
      : iteration_(iteration),
        mainMemory_(mainMemory),
        evaluator_(iteration.symbols, ignored_),
        walker_(iteration, evaluator_, low16(settings.bankWindowLow), *this),
        counters_(settings) {}

  BankMap run();

  void openSegment(const Opening& opening, const AsLine& line);
  void fillGap(uint32_t) {}
  uint32_t placeBytes(const AsLine& line, uint32_t pc);
  void closeSegment() { isCloaked_ = false; }

 private:
  void visit(const AsLine& line, HashedName label);
  void endRun(size_t lineIndex);
  void assign(const AsLine& line);
  bool isMain(uint32_t address, uint64_t size) const { return !isCloaked_ && mainMemory_.holds(address, size); }
  const Symbol& known(HashedName name);

  Iteration& iteration_;
  const MainMemory& mainMemory_;
  MessageList ignored_;
  Evaluator evaluator_;
  PlacementWalker<BankMapper> walker_;
  BankCounters counters_;
  BankMap map_;
  size_t nextSymbol_ = 0;  // index of the one after the last that was asked for
  bool isCloaked_ = false;
  bool inRun_ = false;                // the next bytes may belong to the last main run
  bool isAfterBank_ = false;          // no origin since the last ".bank", so labels are in its bank
  std::optional<BankValue> current_;  // of the last ".bank"
};

BankMap BankMapper::run() {
  const std::vector<AsLine>& lines = iteration_.statements.lines;
  map_.symbols.resize(iteration_.symbols.symbols().size());
  LabelReader labels(iteration_.statements.labels);
  for (size_t i = 0; i < lines.size(); ++i) {
    const AsLine& line = lines[i];
    visit(line, labels.of(line));
    const bool isLastOfLine = i + 1 == lines.size() || lines[i + 1].lineNumber != line.lineNumber;
    if (isLastOfLine && map_.stageLine == line.lineNumber - 1) map_.stageInMain = isMain(walker_.pc(), 1);
  }
  map_.endsCloaked = isCloaked_;
  return std::move(map_);
}

void BankMapper::visit(const AsLine& line, HashedName label) {
  const size_t index = line.lineNumber - 1;
  if (!label.empty() && isAfterBank_) map_.symbols[known(label).index] = {true, current_};
  if (label.text() == stageLabel) map_.stageLine = index;
  if (line.kind == Kind::Assign) assign(line);
  if (line.kind == Kind::Org || line.kind == Kind::Bank) isAfterBank_ = line.kind == Kind::Bank;
  if (rowOf(line.kind).moves) endRun(index);
  walker_.step(line);
}

// The symbol of a label or an assignment. The statements have entered their names in this order, so it is mostly the
// next one (half of the time of this pass).
const Symbol& BankMapper::known(HashedName name) {
  const std::vector<Symbol>& symbols = iteration_.symbols.symbols();
  const bool isNext = nextSymbol_ < symbols.size() && symbols[nextSymbol_].name.data() == name.text().data() &&
                      symbols[nextSymbol_].name.size() == name.text().size();
  const Symbol& symbol = isNext ? symbols[nextSymbol_] : *iteration_.symbols.find(name.text(), name.hash());
  nextSymbol_ = symbol.index + 1;
  return symbol;
}

// The next bytes are somewhere else.
void BankMapper::endRun(size_t lineIndex) {
  if (inRun_ && map_.mainRuns.back().lastLine == lineIndex) map_.mainRuns.back().isSplit = true;
  inRun_ = false;
}

// A name assigned from a label is in the label's bank.
void BankMapper::assign(const AsLine& line) {
  const Symbol* const source = iteration_.symbols.find(leadingSymbol(line.assignValue()));
  if (source == nullptr || !map_.symbols[source->index].isAfterBank) return;
  map_.symbols[known(HashedName(line.assignName())).index] = map_.symbols[source->index];
}

void BankMapper::openSegment(const Opening& opening, const AsLine&) {
  isCloaked_ = opening.isCloaked;
  if (isCloaked_) return;
  const std::optional<BankValue> value = counters_.next(opening.address, opening.bank);
  if (opening.bank < 0) return;
  current_ = value;
  if (value.has_value() && value->value > 0xFF) map_.usesHighByte = true;
}

uint32_t BankMapper::placeBytes(const AsLine& line, uint32_t pc) {
  if (line.size == 0) return 0;
  if (!isMain(pc, line.size)) {
    inRun_ = false;
    return line.size;
  }
  if (!inRun_) map_.mainRuns.push_back({.start = pc});
  inRun_ = true;
  map_.mainRuns.back().size += line.size;
  map_.mainRuns.back().lastLine = line.lineNumber - 1;
  return line.size;
}

}  // namespace

MainMemory::MainMemory(const BankedSettings& settings, const ShadowPlan& shadowPlan) {
  // The ranges that begin at each address less those that end before it; then their running sum.
  std::vector<int32_t> begins(addressCount + 1);
  const auto take = [&begins](uint32_t low, uint32_t high) {
    if (high < low || low >= addressCount) return;
    ++begins[low];
    --begins[std::min(high, addressCount - 1) + 1];
  };
  const BankedSettings windows = withDefaults(settings);
  take(windows.bankWindowLow, windows.bankWindowHigh);
  if (windows.splitBank && windows.dataWindowLow != 0) take(windows.dataWindowLow, windows.dataWindowHigh);
  if (windows.regcWindowLow != 0 && windows.regcRegisterLow != 0) take(windows.regcWindowLow, windows.regcWindowHigh);
  for (size_t i = 0; shadowPlan.stageAddress != 0 && i + 1 < shadowPlan.ranges.size(); i += 2) {
    take(shadowPlan.ranges[i], shadowPlan.ranges[i + 1]);
  }
  taken_.assign(addressCount + 1, 0);
  int32_t ranges = 0;
  for (size_t address = 0; address < addressCount; ++address) {
    ranges += begins[address];
    taken_[address + 1] = taken_[address] + (ranges > 0 ? 1 : 0);
  }
}

bool MainMemory::holds(uint32_t address, uint64_t size) const {
  return size <= addressCount - address && taken_[address + size] == taken_[address];
}

BankMap mapBanks(Iteration& iteration, const BankedSettings& settings, const MainMemory& mainMemory) {
  return BankMapper(iteration, settings, mainMemory).run();
}

}  // namespace kiln
