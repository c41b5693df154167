// Code for the memory behind the ROM: what the staging segment does, and where it does not fit.
#include "output/shadow.h"

#include <gtest/gtest.h>

#include <regex>

#include "machine/machine.h"
#include "support/program.h"

namespace kiln::test {
namespace {

// Bytes that repeat nowhere within two pages.
std::vector<uint8_t> counting(size_t size, uint8_t first) {
  std::vector<uint8_t> bytes(size);
  for (size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<uint8_t>(first + i + i / 256);
  return bytes;
}

TEST(Shadow, CopiesEveryBlockInOrderWhenTheFileIsLoaded) {
  const std::vector<uint8_t> large = counting(0x2B1, 3), page = counting(0x100, 7), single = {0x5A};
  Image image;
  appendWord(image, 0xFFFF);
  MemoryHost console;
  ASSERT_TRUE(stageShadow(image, 0x34F3, {{0xD8F0, large}, {0xC000, page}, {0xD900, single}}, console));

  Machine machine;
  machine.osRom = true;
  machine.p = Machine::alwaysSet | Machine::carry;
  machine.poke(0xD301, 0xFD);
  std::vector<uint8_t> interrupts, ports;
  machine.onWrite = [&](uint16_t address, uint8_t value) {
    if (address == 0xD40E) interrupts.push_back(value);
    if (address == 0xD301) ports.push_back(value);
  };
  ASSERT_TRUE(machine.loadXex(joined(image.parts()))) << machine.error;

  machine.osRom = false;  // to see the memory behind it
  std::string copied(large.begin(), large.end());
  copied[0x10] = 0x5A;  // the third lies in the first
  EXPECT_EQ(machine.memory(0xD8F0, large.size() + 1), copied + '\0');
  EXPECT_EQ(machine.memory(0xC000, page.size() + 1), std::string(page.begin(), page.end()) + '\0');
  EXPECT_EQ(interrupts, (std::vector<uint8_t>{0, 0x40}));
  EXPECT_EQ(ports, (std::vector<uint8_t>{0xFC, 0xFD}));
  EXPECT_EQ(machine.p, Machine::alwaysSet | Machine::carry);
}

TEST(Shadow, MustEndBelowTheTopOfMemory) {
  const std::string stage = "warning: shadow staging segment ", payload = "shadow staging payload at ";
  const std::vector<uint8_t> bytes = counting(8, 1);
  // Stub, table and bytes are 121 + 7 = 128 for one piece, 127 + 1 for two.
  const struct {
    uint32_t stage;
    std::vector<size_t> sizes;  // of the pieces
    bool fits;
    std::string errors;  // up to their sizes
  } rows[] = {
      // clang-format off
      {0x7F80, {7},    true,  ""},
      {0x7F80, {8},    true,  say(stage + "$7F80-$8000 extends 1 bytes")},
      {0x7F80, {1, 1}, true,  say(stage + "$7F80-$8000 extends 1 bytes")},
      // The first byte of the piece is at $FFFF, and at $10000.
      {0xFF86, {1},    true,  say(stage + "$FF86-$FFFF extends 32768 bytes")},
      {0xFF86, {2},    false, say(stage + "$FF86-$10000 extends 32769 bytes") + say(payload + "$FF86 is 123 bytes")},
      {0xFF87, {1},    false, say(stage + "$FF87-$10000 extends 32769 bytes") + say(payload + "$FF87 overflows 64 KB")},
      {0xFF80, {1, 1}, false, say(stage + "$FF80-$10000 extends 32769 bytes") + say(payload + "$FF80 overflows 64 KB")},
      // clang-format on
  };
  for (const auto& [start, sizes, fits, errors] : rows) {
    std::vector<Piece> pieces;
    for (size_t size : sizes)
      pieces.push_back({0xC000, std::span(bytes).first(size)});
    MemoryHost console;
    Image image;
    EXPECT_TRUE(stageShadow(image, start, pieces, console) == fits && (image.size() > 0) == fits) << errors;
    EXPECT_EQ(std::regex_replace(console.standardError, std::regex("(bytes|KB).*"), "$1"), errors);
  }
}

}  // namespace
}  // namespace kiln::test
