// The model of an Atari: its picture, its time, and what it has of the operating system.
#include "machine/atari.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "machine/palette.h"
#include "support/program.h"

namespace kiln::test {
namespace {

using Colours = std::vector<int>;

constexpr int list = 0x3000, data = 0x3100, font = 0x3400, shapes = 0x3800;
constexpr int sdmctl = 0x022F, sdlstl = 0x0230, gprior = 0x026F, pcolr0 = 0x02C0, chbas = 0x02F4;

struct AtariModel : testing::Test {
  Atari atari;
  Machine& m = atari.machine;

  // Starts a program at $2000, with the colours 2, 4, 6 and so on for players, playfields and, as 18, the background.
  void start(const std::string& source) {
    MemoryHost host;
    host.files["main.asm"] = " .org $2000\n" + source;
    ASSERT_EQ(runLine(host, "main.asm"), 0) << host.standardError;
    ASSERT_TRUE(atari.load(host.written["main.xex"])) << m.error;
    poke(sdlstl, {list & 0xFF, list >> 8});
    poke(chbas, {font >> 8});
    for (int i = 0; i < 9; ++i)
      poke(pcolr0 + i, {2 * (i + 1)});
    // One line is skipped: the first one is 8.
    poke(list, {0x00});
  }
  void poke(int address, std::initializer_list<int> bytes) {
    for (const int byte : bytes)
      m.poke(address++, byte);
  }
  void run(int frames) {
    while (frames-- > 0)
      ASSERT_TRUE(atari.runFrame()) << m.error;
  }
  // Points of the playfield in a row of the picture.
  Colours points(size_t y, size_t first, size_t count) const {
    const auto from = atari.screen.colours.begin() + static_cast<std::ptrdiff_t>(y * Screen::width + 16 + first);
    return {from, from + static_cast<std::ptrdiff_t>(count)};
  }
};

const std::string loop = "loop: JMP loop";
constexpr int p0 = 2, p1 = 4, f0 = 10, f1 = 12, f2 = 14, f3 = 16, back = 18;

TEST_F(AtariModel, DrawsEachMode) {
  // The first points of a row that begins with the bytes $1B and $E1; as a letter, $1B looks like %00011011 and $61
  // like %11110000. A row of `wide` points of one colour is written once.
  struct Row {
    int mode, wide;
    Colours colours;
    size_t tall;
  };
  const Row rows[] = {
      {2, 1, {f2, f2, f2, f1, f1, f2, f1, f1, f2, f2, f2, f2, f1, f1, f1, f1}, 8},  // the second is inverse
      {4, 2, {back, f0, f1, f2, f3, f3, back, back}, 8},                            // bit 7: field 3 for field 2
      {5, 2, {back, f0, f1, f2, f3, f3, back, back}, 16},
      {6, 2, {back, back, back, f0, f0, back, f0, f0}, 8},
      {7, 2, {back, back, back, f0, f0, back, f0, f0}, 16},
      {8, 8, {back, f0, f1, f2, f2, f1, back, f0}, 8},
      {9, 4, {back, back, back, f0, f0, back, f0, f0}, 4},
      {10, 4, {back, f0, f1, f2, f2, f1, back, f0}, 4},
      {11, 2, {back, back, back, f0, f0, back, f0, f0}, 2},
      {12, 2, {back, back, back, f0, f0, back, f0, f0}, 1},
      {13, 2, {back, f0, f1, f2, f2, f1, back, f0}, 2},
      {14, 2, {back, f0, f1, f2, f2, f1, back, f0}, 1},
      {15, 1, {f2, f2, f2, f1, f1, f2, f1, f1, f1, f1, f1, f2, f2, f2, f2, f1}, 1},
  };
  start(loop);
  poke(data, {0x1B, 0xE1});
  for (int line = 0; line < 8; ++line) {
    m.poke(font + 8 * 0x1B + line, 0x1B);
    m.poke(font + 8 * 0x61 + line, 0xF0);
  }
  for (const Row& row : rows) {
    poke(list + 1, {0x40 | row.mode, data & 0xFF, data >> 8, 0x41, list & 0xFF, list >> 8});
    run(2);
    Colours expected;
    for (const int colour : row.colours)
      expected.insert(expected.end(), static_cast<size_t>(row.wide), colour);
    EXPECT_EQ(points(1, 0, expected.size()), expected) << "mode " << row.mode;
    EXPECT_EQ(points(row.tall, 0, expected.size()), expected) << "mode " << row.mode;
    EXPECT_EQ(points(row.tall + 1, 0, 320), Colours(320, back)) << "mode " << row.mode;
  }
}

TEST_F(AtariModel, ScrollsAndNarrowsThePlayfield) {
  start(R"(
        LDA #3 : STA HSCROL
loop:   JMP loop)");
  // A row that scrolls has 48 bytes, of which the first four are left of the screen.
  poke(data, {0, 0, 0, 0, 0xFF});
  poke(list + 1, {0x5E, data & 0xFF, data >> 8, 0x41, list & 0xFF, list >> 8});
  run(2);
  EXPECT_EQ(points(1, 0, 16), (Colours{18, 18, 18, 18, 18, 18, 14, 14, 14, 14, 14, 14, 14, 14, 18, 18}));
  poke(sdmctl, {0x21});
  poke(list + 1, {0x4F});
  run(2);
  EXPECT_EQ(points(1, 30, 4), (Colours{back, back, f2, f2}));
  EXPECT_EQ(points(1, 286, 4), (Colours{f2, f2, back, back}));
}

TEST_F(AtariModel, DrawsShapesAndNoticesWhatTheyTouch) {
  start(R"(
        LDA #$38 : STA PMBASE
        LDA #48 : STA HPOSP0
        LDA #52 : STA HPOSP1
        LDA #80 : STA HPOSM0
        LDA #1 : STA SIZEP1
        LDA #3 : STA GRACTL
loop:   JMP loop)");
  poke(sdmctl, {0x3E});
  poke(data, {0, 0, 0, 0, 0xFF});  // field 2 from 64 to 67
  poke(list + 1, {0x4E, data & 0xFF, data >> 8, 0x41, list & 0xFF, list >> 8});
  m.poke(shapes + 0x400 + 9, 0xF0);  // player 0 in scan line 9: 4 wide
  m.poke(shapes + 0x500 + 9, 0xC1);  // player 1, twice as wide: 4, and 2 at its end
  m.poke(shapes + 0x300 + 9, 0x03);  // missile 0
  run(3);
  EXPECT_EQ(points(1, 0, 16), (Colours{p0, p0, p0, p0, p0, p0, p0, p0, p1, p1, p1, p1, p1, p1, p1, p1}));
  EXPECT_EQ(points(1, 36, 4), (Colours{p1, p1, p1, p1}));
  EXPECT_EQ(points(1, 64, 6), (Colours{p0, p0, p0, p0, back, back}));
  EXPECT_EQ(m.peek(0xD005), 4);      // player 1 and field 2, below its end
  EXPECT_EQ(m.peek(0xD00C), 0);      // player 0 and players
  m.poke(shapes + 0x400 + 9, 0x0F);  // now player 0 is 4 further right
  m.poke(data + 1, 0xFF);            // and both are in front of field 2
  run(2);
  EXPECT_EQ(points(1, 8, 8), Colours(8, p0));
  EXPECT_EQ(m.peek(0xD004), 4);
  EXPECT_EQ(m.peek(0xD00C), 2);
  EXPECT_EQ(m.peek(0xD00D), 1);
  poke(gprior, {4});
  run(2);
  EXPECT_EQ(points(1, 8, 8), Colours(8, f2));
}

TEST_F(AtariModel, WaitsForTheEndOfALineAndInterruptsAtOne) {
  start(R"(
        LDA #<paint : STA VDSLST
        LDA #>paint : STA VDSLST+1
        LDA #$C0 : STA NMIEN
loop:   JMP loop
paint:  PHA
        LDA #$44 : STA WSYNC : STA COLBK
        PLA
        RTI)");
  poke(list + 1, {0x70, 0xF0, 0x70, 0x41, list & 0xFF, list >> 8});
  run(2);
  // The blank line, then 8 and 8; the interrupt is in the last of them.
  EXPECT_EQ(points(16, 0, 320), Colours(320, back));
  EXPECT_EQ(points(17, 0, 320), Colours(320, 0x44));
  EXPECT_EQ(points(239, 0, 320), Colours(320, 0x44));
}

TEST_F(AtariModel, CallsVerticalBlankRoutines) {
  start(R"(
        LDA #7
set:    LDY #<blank : LDX #>blank
        JSR $E45C               ; SETVBV
loop:   INC $80
        JMP loop
blank:  INC $81
        JMP $E462               ; XITVBV
        .org $2100
        LDA #6
        JMP set)");
  run(3);
  EXPECT_EQ(m.peek(0x81), 3);
  EXPECT_NE(m.peek(0x80), 0);
  EXPECT_EQ(m.peek(0x14), 3);
  // As an immediate one, the routine leaves the system's out.
  m.pc = 0x2100;
  run(2);
  EXPECT_EQ(m.peek(0x81), 5);
  EXPECT_EQ(m.peek(0x14), 3);
}

TEST_F(AtariModel, CountsAndCopies) {
  start(loop);
  atari.stick = 7;
  atari.trigger = true;
  poke(0x12, {0, 0, 0xFF, 0x4D});
  poke(0x4D, {0});
  run(1);
  EXPECT_EQ(m.memory(0x12, 3), std::string("\0\1\0", 3));
  EXPECT_EQ(m.peek(0x4D), 1);  // ATRACT
  EXPECT_EQ(m.peek(0x0278), 7);
  EXPECT_EQ(m.peek(0x0284), 0);
  EXPECT_EQ(atari.chips.gtia[backgroundColour], back);
  // After a long time without a key, all colours become darker and shift.
  poke(0x4D, {0x80});
  run(1);
  EXPECT_EQ(atari.chips.gtia[backgroundColour], (back ^ 1) & 0xF6);
  // With interrupts off only the clock goes on.
  poke(0x4D, {0});
  m.p |= Machine::interruptsOff;
  poke(pcolr0, {0x58});
  run(1);
  EXPECT_EQ(m.peek(0x14), 2);
  EXPECT_NE(atari.chips.gtia[playerColour], 0x58);
}

TEST(Palette, HasGreysAndHuesOfOneBrightness) {
  const auto palette = makePalette();
  EXPECT_EQ(palette[0x00], 0x000000u);
  EXPECT_EQ(palette[0x0E], 0xFFFFFFu);
  EXPECT_EQ(palette[0x0F], palette[0x0E]);  // the lowest bit does not count
  const auto red = [&](int colour) { return palette[static_cast<size_t>(colour)] >> 16; };
  const auto green = [&](int colour) { return palette[static_cast<size_t>(colour)] >> 8 & 0xFF; };
  const auto blue = [&](int colour) { return palette[static_cast<size_t>(colour)] & 0xFF; };
  EXPECT_EQ(red(0x08), green(0x08));
  EXPECT_LT(red(0x08), 255u * 4 / 7);  // darker than half-way between black and white would be
  EXPECT_TRUE(red(0x38) > green(0x38) && red(0x38) > blue(0x38));
  EXPECT_TRUE(blue(0x88) > green(0x88) && blue(0x88) > red(0x88));
  EXPECT_TRUE(green(0xC8) > red(0xC8) && green(0xC8) > blue(0xC8));
}

}  // namespace
}  // namespace kiln::test
