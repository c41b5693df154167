#include "passes/emission_pass.h"

#include <new>

#include "base/arithmetic.h"
#include "base/text.h"
#include "isa/operand_checks.h"
#include "passes/look_ahead.h"
#include "passes/segment_cursor.h"
#include "source/operands.h"

namespace kiln {
namespace {

// Twice what 65,536 banks of 16 KB hold. Whoever asks for more meant less than nothing: a count below 0 is a large one,
// and nobody wants to wait for a file of 4 GB.
constexpr uint64_t mostSpace = uint64_t{1} << 31;

class EmissionPass {
 public:
  EmissionPass(Iteration& iteration, uint32_t bankOrigin, Diagnostics& diagnostics)
      : iteration_(iteration), bankOrigin_(bankOrigin), diagnostics_(diagnostics), cursor_(iteration.codeRegions) {}

  std::vector<AsSegment> run();

 private:
  void emitStatement(AsLine& line);
  void emitOrigin(uint32_t target);
  void openCloaked(std::string_view argument);
  AsSegment& openSegment(uint32_t address);
  std::vector<uint8_t>& currentBytes();

  void encode(AsLine& line, std::vector<uint8_t>& bytes);
  template <size_t ItemSize>
  void emitItems(const AsLine& line, std::vector<uint8_t>& bytes);
  void emitSpace(uint32_t size, std::vector<uint8_t>& bytes);

  Iteration& iteration_;
  const uint32_t bankOrigin_;
  Diagnostics& diagnostics_;
  SegmentCursor cursor_;
  uint64_t space_ = 0;
  std::vector<AsSegment> segments_;  // the last one is the one to append to while the cursor is open
  std::string scratch_;
};

std::vector<AsSegment> EmissionPass::run() {
  LookAhead ahead(iteration_.symbols, iteration_.statements, [](const AsLine& line) { return line.operand; });
  for (AsLine& line : iteration_.statements) {
    ahead.step();
    if (emitsBytes(line.kind)) {
      emitStatement(line);
    } else if (line.kind == Kind::Org) {
      emitOrigin(low16(iteration_.evaluator.evaluate(line.operand)));
    } else if (line.kind == Kind::Bank) {
      openSegment(bankOrigin_).bank = static_cast<int32_t>(iteration_.bankNumbers.at(line.operand));
    } else if (line.kind == Kind::CloakedSegment) {
      openCloaked(line.operand);
    } else if (line.kind == Kind::CloakedSegmentEnd) {
      cursor_.close();
    }
  }
  return std::move(segments_);
}

void EmissionPass::emitStatement(AsLine& line) {
  std::vector<uint8_t>& bytes = currentBytes();
  switch (line.kind) {
    case Kind::Instruction:
      encode(line, bytes);
      break;
    case Kind::Byte:
      emitItems<1>(line, bytes);
      break;
    case Kind::Word:
      emitItems<2>(line, bytes);
      break;
    case Kind::Long:
      emitItems<4>(line, bytes);
      break;
    case Kind::String:
      bytes.insert(bytes.end(), line.operand.text().begin(), line.operand.text().end());
      bytes.push_back(0);
      break;
    default:
      emitSpace(line.size, bytes);
      break;
  }
  cursor_.advance(line.size);
}

void EmissionPass::emitOrigin(uint32_t target) {
  if (cursor_.splitsAt(target)) {
    openSegment(target);
    return;
  }
  const uint32_t gap = target - cursor_.pc();
  std::vector<uint8_t>& bytes = segments_.back().bytes;
  bytes.resize(bytes.size() + gap);
  cursor_.advance(gap);
}

void EmissionPass::openCloaked(std::string_view argument) {
  Fields items(argument, ',');
  std::string_view item;
  items.next(item);
  AsSegment& segment = openSegment(low16(iteration_.evaluator.evaluate(item)));
  segment.cloaked = true;
  if (items.next(item) && !equalIgnoringCase(trim(item), "none")) {
    segment.cloakedId = static_cast<int32_t>(low32(iteration_.evaluator.evaluate(item)));
  }
}

AsSegment& EmissionPass::openSegment(uint32_t address) {
  cursor_.open(address);
  segments_.emplace_back().start = address;
  return segments_.back();
}

std::vector<uint8_t>& EmissionPass::currentBytes() {
  if (!cursor_.isOpen()) openSegment(cursor_.pc());
  return segments_.back().bytes;
}

// The mode found without a row in the opcode table may have given way to its absolute form; it stays with the
// statement, and so does the size. Without any row nothing is emitted, yet the size still counts.
void EmissionPass::encode(AsLine& line, std::vector<uint8_t>& bytes) {
  int opcode = opcodeFor(line.mnemonic, line.mode);
  const Mode absolute = absoluteForm(line.mode);
  if (opcode < 0 && absolute != line.mode) {
    line.mode = absolute;
    line.size = instructionSize(absolute);
    opcode = opcodeFor(line.mnemonic, absolute);
  }
  if (opcode < 0) {
    diagnostics_.errors.add({linePrefix(line.lineNumber), "invalid addressing mode for ", mnemonicText(line.mnemonic)});
    return;
  }
  bytes.push_back(static_cast<uint8_t>(opcode));
  if (line.size == 1) return;
  // An expression that is a name has no space next to a comma.
  const bool hasSpaces = line.hasCommaSpaces && line.operand.hash() == 0;
  const std::string_view operand = hasSpaces ? withoutCommaSpaces(line.operand, scratch_) : line.operand.text();
  const std::string_view expression = valueExpression(operand, line.mode);
  const int64_t value = iteration_.evaluator.evaluate(expression, line.operand.hash());
  encodeOperand({.mnemonic = line.mnemonic,
                 .mode = line.mode,
                 .line = line.lineNumber,
                 .pc = cursor_.pc(),
                 .text = line.operand,
                 .expression = expression,
                 .value = value},
                diagnostics_, bytes);
}

template <size_t ItemSize>
void EmissionPass::emitItems(const AsLine& line, std::vector<uint8_t>& bytes) {
  bytes.resize(bytes.size() + line.size);
  uint8_t* to = bytes.data() + (bytes.size() - line.size);
  const bool takesDecimals = !iteration_.symbols.hasDigitNames();
  DataItems items = line.items();
  int64_t value = 0;
  for (std::string_view item;;) {
    if (!items.nextLiteral(takesDecimals, value)) {
      if (!items.next(item)) return;
      value = iteration_.evaluator.evaluate(item);
    }
    for (size_t i = 0; i < ItemSize; ++i)
      *to++ = static_cast<uint8_t>(static_cast<uint64_t>(value) >> 8 * i & 0xFF);
  }
}

void EmissionPass::emitSpace(uint32_t size, std::vector<uint8_t>& bytes) {
  space_ += size;
  if (space_ > mostSpace) throw std::bad_alloc();
  bytes.resize(bytes.size() + size);
}

}  // namespace

std::vector<AsSegment> emit(Iteration& iteration, uint32_t bankOrigin, Diagnostics& diagnostics) {
  return EmissionPass(iteration, bankOrigin, diagnostics).run();
}

}  // namespace kiln
