// Two segments may be at the same addresses on purpose: a title picture that is shown while the rest is loaded, memory
// that is only reserved and filled later, variables that two modules share. So an overlap is reported when it loses
// something: a byte other than 0 is replaced by another one, and the loader has called nothing in between.
#include "inspect/overlaps.h"

#include <algorithm>

#include "base/format.h"

namespace kiln {
namespace {

constexpr uint32_t initWord = 0x02E2;

// The memory of one bank while a file is loaded.
class LoadedMemory {
 public:
  LoadedMemory() : bytes_(addressCount), owners_(addressCount) {}

  // Loads a segment with this index. The result is the index of the segment that loses a byte by it, or -1.
  int64_t load(size_t index, const AsSegment& segment) {
    int64_t loser = -1;
    const size_t count = std::min<size_t>(segment.bytes.size(), addressCount);
    for (size_t i = 0; i < count; ++i) {
      const size_t address = (segment.start + i) % addressCount;
      const bool isLost = bytes_[address] != 0 && bytes_[address] != segment.bytes[i];
      if (isLost && loser < 0) loser = owners_[address];
      bytes_[address] = segment.bytes[i];
      owners_[address] = static_cast<uint32_t>(index);
    }
    loaded_.push_back(&segment);
    return loser;
  }

  // Forgets everything, in a time that depends on what was loaded.
  void clear() {
    for (const AsSegment* segment : loaded_) {
      const size_t count = std::min<size_t>(segment->bytes.size(), addressCount);
      for (size_t i = 0; i < count; ++i)
        bytes_[(segment->start + i) % addressCount] = 0;
    }
    loaded_.clear();
  }

 private:
  std::vector<uint8_t> bytes_;    // 0 where nothing is
  std::vector<uint32_t> owners_;  // the segments that the bytes are from
  std::vector<const AsSegment*> loaded_;
};

bool callsInit(const AsSegment& segment) {
  return segment.start <= initWord && initWord + 2 <= segment.start + segment.bytes.size();
}

// Orders segments by the bank that they are written to, main memory first.
uint32_t bankKey(const PlacedSegment& segment) {
  if (!segment.written.has_value()) return 0;
  return (static_cast<uint32_t>(segment.written->kind) + 1) << 16 | segment.written->value;
}

class OverlapFinder {
 public:
  OverlapFinder(const Program& program, const PlacedSegments& segments, Findings& findings)
      : program_(program), segments_(segments), findings_(findings) {}

  void checkLoading();
  void checkPrg();

 private:
  std::vector<size_t> choose() const;
  void report(size_t earlier, size_t later);
  void reportShifted(const PlacedSegment& before, const PlacedSegment& segment, uint64_t address);

  const Program& program_;
  const PlacedSegments& segments_;
  Findings& findings_;
  const char* lastReported_ = nullptr;  // the statement with the last finding
};

// The segments with bytes. Cloaked ones are not loaded like the others, and other checks report banks that are not
// written as such.
std::vector<size_t> OverlapFinder::choose() const {
  std::vector<size_t> chosen;
  for (size_t i = 0; i < segments_.size(); ++i) {
    const PlacedSegment& segment = segments_[i];
    const bool isStray = segment.bank >= 0 && !segment.written.has_value();
    if (segment.size != 0 && !segment.isCloaked && !isStray) chosen.push_back(i);
  }
  return chosen;
}

void OverlapFinder::checkLoading() {
  std::vector<size_t> chosen = choose();
  std::stable_sort(chosen.begin(), chosen.end(),
                   [this](size_t a, size_t b) { return bankKey(segments_[a]) < bankKey(segments_[b]); });
  LoadedMemory memory;
  uint32_t bank = 0;
  for (size_t index : chosen) {
    const AsSegment& segment = program_.assembler.segments[index];
    if (bankKey(segments_[index]) != bank) memory.clear();
    bank = bankKey(segments_[index]);
    const int64_t loser = memory.load(index, segment);
    if (loser >= 0) report(static_cast<size_t>(loser), index);
    if (bank == 0 && callsInit(segment)) memory.clear();
  }
}

void OverlapFinder::report(size_t earlier, size_t later) {
  const PlacedSegment& first = segments_[earlier];
  const PlacedSegment& second = segments_[later];
  // A bank that begins twice is reported as such. Code that goes on in the next region is reported once.
  if ((first.bank >= 0 && first.bank == second.bank) || second.at.data() == lastReported_) return;
  lastReported_ = second.at.data();
  const auto endOf = [](const PlacedSegment& segment) { return segment.start + segment.size - 1; };
  const uint64_t from = std::max(first.start, second.start);
  const uint64_t to = std::min<uint64_t>({endOf(first), endOf(second), addressCount - 1});
  const std::string range =
      concat({" at ", dollarHex(static_cast<int64_t>(from)), "-", dollarHex(static_cast<int64_t>(to))});
  findings_.add(
      Check::Overlap,
      {.at = second.at,
       .text = concat({"this segment overwrites bytes of another one", from < to ? range : "", ": move one of them"}),
       .notes = {{first.at, "the other segment begins here"}}});
}

// The writer puts the segments one after the other, in the order of their addresses, and fills the gaps.
void OverlapFinder::checkPrg() {
  std::vector<const PlacedSegment*> ordered;
  for (const PlacedSegment& segment : segments_) {
    if (segment.size != 0) ordered.push_back(&segment);
  }
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const PlacedSegment* a, const PlacedSegment* b) { return a->start < b->start; });
  uint64_t end = 0;       // of the segment before
  uint64_t position = 0;  // where it ends when the file is loaded
  const PlacedSegment* before = nullptr;
  for (const PlacedSegment* segment : ordered) {
    position = before == nullptr ? segment->start : position + (std::max<uint64_t>(end, segment->start) - end);
    if (end > segment->start && segment->bank < 0) reportShifted(*before, *segment, position);
    position += segment->size;
    end = (segment->start + segment->size) % addressCount;
    before = segment;
  }
}

void OverlapFinder::reportShifted(const PlacedSegment& before, const PlacedSegment& segment, uint64_t address) {
  findings_.add(Check::Overlap,
                {.at = segment.at,
                 .text = concat({"this segment begins inside another one, so a PRG file loads it to ",
                                 dollarHex(static_cast<int64_t>(address)), " and not to ", dollarHex(segment.start)}),
                 .notes = {{before.at, "the other segment begins here"}}});
}

}  // namespace

void checkOverlaps(const Program& program, OutputKind output, const PlacedSegments& segments, Findings& findings) {
  if (!program.isAssembled) return;
  OverlapFinder finder(program, segments, findings);
  output == OutputKind::Prg ? finder.checkPrg() : finder.checkLoading();
}

}  // namespace kiln
