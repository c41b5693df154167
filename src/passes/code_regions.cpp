// A program whose memory lies in pieces declares them:
//
//     .code_regions $2000-$20FF,$3000-$3FFF
//
// While statements are laid out, each one that occupies bytes is asked whether it would reach into the last ten bytes
// of its region. If so, everything from it on moves to the next region. Say LDA table,X (3 bytes) is to stand at $20F4.
// It would end behind $20F6, in the reserve, so two statements are inserted before it:
//
//     20F4  JMP $3000      the bridge: execution goes on where the code goes on
//           .org $3000
//     3000  LDA table,X
//
// Behind a JMP, RTS or RTI, and before a reservation, no bridge is needed. The inverted branch of a long-branch pair
// and its JMP stay together: the branch jumps over exactly three bytes. The reserve is what makes room for all this: a
// JMP that may not be cut off from its branch still fits (3 bytes), and the bridge behind it too.
//
// Layout ends: a spill makes the next region the current one, by number and not by address, so that the number only
// grows; at the last region nothing spills any more, and each statement can be moved only as often as there are
// regions.
#include "passes/code_regions.h"

#include <algorithm>
#include <utility>

#include "base/format.h"

namespace kiln {
namespace {

constexpr int64_t reserve = 9;  // the last bytes of a region, less one, that no statement may reach into
constexpr uint32_t bridgeSize = 3;

bool endsExecution(const AsLine* line) {
  return line != nullptr && line->kind == Kind::Instruction &&
         (line->mnemonic == Mnemonic::JMP || line->mnemonic == Mnemonic::RTS || line->mnemonic == Mnemonic::RTI);
}

AsLine makeOrg(std::string_view address, uint32_t lineNumber) {
  AsLine line;
  line.kind = Kind::Org;
  line.operand = address;
  line.lineNumber = lineNumber;
  line.autoSpill = true;
  return line;
}

AsLine makeBridge(std::string_view address, uint32_t lineNumber) {
  AsLine line = makeOrg(address, lineNumber);
  line.kind = Kind::Instruction;
  line.mnemonic = Mnemonic::JMP;
  line.mode = Mode::Absolute;
  line.size = bridgeSize;
  return line;
}

}  // namespace

void RegionList::declare(std::vector<uint32_t> bounds) {
  bounds_ = std::move(bounds);
  steps_ = 0;
  byAddress_.clear();
}

int32_t RegionList::find(uint32_t address) const {
  if (!byAddress_.empty()) return byAddress_[address];
  size_t region = 0;
  while (region < count() && (address < start(region) || address > end(region)))
    ++region;
  steps_ += region;
  if (steps_ > 0x10000) indexAddresses();
  return region == count() ? -1 : static_cast<int32_t>(region);
}

// Gives every address its first region. `nextFree` leads over addresses that have one, so that each is visited once.
void RegionList::indexAddresses() const {
  byAddress_.assign(0x10000, -1);
  std::vector<uint32_t> nextFree(0x10001);
  for (uint32_t i = 0; i < nextFree.size(); ++i)
    nextFree[i] = i;
  const auto freeFrom = [&nextFree](uint32_t address) {
    uint32_t root = address;
    while (nextFree[root] != root)
      root = nextFree[root];
    while (nextFree[address] != root)
      address = std::exchange(nextFree[address], root);
    return root;
  };
  for (size_t i = 0; i < count(); ++i) {
    for (uint32_t address = freeFrom(start(i)); address <= end(i); address = freeFrom(address)) {
      byAddress_[address] = static_cast<int32_t>(i);
      nextFree[address] = address + 1;
    }
  }
}

void RegionGuard::locate(uint32_t pc) {
  const int32_t region = regions_.find(pc);
  inRegion_ = region >= 0;
  if (inRegion_) current_ = static_cast<size_t>(region);
}

void RegionGuard::enterNext() {
  ++current_;
  inRegion_ = true;
}

// A later list may be shorter than the region number reached so far, which then counts as the last.
size_t RegionGuard::current() const { return std::min(current_, regions_.count() - 1); }

bool RegionGuard::watches(const AsLine& line) const {
  return regions_.count() != 0 && inRegion_ && !suspended_ && emitsBytes(line.kind) && line.size > 0;
}

void RegionGuard::checkOverflow(const AsLine& line, uint32_t pc) {
  if (!watches(line) || !isLast() || overflowReported_) return;
  const uint32_t end = regions_.end(current());
  if (uint64_t{pc} + line.size <= uint64_t{end} + 1) return;
  overflowReported_ = true;
  diagnostics_.errorAt(line.lineNumber, {"program exceeds the declared .code_regions (last region ends at ",
                                         dollarHex(end), ", tried to emit past it at PC ", dollarHex(pc),
                                         "). Reduce code size or add a larger region to the layout."});
}

size_t RegionGuard::spill(const AsLine& line, const AsLine* previous, uint32_t pc, AsLine (&inserted)[2]) {
  if (!watches(line) || isLast()) return 0;
  const int64_t end = regions_.end(current_);
  if (end < reserve || int64_t{pc} + line.size <= end - reserve) return 0;
  if (endsExecution(previous) || line.kind == Kind::Space) {
    inserted[0] = makeOrg(nextStartText(), line.lineNumber);
    return 1;
  }
  if (previous != nullptr && previous->longBranchMarked) return 0;
  if (int64_t{pc} + bridgeSize > end + 1) {
    diagnostics_.errorAt(line.lineNumber, {"region ", dollarHex(regions_.start(current_)), "-", dollarHex(end),
                                           " too full for auto-spill JMP bridge at PC ", dollarHex(pc)});
    return 0;
  }
  inserted[0] = makeBridge(nextStartText(), line.lineNumber);
  inserted[1] = makeOrg(inserted[0].operand, line.lineNumber);
  return 2;
}

bool RegionGuard::moveBlock(std::vector<AsLine>& statements, size_t spillPoint, uint32_t pc) {
  if (regions_.count() == 0 || isLast()) return false;
  const uint64_t room = uint64_t{regions_.end(current_)} + 1;
  uint64_t blockEnd = pc;
  for (size_t i = spillPoint + 1; i < statements.size() && blockEnd <= room; ++i) {
    if (statements[i].kind == Kind::SpillPoint || statements[i].kind == Kind::Org) break;
    blockEnd += statements[i].size;
  }
  if (blockEnd <= room) return false;
  statements[spillPoint].kind = Kind::Org;
  statements[spillPoint].operand = nextStartText();
  return true;
}

std::string_view RegionGuard::nextStartText() { return texts_.join({dollarHex(nextStart())}); }

}  // namespace kiln
