#include "machine/display_list.h"

#include <algorithm>

#include "machine/font.h"

namespace kiln {
namespace {

struct Mode {
  int height;   // of a row, in scan lines
  int bytes;    // in a row of the usual width
  int bits;     // for each point
  int stretch;  // how often each line of a letter is shown; 0: points without letters
};

// By the lower four bits of an instruction; 0 is empty lines and 1 a jump.
constexpr Mode modes[16] = {
    {1, 0, 1, 0},  {1, 0, 1, 0},   {8, 40, 1, 1}, {10, 40, 1, 1}, {8, 40, 2, 1}, {16, 40, 2, 2},
    {8, 20, 1, 1}, {16, 20, 1, 2}, {8, 10, 2, 0}, {4, 10, 1, 0},  {4, 20, 2, 0}, {2, 20, 1, 0},
    {1, 20, 1, 0}, {2, 40, 2, 0},  {1, 40, 2, 0}, {1, 40, 1, 0},
};

constexpr int usualWidth = 160;   // of a playfield, in colour clocks
constexpr int usualLeft = 48;     // its first one
constexpr int widthStep = 32;     // to the narrow and the wide playfield
constexpr int refreshCycles = 9;  // of the memory, in every line
constexpr uint8_t loadsAddress = 0x40, interrupts = 0x80, scrolls = 0x10;
constexpr uint8_t readsList = 0x20;   // in dmaControl; the lower two bits are the width
constexpr uint8_t systemFont = 0xE0;  // its page

// The chip counts in blocks of this size: after the last address of one comes its first.
constexpr int listBlock = 0x0400, dataBlock = 0x1000;

uint16_t next(uint16_t address, int block) {
  return static_cast<uint16_t>((address & ~(block - 1)) | ((address + 1) & (block - 1)));
}

bool isFine(int mode) { return mode == 2 || mode == 3 || mode == 15; }

Point pointOf(int mode, uint8_t code, int bits) {
  if (isFine(mode)) return bits != 0 ? Point::Ink : Point::Paper;
  if (mode == 6 || mode == 7) return static_cast<Point>(bits != 0 ? 1 + code / 64 : 0);
  const bool isInverse = (mode == 4 || mode == 5) && code >= 0x80;
  return isInverse && bits == 3 ? Point::Field3 : static_cast<Point>(bits);
}

}  // namespace

uint8_t DisplayList::fetch() {
  const uint16_t place = list_;
  list_ = next(list_, listBlock);
  return machine_.peek(place);
}

uint16_t DisplayList::fetchWord() {
  const uint8_t low = fetch();
  return static_cast<uint16_t>(low | fetch() << 8);
}

void DisplayList::restart() {
  list_ = static_cast<uint16_t>(chips_.antic[displayListAddress] | chips_.antic[displayListAddress + 1] << 8);
  height_ = line_ = 0;
  ended_ = false;
}

bool DisplayList::nextLine() {
  points.fill(Point::Background);
  stolenCycles = refreshCycles;
  if (ended_ || (chips_.antic[dmaControl] & readsList) == 0) return false;
  if (line_ == height_) readInstruction();
  if (rowBytes_ > 0) showRow();
  return ++line_ == height_ && (instruction_ & interrupts) != 0;
}

void DisplayList::readInstruction() {
  instruction_ = fetch();
  const int mode = instruction_ & 15;
  line_ = 0;
  rowBytes_ = 0;
  height_ = mode == 0 ? (instruction_ >> 4 & 7) + 1 : modes[mode].height;
  stolenCycles += 1;
  if (mode == 1) {
    ended_ = (instruction_ & loadsAddress) != 0;
    list_ = fetchWord();
  } else if (mode > 1) {
    if ((instruction_ & loadsAddress) != 0) data_ = fetchWord();
    readRow();
  }
}

// A row that scrolls is read in the next larger width.
void DisplayList::readRow() {
  const Mode& mode = modes[instruction_ & 15];
  const int width = chips_.antic[dmaControl] & 3;
  if (width == 0) return;
  const int readWidth = std::min(3, width + ((instruction_ & scrolls) != 0));
  rowBytes_ = mode.bytes * (usualWidth + widthStep * (readWidth - 2)) / usualWidth;
  for (int i = 0; i < rowBytes_; ++i) {
    row_[static_cast<size_t>(i)] = machine_.peek(data_);
    data_ = next(data_, dataBlock);
  }
  stolenCycles += rowBytes_;
}

// Byte after byte, each from its highest bit on.
void DisplayList::showRow() {
  const int number = instruction_ & 15, width = chips_.antic[dmaControl] & 3;
  const Mode& mode = modes[number];
  const bool isMoved = (instruction_ & scrolls) != 0;
  const int left = usualLeft - widthStep / 2 * (width - 2), right = left + usualWidth + widthStep * (width - 2);
  const int pointWidth = 2 * usualWidth * mode.bits / (mode.bytes * 8);
  int at = 2 * left;
  if (isMoved) at += 2 * (chips_.antic[horizontalScroll] & 15) - (width < 3 ? widthStep : 0);
  for (int i = 0; i < rowBytes_; ++i) {
    const uint8_t code = row_[static_cast<size_t>(i)];
    const uint8_t bits = mode.stretch != 0 ? glyphRow(code) : code;
    for (int shift = 8 - mode.bits; shift >= 0; shift -= mode.bits) {
      const Point point = pointOf(number, code, bits >> shift & ((1 << mode.bits) - 1));
      for (int end = at + pointWidth; at < end; ++at) {
        if (at >= 2 * left && at < 2 * right) points[static_cast<size_t>(at)] = point;
      }
    }
  }
  if (mode.stretch != 0) stolenCycles += rowBytes_;
}

// The 8 points of a letter in this line. The system's letters are this project's own.
uint8_t DisplayList::glyphRow(uint8_t code) const {
  const int number = instruction_ & 15, row = line_ / modes[number].stretch;
  if (row >= 8) return 0;
  const bool isInverse = (number == 2 || number == 3) && code >= 0x80;
  const int glyph = number == 6 || number == 7 ? code & 0x3F : code & 0x7F;
  const uint8_t page = chips_.antic[fontPage];
  int bits = 0;
  if ((page & 0xFC) != systemFont) {
    bits = machine_.peek((page & 0xFE) * 256 + glyph * 8 + row);
  } else {
    for (size_t column = 0; column < 8; ++column)
      bits = bits << 1 | glyphPoint(static_cast<size_t>(glyph) % glyphCount, column, static_cast<size_t>(row));
  }
  return static_cast<uint8_t>(isInverse ? ~bits : bits);
}

}  // namespace kiln
