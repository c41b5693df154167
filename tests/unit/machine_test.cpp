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

}  // namespace kiln::test
