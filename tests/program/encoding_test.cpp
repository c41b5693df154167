// One instruction at a time: the bytes of its operand, and what is said of a value that does not fit.
#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {
namespace {

const std::string zero = " resolves to $0000 — probable undefined symbol (compiler internal error?)";
const std::string far = "branch out of range ";
const std::string mode = "invalid addressing mode for ";
const std::string reach = "); pell SP-relative addressing only reaches ±128 bytes";
const std::string frame =
    " — immediate out of range (0..255); larger frames must chain PSH/PLL pairs (see STACK-ABI.md §6.1)";

std::string pointer(const std::string& text, const std::string& value, const std::string& low) {
  return text + " — indirect-indexed addressing requires a zero-page operand (got " + value +
         "). The symbol resolves to main memory (data-section spill?); the runtime read will go through ZP " + low +
         " which holds unrelated bytes. Likely a codegen-side ZP-pressure issue; if this code path executes the "
         "program will misbehave.";
}

TEST(Encoding, WarnsOfNamesThatAreAddressZero) {
  expectCode("LDA z\nLDA z , X\nLDX z,Y\nJMP z\nLDA z+0,x\nLDA z+0,Y\nJMP ( z )\nLDA $A-$A\nJMP é",
             {{0, "A500B500B6004C0000BD0000B900006C0000A5004C0000"}},
             {"line 1: LDA z" + zero, "line 2: LDA z" + zero, "line 3: LDX z" + zero, "line 4: JMP z" + zero,
              "line 5: LDA z+0" + zero, "line 6: LDA z+0" + zero, "line 7: JMP z" + zero, "line 8: LDA $A-$A" + zero,
              "undefined symbol 'é', using 0", "line 9: JMP é" + zero},
             "-Dz=0");
  expectCode("LDA #z\nLDA (z,X)\nLDA (z),Y\nBNE z+7\nBNE z\nLDA z,SP\nADD SP,z\nLDA (z,SP),Y\nLDA z,SP,X\nJMP 0",
             {{0, "A900A100B100D0FFD0F6B2002200030023004C0000"}}, {}, "-Dz=0");
}

TEST(Encoding, ChecksTheReachOfBranchesAndTheRangeOfSomeByteOperands) {
  expectCode(".org $1000\nBNE $1081\nx: BNE x\nBNE $1006-128", {{0x1000, "D07FD0FED080"}});
  expectCode(".org $FFF0\nBNE 16\n.org $FFFE\ny: BNE y", {{0xFFF0, "D01E000000000000000000000000D0FE"}});
  // The repair of long branches sees cloaked code at other addresses, where these are in reach.
  expectErrors(".cloaked_segment 1\nBNE 0-126", {"line 2: " + far + "(-129) — BNE 0-126 at $0001 → $FFFFFFFFFFFFFF82"});
  expectErrors(".space 1\n.cloaked_segment 0\nBEQ x\nx = 130", {"line 3: " + far + "(128) — BEQ x at $0000 → $0082"});
  expectErrors(".cloaked_segment $FFF0\nBRA $72", {"line 2: " + far + "(-65408) — BRA $72 at $FFF0 → $0072"});
  expectCode("LDA #$1234\nLDA #0-1\nLDA $12345\nJMP 0-1\nLDA $80+$100", {{0, "A934A9FFAD45234CFFFFA580"}});
  expectCode("LDA (255),Y\nLDA (0,X)\nLDA (0-1) , y\nSTA (256,X)", {{0, "B1FFA100B1FF8100"}},
             {"line 3: " + pointer("LDA (0-1) , y", "$FFFFFFFFFFFFFFFF", "$FF"),
              "line 4: " + pointer("STA (256,X)", "$0100", "$00")});
  expectCode("LDA 127,SP\nLDA 0-128,SP\nADD SP,127\nADD SP,0-128\nLDA (127,SP),Y\nLDA 0-128,SP,X\nPSH #255\nPLL #0",
             {{0, "B27FB280227F2280037F238032FF6200"}});
}

// A failed statement counts with the size it had in the end: three bytes for one that was widened in vain.
TEST(Encoding, ReportsEveryErrorAndGoesOn) {
  expectErrors(
      "STX $20,X\nBNE 0-124\nINC A\nBIT #1\nJMP z\nBNE a\nLDA (5)\nLDY 5,Y\nPSH 1\nLDA 128,SP\nLDA 0-129 , sp\n"
      "ADD SP,128\nLDA (0-129,SP),Y\nLDA 128,SP,X\npsh #256\nPLL #0-1\n.cloaked_segment 1\nBRA 138",
      {"line 1: " + mode + "STX", "line 2: " + far + "(-129) — BNE 0-124 at $0003 → $FFFFFFFFFFFFFF84",
       "line 3: " + mode + "INC", "line 4: " + mode + "BIT", "line 6: " + mode + "BNE", "line 7: " + mode + "LDA",
       "line 8: " + mode + "LDY", "line 9: " + mode + "PSH",
       "line 10: LDA 128,SP — signed-8-bit offset out of range (128" + reach,
       "line 11: LDA 0-129 , sp — signed-8-bit offset out of range (-129" + reach,
       "line 12: ADD SP,128 — signed-8-bit stack adjustment out of range (128" + reach,
       "line 13: LDA (0-129,SP),Y — signed-8-bit stack adjustment out of range (-129" + reach,
       "line 14: LDA 128,SP,X — signed-8-bit stack adjustment out of range (128" + reach, "line 15: PSH #256" + frame,
       "line 16: PLL #-1" + frame, "line 18: " + far + "(135) — BRA 138 at $0001 → $008A"},
      {"undefined symbol 'z', using 0", "line 5: JMP z" + zero});
}

}  // namespace
}  // namespace kiln::test
