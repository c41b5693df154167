// Draws the screen that a program shows, as a PNG file:
//   screenshot PROGRAM.xex PICTURE.png [STEPS]
// The program runs on the small 6502 of machine/ until it returns, jumps to itself for ever or has made its steps;
// meanwhile frames are counted for it. Then one frame is drawn from what it left: the display list at SDLSTL, the bytes
// that the list points to and the colours; interrupts of the display list are called as the beam reaches them. Text
// modes 2, 6 and 7 are known.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "font.h"
#include "machine/machine.h"
#include "png.h"

namespace kiln::screenshot {
namespace {

constexpr size_t width = 352;  // in points as small as those of mode 2; the playfield is the middle
constexpr size_t playfieldWidth = 320;
constexpr size_t margin = (width - playfieldWidth) / 2;
constexpr size_t firstLine = 8;  // scan lines; the display list begins with the first
constexpr size_t height = 240;
constexpr size_t zoom = 2;

constexpr uint16_t vdslst = 0x0200, sdlstl = 0x0230, pcolr0 = 0x02C0;  // what the system copies in every frame
constexpr uint16_t colpm0 = 0xD012, colpf0 = 0xD016, colpf1 = 0xD017, colpf2 = 0xD018, colbk = 0xD01A;
constexpr uint16_t vcount = 0xD40B, nmien = 0xD40E;
constexpr uint16_t systemDisplayList = 0x9C20, systemScreen = 0x9C40;
constexpr uint16_t frameCount = 0x0014;
constexpr uint64_t cyclesInFrame = 262 * 114;
constexpr uint64_t defaultSteps = 1'000'000;
constexpr uint64_t maxInterruptSteps = 10'000;
constexpr int maxJumps = 240;  // in one display list

constexpr uint16_t word(size_t value) { return static_cast<uint16_t>(value); }

void pokeAll(Machine& machine, uint16_t address, std::initializer_list<int> bytes) {
  for (int byte : bytes)
    machine.poke(address++, static_cast<uint8_t>(byte));
}

// What the operating system leaves to a program: an empty text screen of 24 lines in its usual colours.
void prepare(Machine& machine) {
  machine.osRom = true;
  pokeAll(machine, 0x0058, {systemScreen & 0xFF, systemScreen >> 8});
  pokeAll(machine, sdlstl, {systemDisplayList & 0xFF, systemDisplayList >> 8});
  pokeAll(machine, 0x0278, {15});  // the joystick stands in the middle
  pokeAll(machine, 0x02C4, {0x28, 0xCA, 0x94, 0x46, 0x00});
  pokeAll(machine, nmien, {0x40});
  pokeAll(machine, systemDisplayList, {0x70, 0x70, 0x70, 0x42, systemScreen & 0xFF, systemScreen >> 8});
  for (uint16_t i = 0; i < 23; ++i)
    machine.poke(word(systemDisplayList + 6 + i), 0x02);
  pokeAll(machine, systemDisplayList + 29, {0x41, systemDisplayList & 0xFF, systemDisplayList >> 8});
}

// False with machine.error set when the program cannot run.
bool runProgram(Machine& machine, std::string_view file, uint64_t maxSteps) {
  if (!machine.loadXex(file)) return false;
  if (machine.runAddress == 0) {
    machine.error = "no run address";
    return false;
  }
  machine.beginCall(machine.runAddress);
  for (uint64_t steps = 0; steps < maxSteps && !machine.returned(); ++steps) {
    const uint16_t before = machine.pc;
    if (!machine.step()) return false;
    if (machine.pc == before) return true;
    machine.poke(frameCount, static_cast<uint8_t>(machine.cycles / cyclesInFrame));
  }
  return true;
}

// 16 hues by 16 brightnesses. A hue is an angle around grey, in equal steps.
Palette makePalette() {
  Palette palette;
  const auto channel = [](double value) {
    return static_cast<uint32_t>(std::lround(255 * std::min(1.0, std::max(0.0, value))));
  };
  for (int colour = 0; colour < 256; ++colour) {
    const int hue = colour >> 4;
    const double brightness = (colour & 14) / 14.0 * 0.9 + (colour >= 16 ? 0.1 : 0);
    const double strength = hue == 0 ? 0 : 0.28 * (1 - 0.45 * brightness);
    const double angle = (24 * (hue - 1) - 40) * std::acos(-1.0) / 180;
    const double i = strength * std::cos(angle), q = strength * std::sin(angle);
    palette.push_back(channel(brightness + 0.956 * i + 0.621 * q) << 16 |
                      channel(brightness - 0.272 * i - 0.647 * q) << 8 | channel(brightness - 1.106 * i + 1.703 * q));
  }
  return palette;
}

class Screen {
 public:
  explicit Screen(Machine& machine) : machine_(machine), points_(width * height) {}

  // False with `error` set when the display list asks for what is not known here.
  bool draw() {
    for (uint16_t i = 0; i < 9; ++i)  // players and playfields
      machine_.poke(word(colpm0 + i), machine_.peek(word(pcolr0 + i)));
    uint16_t list = machine_.peekWord(sdlstl);
    for (int jumps = 0; line_ < height && jumps < maxJumps;) {
      const uint8_t instruction = machine_.peek(list++);
      const int mode = instruction & 15;
      if (mode == 1) {
        list = machine_.peekWord(list);
        if (instruction & 0x40) break;
        ++jumps;
        continue;
      }
      if (mode != 0 && (instruction & 0x40) != 0) {
        data_ = machine_.peekWord(list);
        list = word(list + 2);
      }
      if (!drawMode(mode, instruction)) return false;
      if ((instruction & 0x80) != 0 && !interrupt()) return false;
    }
    drawBlank(height - line_);
    return true;
  }

  Picture picture() const {
    Picture picture{width * zoom, height * zoom, {}};
    for (size_t y = 0; y < picture.height; ++y) {
      for (size_t x = 0; x < picture.width; ++x)
        picture.points.push_back(points_[y / zoom * width + x / zoom]);
    }
    return picture;
  }

  std::string error;

 private:
  bool drawMode(int mode, uint8_t instruction) {
    if (mode == 0) {
      drawBlank((instruction >> 4 & 7) + 1);
    } else if (mode == 2) {
      drawText(40, 1, [this](uint8_t code, bool point) { return smallLetter(code, point); });
    } else if (mode == 6 || mode == 7) {
      drawText(20, mode == 6 ? 1 : 2, [this](uint8_t code, bool point) { return largeLetter(code, point); });
    } else {
      error = "display mode " + std::to_string(mode) + " is not known here";
    }
    return error.empty();
  }

  void drawBlank(size_t lines) {
    const uint8_t colour = machine_.peek(colbk);
    for (; lines > 0 && line_ < height; --lines, ++line_)
      std::fill_n(&points_[line_ * width], width, colour);
  }

  // Letters stand next to each other over the whole playfield; each of their rows is drawn `tall` times.
  template <typename Colour>
  void drawText(size_t letters, size_t tall, Colour colour) {
    const size_t wide = playfieldWidth / letters / 8;
    for (size_t row = 0; row < 8 * tall && line_ < height; ++row) {
      uint8_t* const target = &points_[line_ * width + margin];
      drawBlank(1);
      for (size_t x = 0; x < playfieldWidth; ++x) {
        const uint8_t code = machine_.peek(word(data_ + x / (8 * wide)));
        target[x] = colour(code, glyphPoint(code % glyphCount, x / wide % 8, row / tall));
      }
    }
    data_ = word(data_ + letters);
  }

  uint8_t smallLetter(uint8_t code, bool point) const {
    const uint8_t paper = machine_.peek(colpf2);
    const bool isInk = point != (code >= 0x80);  // the upper half is inverse
    return isInk ? static_cast<uint8_t>((paper & 0xF0) | (machine_.peek(colpf1) & 0x0F)) : paper;
  }
  uint8_t largeLetter(uint8_t code, bool point) const {
    return machine_.peek(point ? word(colpf0 + code / 64) : colbk);
  }

  bool interrupt() {
    if ((machine_.peek(nmien) & 0x80) == 0) return true;
    machine_.poke(vcount, static_cast<uint8_t>((firstLine + line_ - 1) / 2));
    const uint8_t stack = machine_.s;
    machine_.nmi(machine_.peekWord(vdslst));
    for (uint64_t steps = 0; machine_.s != stack; ++steps) {
      if (machine_.step() && steps < maxInterruptSteps) continue;
      error = "the display-list interrupt does not return; " + machine_.error;
      return false;
    }
    return true;
  }

  Machine& machine_;
  std::vector<uint8_t> points_;  // colours
  size_t line_ = 0;
  uint16_t data_ = 0;
};

int fail(const std::string& text) {
  std::cerr << "screenshot: " << text << '\n';
  return 1;
}

int run(const std::string& program, const std::string& picture, uint64_t steps) {
  std::ostringstream file;
  if (!(file << std::ifstream(program, std::ios::binary).rdbuf())) return fail("cannot read '" + program + "'");
  Machine machine;
  prepare(machine);
  if (!runProgram(machine, file.str(), steps)) return fail(program + ": " + machine.error);
  Screen screen(machine);
  if (!screen.draw()) return fail(program + ": " + screen.error);
  std::ofstream output(picture, std::ios::binary);
  output << makePng(screen.picture(), makePalette()) << std::flush;
  return output ? 0 : fail("cannot write '" + picture + "'");
}

}  // namespace
}  // namespace kiln::screenshot

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3 && argumentCount != 4) {
    std::cerr << "usage: screenshot PROGRAM.xex PICTURE.png [STEPS]\n";
    return 1;
  }
  const uint64_t steps = argumentCount == 4 ? std::strtoull(arguments[3], nullptr, 10) : kiln::screenshot::defaultSteps;
  return kiln::screenshot::run(arguments[1], arguments[2], steps);
}
