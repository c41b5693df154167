#include "inspect/map_text.h"

#include <algorithm>

#include "base/format.h"

namespace kiln {
namespace {

constexpr size_t routinesShown = 16;
constexpr size_t nameWidth = 24;

std::string counted(uint64_t count, std::string_view noun) {
  return concat({decimal(static_cast<int64_t>(count)), " ", noun, count == 1 ? "" : "s"});
}

void appendNumber(std::string& text, uint64_t number) {
  const std::string digits = decimal(static_cast<int64_t>(number));
  text.append(digits.size() < 8 ? 8 - digits.size() : 1, ' ');
  text += digits;
}

void appendName(std::string& text, std::string_view name) {
  text += concat({"  ", name});
  text.append(name.size() < nameWidth ? nameWidth - name.size() : 1, ' ');
}

class MapText {
 public:
  explicit MapText(const MemoryMap& map) : map_(map) {}

  std::string render() {
    showTitle();
    showSegments();
    showBanks();
    showRegions();
    showShadow();
    showOverlaps();
    showRoutines();
    return std::move(text_);
  }

 private:
  void showTitle();
  void showSegments();
  void showBanks();
  void showRegions();
  void showShadow();
  void showOverlaps();
  void showRoutines();
  void showSpace(size_t space) {
    if (space != 0) text_ += "  " + map_.spaces[space].name;
  }
  void showUsed(std::string_view name, const AddressRange& range, uint64_t used);

  const MemoryMap& map_;
  std::string text_;
};

void MapText::showTitle() {
  uint64_t size = 0;
  for (const MappedSegment& segment : map_.segments)
    size += segment.size;
  text_ += concat({map_.program, ": ", counted(size, "byte"), " in ", counted(map_.segments.size(), "segment"), "\n"});
}

void MapText::showSegments() {
  if (map_.segments.empty()) return;
  text_ += "\nSegments        bytes\n";
  for (const MappedSegment& segment : map_.segments) {
    text_ += "  " + rangeText(segment.start, segment.start + segment.size - 1);
    appendNumber(text_, segment.size);
    showSpace(segment.space);
    if (segment.isCloaked && segment.space == 0) text_ += "  cloaked";
    text_ += "\n";
  }
}

void MapText::showUsed(std::string_view name, const AddressRange& range, uint64_t used) {
  appendName(text_, name);
  text_ += rangeText(range);
  appendNumber(text_, used);
  appendNumber(text_, range.size() - used);
  text_ += "\n";
}

void MapText::showBanks() {
  bool isFirst = true;
  for (const Space& space : map_.spaces) {
    if (&space == map_.spaces.data() || space.isCloaked) continue;
    if (isFirst) text_ += "\nBanks                                    used    free\n";
    isFirst = false;
    showUsed(space.name, space.window, space.usedBytes);
  }
}

void MapText::showRegions() {
  if (map_.regions.empty()) return;
  text_ += "\nRegions                                  used    free\n";
  for (const Region& region : map_.regions)
    showUsed(region.name, region.range, region.usedBytes);
}

void MapText::showShadow() {
  if (!map_.stage.has_value()) return;
  text_ += "\nShadow code     bytes\n";
  for (const AddressRange& range : map_.shadow) {
    text_ += "  " + rangeText(range);
    appendNumber(text_, range.size());
    text_ += "\n";
  }
  text_ += "  " + rangeText(*map_.stage);
  appendNumber(text_, map_.stage->size());
  text_ += "  the stage, while the program loads\n";
}

void MapText::showOverlaps() {
  if (map_.overlaps.empty()) return;
  text_ += "\nOverlaps        bytes\n";
  for (const Overlap& overlap : map_.overlaps) {
    text_ += "  " + rangeText(overlap.range);
    appendNumber(text_, overlap.range.size());
    text_ += concat({"  in ", counted(overlap.segments, "segment")});
    showSpace(overlap.space);
    text_ += "\n";
  }
}

void MapText::showRoutines() {
  std::vector<const MappedRoutine*> routines = largestRoutines(map_);
  if (routines.empty()) return;
  routines.resize(std::min(routines.size(), routinesShown));
  text_ += "\nLargest routines             bytes\n";
  for (const MappedRoutine* mapped : routines) {
    const Routine& routine = mapped->routine;
    appendName(text_, routine.name);
    appendNumber(text_, routine.size);
    text_ += concat({"  ", dollarHex(routine.address)});
    if (routine.place.line != 0) text_ += concat({"  ", routine.place.file->path, ":", decimal(routine.place.line)});
    showSpace(mapped->space);
    text_ += "\n";
  }
}

}  // namespace

std::string renderMapAsText(const MemoryMap& map) { return MapText(map).render(); }

}  // namespace kiln
