// The gallery: each example assembles in silence with the command line in its comment, and does what it promises there.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "host/real_host.h"
#include "machine/atari.h"
#include "support/program.h"

namespace kiln::test {
namespace {

using Numbers = std::vector<int>;

constexpr int screenPointer = 0x58;
constexpr uint8_t stickUp = 14, stickLeft = 11, stickRight = 7, stickMiddle = 15;
constexpr size_t border = 16;  // points left of the playfield

// Returns the file that the example's command line makes.
std::string assemble(const std::string& name) {
  MemoryHost host;
  const std::filesystem::path gallery = KILN_EXAMPLES_DIR;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(gallery)) {
    const std::string path = entry.path().lexically_relative(gallery).generic_string();
    host.files[path] = RealHost().readFile(entry.path()).value_or("");
  }
  const std::string& source = host.files[name + ".asm"];
  const size_t line = source.find("kiln-as ") + 8;
  EXPECT_EQ(runLine(host, source.substr(line, source.find('\n', line) - line)), 0);
  EXPECT_EQ(host.standardError.find('\n'), host.standardError.size() - 1) << host.standardError;
  return host.written[name + (name == "07-commodore" ? ".prg" : ".xex")];
}

Numbers bytesAt(const Machine& m, int address, size_t count) {
  Numbers bytes;
  while (bytes.size() < count)
    bytes.push_back(m.peek(address++));
  return bytes;
}

struct Examples : testing::Test {
  Atari atari;
  Machine& m = atari.machine;

  void start(const std::string& name, int frames = 5) {
    ASSERT_TRUE(atari.load(assemble(name))) << m.error;
    run(frames);
  }
  void run(int frames) {
    while (frames-- > 0)
      ASSERT_TRUE(atari.runFrame()) << m.error;
  }
  // Runs until it is so, and counts the frames; fails after `most`.
  template <typename Condition>
  int runUntil(int most, Condition isSo) {
    int frames = 0;
    for (; frames < most && !isSo(); ++frames)
      run(1);
    EXPECT_TRUE(isSo()) << "not within " << most << " frames";
    return frames;
  }

  Numbers bytes(int address, size_t count) const { return bytesAt(m, address, count); }
  // Text as the Atari's screen counts its characters, in any colour.
  std::string text(int address, size_t length) const {
    std::string shown;
    while (shown.size() < length)
      shown.push_back(static_cast<char>(32 + m.peek(address++) % 64));
    return shown;
  }
  std::string screenText(int place, size_t length) const { return text(m.peekWord(screenPointer) + place, length); }
  // The colour of a point; the display list begins at y 0.
  int colour(size_t x, size_t y) const { return atari.screen.colours[y * Screen::width + x]; }
  int sound(size_t voice) const { return atari.chips.pokey[2 * (voice - 1)]; }  // AUDF
  int control(size_t voice) const { return atari.chips.pokey[2 * voice - 1]; }  // AUDC
};

TEST_F(Examples, Text) {
  start("01-text");
  const int shown = m.peekWord(m.peekWord(0x0230) + 8);
  EXPECT_EQ(text(shown, 60), "    HELLO  ATARI             ASSEMBLED WITH KILN-AS         ");
  // The left edges of the H, in the fifth column of letters 16 points wide, and of the T, whose bar fills its cell.
  EXPECT_EQ(colour(border + 4 * 16 + 3, 56), 0x1C);
  EXPECT_EQ(colour(border + 12 * 16 + 3, 56), 0x9E);
  EXPECT_EQ(colour(border, 80), 0x92);
}

TEST_F(Examples, Primes) {
  start("02-primes");
  EXPECT_EQ(bytes(0x4100, 10), (Numbers{54, 2, 3, 5, 7, 11, 13, 17, 19, 23}));
  EXPECT_EQ(screenText(0, 40), "   2   3   5   7  11  13  17  19  23  29");
  EXPECT_EQ(screenText(200, 20), " 233 239 241 251    ");
  // The bars at the top of the 5 and the 7, and the feet of an 11 and of a 19's 1.
  EXPECT_EQ(colour(border + 11 * 16 + 3, 32), 0x9C);
  EXPECT_EQ(colour(border + 15 * 16 + 3, 32), 0x9C);
  EXPECT_EQ(colour(border + 18 * 16 + 3, 44), 0x1C);
  EXPECT_EQ(colour(border + 10 * 16 + 3, 60), 0xBA);
}

TEST_F(Examples, ColourBars) {
  start("03-colour-bars");
  Numbers bars;
  for (size_t y = 20; y < Screen::height; y += 8)
    bars.push_back(colour(0, y));
  EXPECT_EQ(bars, (Numbers{0,    0x14, 0x24, 0x34, 0x44, 0x54, 0x64, 0x74, 0x84, 0x94, 0xA4, 0xB4, 0xC4, 0xCA,
                           0xBA, 0xAA, 0x9A, 0x8A, 0x7A, 0x6A, 0x5A, 0x4A, 0x3A, 0x2A, 0x1A, 0,    0,    0}));
  EXPECT_EQ(colour(0, 23), 0);  // a bar begins with its line, not in the middle of the one before
  EXPECT_EQ(colour(Screen::width - 1, 24), 0x14);
}

TEST_F(Examples, Player) {
  start("04-player");
  EXPECT_EQ(bytes(0xCB, 2), (Numbers{120, 60}));
  // The top of the ball, 2 points in from its left edge, in the second of two lines for each of its rows; the lawn
  // above.
  const size_t left = (120 - 40) * 2, top = 2 * 60 - 8;
  EXPECT_EQ(colour(left + 4, top + 3), 0x0E);
  EXPECT_EQ(colour(left + 4, top + 1), 0xB4);
  EXPECT_EQ(control(1), 0);
  // The wall in column 11 begins with a point at 138; the ball is 8 wide, so it touches from 131 on and steps back.
  atari.stick = stickRight;
  runUntil(30, [&] { return control(1) == 0xC8; });
  EXPECT_EQ(bytes(0xCB, 2), (Numbers{130, 60}));
  EXPECT_EQ(sound(1), 180);
  // Over the wall, then to the star in column 14, which is at 160 to 167.
  atari.stick = stickLeft;
  run(8);
  atari.stick = stickUp;
  run(24);
  atari.stick = stickRight;
  runUntil(60, [&] { return control(1) == 0xA8; });
  EXPECT_EQ(sound(1), 40);
  EXPECT_NEAR(m.peek(0xCB), 155, 3);
  runUntil(60, [&] { return control(1) == 0; });
}

TEST_F(Examples, Melody) {
  start("05-melody");
  Numbers pitches = {sound(1)};
  for (int note = 1; note < 6; ++note) {
    runUntil(40, [&] { return control(1) == 0; });
    runUntil(40, [&] { return control(1) == 0xAA; });
    pitches.push_back(sound(1));
  }
  EXPECT_EQ(pitches, (Numbers{96, 96, 91, 81, 81, 91}));
  EXPECT_EQ(text(0x4000, 100).substr(0, 10), "-----GG---");
  EXPECT_EQ(text(0x4014, 20).substr(0, 10), "----F--F--");
  EXPECT_EQ(m.peek(0x4014 + 4), 38);         // F
  EXPECT_EQ(m.peek(0x4014 + 7), 38 + 0x40);  // the one that sounds has another colour
  EXPECT_EQ(text(0x4100, 20), std::string(20, '-'));
}

TEST_F(Examples, Score) {
  start("06-score");
  EXPECT_EQ(screenText(0, 20), "        0620        ");
  EXPECT_EQ(colour(border + 8 * 16 + 5, 96), 0x1C);  // the top of the 0
}

TEST_F(Examples, Regions) {
  start("08-regions");
  EXPECT_EQ(bytes(0x4000, 6), (Numbers{24600 % 256, 24600 / 256, 0, 0, 2500 % 256, 2500 / 256}));
  EXPECT_EQ(screenText(0, 60), "200*123=24600       0*77=0              30*30+40*40=2500    ");
}

TEST_F(Examples, Shadow) {
  start("09-shadow");
  EXPECT_EQ(m.peek(0xD301), 0xFF);
  EXPECT_EQ(screenText(19 * 40 + 10, 20), "HIDDEN UNDER THE ROM");
  EXPECT_EQ(bytes(m.peekWord(screenPointer) + 2 * 40 + 12 + 4, 8), (Numbers{0, 128, 128, 128, 128, 128, 128, 0}));
  EXPECT_EQ(colour(border + 8 * 20, 24 + 8 * 2), 0x6E);  // the middle of its head
  EXPECT_EQ(colour(border + 8 * 15, 24 + 8 * 6), 0x60);  // an eye
}

TEST_F(Examples, Music) {
  start("12-music");
  EXPECT_EQ((Numbers{sound(1), sound(2), sound(3)}), (Numbers{215, 42, 107}));
  const auto brightestLine = [&] {
    size_t brightest = 0;
    for (size_t y = 0; y < Screen::height; ++y) {
      if (colour(0, y) / 16 == 5 && colour(0, y) > colour(0, brightest)) brightest = y;  // the bass: 215*4 is $35C
    }
    return brightest;
  };
  const size_t before = brightestLine();
  run(8);
  EXPECT_GT(brightestLine(), before + 8);
  run(3);
  EXPECT_EQ((Numbers{sound(1), sound(2), sound(3)}), (Numbers{215, 42, 85}));
  EXPECT_LT(control(2), 0xAC);  // it fades
  run(3 * 11);
  EXPECT_EQ((Numbers{sound(1), sound(2), sound(3)}), (Numbers{143, 47, 113}));
  runUntil(13 * 11, [&] { return m.peek(0xCC) == 17; });  // the step after the sixteenth
  EXPECT_EQ((Numbers{sound(1), sound(2), sound(3)}), (Numbers{161, 63, 127}));
}

// The game, and somebody who plays it.
struct Game : Examples {
  static constexpr int basketX = 0xCF, lives = 0xD0, speed = 0xD3, screen = 0x5000, starX = 0x5100, starY = 0x5103;

  void begin() {
    start("13-game");
    EXPECT_EQ(text(screen + 64, 12), "STAR CATCHER");
    fire();
    EXPECT_EQ(text(screen, 20), "0000   LEVEL 1   ***");
  }
  void fire() {
    atari.trigger = true;
    run(2);
    atari.trigger = false;
    run(2);
  }
  // Goes below the lowest star; the basket is 16 wide.
  void follow() {
    int lowest = 0;
    for (int star = 1; star < 3; ++star)
      lowest = m.peek(starY + star) > m.peek(starY + lowest) ? star : lowest;
    const int distance = m.peek(starX + lowest) - 4 - m.peek(basketX);
    atari.stick = distance < -1 ? stickLeft : distance > 1 ? stickRight : stickMiddle;
    run(1);
  }
};

TEST_F(Game, CountsStarsAndBecomesFaster) {
  begin();
  const int slow = m.peekWord(speed);
  for (int frames = 0; frames < 900 && text(screen, 4) == "0000"; ++frames)
    follow();
  EXPECT_EQ(text(screen, 20), "0010   LEVEL 1   ***");
  run(1);
  EXPECT_EQ(control(1), 0xA0 + 14);  // a pure tone, which has begun to fade
  for (int frames = 0; frames < 900 && text(screen, 4) != "0050"; ++frames)
    follow();
  EXPECT_EQ(text(screen, 17), "0050   LEVEL 2   ");
  EXPECT_EQ(m.peekWord(speed), slow + 64);
}

TEST_F(Game, EndsAfterThreeLostStars) {
  begin();
  atari.stick = stickLeft;
  run(60);
  EXPECT_LT(m.peek(basketX), 54);
  m.poke(speed + 1, 4);
  runUntil(200, [&] { return text(screen, 20) == "0000   LEVEL 1   ** "; });
  runUntil(400, [&] { return m.peek(lives) == 0; });
  run(2);
  EXPECT_EQ(text(screen + 105, 10), "GAME  OVER");
  fire();
  EXPECT_EQ(text(screen + 64, 12), "STAR CATCHER");
}

TEST(CommodoreExample, StartsFromBasic) {
  Machine m;
  const std::string file = assemble("07-commodore");
  for (size_t i = 2; i < file.size(); ++i)
    m.poke(static_cast<int>(0x0801 + i - 2), file[i]);
  const Numbers basic = {0x0C, 0x08, 10, 0, 0x9E, ' ', '2', '0', '6', '4', 0, 0, 0};  // 10 SYS 2064
  EXPECT_EQ(bytesAt(m, 0x0801, basic.size()), basic);
  m.poke(0xFFD2, 0x60);  // RTS
  ASSERT_TRUE(m.call(2064)) << m.error;
  EXPECT_EQ(m.peek(0xD020), 5);
}

TEST(BankExamples, LeaveTheirResults) {
  const auto runIn = [](const std::vector<BankWindow>& windows, const std::string& name) {
    Machine m;
    m.windows = windows;
    EXPECT_TRUE(m.loadXex(assemble(name)) && m.run()) << m.error;
    EXPECT_EQ(bytesAt(m, 0x0082, 2), (Numbers{0, 0}));
    return bytesAt(m, 0x3F00, 2);
  };
  EXPECT_EQ(runIn({{0x4000, 0x7FFF, 0x82, 0x83}}, "10-banks"), (Numbers{125, 64}));
  EXPECT_EQ(runIn({{0x4000, 0x5FFF, 0x82}, {0x6000, 0x7FFF, 0x83}}, "11-split-banks"), (Numbers{100, 10}));
}

}  // namespace
}  // namespace kiln::test
