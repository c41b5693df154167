#include "machine/screen.h"

#include <algorithm>
#include <bit>

namespace kiln {
namespace {

constexpr int firstClock = 40;  // of the visible line
constexpr int endClock = firstClock + static_cast<int>(Screen::width) / 2;
constexpr uint8_t readsMissiles = 0x04, readsPlayers = 0x08, singleLines = 0x10;  // in dmaControl

// A shape is shown in its width, twice or four times.
int stretchOf(int size) { return size == 1 ? 2 : size == 3 ? 4 : 1; }

uint8_t fieldBit(Point point) {
  if (point == Point::Ink) return 0x04;
  if (point == Point::Background || point == Point::Paper) return 0;
  return static_cast<uint8_t>(1 << (static_cast<int>(point) - static_cast<int>(Point::Field0)));
}

}  // namespace

bool Screen::beginLine(int line) {
  if (line == firstLine) list_.restart();
  line_ = line;
  clock_ = firstClock;
  readShapes(line);
  return list_.nextLine();
}

void Screen::readShapes(int line) {
  const int control = chips_.antic[dmaControl];
  const bool single = (control & singleLines) != 0;
  const int length = single ? 256 : 128;
  const int page = chips_.antic[playerPage] & (single ? 0xF8 : 0xFC);
  const int missiles = page * 256 + 3 * length + (single ? line : line / 2);
  shapeCycles_ = (control & readsPlayers) != 0 ? 5 : (control & readsMissiles) != 0 ? 1 : 0;
  if ((control & (readsMissiles | readsPlayers)) != 0 && (chips_.gtia[graphicsControl] & 1) != 0)
    chips_.gtia[missileShape] = machine_.peek(missiles);
  if ((control & readsPlayers) == 0 || (chips_.gtia[graphicsControl] & 2) == 0) return;
  for (int i = 0; i < 4; ++i)
    chips_.gtia[static_cast<size_t>(playerShape + i)] = machine_.peek(missiles + (i + 1) * length);
}

// A bit for each player, or each missile, that has a point here.
uint8_t Screen::shapesAt(int clock, int firstPosition) const {
  const bool isPlayer = firstPosition == playerPosition;
  int shapes = 0;
  for (int i = 0; i < 4; ++i) {
    const int size = isPlayer ? chips_.gtia[static_cast<size_t>(playerSize + i)] : chips_.gtia[missileSize] >> 2 * i;
    const int column = (clock - chips_.gtia[static_cast<size_t>(firstPosition + i)]);
    const int point = column / stretchOf(size & 3);
    if (column < 0 || point >= (isPlayer ? 8 : 2)) continue;
    const int bits = isPlayer ? chips_.gtia[static_cast<size_t>(playerShape + i)] >> (7 - point)
                              : chips_.gtia[missileShape] >> (2 * i + 1 - point);
    shapes |= (bits & 1) << i;
  }
  return static_cast<uint8_t>(shapes);
}

void Screen::drawUntil(int clock) {
  uint8_t* const row = &colours[static_cast<size_t>(line_ - firstLine) * width];
  for (const int end = std::min(clock, endClock); clock_ < end; ++clock_) {
    const uint8_t players = shapesAt(clock_, playerPosition), missiles = shapesAt(clock_, missilePosition);
    for (int half = 0; half < 2; ++half) {
      const Point point = list_.points[static_cast<size_t>(2 * clock_ + half)];
      if ((players | missiles) != 0) noteCollisions(players, missiles, point);
      row[2 * (clock_ - firstClock) + half] = colourOf(players | missiles, point);
    }
  }
}

void Screen::noteCollisions(uint8_t players, uint8_t missiles, Point point) {
  for (size_t i = 0; i < 4; ++i) {
    if ((missiles >> i & 1) != 0) {
      collisions[i] |= fieldBit(point);
      collisions[8 + i] |= players;
    }
    if ((players >> i & 1) != 0) {
      collisions[4 + i] |= fieldBit(point);
      collisions[12 + i] |= static_cast<uint8_t>(players & ~(1 << i));
    }
  }
}

// Of several shapes the one with the lowest number is shown.
uint8_t Screen::colourOf(uint8_t shapes, Point point) const {
  const auto colour = [this](int place) {
    return static_cast<uint8_t>(chips_.gtia[static_cast<size_t>(place)] & 0xFE);
  };
  const int shape = std::countr_zero(shapes);
  if (shapes != 0 && isInFront(shape, point)) return colour(playerColour + shape);
  switch (point) {
    case Point::Background:
      return colour(backgroundColour);
    case Point::Paper:
      return colour(fieldColour + 2);
    case Point::Ink:
      return static_cast<uint8_t>((colour(fieldColour + 2) & 0xF0) | (colour(fieldColour + 1) & 0x0F));
    default:
      return colour(fieldColour + static_cast<int>(point) - static_cast<int>(Point::Field0));
  }
}

bool Screen::isInFront(int shape, Point point) const {
  const int order = chips_.gtia[priority];
  if (point == Point::Background || (order & 1) != 0) return true;
  if ((order & 2) != 0) return shape < 2;
  if ((order & 4) != 0) return false;
  return (order & 8) == 0 || (point != Point::Field0 && point != Point::Field1);
}

}  // namespace kiln
