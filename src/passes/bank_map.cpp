#include "passes/bank_map.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "passes/segment_cursor.h"

namespace kiln {
namespace {

constexpr uint32_t addressCount = 0x10000;

class BankMapper {
 public:
  BankMapper(Iteration& iteration, const BankedSettings& settings, const MainMemory& mainMemory)
      : iteration_(iteration),
        settings_(settings),
        mainMemory_(mainMemory),
        evaluator_(iteration.symbols, ignored_),
        counters_(settings),
        cursor_(iteration.codeRegions) {}

  BankMap run();

 private:
  SymbolBank& bankOf(std::string_view name);
  void place(const AsLine& line);
  void placeBytes(const AsLine& line);
  void open(uint32_t address, int32_t bank, bool cloaked);
  bool isMain(uint64_t size) const;

  Iteration& iteration_;
  const BankedSettings& settings_;
  const MainMemory& mainMemory_;
  MessageList ignored_;
  Evaluator evaluator_;
  BankCounters counters_;
  SegmentCursor cursor_;
  BankMap map_;
  size_t nextSymbol_ = 0;
  bool cloaked_ = false;
  bool inRun_ = false;                // the last main run is still growing
  bool named_ = false;                // labels belong to the bank of the ".bank" above
  std::optional<BankValue> current_;  // of that ".bank"
};

BankMap BankMapper::run() {
  const std::vector<AsLine>& statements = iteration_.statements;
  map_.symbols.resize(iteration_.symbols.symbols().size());
  for (size_t i = 0; i < statements.size(); ++i) {
    const AsLine& line = statements[i];
    if (!line.label.empty() && named_) bankOf(line.label) = {true, current_};
    if (line.label == stageLabel) map_.stageLine = line.lineNumber - 1;
    place(line);
    const bool lineEnds = i + 1 == statements.size() || statements[i + 1].lineNumber != line.lineNumber;
    if (lineEnds && map_.stageLine == line.lineNumber - 1) map_.stageInMain = isMain(1);
  }
  map_.endsCloaked = cloaked_;
  return std::move(map_);
}

// The name must be one of the table. Names come in the order in which they were entered, but for those that come again:
// most often it is the one behind the last.
SymbolBank& BankMapper::bankOf(std::string_view name) {
  const std::vector<Symbol>& symbols = iteration_.symbols.symbols();
  const auto isNext = [&] {
    return nextSymbol_ < symbols.size() && symbols[nextSymbol_].name.data() == name.data() &&
           symbols[nextSymbol_].name.size() == name.size();
  };
  if (!isNext()) nextSymbol_ = static_cast<size_t>(iteration_.symbols.find(name) - symbols.data());
  return map_.symbols[nextSymbol_++];
}

void BankMapper::place(const AsLine& line) {
  const size_t index = line.lineNumber - 1;
  const bool movesOn = line.kind == Kind::Org || line.kind == Kind::Bank || line.kind == Kind::CloakedSegment ||
                       line.kind == Kind::CloakedSegmentEnd;
  if (movesOn) {
    if (inRun_ && map_.mainRuns.back().lastLine == index) map_.mainRuns.back().isSplit = true;
    inRun_ = false;
  }
  if (emitsBytes(line.kind)) {
    placeBytes(line);
  } else if (line.kind == Kind::Org) {
    const uint32_t target = low16(evaluator_.evaluate(line.operand));
    if (cursor_.splitsAt(target)) {
      open(target, -1, false);
    } else {
      cursor_.advance(target - cursor_.pc());
    }
    named_ = false;
  } else if (line.kind == Kind::Bank) {
    const uint32_t number = iteration_.bankNumbers.at(line.operand);
    open(low16(settings_.bankWindowLow), static_cast<int32_t>(number), false);
    named_ = true;
  } else if (line.kind == Kind::CloakedSegment) {
    open(low16(evaluator_.evaluate(line.firstItem())), -1, true);
  } else if (line.kind == Kind::CloakedSegmentEnd) {
    cursor_.close();
    cloaked_ = false;
  } else if (line.kind == Kind::Assign) {
    const std::string_view source = leadingSymbol(line.assignValue());
    if (iteration_.symbols.find(source) == nullptr) return;
    const SymbolBank bank = bankOf(source);
    if (bank.isBehindBank) bankOf(line.assignName()) = bank;
  }
}

void BankMapper::placeBytes(const AsLine& line) {
  if (!cursor_.isOpen()) open(cursor_.pc(), -1, false);
  if (line.size != 0 && !isMain(line.size)) {
    inRun_ = false;
  } else if (line.size != 0) {
    if (!inRun_) map_.mainRuns.push_back({.start = cursor_.pc()});
    inRun_ = true;
    map_.mainRuns.back().size += line.size;
    map_.mainRuns.back().lastLine = line.lineNumber - 1;
  }
  cursor_.advance(line.size);
}

void BankMapper::open(uint32_t address, int32_t bank, bool cloaked) {
  cursor_.open(address);
  cloaked_ = cloaked;
  if (cloaked) return;
  const std::optional<BankValue> value = counters_.next(address, bank);
  if (bank < 0) return;
  current_ = value;
  if (value.has_value() && value->value > 0xFF) map_.usesHighByte = true;
}

bool BankMapper::isMain(uint64_t size) const { return !cloaked_ && mainMemory_.holds(cursor_.pc(), size); }

}  // namespace

MainMemory::MainMemory(const BankedSettings& settings, const ShadowPlan& shadowPlan) {
  // First how many ranges begin at each address less how many end before it, then their running sum.
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
