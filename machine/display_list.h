// The display list of an Atari: which bytes each scan line of the playfield shows, and as what. All modes are known,
// but there is no vertical scrolling, and mode 3 has no special letters. As on the chip, a list cannot continue across
// a multiple of 1 KB, nor a picture's bytes across one of 4 KB.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "machine/chips.h"
#include "machine/machine.h"

namespace kiln {

// A scan line has 228 colour clocks, the unit of players' positions, and two points in each.
inline constexpr int clocksInLine = 228;

// What a point of the playfield shows. Ink has the hue of field colour 2 and the brightness of field colour 1.
enum class Point : uint8_t { Background, Field0, Field1, Field2, Field3, Paper, Ink };

class DisplayList {
 public:
  DisplayList(const Machine& machine, const Chips& chips) : machine_(machine), chips_(chips) {}

  // The first line of a picture comes next.
  void restart();
  // Reads the next scan line into `points`. True when the list asks for an interrupt in it.
  bool nextLine();

  std::array<Point, 2 * clocksInLine> points = {};
  int stolenCycles = 0;  // what reading this line takes away from the processor

 private:
  void readInstruction();
  void readRow();
  void showRow();
  uint8_t glyphRow(uint8_t code) const;
  uint8_t fetch();
  uint16_t fetchWord();

  const Machine& machine_;
  const Chips& chips_;
  uint16_t list_ = 0, data_ = 0;
  uint8_t instruction_ = 0;
  int height_ = 0, line_ = 0;  // of the current row
  bool ended_ = false;
  std::array<uint8_t, 48> row_ = {};
  int rowBytes_ = 0;
};

}  // namespace kiln
