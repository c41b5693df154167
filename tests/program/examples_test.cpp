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
  void callJsr(int at) { ASSERT_TRUE(m.call(m.peekWord(at + 1))) << m.error; }
  // Loads it and calls its first routine, which sets it up.
  void start(const std::string& name) {
    load(name);
    callJsr(0x3000);
  }
  void runAll(const std::string& name) {
    load(name);
    ASSERT_TRUE(m.run()) << m.error;
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
  const int text = m.peekWord(m.peekWord(0x0230) + 8);
  expectScreen(text, "    HELLO  ATARI             ASSEMBLED WITH KILN-AS         ");
  start("02-primes");
  expect(0x4100, {54, 2, 3, 5, 7, 11, 13, 17, 19, 23});
  expectScreen(0x5000, "   2   3   5   7  11  13  17  19  23  29");
  start("06-score");
  expectScreen(0x5000, "0620");
  m.osRom = true;
  start("09-shadow");
  expectScreen(0x5000, "HIDDEN UNDER THE ROM");
  expect(0xD301, {0xFF});
}

TEST_F(Examples, MoveAndPlay) {
  start("03-colour-bars");
  for (uint8_t line = 15; line < 113; line += 4) {
    m.poke(0xD40B, line);
    m.nmi(m.peekWord(0x0200));
    ASSERT_TRUE(m.finishCall()) << m.error;
  }
  EXPECT_EQ(std::set<int>(stored[0xD01A].begin(), stored[0xD01A].end()).size(), 25u);
  start("04-player");
  m.poke(0x0278, 7);  // the stick to the right
  callJsr(0x3003);
  expect(0xD000, {121});
  expect(0x3A3B, {0, 0, 0x3C, 0x7E, 0xDB, 0xFF, 0xDB, 0x66, 0x3C, 0, 0});
  start("05-melody");
  callJsr(0x3003);
  expect(0xD200, {96});
}

TEST_F(Examples, StartFromBasic) {
  const std::string file = assemble("07-commodore");
  for (size_t i = 2; i < file.size(); ++i)
    m.poke(static_cast<int>(0x0801 + i - 2), file[i]);
  expect(0x0801, {0x0C, 0x08, 10, 0, 0x9E, ' ', '2', '0', '6', '4', 0, 0, 0});  // 10 SYS 2064
  m.poke(0xFFD2, 0x60);                                                         // RTS
  ASSERT_TRUE(m.call(2064)) << m.error;
  expect(0xD020, {5});
}

TEST_F(Examples, LeaveTheirResults) {
  runAll("08-regions");
  expect(0x4000, {24600 % 256, 24600 / 256, 0, 0, 2500 % 256, 2500 / 256});
  m.windows = {{0x4000, 0x7FFF, 0x82, 0x83}};
  runAll("10-banks");
  expect(0x3F00, {125, 64});
  expect(0x0082, {0, 0});
  m.windows = {{0x4000, 0x5FFF, 0x82}, {0x6000, 0x7FFF, 0x83}};
  runAll("11-split-banks");
  expect(0x3F00, {100, 10});
  expect(0x0082, {0, 0});
}

}  // namespace
}  // namespace kiln::test
