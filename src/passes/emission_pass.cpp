#include "passes/emission_pass.h"

#include <algorithm>
#include <new>

#include "base/arithmetic.h"
#include "base/text.h"
#include "isa/operand_checks.h"
#include "passes/look_ahead.h"
#include "passes/placement.h"
#include "source/data_items.h"
#include "source/statements.h"

namespace kiln {
namespace {

// For all ".space" together: twice the bytes of 65,536 banks of 16 KB. A larger count is a negative number by mistake.
constexpr uint64_t mostSpace = uint64_t{1} << 31;

// The opcode of an instruction, -1 when there is none, and the mode that it is for.
struct Encoding {
  int opcode;
  Mode mode;
};

// A mode that the mnemonic lacks is replaced by its absolute form, whose size counts even if that is missing, too.
Encoding encodingOf(const AsLine& line) {
  const int opcode = opcodeFor(line.mnemonic, line.mode);
  if (opcode >= 0) return {opcode, line.mode};
  const Mode absolute = absoluteForm(line.mode);
  return {opcodeFor(line.mnemonic, absolute), absolute};
}

// Listens to the placements of all statements.
class Emission {
 public:
  Emission(Iteration& iteration, Diagnostics& diagnostics) : iteration_(iteration), diagnostics_(diagnostics) {}

  void openSegment(const Opening& opening, const AsLine& line);
  void fillGap(uint32_t size) { appendZeros(size); }
  uint32_t placeBytes(const AsLine& line, uint32_t pc);
  void closeSegment() {}

  std::vector<AsSegment> takeSegments() { return std::move(segments_); }

 private:
  std::vector<uint8_t>& bytes() { return segments_.back().bytes; }
  void appendZeros(uint32_t count) { bytes().resize(bytes().size() + count); }
  uint32_t encode(const AsLine& line, uint32_t pc);
  void emitItems(const AsLine& line);
  template <size_t ItemSize>
  void emitItemsOf(const AsLine& line);
  void emitString(std::string_view text);
  void emitSpace(uint32_t size);

  Iteration& iteration_;
  Diagnostics& diagnostics_;
  uint64_t space_ = 0;
  std::vector<AsSegment> segments_;  // the last one takes the bytes
  std::string scratch_;
};

void Emission::openSegment(const Opening& opening, const AsLine& line) {
  AsSegment& segment = segments_.emplace_back();
  segment.start = opening.address;
  segment.bank = opening.bank;
  segment.cloaked = opening.isCloaked;
  if (!opening.isCloaked) return;
  Fields items(line.operand(), ',');
  std::string_view item;
  items.next(item);
  if (items.next(item) && !equalIgnoringCase(trim(item), "none")) {
    segment.cloakedId = static_cast<int32_t>(low32(iteration_.evaluator.evaluate(item)));
  }
}

uint32_t Emission::placeBytes(const AsLine& line, uint32_t pc) {
  switch (rowOf(line.kind).argument) {
    case Argument::None:
    case Argument::Text:
      return encode(line, pc);
    case Argument::Items:
      emitItems(line);
      break;
    case Argument::Quoted:
      emitString(line.operand());
      break;
    case Argument::Count:
      emitSpace(line.size);
      break;
  }
  return line.size;
}

// Returns the size, which counts even when there is nothing to emit.
uint32_t Emission::encode(const AsLine& line, uint32_t pc) {
  const Encoding encoding = encodingOf(line);
  const uint32_t size = instructionSize(encoding.mode);
  if (encoding.opcode < 0) {
    diagnostics_.errors.add({linePrefix(line.lineNumber), "invalid addressing mode for ", mnemonicText(line.mnemonic)});
    return size;
  }
  bytes().push_back(static_cast<uint8_t>(encoding.opcode));
  if (size == 1) return size;
  const std::string_view expression = instructionExpression(line, scratch_);
  const int64_t value = iteration_.evaluator.evaluate(expression, line.nameHash);
  encodeOperand({.mnemonic = line.mnemonic,
                 .mode = encoding.mode,
                 .line = line.lineNumber,
                 .pc = pc,
                 .text = line.operand(),
                 .expression = expression,
                 .value = value},
                diagnostics_, bytes());
  return size;
}

// The sizes for which emitItems() has a case.
static_assert(std::all_of(kindRows.begin(), kindRows.end(),
                          [](const KindRow& row) { return row.itemSize <= 2 || row.itemSize == 4; }));

void Emission::emitItems(const AsLine& line) {
  switch (rowOf(line.kind).itemSize) {
    case 1:
      return emitItemsOf<1>(line);
    case 2:
      return emitItemsOf<2>(line);
    case 4:
      return emitItemsOf<4>(line);
  }
}

template <size_t ItemSize>
void Emission::emitItemsOf(const AsLine& line) {
  appendZeros(line.size);
  uint8_t* to = bytes().data() + (bytes().size() - line.size);
  const bool digitsMayBeNames = iteration_.symbols.hasDigitNames();
  DataItems items(line.operand());
  while (true) {
    uint8_t* const before = to;
    items.skipBlanks();
    to = items.takeHex<ItemSize>(to);
    if (!digitsMayBeNames) to = items.takeDecimals<ItemSize>(to);
    if (to != before) continue;
    const std::optional<std::string_view> item = items.next();
    if (!item.has_value()) return;
    to = writeLow<ItemSize>(static_cast<uint64_t>(iteration_.evaluator.evaluate(*item)), to);
  }
}

void Emission::emitString(std::string_view text) {
  bytes().insert(bytes().end(), text.begin(), text.end());
  bytes().push_back(0);
}

void Emission::emitSpace(uint32_t size) {
  space_ += size;
  if (space_ > mostSpace) throw std::bad_alloc();
  appendZeros(size);
}

}  // namespace

std::vector<AsSegment> emit(Iteration& iteration, uint32_t bankOrigin, Diagnostics& diagnostics) {
  Emission emission(iteration, diagnostics);
  PlacementWalker walker(iteration, iteration.evaluator, bankOrigin, emission);
  const std::vector<AsLine>& lines = iteration.statements.lines;
  LookAhead ahead(iteration.symbols, lines,
                  [](const AsLine& line) { return HashedName(line.operand(), line.nameHash); });
  for (const AsLine& line : lines) {
    ahead.stepToFind();
    walker.step(line);
  }
  return emission.takeSegments();
}

}  // namespace kiln
