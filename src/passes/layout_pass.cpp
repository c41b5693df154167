#include "passes/layout_pass.h"

#include "base/arithmetic.h"
#include "base/text.h"
#include "passes/address_ranges.h"
#include "passes/code_regions.h"
#include "passes/look_ahead.h"

namespace kiln {
namespace {

class LayoutPass {
 public:
  LayoutPass(const Settings& settings, Diagnostics& diagnostics, ShadowPlan& shadowPlan, Iteration& iteration)
      : settings_(settings),
        diagnostics_(diagnostics),
        shadowPlan_(shadowPlan),
        iteration_(iteration),
        guard_(diagnostics, iteration.texts) {}

  void run();

 private:
  void layOutWithSpills(size_t index);
  const AsLine* previous(size_t index) const;
  void applyInsertions();

  void layOutStatement(AsLine& line);
  void defineLabel(const AsLine& line);
  void layOutByKind(AsLine& line);
  void moveTo(uint32_t address);
  void setOrigin(int64_t address);
  void selectBank(const AsLine& line);
  void setStageAddress(const AsLine& line);
  void assign(const AsLine& line);

  const Settings& settings_;
  Diagnostics& diagnostics_;
  ShadowPlan& shadowPlan_;
  Iteration& iteration_;
  RegionGuard guard_;
  std::vector<Insertion> insertions_;
  uint32_t pc_ = 0;
  uint32_t bankCounter_ = 0;
  uint32_t currentBank_ = 0;  // 0 = none
};

void LayoutPass::run() {
  std::vector<AsLine>& statements = iteration_.statements;
  LookAhead ahead(iteration_.symbols, statements, [](const AsLine& line) { return line.label; });
  for (size_t i = 0; i < statements.size(); ++i) {
    ahead.step();
    if (guard_.regions().count() != 0) {
      layOutWithSpills(i);
    } else {
      layOutStatement(statements[i]);
    }
  }
  applyInsertions();
  iteration_.codeRegions = guard_.regions();
}

// A statement that spills is asked again in the next region, which may be too small for it as well.
void LayoutPass::layOutWithSpills(size_t index) {
  AsLine& line = iteration_.statements[index];
  while (true) {
    guard_.checkOverflow(line, pc_);
    AsLine inserted[2];
    const size_t count = guard_.spill(line, previous(index), pc_, inserted);
    if (count == 0) break;
    if (count == 2) layOutStatement(inserted[0]);
    setOrigin(guard_.nextStart());
    guard_.enterNext();
    for (size_t i = 0; i < count; ++i)
      insertions_.push_back({index, inserted[i]});
  }
  if (line.kind == Kind::SpillPoint && guard_.moveBlock(iteration_.statements, index, pc_)) {
    defineLabel(line);
    pc_ = guard_.nextStart();
    guard_.enterNext();
  } else {
    layOutStatement(line);
  }
}

const AsLine* LayoutPass::previous(size_t index) const {
  if (!insertions_.empty() && insertions_.back().before == index) return &insertions_.back().line;
  return index == 0 ? nullptr : &iteration_.statements[index - 1];
}

// Opens the gaps from the back, so that every statement moves once.
void LayoutPass::applyInsertions() {
  std::vector<AsLine>& statements = iteration_.statements;
  size_t from = statements.size();
  statements.resize(from + insertions_.size());
  size_t to = statements.size();
  for (; !insertions_.empty(); insertions_.pop_back()) {
    while (from > insertions_.back().before)
      statements[--to] = statements[--from];
    statements[--to] = insertions_.back().line;
  }
}

void LayoutPass::layOutStatement(AsLine& line) {
  if (!line.label.empty()) defineLabel(line);
  layOutByKind(line);
}

// A label may take the place of a seed in silence, and of nothing else.
void LayoutPass::defineLabel(const AsLine& line) {
  if (line.label.empty()) return;
  bool isNew = false;
  Symbol& symbol = iteration_.symbols.enter(line.label, line.label.hash(), isNew);
  if (!isNew && !line.labelLocal && !symbol.seed) {
    diagnostics_.errorAt(line.lineNumber, {"duplicate label '", line.label, "'"});
  }
  symbol.value = pc_;
  if (currentBank_ != 0) symbol.bank = currentBank_;
}

void LayoutPass::layOutByKind(AsLine& line) {
  Evaluator& evaluator = iteration_.evaluator;
  switch (line.kind) {
    case Kind::Instruction:
    case Kind::Byte:
    case Kind::Word:
    case Kind::Long:
    case Kind::String:
    case Kind::Space:
      line.address = pc_;
      pc_ = (pc_ + line.size) & 0xFFFF;
      break;
    case Kind::Org:
      setOrigin(evaluator.evaluate(line.operand));
      guard_.locate(pc_);
      break;
    case Kind::Bank:
      selectBank(line);
      break;
    case Kind::CloakedSegment:
      moveTo(low16(evaluator.evaluate(line.firstItem())));
      guard_.suspend(true);
      break;
    case Kind::CloakedSegmentEnd:
      guard_.suspend(false);
      break;
    case Kind::CodeRegions:
      guard_.declare(parseAddressRanges(line.operand, line.lineNumber, evaluator, diagnostics_));
      guard_.locate(pc_);
      break;
    case Kind::ShadowRanges:
      shadowPlan_.ranges = parseAddressRanges(line.operand, line.lineNumber, evaluator, diagnostics_);
      break;
    case Kind::ShadowStage:
      setStageAddress(line);
      break;
    case Kind::Assign:
      assign(line);
      break;
    case Kind::Empty:
    case Kind::LabelOnly:
    case Kind::SpillPoint:
      break;
  }
}

void LayoutPass::moveTo(uint32_t address) {
  pc_ = address;
  guard_.locate(pc_);
}

// An origin inside the code window begins a bank of its own, although no name leads to it.
void LayoutPass::setOrigin(int64_t address) {
  pc_ = low16(address);
  const uint32_t low = settings_.banking.bankWindowLow;
  const uint32_t high = settings_.banking.bankWindowHigh;
  const bool windowIsSet = low != 0 || high != 0;
  if (windowIsSet && low <= pc_ && pc_ <= high) ++bankCounter_;
  currentBank_ = 0;
}

void LayoutPass::selectBank(const AsLine& line) {
  const auto [entry, isNew] = iteration_.bankNumbers.try_emplace(line.operand, 0);
  if (isNew) entry->second = ++bankCounter_;
  currentBank_ = entry->second;
  iteration_.symbols.set(iteration_.texts.join({"__bank_", line.operand}), currentBank_);
  moveTo(low16(settings_.banking.bankWindowLow));
}

void LayoutPass::setStageAddress(const AsLine& line) {
  const int64_t address = iteration_.evaluator.evaluate(line.operand);
  if (address < 0x10000) {
    shadowPlan_.stageAddress = low16(address);
  } else {
    diagnostics_.errorAt(line.lineNumber, {"invalid .shadow_stage address '", line.operand, "'"});
  }
}

// An alias of a banked label is banked like it.
void LayoutPass::assign(const AsLine& line) {
  const int64_t value = iteration_.evaluator.evaluate(line.assignValue());
  const Symbol* const source = iteration_.symbols.find(leadingSymbol(line.assignValue()));
  const uint32_t bank = source == nullptr ? 0 : source->bank;
  bool isNew = false;
  Symbol& symbol = iteration_.symbols.enter(line.assignName(), isNew);
  symbol.value = value;
  if (bank != 0) symbol.bank = bank;
}

}  // namespace

void layOut(const Settings& settings, Diagnostics& diagnostics, ShadowPlan& shadowPlan, Iteration& iteration) {
  iteration.symbols.reserve(iteration.symbols.symbols().size() + iteration.definitionCount);
  LayoutPass(settings, diagnostics, shadowPlan, iteration).run();
}

}  // namespace kiln
