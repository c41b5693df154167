// One instruction at a time: the bytes of its operand, and what is said of a value that does not fit.
#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {
namespace {

const std::string zero = " resolves to $0000 — probable undefined symbol (compiler internal error?)";
const std::string far = "branch out of range ";

TEST(Encoding, WarnsOfNamesThatAreAddressZero) {
  const struct {
    std::string source, bytes, shown;
  } rows[] = {
      // clang-format off
      {"LDA z",     "A5 00",    "LDA z"},
      {"LDA z , X", "B5 00",    "LDA z"},
      {"LDA z+0,x", "BD 00 00", "LDA z+0"},
      {"LDA $A-$A", "A5 00",    "LDA $A-$A"},
      {"JMP z",     "4C 00 00", "JMP z"},
      {"JMP ( z )", "6C 00 00", "JMP z"},
      // clang-format on
  };
  for (const auto& [source, bytes, shown] : rows)
    expectCode(source, {{0, bytes}}, {"line 1: " + shown + zero}, "-Dz=0");
  expectCode("JMP é", {{0, "4C 00 00"}}, {"undefined symbol 'é', using 0", "line 1: JMP é" + zero});
  // No immediate, pointer, branch target or offset from the stack pointer is an address, and no literal is a name.
  expectCode("LDA #z\nLDA (z,X)\nLDA (z),Y\nLDA z,SP\nADD SP,z", {{0, "A900 A100 B100 B200 2200"}}, {}, "-Dz=0");
  expectCode("LDA (z,SP),Y\nLDA z,SP,X\nJMP 0\nBNE z", {{0, "0300 2300 4C0000 D0F7"}}, {}, "-Dz=0");
}

TEST(Encoding, KeepsTheLowBytesOfLargeOperands) {
  expectCode("LDA #$1234\nLDA #0-1\nLDA $12345\nLDA $80+$100\nJMP 0-1", {{0, "A934 A9FF AD4523 A580 4CFFFF"}});
  expectCode("LDA (255),Y\nLDA 127,SP\nLDA 0-128,SP\nADD SP,0-128\nPSH #255", {{0, "B1FF B27F B280 2280 32FF"}});
}

TEST(Encoding, ReachesBranchTargetsUpTo127BytesAway) {
  expectCode(".org $1000\nBNE $1081\nx: BNE x\nBNE $1006-128", {{0x1000, "D07F D0FE D080"}});
  expectCode(".org $FFF0\nBNE 16\n.space 12\ny: BNE y", {{0xFFF0, "D01E" + zeros(12) + "D0FE"}});
  // The repair of long branches sees cloaked code at other addresses, where these are in reach.
  expectErrors(".cloaked_segment 1\nBNE 0-126", {"line 2: " + far + "(-129) — BNE 0-126 at $0001 → $FFFFFFFFFFFFFF82"});
  expectErrors(".space 1\n.cloaked_segment 0\nBEQ x\nx = 130", {"line 3: " + far + "(128) — BEQ x at $0000 → $0082"});
  expectErrors(".cloaked_segment $FFF0\nBRA $72", {"line 2: " + far + "(-65408) — BRA $72 at $FFF0 → $0072"});
}

TEST(Encoding, WarnsOfPointersOutsideTheZeroPage) {
  const std::string needed = " — indirect-indexed addressing requires a zero-page operand (got ";
  const std::string spilled =
      "). The symbol resolves to main memory (data-section spill?); the runtime read will go through ZP ";
  const std::string unsafe =
      " which holds unrelated bytes. Likely a codegen-side ZP-pressure issue; if this code path executes the program "
      "will misbehave.";
  expectCode("LDA (0-1) , y\nSTA (256,X)", {{0, "B1 FF 81 00"}},
             {"line 1: LDA (0-1) , y" + needed + "$FFFFFFFFFFFFFFFF" + spilled + "$FF" + unsafe,
              "line 2: STA (256,X)" + needed + "$0100" + spilled + "$00" + unsafe});
}

TEST(Encoding, RefusesOperandsThatHaveNoForm) {
  const std::string mode = "invalid addressing mode for ", offset = " — signed-8-bit offset out of range (",
                    adjustment = " — signed-8-bit stack adjustment out of range (",
                    reach = "); pell SP-relative addressing only reaches ±128 bytes",
                    frame =
                        " — immediate out of range (0..255); larger frames must chain PSH/PLL pairs (see "
                        "STACK-ABI.md §6.1)";
  for (const auto& [source, error] : std::vector<std::pair<std::string, std::string>>{
           // clang-format off
      {"INC A",            mode + "INC"},
      {"LDA (5)",          mode + "LDA"},
      {"LDA 128,SP",       "LDA 128,SP" + offset + "128" + reach},
      {"LDA 0-129 , sp",   "LDA 0-129 , sp" + offset + "-129" + reach},
      {"ADD SP,128",       "ADD SP,128" + adjustment + "128" + reach},
      {"LDA (0-129,SP),Y", "LDA (0-129,SP),Y" + adjustment + "-129" + reach},
      {"LDA 128,SP,X",     "LDA 128,SP,X" + adjustment + "128" + reach},
      {"psh #256",         "PSH #256" + frame},
      {"PLL #0-1",         "PLL #-1" + frame},
           // clang-format on
       })
    expectErrors(source, {"line 1: " + error});
  // A failed statement counts with the size it had in the end: three bytes for one that was widened in vain.
  expectErrors("STX $20,X\nBNE 0-124\nJMP z\nINC A\n.cloaked_segment 1\nBRA 137",
               {"line 1: " + mode + "STX", "line 2: " + far + "(-129) — BNE 0-124 at $0003 → $FFFFFFFFFFFFFF84",
                "line 4: " + mode + "INC", "line 6: " + far + "(134) — BRA 137 at $0001 → $0089"},
               {"undefined symbol 'z', using 0", "line 3: JMP z" + zero});
}

}  // namespace
}  // namespace kiln::test
