// A row of the picture is 4 KB, and each of its 16 cells a page. Ordinary memory is on the left, and all banks are
// beside it at a smaller scale. Kinds of bytes differ by colour and by pattern, so that the picture can be printed.
#include "inspect/map_svg.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/format.h"
#include "inspect/map_panel.h"
#include "inspect/map_styles.h"
#include "inspect/svg_writer.h"

namespace kiln {
namespace {

constexpr double margin = 28;
constexpr double labelWidth = 46;  // of the addresses before the rows
constexpr double mainTop = 96;
constexpr double columnWidth = 750;  // of the left column
constexpr double gap = 36;           // between the columns of the page
constexpr double smallText = 9;
constexpr double plainText = 11;
constexpr double lineHeight = 16;
constexpr size_t mostColumns = 4;  // of banks
constexpr size_t tableRows = 12;
constexpr double routinesLeft = 400;
constexpr AddressRange hardware = {0xD000, 0xD7FF};

std::string bytesText(uint64_t count) {
  return concat({decimal(static_cast<int64_t>(count)), count == 1 ? " byte" : " bytes"});
}

class MapPicture {
 public:
  explicit MapPicture(const MemoryMap& map) : map_(map) {}

  std::string render();

 private:
  std::string pageTitle() const { return "Memory map of " + map_.program; }
  void drawTitle();
  void placeMain();
  void drawLegend();
  void drawSwatch(std::string_view name, std::string_view style);
  void drawSegments(double y);
  void drawRoutines(double y);
  void beginTable(double x, double& y, std::string_view title);
  void endTable(double x, double y, size_t left);
  void placeBanks();
  void drawRows(const Panel& panel);
  void drawRange(const Panel& panel, const AddressRange& range, std::string_view style);
  void drawContents();
  void drawBegin(const Panel& panel, const AddressRange& range);
  void drawName(const Panel& panel, const AddressRange& range, std::string_view name);
  bool isOverlap(size_t space, uint32_t address) const;

  const MemoryMap& map_;
  SvgWriter svg_;
  std::vector<Panel> panels_;  // by space
  double right_ = 0;           // of everything
  double bottom_ = 0;          // of everything
  double swatchX_ = margin;
  double swatchY_ = 0;
};

std::string MapPicture::render() {
  svg_.raw(patterns);
  drawTitle();
  placeMain();
  drawLegend();
  const double tables = bottom_ + lineHeight;
  drawSegments(tables);
  drawRoutines(tables);
  placeBanks();
  for (const Panel& panel : panels_)
    drawRows(panel);
  drawContents();
  return svg_.finish(right_ + margin, bottom_ + margin, pageTitle());
}

void MapPicture::drawTitle() {
  uint64_t bytes = 0;
  for (const MappedSegment& segment : map_.segments)
    bytes += segment.size;
  const size_t count = map_.segments.size();
  svg_.text(margin, 44, 18, SvgWriter::cut(pageTitle(), 18, columnWidth), Anchor::Start, "font-weight=\"bold\"");
  svg_.text(
      margin, 64, plainText,
      concat({bytesText(bytes), " in ", decimal(static_cast<int64_t>(count)), count == 1 ? " segment" : " segments"}));
}

void MapPicture::placeMain() {
  panels_.push_back({margin + labelWidth, mainTop, mainScale, map_.spaces.front().window});
  for (uint32_t page = 0; page < pagesInRow; ++page) {
    svg_.text(panels_.front().x + page * mainScale.pageWidth + 2, mainTop - 6, smallText,
              dollarHex(int64_t{page} * pageSize, 3).replace(0, 1, "+"));
  }
  right_ = panels_.front().x + pagesInRow * mainScale.pageWidth;
  bottom_ = mainTop + 16 * mainScale.rowPitch;
}

// The uses that occur, with their bytes, in lines that wrap.
void MapPicture::drawLegend() {
  std::array<uint64_t, useCount> bytes{};
  for (const Block& block : map_.blocks)
    bytes[static_cast<size_t>(block.use)] += block.range.size();
  swatchY_ = bottom_ + 10;
  for (const UseStyle& style : useStyles) {
    const uint64_t count = bytes[static_cast<size_t>(style.use)];
    if (count != 0) drawSwatch(concat({style.name, ", ", bytesText(count)}), style.fill);
  }
  drawSwatch("not loaded", "fill=\"#fff\"");
  if (map_.isForAtari) drawSwatch("hardware", hardwareFill);
  if (map_.bankWindow.has_value()) drawSwatch("bank window", windowStroke);
  const auto isCode = [](const Region& region) { return region.name == codeRegionName; };
  if (std::any_of(map_.regions.begin(), map_.regions.end(), isCode)) drawSwatch("code region", regionStroke);
  bottom_ = swatchY_ + lineHeight;
}

void MapPicture::drawSwatch(std::string_view name, std::string_view style) {
  constexpr double side = 12;
  const double width = side + 6 + SvgWriter::textWidth(name, plainText) + 18;
  if (swatchX_ + width > right_) {
    swatchX_ = margin;
    swatchY_ += lineHeight + 4;
  }
  const Box box{swatchX_, swatchY_, side * 1.5, side};
  svg_.rect(box, style);
  svg_.rect(box, style.starts_with("fill=\"none") ? style : thinStroke);
  svg_.text(swatchX_ + side * 1.5 + 5, swatchY_ + side - 2, plainText, name);
  swatchX_ += width + side / 2;
}

void MapPicture::beginTable(double x, double& y, std::string_view title) {
  y += lineHeight;
  svg_.text(x, y, plainText, title, Anchor::Start, "font-weight=\"bold\"");
}

// `left` are the rows that are not shown.
void MapPicture::endTable(double x, double y, size_t left) {
  if (left != 0) {
    y += lineHeight;
    svg_.text(x, y, plainText, concat({"and ", decimal(static_cast<int64_t>(left)), " more"}));
  }
  bottom_ = std::max(bottom_, y);
}

void MapPicture::drawSegments(double y) {
  beginTable(margin, y, "Segments");
  const size_t shown = std::min(map_.segments.size(), tableRows);
  for (size_t i = 0; i < shown; ++i) {
    const MappedSegment& segment = map_.segments[i];
    y += lineHeight;
    svg_.text(margin, y, plainText, rangeText(segment.start, segment.start + segment.size - 1));
    svg_.text(margin + 150, y, plainText, decimal(static_cast<int64_t>(segment.size)), Anchor::End);
    if (segment.space == 0) continue;
    svg_.text(margin + 164, y, plainText,
              SvgWriter::cut(map_.spaces[segment.space].name, plainText, routinesLeft - margin - 164 - lineHeight));
  }
  endTable(margin, y, map_.segments.size() - shown);
}

void MapPicture::drawRoutines(double y) {
  const std::vector<const MappedRoutine*> routines = largestRoutines(map_);
  beginTable(routinesLeft, y, "Largest routines");
  const size_t shown = std::min(routines.size(), tableRows);
  for (size_t i = 0; i < shown; ++i) {
    const Routine& routine = routines[i]->routine;
    y += lineHeight;
    svg_.text(routinesLeft, y, plainText, dollarHex(routine.address));
    svg_.text(routinesLeft + 90, y, plainText, decimal(static_cast<int64_t>(routine.size)), Anchor::End);
    svg_.text(routinesLeft + 104, y, plainText,
              SvgWriter::cut(routine.name, plainText, margin + columnWidth - routinesLeft - 104));
  }
  endTable(routinesLeft, y, routines.size() - shown);
}

// Banks fill columns as high as the left one, or higher when there would be more than four.
void MapPicture::placeBanks() {
  const auto heightOf = [](const Space& space) { return 22 + rowCount(space.window) * bankScale.rowPitch + 10; };
  double total = 0;
  for (size_t i = 1; i < map_.spaces.size(); ++i)
    total += heightOf(map_.spaces[i]);
  const double limit = std::max(bottom_, mainTop + total / mostColumns + heightOf(map_.spaces.front()));
  const double width = labelWidth + pagesInRow * bankScale.pageWidth;
  double x = right_ + gap;
  double y = mainTop - 16;
  for (size_t i = 1; i < map_.spaces.size(); ++i) {
    const Space& space = map_.spaces[i];
    if (y + heightOf(space) > limit) {
      x += width + gap;
      y = mainTop - 16;
    }
    svg_.text(x, y + 12, plainText,
              SvgWriter::cut(concat({space.name, ": ", bytesText(space.usedBytes)}), plainText, width), Anchor::Start,
              "font-weight=\"bold\"");
    panels_.push_back({x + labelWidth, y + 20, bankScale, space.window});
    y += heightOf(space);
    right_ = std::max(right_, x + width);
    bottom_ = std::max(bottom_, y);
  }
}

void MapPicture::drawRows(const Panel& panel) {
  forEachRow(panel.window, [&](const AddressRange& part) {
    const Box box = boxOf(panel, part);
    svg_.text(panel.x - 6, box.y + box.height / 2 + 4, panel.scale.rowHeight > 20 ? plainText : smallText,
              dollarHex(part.first & ~(rowSize - 1)), Anchor::End);
    svg_.rect(box, thinStroke);
    const uint32_t firstLine = part.first / pageSize + 1;
    const double x = panel.x + firstLine % pagesInRow * panel.scale.pageWidth;
    svg_.verticalLines({x, box.y, panel.scale.pageWidth, box.height}, part.last / pageSize + 1 - firstLine, pageStroke);
  });
}

void MapPicture::drawRange(const Panel& panel, const AddressRange& range, std::string_view style) {
  forEachRow(range, [&](const AddressRange& part) { svg_.rect(boxOf(panel, part), style); });
}

void MapPicture::drawContents() {
  const Panel& main = panels_.front();
  if (map_.isForAtari) {
    drawRange(main, hardware, hardwareFill);
    drawName(main, hardware, "hardware");
  }
  if (map_.bankWindow.has_value()) {
    drawRange(main, *map_.bankWindow, windowStroke);
    drawName(main, *map_.bankWindow, "bank window");
  }
  for (const Block& block : map_.blocks)
    drawRange(panels_[block.space], block.range, styleOf(block.use).fill);
  for (const Overlap& overlap : map_.overlaps)
    drawRange(panels_[overlap.space], overlap.range, styleOf(Use::Overlap).fill);
  for (const Region& region : map_.regions) {
    if (region.name == codeRegionName) drawRange(main, region.range, regionStroke);
  }
  for (const MappedRoutine& routine : map_.routines) {
    if (isOverlap(routine.space, routine.range.first)) continue;
    drawBegin(panels_[routine.space], routine.range);
    drawName(panels_[routine.space], routine.range, routine.routine.name);
  }
}

// Where segments overlap, the names would, too.
bool MapPicture::isOverlap(size_t space, uint32_t address) const {
  const auto after = std::upper_bound(
      map_.overlaps.begin(), map_.overlaps.end(), std::pair(space, address),
      [](const auto& place, const Overlap& overlap) { return place < std::pair(overlap.space, overlap.range.first); });
  if (after == map_.overlaps.begin()) return false;
  const Overlap& overlap = *std::prev(after);
  return overlap.space == space && address <= overlap.range.last;
}

// A line where a routine begins, unless it is too small to be told from the next one.
void MapPicture::drawBegin(const Panel& panel, const AddressRange& range) {
  const Box box = boxOf(panel, {range.first, std::min(range.last, range.first | (rowSize - 1))});
  if (box.width > 2 * thinnest) svg_.verticalLines(box, 1, beginStroke);
}

// In the widest part of the range that is in one row, if there is room.
void MapPicture::drawName(const Panel& panel, const AddressRange& range, std::string_view name) {
  Box widest{};
  forEachRow(range, [&](const AddressRange& part) {
    const Box box = boxOf(panel, part);
    if (box.width > widest.width) widest = box;
  });
  const double width = SvgWriter::textWidth(name, smallText);
  if (width + 6 > widest.width) return;
  const double y = widest.y + (widest.height + smallText) / 2 - 1;
  svg_.rect({widest.x + 2, y - smallText + 1, width + 2, smallText + 1}, R"(fill="#fff" fill-opacity="0.7")");
  svg_.text(widest.x + 3, y, smallText, name);
}

}  // namespace

std::string renderMapAsSvg(const MemoryMap& map) { return MapPicture(map).render(); }

}  // namespace kiln
