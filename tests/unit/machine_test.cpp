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

TEST(Machine, HidesMemoryBehindItsRom) {
  Machine m;  // STA $C000 : DEC $D301 : STA $C001 : LDX $C001 : INC $D301 : LDY $C001 : JSR $E456 (an RTS in ROM) : RTS
  m.osRom = true;
  m.a = 0x42;
  ASSERT_TRUE(m.loadXex(xex({{0x600, "8D00C0 CE01D3 8D01C0 AE01C0 EE01D3 AC01C0 2056E4 60"}}, 0x600)) && m.run());
  EXPECT_EQ(m.x, 0x42);
  EXPECT_EQ(m.y, 0x60);
  m.osRom = false;
  EXPECT_EQ(m.peekWord(0xC000), 0x4200);
}

}  // namespace kiln::test
