#include "lsp/line_code.h"

#include <algorithm>

#include "base/format.h"
#include "base/text.h"
#include "inspect/cycles.h"

namespace kiln {
namespace {

bool leaves(Mnemonic mnemonic) {
  return isBranch(mnemonic) || mnemonic == Mnemonic::JMP || mnemonic == Mnemonic::RTS || mnemonic == Mnemonic::RTI ||
         mnemonic == Mnemonic::BRK;
}

}  // namespace

std::span<const uint8_t> bytesOf(const Analysis& analysis, size_t statement) {
  const Program& program = analysis.program();
  const uint64_t count = byteCount(program.iteration().statements.lines[statement]);
  if (analysis.placements() == nullptr || count == 0) return {};
  const StatementPlace& place = analysis.placements()->statements[statement];
  return std::span(program.assembler.segments[place.segment].bytes).subspan(place.offset, count);
}

uint32_t addressOf(const Analysis& analysis, size_t statement) {
  return analysis.placements()->statements[statement].address;
}

std::string bytesText(std::span<const uint8_t> bytes) {
  std::string text;
  for (uint8_t byte : bytes.first(std::min(bytes.size(), mostBytesShown))) {
    if (!text.empty()) text.push_back(' ');
    appendHex(text, byte, 2);
  }
  return bytes.size() > mostBytesShown ? text + "..." : text;
}

bool isStagerLabel(const AsLine& line, std::string_view name) {
  return line.hasLabel && line.labelLocal && name.starts_with("_kxb_");
}

void CycleSum::add(size_t statement) {
  const AsLine& line = analysis_.program().iteration().statements.lines[statement];
  if (!emitsBytes(line.kind)) return;
  ++count_;
  const std::optional<Cycles> cycles =
      line.kind == Kind::Instruction ? cyclesOf(line.mnemonic, line.mode) : std::nullopt;
  if (!cycles.has_value() || hasLeft_) {
    isKnown_ = false;
    return;
  }
  if (line.mode == Mode::Relative) return addBranch(statement, cycles->count);
  hasLeft_ = leaves(line.mnemonic);
  hasCalls_ = hasCalls_ || line.mnemonic == Mnemonic::JSR;
  least_ += cycles->count;
  most_ += cycles->count + (cycles->mayGrow ? 1U : 0U);
}

void CycleSum::addBranch(size_t statement, uint32_t notTaken) {
  hasLeft_ = true;
  hasBranch_ = true;
  const std::span<const uint8_t> bytes = bytesOf(analysis_, statement);
  if (bytes.size() != 2) {
    isKnown_ = false;
    return;
  }
  const uint32_t address = addressOf(analysis_, statement);
  const int32_t distance = static_cast<int8_t>(bytes[1]);
  const uint32_t target = static_cast<uint32_t>(static_cast<int32_t>(address) + 2 + distance) & 0xFFFF;
  least_ += notTaken;
  most_ += takenBranchCycles(address, target);
}

std::string CycleSum::text() const {
  if (!isKnown()) return "";
  std::string least = decimal(least_);
  if (least_ == most_) return least;
  if (count_ > 1) return concat({least, "-", decimal(most_)});
  return hasBranch_ ? concat({least, "/", decimal(most_)}) : least + "+";
}

std::vector<OriginatedStatement> statementsFrom(const Analysis& analysis, std::string_view part) {
  std::vector<OriginatedStatement> found;
  const char* stagerOrigin = nullptr;
  for (const Statement& statement : analysis.statements()) {
    const SourceNotes::Made* const made = analysis.map().madeLine(statement.line);
    // The stager adds its code after a line, which has its own statements besides.
    if (made != nullptr && isStagerLabel(*statement.parsed, statement.symbol.text()))
      stagerOrigin = made->origin.data();
    if (made != nullptr && made->pattern.data() == nullptr && made->origin.data() == stagerOrigin) continue;
    const std::string_view origin = analysis.map().originOf(statement.line);
    if (isPartOf(origin, part)) found.push_back({origin, &statement});
  }
  return found;
}

}  // namespace kiln
