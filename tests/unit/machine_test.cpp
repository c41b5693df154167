// The machine that other tests run programs on: the faults that it must report. Its other faults show in their results.
#include "machine/machine.h"

#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {

TEST(Machine, RefusesFilesThatDoNotLoadOrReturn) {
  const std::pair<std::string, std::string> rows[] = {
      // clang-format off
      {"0006 0006 60",                         "no marker at the start of the file"},
      {"FFFF 0006 00",                         "the last segment's header is cut short"},
      {"FFFF 0106 0006",                       "segment $0601-$0600 is cut short"},
      {"FFFF 0006 0106 60",                    "segment $0600-$0601 is cut short"},
      {"FFFF E202 E302 0006",                  "hit BRK at $0600"},
      {"FFFF 0006 0106 EAFF E202 E302 0006",   "unknown opcode at $0601"},
      {"FFFF 0006 0206 4C0006 E202 E302 0006", "no return, at $0600"},
      // clang-format on
  };
  for (const auto& [file, error] : rows) {
    Machine m;
    EXPECT_FALSE(m.loadXex(bytes(file)));
    EXPECT_EQ(m.error, error);
  }
}

// A bank is seen only at outputs that are 0; the directions are written to the same address.
TEST(Machine, SelectsBanksWithTheOutputsOfPortB) {
  Machine m;
  m.osRom = m.basicRom = m.xeBanks = true;
  m.poke(0x4000, 99);  // main memory
  for (const int bank : {0, 1, 2, 3}) {
    m.poke(0xD301, 0xE3 | bank << 2);
    m.poke(0x4000, bank);
  }
  const auto select = [&m](int directions, int outputs) {
    m.poke(0xD303, 0x38);
    m.poke(0xD301, directions);
    EXPECT_EQ(m.peek(0xD301), directions);
    m.poke(0xD303, 0x3C);
    m.poke(0xD301, outputs);
    return m.peek(0x4000);
  };
  EXPECT_EQ(select(0xFF, 0xEB), 2);
  EXPECT_EQ(select(0xFF, 0xFB), 99);
  EXPECT_EQ(select(0x00, 0xEB), 99);  // no outputs
  EXPECT_EQ(select(0x1C, 0x0C), 3);
  EXPECT_EQ(m.peek(0xD301), 0xEF);
  EXPECT_EQ(m.peek(0xC000), 0x60);  // both ROMs as their inputs say: one on, one off
  EXPECT_EQ(m.peek(0xA000), 0x00);
  EXPECT_EQ(select(0xFF, 0x0C), 3);  // with these outputs the other way round
  EXPECT_EQ(m.peek(0xC000), 0x00);
  EXPECT_EQ(m.peek(0xA000), 0x60);
}

}  // namespace kiln::test
