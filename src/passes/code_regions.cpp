// A program whose memory is in pieces declares them:
//
//     .code_regions $2000-$20FF,$3000-$3FFF
//
// When a statement that takes bytes would reach into the last ten bytes of its region, everything from it on moves to
// the next region. Say LDA table,X (3 bytes) is next at $20F4. It would end after $20F6, in the reserve, so two
// statements are inserted before it:
//
//     20F4  JMP $3000      the bridge: execution goes where the code goes
//           .org $3000
//     3000  LDA table,X
//
// After a JMP, RTS or RTI, and before a reservation, no bridge is needed; but an empty line or a comment line after
// that JMP brings the bridge back, because only the line directly before counts. The inverted branch of a long-branch
// pair and its JMP stay together: the branch jumps over exactly three bytes. The reserve has room for such a JMP (3
// bytes) and for the bridge after it.
//
// This ends: a spill makes the next region the current one, by number and not by address, so the number only grows. In
// the last region nothing spills, so a statement moves at most as often as there are regions.
#include "passes/code_regions.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "base/format.h"

namespace kiln {
namespace {

constexpr int64_t reserve = 10;  // bytes at the end of a region that no statement may reach into
constexpr uint32_t bridgeSize = 3;

bool endsExecution(const AsLine* line) {
  return line != nullptr && line->kind == Kind::Instruction &&
         (line->mnemonic == Mnemonic::JMP || line->mnemonic == Mnemonic::RTS || line->mnemonic == Mnemonic::RTI);
}

AsLine makeOrg(std::string_view address, uint32_t lineNumber) {
  AsLine line;
  line.kind = Kind::Org;
  line.setOperand(address);
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

// Regions may overlap, so the address space is cut wherever the first region that holds an address may change.
void RegionList::declare(std::vector<uint32_t> bounds) {
  bounds_ = std::move(bounds);
  cuts_.clear();
  std::vector<Cut> toggles;
  for (size_t i = 0; i < count(); ++i) {
    if (start(i) > end(i)) continue;
    toggles.push_back({start(i), static_cast<int32_t>(i)});
    toggles.push_back({end(i) + 1, static_cast<int32_t>(i)});
  }
  std::sort(toggles.begin(), toggles.end(), isBefore);
  std::set<int32_t> open;
  for (size_t i = 0; i < toggles.size(); ++i) {
    if (!open.insert(toggles[i].region).second) open.erase(toggles[i].region);
    const bool isLastHere = i + 1 == toggles.size() || toggles[i + 1].address != toggles[i].address;
    if (isLastHere) cuts_.push_back({toggles[i].address, open.empty() ? -1 : *open.begin()});
  }
}

int32_t RegionList::find(uint32_t address) const {
  const auto after = std::upper_bound(cuts_.begin(), cuts_.end(), Cut{address, 0}, isBefore);
  return after == cuts_.begin() ? -1 : std::prev(after)->region;
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

// A later list may have fewer regions than have been passed; its last one is then the current one.
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

RegionGuard::Spill RegionGuard::spill(const AsLine& line, const AsLine* previous, uint32_t pc) {
  if (!watches(line) || isLast()) return {};
  const int64_t end = regions_.end(current_);
  if (end + 1 < reserve || int64_t{pc} + line.size + reserve <= end + 1) return {};
  if (endsExecution(previous) || line.kind == Kind::Space) return {{}, makeOrg(nextStartText(), line.lineNumber)};
  if (previous != nullptr && previous->longBranchMarked) return {};
  if (int64_t{pc} + bridgeSize > end + 1) {
    diagnostics_.errorAt(line.lineNumber, {"region ", dollarHex(regions_.start(current_)), "-", dollarHex(end),
                                           " too full for auto-spill JMP bridge at PC ", dollarHex(pc)});
    return {};
  }
  const std::string_view address = nextStartText();
  return {makeBridge(address, line.lineNumber), makeOrg(address, line.lineNumber)};
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
  statements[spillPoint].setOperand(nextStartText());
  return true;
}

std::string_view RegionGuard::nextStartText() { return texts_.join({dollarHex(nextStart())}); }

}  // namespace kiln
