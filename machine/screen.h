// The picture of an Atari, line by line while the beam draws it: the playfield, players and missiles in front of it or
// behind it, and what touches what.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "machine/chips.h"
#include "machine/display_list.h"
#include "machine/machine.h"

namespace kiln {

class Screen {
 public:
  // In points of mode 2. A playfield of the usual width has 16 points of border on either side.
  static constexpr size_t width = 352;
  static constexpr size_t height = 240;
  static constexpr int firstLine = 8;  // the scan line of the first row

  Screen(const Machine& machine, Chips& chips)
      : colours(width * height), machine_(machine), chips_(chips), list_(machine, chips) {}

  // Begins a scan line, firstLine..firstLine+height-1. True when the display list asks for an interrupt in it.
  bool beginLine(int line);
  // Draws the line up to this colour clock with the registers as they are. Call it before one changes.
  void drawUntil(int clock);
  int stolenCycles() const { return list_.stolenCycles + shapeCycles_; }

  // Row by row; each is 16 times the hue plus the brightness, as the chips number them.
  std::vector<uint8_t> colours;
  // As programs read them from $D000 on: missiles and players with playfields, then with players.
  std::array<uint8_t, 16> collisions = {};

 private:
  void readShapes(int line);
  uint8_t shapesAt(int clock, int firstPosition) const;
  void noteCollisions(uint8_t players, uint8_t missiles, Point point);
  uint8_t colourOf(uint8_t shapes, Point point) const;
  bool isInFront(int shape, Point point) const;

  const Machine& machine_;
  Chips& chips_;
  DisplayList list_;
  int line_ = 0, clock_ = 0, shapeCycles_ = 0;
};

}  // namespace kiln
