#include "commodore.h"

#include <array>
#include <charconv>

#include "machine/font.h"
#include "machine/machine.h"

namespace kiln::screenshot {
namespace {

constexpr size_t columns = 40, rows = 25, cell = 8, zoom = 2;
constexpr size_t width = 352, height = 240, left = (width - columns * cell) / 2, top = (height - rows * cell) / 2;
constexpr uint32_t colours[16] = {0x000000, 0xFFFFFF, 0x68372B, 0x70A4B2, 0x6F3D86, 0x588D43, 0x352879, 0xB8C76F,
                                  0x6F4F25, 0x433900, 0x9A6759, 0x444444, 0x6C6C6C, 0x9AD284, 0x6C5EB5, 0x959595};
constexpr uint32_t paper = colours[6], ink = colours[14];
constexpr uint16_t chrout = 0xFFD2, borderColour = 0xD020;
constexpr char sysToken = '\x9E', clearScreen = '\x93';
constexpr int mostSteps = 1'000'000;

// The text of the screen, in lines.
struct Text {
  std::array<std::string, rows> lines;
  size_t row = 0;

  void put(char c) {
    if (c == clearScreen) *this = {};
    if (c == '\r' && row + 1 < rows) ++row;
    if (c >= ' ' && c < '`' && lines[row].size() < columns) lines[row] += c;
  }
};

// Follows the program, and puts what it gives to CHROUT.
bool run(Machine& machine, uint16_t start, Text& text) {
  machine.poke(chrout, 0x60);  // RTS
  machine.beginCall(start);
  for (int i = 0; i < mostSteps && !machine.returned(); ++i) {
    if (machine.pc == chrout) text.put(static_cast<char>(machine.a));
    if (!machine.step()) return false;
  }
  return machine.returned();
}

Picture draw(const Text& text, uint32_t border) {
  Picture picture{width * zoom, height * zoom, {}};
  for (size_t i = 0; i < picture.width * picture.height; ++i) {
    const size_t x = i % picture.width / zoom - left, y = i / picture.width / zoom - top;
    const size_t column = x / cell, row = y / cell;
    if (column >= columns || row >= rows) {
      picture.points.push_back(border);  // what is left of it or above it wraps to large numbers
    } else {
      const std::string& line = text.lines[row];
      const size_t glyph = column < line.size() ? static_cast<size_t>(line[column] - ' ') : 0;
      picture.points.push_back(glyphPoint(glyph, x % cell, y % cell) ? ink : paper);
    }
  }
  return picture;
}

}  // namespace

Picture drawCommodore(std::string_view file, std::string& error) {
  Machine machine;
  const size_t sys = file.find(sysToken);
  if (sys == std::string_view::npos) return error = "no SYS in its line of BASIC", Picture{};
  const int first = static_cast<uint8_t>(file[0]) | static_cast<uint8_t>(file[1]) << 8;
  for (size_t i = 2; i < file.size(); ++i)
    machine.poke(first + static_cast<int>(i) - 2, file[i]);
  uint16_t start = 0;
  const size_t digits = file.find_first_not_of(' ', sys + 1);
  if (digits < file.size()) std::from_chars(file.data() + digits, file.data() + file.size(), start);
  Text text;
  if (!run(machine, start, text)) return error = "does not end; " + machine.error, Picture{};
  for (const char c : std::string_view("\r\rREADY."))
    text.put(c);
  return draw(text, colours[machine.peek(borderColour) & 15]);
}

}  // namespace kiln::screenshot
