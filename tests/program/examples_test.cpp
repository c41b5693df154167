// The gallery: each example assembles in silence with the command line in its comment, and does what it promises there.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "host/real_host.h"
#include "machine/machine.h"
#include "support/program.h"

namespace kiln::test {
namespace {

using Numbers = std::vector<int>;

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

struct Examples : testing::Test {
  Machine m;
  std::map<int, Numbers> stored;  // what instructions stored at an address, in order

  void load(const std::string& name) {
    ASSERT_TRUE(m.loadXex(assemble(name))) << m.error;
    m.poke(0x59, 0x50);  // the screen is at $5000
    m.onWrite = [this](int address, int value) { stored[address].push_back(value); };
  }
  // Calls what the program calls there.
  void callJsr(int at, int times = 1) {
    ASSERT_EQ(m.peek(at), 0x20);
    for (int i = 0; i < times; ++i)
      ASSERT_TRUE(m.call(m.peekWord(at + 1))) << m.error;
  }
  // Loads it and calls its first routine, which sets it up.
  void start(const std::string& name) {
    load(name);
    callJsr(0x3000);
  }
  void expect(int address, const Numbers& values) {
    for (const int value : values)
      EXPECT_EQ(m.peek(address++), value) << "before " << address;
  }
  // Text as the Atari's screen counts its characters, in either colour.
  void expectScreen(int address, const std::string& text) {
    std::string shown;
    while (shown.size() < text.size())
      shown.push_back(static_cast<char>(32 + m.peek(address++) % 64));
    EXPECT_EQ(shown, text);
  }
};

TEST_F(Examples, ShowText) {
  start("01-text");
  expect(0x02C4, {0x1C, 0x9E, 0x92, 0x46, 0x00});
  const int text = m.peekWord(m.peekWord(0x0230) + 8);
  expectScreen(text, "    HELLO  ATARI             ASSEMBLED WITH KILN-AS         ");
  start("02-primes");
  expect(0x4100, {54, 2, 3, 5, 7, 11, 13, 17, 19, 23});
  expectScreen(0x5000, "   2   3   5   7  11  13  17  19  23  29");
  expectScreen(0x50C8, " 233 239 241 251");
  start("06-score");
  expectScreen(0x5000, "0620");
  expect(0x00CB, {0, 0});
  m.osRom = true;
  start("09-shadow");
  expectScreen(0x5000, "HIDDEN UNDER THE ROM");
  expect(0xD301, {0xFF});
}

TEST_F(Examples, ShowColourBars) {
  start("03-colour-bars");
  for (uint8_t vcount = 15; vcount < 113; vcount += 4) {
    m.poke(0xD40B, vcount);
    m.nmi(m.peekWord(0x0200));
    ASSERT_TRUE(m.finishCall()) << m.error;
  }
  const Numbers& colours = stored[0xD01A];
  ASSERT_EQ(std::set<int>(colours.begin(), colours.end()).size(), 25u);
  EXPECT_EQ(colours.back(), 0);
}

TEST_F(Examples, MoveThePlayer) {
  start("04-player");
  const struct {
    uint8_t stick;
    int calls, x, y;
  } moves[] = {{15, 3, 120, 60}, {7, 3, 123, 60},  {14, 2, 123, 58},
               {9, 1, 122, 59},  {11, 99, 48, 59}, {13, 99, 48, 100}};
  for (const auto& move : moves) {
    m.poke(0x0278, move.stick);
    callJsr(0x3003, move.calls);
    expect(0x00CB, {move.x, move.y});
    expect(0xD000, {move.x});
    expect(0x3A00 + move.y - 1, {0, 0, 0x3C, 0x7E, 0xDB, 0xFF, 0xDB, 0x66, 0x3C, 0, 0});
  }
}

TEST_F(Examples, PlayTheMelody) {
  start("05-melody");
  stored.clear();
  callJsr(0x3003, 641);
  Numbers& pitches = stored[0xD200];
  ASSERT_EQ(pitches.size(), 31u);
  EXPECT_EQ(pitches.back(), 96);  // the first note again
  pitches.resize(15);
  EXPECT_EQ(pitches, (Numbers{96, 96, 91, 81, 81, 91, 96, 108, 121, 121, 108, 96, 96, 108, 108}));
  for (size_t i = 0; i < 61; ++i)
    EXPECT_EQ(stored[0xD201].at(i), i % 2 == 0 ? 0xAA : 0xA0);
}

TEST_F(Examples, StartFromBasic) {
  const std::string file = assemble("07-commodore");
  ASSERT_EQ(file.substr(0, 2), "\x01\x08");
  for (size_t i = 2; i < file.size(); ++i)
    m.poke(static_cast<int>(0x0801 + i - 2), file[i]);
  expect(0x0801, {0x0C, 0x08, 10, 0, 0x9E, ' ', '2', '0', '6', '4', 0, 0, 0});  // 10 SYS 2064
  std::string printed;
  m.poke(0xFFD2, 0x60);  // RTS
  for (m.beginCall(2064); !m.returned();) {
    if (m.pc == 0xFFD2) printed.push_back(static_cast<char>(m.a));
    ASSERT_TRUE(m.step()) << m.error;
  }
  EXPECT_EQ(printed, "\x93HELLO FROM MACHINE CODE");
  expect(0xD020, {5});
}

TEST_F(Examples, LeaveTheirResults) {
  load("08-regions");
  ASSERT_TRUE(m.run()) << m.error;
  expect(0x4000, {24600 % 256, 24600 / 256, 0, 0, 2500 % 256, 2500 / 256});
  ASSERT_EQ(m.segments.size(), 4u);  // one a region, and the run address
  EXPECT_EQ(m.segments[1].first, 0x3100);
  EXPECT_EQ(m.segments[2].first, 0x3400);
  m.windows = {{0x4000, 0x7FFF, 0x82, 0x83}};
  load("10-banks");
  ASSERT_TRUE(m.run()) << m.error;
  expect(0x3F00, {125, 64});
  expect(0x0082, {0, 0});
  m = {};
  m.windows = {{0x4000, 0x5FFF, 0x82}, {0x6000, 0x7FFF, 0x83}};
  load("11-split-banks");
  ASSERT_TRUE(m.run()) << m.error;
  expect(0x3F00, {100, 10});
  expect(0x0082, {0, 0});
}

}  // namespace
}  // namespace kiln::test
