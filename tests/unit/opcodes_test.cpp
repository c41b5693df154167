// The instruction set: every opcode, the words that are no mnemonic, and the branches.
#include "isa/opcodes.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "base/text.h"

namespace kiln {
namespace {

// clang-format off
// The first digit of an opcode on the left, the second at the top; no opcode ends in 7, B or F. Modes of the stack:
// "sr" is n,SP, "sp" is SP,n, "siy" is (n,SP),Y and "srx" is n,SP,X.
constexpr std::string_view opcodeMap[] = {
    "  0       1       2       3       4       5       6       8       9       A       C       D       E      ",
    "0 BRK imp ORA izx STX sr  LDA siy         ORA zp  ASL zp  PHP imp ORA imm ASL acc         ORA abs ASL abs",
    "1 BPL rel ORA izy STY sr  STA siy         ORA zpx ASL zpx CLC imp ORA aby                 ORA abx ASL abx",
    "2 JSR abs AND izx ADD sp  LDA srx BIT zp  AND zp  ROL zp  PLP imp AND imm ROL acc BIT abs AND abs ROL abs",
    "3 BMI rel AND izy PSH imm STA srx         AND zpx ROL zpx SEC imp AND aby                 AND abx ROL abx",
    "4 RTI imp EOR izx LDX sr          PHX imp EOR zp  LSR zp  PHA imp EOR imm LSR acc JMP abs EOR abs LSR abs",
    "5 BVC rel EOR izy LDY sr          PHY imp EOR zpx LSR zpx CLI imp EOR aby                 EOR abx LSR abx",
    "6 RTS imp ADC izx PLL imm         PLX imp ADC zp  ROR zp  PLA imp ADC imm ROR acc JMP ind ADC abs ROR abs",
    "7 BVS rel ADC izy ADC sr          PLY imp ADC zpx ROR zpx SEI imp ADC aby                 ADC abx ROR abx",
    "8 BRA rel STA izx                 STY zp  STA zp  STX zp  DEY imp         TXA imp STY abs STA abs STX abs",
    "9 BCC rel STA izy STA sr          STY zpx STA zpx STX zpy TYA imp STA aby TXS imp         STA abx        ",
    "A LDY imm LDA izx LDX imm         LDY zp  LDA zp  LDX zp  TAY imp LDA imm TAX imp LDY abs LDA abs LDX abs",
    "B BCS rel LDA izy LDA sr          LDY zpx LDA zpx LDX zpy CLV imp LDA aby TSX imp LDY abx LDA abx LDX aby",
    "C CPY imm CMP izx                 CPY zp  CMP zp  DEC zp  INY imp CMP imm DEX imp CPY abs CMP abs DEC abs",
    "D BNE rel CMP izy CMP sr                  CMP zpx DEC zpx CLD imp CMP aby                 CMP abx DEC abx",
    "E CPX imm SBC izx                 CPX zp  SBC zp  INC zp  INX imp SBC imm NOP imp CPX abs SBC abs INC abs",
    "F BEQ rel SBC izy SBC sr                  SBC zpx INC zpx SED imp SBC aby                 SBC abx INC abx",
};
// clang-format on

// In the order of the modes.
constexpr const char* modeNames[] = {"imp", "acc", "imm", "zp",  "zpx", "zpy", "abs", "abx", "aby",
                                     "ind", "izx", "izy", "rel", "sr",  "sp",  "siy", "srx"};

TEST(Opcodes, AreThoseOfTheMap) {
  unsigned count = 0;
  for (size_t row = 0; row < mnemonicCount * modeCount; ++row) {
    const auto mnemonic = static_cast<Mnemonic>(1 + row / modeCount);
    const int opcode = opcodeFor(mnemonic, static_cast<Mode>(row % modeCount));
    if (opcode == -1) continue;
    ++count;
    std::string name = std::string(mnemonicText(mnemonic)) + " " + modeNames[row % modeCount];
    name.resize(7, ' ');
    const size_t column = opcodeMap[0].find("0123456789ABCDEF"[opcode % 16]);
    EXPECT_EQ(name, opcodeMap[1 + opcode / 16].substr(column, name.size()));
  }
  EXPECT_EQ(count, 172u);
}

TEST(Mnemonics, AreWordsOfThreeLettersInAnyCase) {
  for (size_t number = 1; number <= mnemonicCount; ++number) {
    const auto mnemonic = static_cast<Mnemonic>(number);
    EXPECT_EQ(mnemonicOf(mnemonicText(mnemonic)), mnemonic);
    EXPECT_EQ(mnemonicOf(toLower(mnemonicText(mnemonic))), mnemonic);
  }
  for (const char* word : {"A", "LD", "LDAA", "STZ", "TRB", "L@A", "LD[", "`DA", "LD{", "LD ", "L\xC4Y", ".DA"})
    EXPECT_EQ(mnemonicOf(word), Mnemonic::None) << word;
}

TEST(Branches, HaveAnInverseExceptBra) {
  using enum Mnemonic;
  const std::map<Mnemonic, Mnemonic> inverses = {{BCC, BCS}, {BCS, BCC}, {BEQ, BNE}, {BNE, BEQ}, {BMI, BPL},
                                                 {BPL, BMI}, {BVC, BVS}, {BVS, BVC}, {BRA, None}};
  for (size_t number = 0; number <= mnemonicCount; ++number) {
    const auto mnemonic = static_cast<Mnemonic>(number);
    const auto row = inverses.find(mnemonic);
    EXPECT_EQ(isBranch(mnemonic), row != inverses.end()) << number;
    EXPECT_EQ(invertBranch(mnemonic), row == inverses.end() ? None : row->second) << number;
  }
}

}  // namespace
}  // namespace kiln
