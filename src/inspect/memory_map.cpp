// The addresses of each space are painted with their uses: first what a segment fills, then what its statements say
// about it, last what the shadow ranges say. Then the colours are read off in order. All 65,536 addresses of a space
// are kept, so the work grows with the bytes of the program and not with its segments times its ranges.
#include "inspect/memory_map.h"

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>
#include <utility>

#include "base/format.h"
#include "driver/output_file.h"
#include "inspect/placed_segments.h"
#include "output/pieces.h"
#include "output/shadow.h"

namespace kiln {
namespace {

Use useOf(const AsLine& line) {
  if (line.kind == Kind::Instruction) return Use::Code;
  return line.kind == Kind::Space ? Use::Reserved : Use::Data;
}

// The addresses of one space.
class Canvas {
 public:
  // Paints `size` addresses from `start` (0..65535) on. What would be past the last address is left out.
  void paint(uint32_t start, uint64_t size, Use use) {
    const uint32_t end = endOf(start, size);
    std::fill(uses_.begin() + start, uses_.begin() + end, use);
    first_ = std::min(first_, start);
    end_ = std::max(end_, end);
  }
  // Counts a segment that fills these addresses.
  void count(uint32_t start, uint64_t size) {
    for (uint32_t at = start; at < endOf(start, size); ++at)
      ++times_[at];
  }

  Use useAt(uint32_t address) const { return times_[address] > 1 ? Use::Overlap : uses_[address]; }
  uint32_t timesAt(uint32_t address) const { return times_[address]; }

  // Calls `take(range)` for each run of painted addresses for which `valueAt` is the same.
  template <typename ValueAt, typename Take>
  void forEachRun(ValueAt valueAt, Take take) const {
    for (uint32_t at = first_; at < end_;) {
      const uint32_t begin = at;
      while (at < end_ && valueAt(at) == valueAt(begin))
        ++at;
      take(AddressRange{begin, at - 1});
    }
  }

  void clear() {
    if (first_ < end_) {
      std::fill(uses_.begin() + first_, uses_.begin() + end_, Use::Free);
      std::fill(times_.begin() + first_, times_.begin() + end_, 0);
    }
    first_ = addressCount;
    end_ = 0;
  }

 private:
  static uint32_t endOf(uint32_t start, uint64_t size) {
    return static_cast<uint32_t>(std::min<uint64_t>(start + size, addressCount));
  }

  std::array<Use, addressCount> uses_{};
  std::array<uint32_t, addressCount> times_{};
  uint32_t first_ = addressCount;  // of the painted addresses
  uint32_t end_ = 0;
};

class MemoryMapper {
 public:
  MemoryMapper(const Program& program, const Placements& placements)
      : program_(program),
        placements_(placements),
        segments_(program.assembler.segments),
        banking_(withDefaults(program.assembler.settings.banking)),
        output_(outputKindOf(program)),
        canvas_(std::make_unique<Canvas>()) {}

  MemoryMap run();

 private:
  void nameProgram();
  void assignSpaces();
  size_t spaceOf(size_t segment);
  Space describeBank(const SegmentBank& bank) const;
  void findShadow();
  void findStatements();
  void paintSpaces();
  void paintSegment(size_t index);
  void readSpace(size_t space);
  void measureRegions();
  void mapRoutines();

  const Program& program_;
  const Placements& placements_;
  const std::vector<AsSegment>& segments_;
  const BankedSettings banking_;
  const OutputKind output_;
  std::unique_ptr<Canvas> canvas_;
  MemoryMap map_;
  std::vector<size_t> spaces_;                    // by segment
  std::unordered_map<uint64_t, size_t> numbers_;  // of the spaces, by what tells them apart
  std::vector<size_t> firstStatements_;           // by segment, and one more
  Pieces pieces_;                                 // of what is in ordinary memory
};

MemoryMap MemoryMapper::run() {
  nameProgram();
  assignSpaces();
  findShadow();
  findStatements();
  paintSpaces();
  mapRoutines();
  return std::move(map_);
}

void MemoryMapper::nameProgram() {
  map_.program = chooseOutputPath(program_.options).value_or(program_.options.inputs.front());
  map_.isForAtari = output_ != OutputKind::Prg;
  if (output_ == OutputKind::BankedXex) map_.bankWindow = windowOf(BankKind::Plain, banking_);
}

void MemoryMapper::assignSpaces() {
  map_.spaces.push_back({.name = "main memory", .window = {0, addressCount - 1}});
  for (size_t i = 0; i < segments_.size(); ++i) {
    const AsSegment& segment = segments_[i];
    spaces_.push_back(spaceOf(i));
    if (segment.bytes.empty()) continue;
    map_.segments.push_back({spaces_.back(), segment.start, segment.bytes.size(), segment.cloaked});
  }
}

// A banked program's file leaves cloaked segments out: where they will be is not known here, so each number is a space
// of its own.
size_t MemoryMapper::spaceOf(size_t segment) {
  const AsSegment& bytes = segments_[segment];
  const SegmentBank& bank = placements_.segments[segment];
  const bool isLeftOut = bytes.cloaked && output_ == OutputKind::BankedXex;
  if (!isLeftOut && !bank.value.has_value()) return 0;
  constexpr uint64_t cloakedKey = uint64_t{1} << 40;
  const uint64_t key = isLeftOut ? cloakedKey + static_cast<uint32_t>(bytes.cloakedId)
                                 : static_cast<uint64_t>(bank.value->kind) << 16 | bank.value->value;
  const auto [entry, isNew] = numbers_.try_emplace(key, map_.spaces.size());
  if (!isNew) return entry->second;
  if (!isLeftOut) {
    map_.spaces.push_back(describeBank(bank));
  } else {
    const std::string number = bytes.cloakedId < 0 ? "" : concat({" ", decimal(bytes.cloakedId)});
    map_.spaces.push_back(
        {.name = concat({"cloaked", number}), .window = {bytes.start, bytes.start}, .isCloaked = true});
  }
  return entry->second;
}

Space MemoryMapper::describeBank(const SegmentBank& bank) const {
  constexpr std::array<std::string_view, 4> kinds = {"bank ", "code bank ", "data bank ", "regc bank "};
  const BankValue& value = *bank.value;
  std::string name = concat({kinds[static_cast<size_t>(value.kind)], decimal(value.value)});
  if (!bank.name.empty()) name += concat({" (", bank.name, ")"});
  return {.name = std::move(name), .window = windowOf(value.kind, banking_)};
}

void MemoryMapper::findShadow() {
  const ShadowPlan& plan = program_.assembler.shadowPlan;
  if (output_ == OutputKind::Prg || plan.stageAddress == 0) return;
  const ShadowSplitter splitter(plan);
  for (size_t i = 0; i < segments_.size(); ++i) {
    if (spaces_[i] == 0 && !segments_[i].bytes.empty()) splitter.split(segments_[i], pieces_);
  }
  if (pieces_.shadow.empty()) return;
  for (const Piece& piece : pieces_.shadow)
    map_.shadow.push_back({piece.address, piece.address + static_cast<uint32_t>(piece.bytes.size()) - 1});
  const auto end = std::min<uint64_t>(plan.stageAddress + stageSize(pieces_.shadow), addressCount);
  map_.stage = AddressRange{plan.stageAddress, static_cast<uint32_t>(end - 1)};
}

// Statements are in the order of their segments.
void MemoryMapper::findStatements() {
  size_t statement = 0;
  for (size_t segment = 0; segment <= segments_.size(); ++segment) {
    while (statement < placements_.statements.size() && placements_.statements[statement].segment < segment)
      ++statement;
    firstStatements_.push_back(statement);
  }
}

void MemoryMapper::paintSpaces() {
  std::vector<std::vector<size_t>> bySpace(map_.spaces.size());
  for (size_t i = 0; i < segments_.size(); ++i)
    bySpace[spaces_[i]].push_back(i);
  for (size_t space = 0; space < bySpace.size(); ++space) {
    canvas_->clear();
    if (space == 0 && map_.stage.has_value()) canvas_->paint(map_.stage->first, map_.stage->size(), Use::Stage);
    for (size_t segment : bySpace[space])
      paintSegment(segment);
    for (size_t i = 0; space == 0 && i < map_.shadow.size(); ++i)
      canvas_->paint(map_.shadow[i].first, map_.shadow[i].size(), Use::Shadow);
    readSpace(space);
    if (space == 0) measureRegions();
  }
}

void MemoryMapper::paintSegment(size_t index) {
  const AsSegment& segment = segments_[index];
  canvas_->paint(segment.start, segment.bytes.size(), segment.cloaked ? Use::Cloaked : Use::Reserved);
  canvas_->count(segment.start, segment.bytes.size());
  const std::vector<AsLine>& lines = program_.iteration().statements.lines;
  for (size_t i = firstStatements_[index]; i < firstStatements_[index + 1] && !segment.cloaked; ++i) {
    const uint64_t address = segment.start + placements_.statements[i].offset;
    if (emitsBytes(lines[i].kind) && address < addressCount)
      canvas_->paint(static_cast<uint32_t>(address), byteCount(lines[i]), useOf(lines[i]));
  }
}

void MemoryMapper::readSpace(size_t space) {
  Space& described = map_.spaces[space];
  canvas_->forEachRun([this](uint32_t at) { return canvas_->useAt(at); },
                      [&](AddressRange range) {
                        const Use use = canvas_->useAt(range.first);
                        if (use == Use::Free) return;
                        map_.blocks.push_back({space, range, use});
                        if (use != Use::Stage) described.usedBytes += range.size();
                        described.window.first = std::min(described.window.first, range.first);
                        described.window.last = std::max(described.window.last, range.last);
                      });
  canvas_->forEachRun([this](uint32_t at) { return canvas_->timesAt(at); },
                      [&](AddressRange range) {
                        const uint32_t times = canvas_->timesAt(range.first);
                        if (times > 1) map_.overlaps.push_back({space, range, times});
                      });
}

void MemoryMapper::measureRegions() {
  std::vector<uint32_t> usedBefore(addressCount + 1);
  for (uint32_t at = 0; at < addressCount; ++at) {
    const Use use = canvas_->useAt(at);
    usedBefore[at + 1] = usedBefore[at] + (use == Use::Free || use == Use::Stage ? 0 : 1);
  }
  const auto add = [&](std::string_view name, uint32_t first, uint32_t last) {
    if (first <= last && last < addressCount)
      map_.regions.push_back({name, {first, last}, usedBefore[last + 1] - usedBefore[first]});
  };
  if (output_ == OutputKind::BankedXex) add("main region", banking_.mainRegionLow, banking_.mainRegionHigh);
  const RegionList& regions = program_.iteration().codeRegions;
  for (size_t i = 0; i < regions.count(); ++i)
    add(codeRegionName, regions.start(i), regions.end(i));
}

void MemoryMapper::mapRoutines() {
  for (const Routine& routine : listRoutines(program_, placements_)) {
    const AsSegment& segment = segments_[routine.segment];
    const uint64_t segmentEnd = segment.start + segment.bytes.size();
    const uint64_t end = std::min<uint64_t>({routine.address + routine.size, segmentEnd, addressCount});
    const AddressRange range{routine.address, static_cast<uint32_t>(end) - 1};
    map_.routines.push_back({routine, spaces_[routine.segment], range});
  }
}

}  // namespace

std::vector<const MappedRoutine*> largestRoutines(const MemoryMap& map) {
  std::vector<const MappedRoutine*> routines;
  for (const MappedRoutine& mapped : map.routines) {
    if (mapped.routine.isCode) routines.push_back(&mapped);
  }
  std::stable_sort(routines.begin(), routines.end(),
                   [](const MappedRoutine* a, const MappedRoutine* b) { return a->routine.size > b->routine.size; });
  return routines;
}

std::string rangeText(uint64_t first, uint64_t last) {
  return concat({dollarHex(static_cast<int64_t>(first)), "-", dollarHex(static_cast<int64_t>(last))});
}

MemoryMap mapMemory(const Program& program, const Placements& placements) {
  return MemoryMapper(program, placements).run();
}

}  // namespace kiln
