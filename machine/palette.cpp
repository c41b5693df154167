#include "machine/palette.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kiln {
namespace {

constexpr double firstHue = 150, hueStep = 24;  // degrees in the plane of U and V; hue 1 is gold, then red and blue
constexpr double saturation = 0.19;             // the same for every brightness, as the chip makes it

// A television's tube is darker between black and white than a computer's screen, which expects 2.2 here.
constexpr double gamma = 2.8 / 2.2;

uint32_t channel(double value) {
  return static_cast<uint32_t>(std::lround(255 * std::pow(std::clamp(value, 0.0, 1.0), gamma)));
}

}  // namespace

std::array<uint32_t, 256> makePalette() {
  std::array<uint32_t, 256> palette = {};
  for (size_t colour = 0; colour < palette.size(); ++colour) {
    const double hue = static_cast<double>(colour / 16), y = static_cast<double>(colour & 14) / 14;
    const double angle = (firstHue - hueStep * (hue - 1)) * std::acos(-1.0) / 180;
    const double u = hue == 0 ? 0 : saturation * std::cos(angle), v = hue == 0 ? 0 : saturation * std::sin(angle);
    palette[colour] = channel(y + 1.140 * v) << 16 | channel(y - 0.395 * u - 0.581 * v) << 8 | channel(y + 2.032 * u);
  }
  return palette;
}

}  // namespace kiln
