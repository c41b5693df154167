// docs/recipes.md: its programs run, and leave in memory what the page says.
//
// A ```memory block shows memory after the program above it has run; "memory after 60 frames" is for programs that run
// for ever. Each stands in a small model of the Atari: the system's frame counter and vertical blank, an interrupt of
// the display list in every frame, and the text screen at $BC40.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "host/real_host.h"
#include "machine/machine.h"
#include "support/program.h"

namespace kiln::test {
namespace {

// What programs call of the system, and what its interrupt does.
const std::string system = R"(
        .org $E000
blank:  PHA : TXA : PHA : TYA : PHA
        INC $14
        LDA $02C6 : STA $D018           ; COLOR2 to COLPF2
        JMP ($0224)                     ; VVBLKD
        .org $E45C
        JMP setVector                   ; SETVBV
        .org $E462
        PLA : TAY : PLA : TAX : PLA     ; XITVBV
        RTI
setVector:
        CMP #7 : BNE .done
        STY $0224 : STX $0225
.done:  RTS
)";

struct Recipe {
  std::string heading = "", options = "", source = "";
  std::string frames = "", memory = "";           // the memory block, if there is one, and the words after its name
  std::map<std::string, std::string> files = {};  // all of the page so far
};

// All programs of the page, in order.
std::vector<Recipe> recipesOfPage() {
  const auto path = std::filesystem::path(KILN_EXAMPLES_DIR).parent_path() / "docs/recipes.md";
  std::istringstream page(RealHost().readFile(path).value_or(""));
  std::map<std::string, std::string> files;
  std::vector<Recipe> found;
  std::string heading;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("##")) heading = line.substr(line.find(' ') + 1);
    if (!line.starts_with("```")) continue;
    const size_t blank = std::min(line.find(' '), line.size());
    const std::string word = line.substr(3, blank - 3), argument = line.substr(blank);
    std::string text;
    while (std::getline(page, line) && line != "```")
      text += line + "\n";
    if (word == "file") files[argument.substr(1)] = text;
    if (word == "kiln-as") found.push_back({heading, argument, text, "", "", files});
    if (word == "memory") found.back().frames = argument, found.back().memory = text;
  }
  return found;
}

// The programs under this heading.
std::vector<Recipe> recipes(const std::string& heading) {
  std::vector<Recipe> all = recipesOfPage();
  std::erase_if(all, [&heading](const Recipe& recipe) { return recipe.heading != heading; });
  return all;
}

// Those that leave something, except the banks: they need another machine.
std::vector<Recipe> plainRecipes() {
  std::vector<Recipe> all = recipesOfPage();
  std::erase_if(all, [](const Recipe& recipe) {
    return recipe.memory.empty() || recipe.heading == "By hand" || recipe.heading == "With staged calls";
  });
  return all;
}

std::string assemble(const Recipe& recipe) {
  MemoryHost host;
  host.files = recipe.files;
  host.files["main.asm"] = recipe.source;
  EXPECT_EQ(runLine(host, "-o main.xex" + recipe.options + " main.asm"), 0) << host.standardError;
  return host.written["main.xex"];
}

struct Atari {
  static constexpr int cyclesOfFrame = 35568;  // PAL
  Machine m;
  std::vector<std::pair<int, int>> stored;  // address and value, by instructions

  Atari() {
    m.loadXex(assemble({.source = system}));
    m.poke(0x0224, 0x62), m.poke(0x0225, 0xE4);  // VVBLKD: XITVBV
    m.poke(0x0278, 0x0F), m.poke(0x0284, 1);     // the joystick at rest
    m.poke(0x58, 0x40), m.poke(0x59, 0xBC);      // the screen
    m.poke(0x0230, 0x20), m.poke(0x0231, 0xBC);  // its display list
    const std::string list = bytes("707070 4240BC 02020202 02020202 02020202 02020202 02020202 020202 4120BC");
    for (size_t i = 0; i < list.size(); ++i)
      m.poke(static_cast<int>(0xBC20 + i), list[i]);
    for (int i = 0; i < 256; ++i)
      m.poke(0x0600 + i, 0xAA);  // page 6 is not empty on a real machine either
  }
  bool handle(int vector) {
    m.nmi(static_cast<uint16_t>(vector));
    const uint16_t back = m.peekWord(0x0102 + m.s);
    while (m.pc != back && m.step()) {
    }
    return m.error.empty();
  }
  // To the right for 10 frames, up and to the left for 5, then the trigger.
  void moveJoystick(int frame) {
    m.poke(0x0278, frame <= 10 ? 7 : frame <= 15 ? 10 : 15);
    m.poke(0x0284, frame <= 15);
  }
  // One frame, as far as the program comes.
  void runFrame() {
    const auto runUntil = [this](int cycles) {
      while (m.cycles < cycles && !m.returned() && m.step()) {
      }
    };
    const int start = m.cycles;
    runUntil(start + cyclesOfFrame / 2);
    const bool interrupts = !m.returned() && (m.peek(0xD40E) & 0x80) != 0;
    ASSERT_TRUE(!interrupts || handle(m.peekWord(0x0200))) << m.error;
    runUntil(start + cyclesOfFrame);
    ASSERT_EQ(m.error, "");
  }
  void run(const std::string& file, int frames) {
    ASSERT_TRUE(m.loadXex(file)) << m.error;
    m.onWrite = [this](int address, int value) { stored.emplace_back(address, value); };
    m.beginCall(m.runAddress);
    for (int frame = 1; frame <= frames && !m.returned(); ++frame) {
      ASSERT_NO_FATAL_FAILURE(runFrame());
      if (m.returned()) break;
      moveJoystick(frame);
      ASSERT_TRUE(handle(0xE000)) << m.error;
    }
  }
  // Compares with a block of lines such as "0680: FF 06 ; comment".
  void expectMemory(const std::string& block) {
    std::istringstream lines(block);
    for (std::string line; std::getline(lines, line);) {
      const std::string expected = bytes(line.substr(5, line.find(';') - 5));
      EXPECT_EQ(hex(m.memory(std::stoi(line, nullptr, 16), expected.size())), hex(expected)) << line;
    }
  }
  void run(const Recipe& recipe, const std::string& inFront = "") {
    constexpr int most = 200;
    const bool isEndless = !recipe.frames.empty();
    const int frames = isEndless ? std::stoi(recipe.frames.substr(recipe.frames.find("after ") + 6)) : most;
    run(inFront + assemble(recipe), frames);
    EXPECT_EQ(m.returned(), !isEndless);
    expectMemory(recipe.memory);
  }
  std::vector<int> storedAt(int address) const {
    std::vector<int> values;
    for (const auto& [place, value] : stored)
      if (place == address) values.push_back(value);
    return values;
  }
};

TEST(Recipes, LeaveWhatThePageShows) {
  const std::vector<Recipe> all = plainRecipes();
  EXPECT_FALSE(all.empty());
  for (const Recipe& recipe : all) {
    SCOPED_TRACE(recipe.heading);
    Atari().run(recipe);
  }
}

// The page counts the cycles of the call; there are an LDX and an RTS beside it.
TEST(Recipes, CountCyclesForShortDelays) {
  Atari atari;
  atari.run(recipes("Delays").at(1));
  EXPECT_EQ(atari.m.cycles, 2 + 111 + 6);
}

TEST(Recipes, ChangeTheColourOncePerFrameAfterWsyncAndKeepA) {
  Atari atari;
  atari.m.poke(0x02C6, 0x94);
  atari.run(recipes("The display list interrupt").at(0));
  EXPECT_EQ(atari.storedAt(0xD018), (std::vector<int>{0xB4, 0x94, 0xB4, 0x94}));
  atari.stored.clear();
  atari.m.a = 0x5A;
  ASSERT_TRUE(atari.handle(atari.m.peekWord(0x0200)));
  EXPECT_EQ(atari.m.a, 0x5A);
  std::vector<int> registers;
  for (const auto& [address, value] : atari.stored)
    if (address >= 0xD000) registers.push_back(address);
  EXPECT_EQ(registers, (std::vector<int>{0xD40A, 0xD018}));
}

TEST(Recipes, PlayTheNotesInOrder) {
  Atari atari;
  atari.run(recipes("Sound").at(0));
  EXPECT_EQ(atari.storedAt(0xD200), (std::vector<int>{121, 96, 81, 60}));
  EXPECT_EQ(atari.storedAt(0xD201), (std::vector<int>{0xA8, 0xA8, 0xA8, 0xA8, 0}));
}

struct Atari130Xe : Atari {
  Atari130Xe() { m.osRom = m.basicRom = m.xeBanks = true; }
  // What is at $4000 with this value in PORTB.
  int shownWith(int value) {
    m.poke(0xD301, value);
    return m.peek(0x4000);
  }
};

TEST(PortBBanks, LoadWithRoutinesOfTheirOwn) {
  Atari130Xe atari;
  atari.run(recipes("By hand").at(0));
  EXPECT_EQ(atari.m.portB(), 0xF3);  // main memory again, and all other bits as they were
  for (const int bank : {0, 1, 2, 3})
    EXPECT_EQ(atari.shownWith(0xE3 | bank << 2), 10 + bank);
}

TEST(PortBBanks, AreStagedWhenOnlyTheirBitsAreOutputs) {
  Atari130Xe atari;
  const Recipe recipe = recipes("With staged calls").at(0);
  atari.run(recipe, assemble({.source = recipe.files.at("inputs.asm")}));
  EXPECT_EQ(atari.m.portB(), 0xE3);
  EXPECT_EQ(atari.shownWith(4), 0xA9);  // the beginning of draw
  EXPECT_EQ(atari.shownWith(16), 14);
}

// Why the small program is there: the 0 after the first bank turns the ROM off, and with it the loader.
TEST(PortBBanks, AreNotStagedOtherwise) {
  Atari130Xe atari;
  ASSERT_TRUE(atari.m.loadXex(assemble(recipes("With staged calls").at(0)))) << atari.m.error;
  EXPECT_EQ(atari.m.portB() & 1, 0);
}

}  // namespace
}  // namespace kiln::test
