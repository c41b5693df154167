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
  void layOutWithSpills(size_t index, HashedName label);
  const AsLine* previous(size_t index) const;
  void applyInsertions();

  void layOutStatement(AsLine& line, HashedName label);
  void defineLabel(const AsLine& line, HashedName label);
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
  std::vector<AsLine>& lines = iteration_.statements.lines;
  LabelReader labels(iteration_.statements.labels);
  LookAhead ahead(iteration_.symbols, iteration_.statements.labels, [](HashedName label) { return label; });
  for (size_t i = 0; i < lines.size(); ++i) {
    fetchAhead(lines[i]);
    if (lines[i].hasLabel) ahead.stepToEnter();
    const HashedName label = labels.of(lines[i]);
    if (guard_.regions().count() != 0) {
      layOutWithSpills(i, label);
    } else {
      layOutStatement(lines[i], label);
    }
  }
  applyInsertions();
  iteration_.codeRegions = guard_.regions();
}

// A spilled statement is checked again: the next region may be too small, too.
void LayoutPass::layOutWithSpills(size_t index, HashedName label) {
  AsLine& line = iteration_.statements.lines[index];
  while (true) {
    guard_.checkOverflow(line, pc_);
    RegionGuard::Spill spill = guard_.spill(line, previous(index), pc_);
    if (spill.bridge.has_value()) {
      layOutStatement(*spill.bridge, {});
      insertions_.push_back({index, *spill.bridge});
    }
    if (!spill.origin.has_value()) break;
    spill.origin->address = pc_;
    insertions_.push_back({index, *spill.origin});
    setOrigin(guard_.nextStart());
    guard_.enterNext();
  }
  if (line.kind == Kind::SpillPoint && guard_.moveBlock(iteration_.statements.lines, index, pc_)) {
    if (line.hasLabel) defineLabel(line, label);
    line.address = pc_;
    pc_ = guard_.nextStart();
    guard_.enterNext();
  } else {
    layOutStatement(line, label);
  }
}

// The statement before this one; null for the first, and after a line without a statement.
const AsLine* LayoutPass::previous(size_t index) const {
  if (!insertions_.empty() && insertions_.back().before == index) return &insertions_.back().line;
  const std::vector<AsLine>& lines = iteration_.statements.lines;
  if (index == 0 || lines[index - 1].lineNumber + 1 < lines[index].lineNumber) return nullptr;
  return &lines[index - 1];
}

// Opens the gaps from the end, so that every statement moves once.
void LayoutPass::applyInsertions() {
  std::vector<AsLine>& lines = iteration_.statements.lines;
  size_t from = lines.size();
  lines.resize(from + insertions_.size());
  size_t to = lines.size();
  for (; !insertions_.empty(); insertions_.pop_back()) {
    while (from > insertions_.back().before)
      lines[--to] = lines[--from];
    lines[--to] = insertions_.back().line;
  }
}

void LayoutPass::layOutStatement(AsLine& line, HashedName label) {
  if (line.hasLabel) defineLabel(line, label);
  line.address = pc_;
  layOutByKind(line);
}

// A label that is not local may replace nothing but a seed.
void LayoutPass::defineLabel(const AsLine& line, HashedName label) {
  const auto [symbol, isNew] = iteration_.symbols.enter(label);
  if (!isNew && !line.labelLocal && symbol.seed == 0) {
    diagnostics_.errorAt(line.lineNumber, {"duplicate label '", label.text(), "'"});
  }
  symbol.value = pc_;
  if (currentBank_ != 0) symbol.bank = currentBank_ & 0x7FFFFFFF;
}

void LayoutPass::layOutByKind(AsLine& line) {
  Evaluator& evaluator = iteration_.evaluator;
  switch (line.kind) {
    case Kind::Org:
      setOrigin(evaluator.evaluate(line.operand()));
      guard_.locate(pc_);
      break;
    case Kind::Bank:
      selectBank(line);
      break;
    case Kind::CloakedSegment:
      moveTo(low16(evaluator.evaluate(line.firstItem())));
      guard_.suspend();
      break;
    case Kind::CloakedSegmentEnd:
      guard_.resume();
      break;
    case Kind::CodeRegions:
      guard_.declare(parseAddressRanges(line.operand(), line.lineNumber, evaluator, diagnostics_));
      guard_.locate(pc_);
      break;
    case Kind::ShadowRanges:
      shadowPlan_.ranges = parseAddressRanges(line.operand(), line.lineNumber, evaluator, diagnostics_);
      break;
    case Kind::ShadowStage:
      setStageAddress(line);
      break;
    case Kind::Assign:
      assign(line);
      break;
    case Kind::Instruction:
    case Kind::Byte:
    case Kind::Word:
    case Kind::Long:
    case Kind::String:
    case Kind::Space:
      pc_ = (pc_ + line.size) & 0xFFFF;
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

// An origin inside the code window takes a bank number, although no name refers to that bank.
void LayoutPass::setOrigin(int64_t address) {
  pc_ = low16(address);
  const uint32_t low = settings_.banking.bankWindowLow;
  const uint32_t high = settings_.banking.bankWindowHigh;
  const bool windowIsSet = low != 0 || high != 0;
  if (windowIsSet && low <= pc_ && pc_ <= high) ++bankCounter_;
  currentBank_ = 0;
}

void LayoutPass::selectBank(const AsLine& line) {
  const auto [entry, isNew] = iteration_.bankNumbers.try_emplace(line.operand(), 0);
  if (isNew) entry->second = ++bankCounter_;
  currentBank_ = entry->second;
  iteration_.symbols.set(iteration_.texts.join({"__bank_", line.operand()}), currentBank_);
  moveTo(low16(settings_.banking.bankWindowLow));
}

void LayoutPass::setStageAddress(const AsLine& line) {
  const int64_t address = iteration_.evaluator.evaluate(line.operand());
  if (address < 0x10000) {
    shadowPlan_.stageAddress = low16(address);
  } else {
    diagnostics_.errorAt(line.lineNumber, {"invalid .shadow_stage address '", line.operand(), "'"});
  }
}

// A name assigned from a banked label is in its bank.
void LayoutPass::assign(const AsLine& line) {
  const int64_t value = iteration_.evaluator.evaluate(line.assignValue());
  const Symbol* const source = iteration_.symbols.find(leadingSymbol(line.assignValue()));
  const uint32_t bank = source == nullptr ? 0 : source->bank;
  Symbol& symbol = iteration_.symbols.enter(HashedName(line.assignName())).symbol;
  symbol.value = value;
  if (bank != 0) symbol.bank = bank & 0x7FFFFFFF;
}

}  // namespace

void layOut(const Settings& settings, Diagnostics& diagnostics, ShadowPlan& shadowPlan, Iteration& iteration) {
  iteration.symbols.reserve(iteration.symbols.symbols().size() + iteration.statements.labels.size());
  LayoutPass(settings, diagnostics, shadowPlan, iteration).run();
}

}  // namespace kiln
