// The words that are no mnemonic, and the branches. The opcodes are compared with the manual in documents_test.cpp.
#include "isa/opcodes.h"

#include <gtest/gtest.h>

#include "base/text.h"

namespace kiln {
namespace {

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
  for (const auto& [branch, inverse] : {std::pair(BCC, BCS), {BEQ, BNE}, {BMI, BPL}, {BVC, BVS}})
    EXPECT_TRUE(invertBranch(branch) == inverse && invertBranch(inverse) == branch) << mnemonicText(branch);
  EXPECT_TRUE(isBranch(BRA) && invertBranch(BRA) == None && !isBranch(BRK) && !isBranch(None));
}

}  // namespace
}  // namespace kiln
