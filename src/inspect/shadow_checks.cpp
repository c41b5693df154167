#include "inspect/shadow_checks.h"

#include <algorithm>

#include "base/format.h"
#include "base/text.h"
#include "inspect/near_names.h"

namespace kiln {
namespace {

constexpr size_t mostPieces = 41;

// The bytes of the stage besides those of the pieces: the copy routine, and six for each piece and for the end.
constexpr uint64_t routineSize = 109;
constexpr uint64_t entrySize = 6;

}  // namespace

void ShadowChecks::finish() {
  if (output_ == OutputKind::Prg || ranges_.data() == nullptr) return;
  const ShadowPlan& plan = program_.assembler.shadowPlan;
  plan.stageAddress == 0 ? checkHalf() : checkStage();
}

void ShadowChecks::lookForStage(std::string_view vanishedWord) {
  constexpr std::string_view directive = ".shadow_stage";
  if (startsWithIgnoringCase(vanishedWord, directive) || isNear(vanishedWord, directive)) hasLostStage_ = true;
}

// A stage that vanishes, or has no value because of an unknown name, is reported as that.
void ShadowChecks::checkHalf() {
  if (hasLostStage_ && findings_.wants(Check::Vanished)) return;
  MessageList warnings;
  Evaluator evaluator(program_.iteration().symbols, warnings);
  const int64_t stage = evaluator.evaluate(stageOperand_);
  if (stage != 0 || !warnings.empty()) return;
  findings_.add(Check::HalfShadow,
                {.at = ranges_,
                 .text = "without a stage the shadow ranges have no effect: add '.shadow_stage' with the address of "
                         "free memory"});
}

void ShadowChecks::checkStage() {
  if (!program_.isAssembled) return;
  Pieces pieces;
  const std::vector<size_t> owners = split(pieces);
  if (pieces.shadow.size() > mostPieces) {
    findings_.add(Check::ShadowPieces,
                  {.at = ranges_,
                   .text = concat({decimal(static_cast<int64_t>(pieces.shadow.size())),
                                   " pieces of the program are in the shadow ranges, and with more than 41 the "
                                   "routine that copies them never ends"})});
  }
  // Banked output loads and copies the stage before anything else.
  if (pieces.shadow.empty() || output_ == OutputKind::BankedXex) return;
  const uint64_t stageEnd = endOfStage(pieces.shadow);
  for (size_t i = 0; i < pieces.plain.size(); ++i) {
    if (overwrites(pieces.plain[i], stageEnd)) return reportStageInUse(stageEnd, segments_[owners[i]]);
  }
}

// Cuts the segments as the writer does. The result has the index of the segment for each plain piece.
std::vector<size_t> ShadowChecks::split(Pieces& pieces) const {
  const ShadowSplitter splitter(program_.assembler.shadowPlan);
  std::vector<size_t> owners;
  for (size_t i = 0; i < segments_.size(); ++i) {
    const AsSegment& segment = program_.assembler.segments[i];
    const bool isElsewhere = output_ == OutputKind::BankedXex && (segment.cloaked || segments_[i].written.has_value());
    if (!segment.bytes.empty() && !isElsewhere) splitter.split(segment, pieces);
    owners.resize(pieces.plain.size(), i);
  }
  return owners;
}

uint64_t ShadowChecks::endOfStage(const std::vector<Piece>& pieces) const {
  uint64_t end = program_.assembler.shadowPlan.stageAddress + routineSize + entrySize * (pieces.size() + 1);
  for (const Piece& piece : pieces)
    end += piece.bytes.size();
  return end;
}

void ShadowChecks::reportStageInUse(uint64_t stageEnd, const PlacedSegment& segment) {
  findings_.add(
      Check::StageInUse,
      {.at = stage_,
       .text = concat({"the stage takes ", dollarHex(program_.assembler.shadowPlan.stageAddress), "-",
                       dollarHex(static_cast<int64_t>(stageEnd - 1)), " and overwrites bytes of the program"}),
       .notes = {{segment.at, "they are in the segment that begins here: move the stage to free memory"}}});
}

// True when the stage replaces a byte of the piece, other than the zeros of memory that is only reserved.
bool ShadowChecks::overwrites(const Piece& piece, uint64_t stageEnd) const {
  const uint64_t stage = program_.assembler.shadowPlan.stageAddress;
  const uint64_t from = std::max<uint64_t>(piece.address, stage);
  const uint64_t to = std::min<uint64_t>({piece.address + piece.bytes.size(), stageEnd, addressCount});
  for (uint64_t address = from; address < to; ++address) {
    if (piece.bytes[address - piece.address] != 0) return true;
  }
  return false;
}

}  // namespace kiln
