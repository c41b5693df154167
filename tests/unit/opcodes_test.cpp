// The instruction set: every row of the table, what is found in it and what is not, and the branches.
#include "isa/opcodes.h"

#include <gtest/gtest.h>

#include <string>

#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

// Each mnemonic with its modes and opcodes, in the order of the table, which is also that of the mode codes.
constexpr char rowsAsText[] =
    "ADC imm69 zp65 zpx75 abs6D abx7D aby79 izx61 izy71 sr72 AND imm29 zp25 zpx35 abs2D abx3D aby39 izx21 izy31 ASL "
    "acc0A zp06 zpx16 abs0E abx1E BCC rel90 BCS relB0 BEQ relF0 BMI rel30 BNE relD0 BPL rel10 BVC rel50 BVS rel70 BIT "
    "zp24 abs2C BRK imp00 CLC imp18 CLD impD8 CLI imp58 CLV impB8 CMP immC9 zpC5 zpxD5 absCD abxDD abyD9 izxC1 izyD1 "
    "srD2 CPX immE0 zpE4 absEC CPY immC0 zpC4 absCC DEC zpC6 zpxD6 absCE abxDE DEX impCA DEY imp88 EOR imm49 zp45 "
    "zpx55 abs4D abx5D aby59 izx41 izy51 INC zpE6 zpxF6 absEE abxFE INX impE8 INY impC8 JMP abs4C ind6C JSR abs20 LDA "
    "immA9 zpA5 zpxB5 absAD abxBD abyB9 izxA1 izyB1 srB2 siy03 srx23 LDX immA2 zpA6 zpyB6 absAE abyBE sr42 LDY immA0 "
    "zpA4 zpxB4 absAC abxBC sr52 LSR acc4A zp46 zpx56 abs4E abx5E NOP impEA ORA imm09 zp05 zpx15 abs0D abx1D aby19 "
    "izx01 izy11 PHA imp48 PHP imp08 PLA imp68 PLP imp28 ROL acc2A zp26 zpx36 abs2E abx3E ROR acc6A zp66 zpx76 abs6E "
    "abx7E RTI imp40 RTS imp60 SBC immE9 zpE5 zpxF5 absED abxFD abyF9 izxE1 izyF1 srF2 SEC imp38 SED impF8 SEI imp78 "
    "STA zp85 zpx95 abs8D abx9D aby99 izx81 izy91 sr92 siy13 srx33 STX zp86 zpy96 abs8E sr02 STY zp84 zpx94 abs8C "
    "sr12 TAX impAA TAY impA8 TSX impBA TXA imp8A TXS imp9A TYA imp98 ADD sadj22 PSH imm32 PLL imm62 PHX imp44 PHY "
    "imp54 PLX imp64 PLY imp74 BRA rel80 ";

TEST(Opcodes, AreThoseOfTheTableAndBelongToNoOtherWord) {
  constexpr const char* modes[] = {"imp", "acc", "imm", "zp",  "zpx", "zpy",  "abs", "abx", "aby",
                                   "ind", "izx", "izy", "rel", "sr",  "sadj", "siy", "srx"};
  std::string found, branches;
  for (size_t number = 1; number <= 64; ++number) {
    const auto mnemonic = static_cast<Mnemonic>(number);
    const std::string text(mnemonicText(mnemonic)), inverse(mnemonicText(invertBranch(mnemonic)));
    EXPECT_EQ(mnemonicOf(toLower(text)), mnemonic) << text;
    if (isBranch(mnemonic) || !inverse.empty()) branches += text + ">" + inverse + " ";
    found += text + " ";
    for (size_t code = 0; code < 17; ++code) {
      const int opcode = opcodeFor(mnemonic, static_cast<Mode>(code));
      if (opcode == -1) continue;
      appendHex(found.append(modes[code]), static_cast<uint64_t>(opcode), 2);
      found += " ";
    }
  }
  EXPECT_EQ(found, rowsAsText);
  EXPECT_EQ(branches, "BCC>BCS BCS>BCC BEQ>BNE BMI>BPL BNE>BEQ BPL>BMI BVC>BVS BVS>BVC BRA> ");
  for (const char* word : {"A", "LD", "LDAA", "STZ", "TRB", "L@A", "LD[", "`DA", "LD{", "LD ", "L\xC4Y", ".DA"})
    EXPECT_EQ(mnemonicOf(word), Mnemonic::None) << word;
}

}  // namespace
}  // namespace kiln
