// What docs/check.md does not show of numbers, operands and values: near misses, places, and what must not be reported.
#include <gtest/gtest.h>

#include "inspect/expression_leaves.h"
#include "support/findings.h"

namespace kiln::test {
namespace {

// A statement in the third line of a program, and the columns and checks of its findings.
struct Row {
  std::string statement;
  std::vector<std::string> findings = {};
};

// Names of each kind: a label above the zero page, one below, large and small numbers.
void expectRows(const std::vector<Row>& rows, const std::string& options = "") {
  const std::string before = "        .org $80\nlow: NOP\n",
                    after = "\n        .org $2000\nhigh: NOP\nsmall = 5\nlarge = $12345\n";
  for (const auto& [statement, findings] : rows) {
    SCOPED_TRACE(statement);
    std::vector<std::string> expected;
    for (const std::string& finding : findings)
      expected.push_back("3:" + finding);
    expectFindings({before + statement + after, options}, expected);
  }
}

TEST(CheckValues, FollowTheEvaluatorsCuts) {
  struct Cut {
    std::string_view text;
    std::vector<std::string_view> leaves;
  };
  const Cut cuts[] = {
      {"a+b*c-d", {"a", "b", "c", "d"}},
      {"<(a+1)/ >b", {"a", "1", "b"}},
      {"5*-3", {"5", "", "3"}},
      {"--5", {"-", "5"}},
      {"-(a+b)", {"-(a+b)"}},
      {"f(a+b)*2", {"f(a+b)", "2"}},
      {"a+b)", {"a+b)"}},
      {"x+(a+b", {"x+(a", "b"}},
      {"()", {""}},
      {"$-5", {"$", "5"}},
  };
  ExpressionLeaves leaves;
  for (const auto& [text, expected] : cuts)
    EXPECT_EQ(leaves.find(text), expected) << text;
}

TEST(CheckValues, FindMisreadNumbers) {
  expectRows({
      {" LDA #$FF"},
      {" LDA #0FFh"},
      {" LDA $0x10"},
      {" LDA $ 10"},
      {" LDA $G", {"6 number-ends-early"}},
      {" LDA $-5", {"6 number-ends-early"}},
      {" LDA low+%12", {"10 number-ends-early"}},
      {" LDA ($8G),Y", {"7 number-ends-early"}},
      {" LDA $8G , X", {"6 number-ends-early"}},
      {" LDA #12AB", {"7 number-ends-early"}},
      {" LDA #1.5", {"7 number-ends-early"}},
      {" LDA ,X", {"2 number-ends-early"}},
      {" JMP ()", {"2 number-ends-early"}},
      {" .byte 1,$1G,2,", {"10 number-ends-early"}},
      {" .org $90 at last", {"7 number-ends-early"}},
      {" .space 0x10", {"9 number-ends-early"}},
      {"n = $1G", {"5 number-ends-early"}},
      {" .code_regions $80-$3FFFG", {"20 number-ends-early"}},
      {" .long $10000000000000000", {"8 cut-value"}},
  });
}

TEST(CheckValues, FindCharactersSignsAndOperators) {
  expectRows(
      {
          {" LDA #'+'", {"7 character-literal"}},
          {" LDA #'A'-'0'", {"7 character-literal", "11 character-literal"}},
          {" LDA #'A", {"7 character-literal"}},
          {" .byte 1,'A',2", {"10 character-literal"}},
          {" LDA #+5", {"7 minus-sign"}},
          {" LDA #<-5", {"8 minus-sign"}},
          {" LDA #2*(-5)", {"10 minus-sign"}},
          {" LDA #5-+3", {"9 minus-sign"}},
          {" LDA #5*-(small+1)", {"9 minus-sign"}},
          {" LDA #5++3"},
          {" LDA #small AND 3", {"7 foreign-operator"}},
          {" LDA #small and more of it", {"7 undefined"}},
          {" LDA #$10%3", {"7 foreign-operator"}},
          {" LDA #low-*", {"11 foreign-operator"}},
          {" JMP --", {"6 undefined"}},
          {" STA @low", {"6 undefined"}},
          {" LDA ##5", {"7 undefined"}},
          {"a$: JMP a$"},
          {" LDA #12x"},
      },
      "-D 12x=5");
}

TEST(CheckValues, AllowWhatFits) {
  expectRows({
      {" LDA #255"},
      {" LDA #0-255"},
      {" LDA #low"},
      {" LDA #small"},
      {" LDA #256", {"7 cut-value"}},
      {" LDA #0-256", {"7 cut-value"}},
      {" LDA #high", {"7 cut-value"}},
      {" .byte <high,>high,low,(high-$2000)"},
      {" .byte 1,high,2", {"10 cut-value"}},
      {" .byte 1,(high),2", {"10 cut-value"}},
      {" .word high,65535,high-low-$3000"},
      {" .word 1,large", {"10 cut-value"}},
      {" .long large"},
      {" STA large", {"6 cut-value"}},
      {" STA high+$F000", {"6 cut-value"}},
      {" STA high-$D000,X"},
      {" .org $12345", {"7 cut-value"}},
      {" STA 0-1"},
  });
  // The assembler has messages of its own about these.
  expectFindings({" .org $2000\n LDA (300),Y\n"}, {"2:2 assembler"});
  expectFindings({" .org $2000\n PSH #300\n"}, {"2:2 assembler"});
  // A name from -D is in the zero page by its first value, and has its last one.
  expectFindings({" .org $2000\n LDA port\nport = $1234\n", "-Wno-define-overridden -D port=1"}, {"2:6 cut-value"});
}

TEST(CheckValues, AllowLowAndHighOfASum) {
  expectRows({
      {" LDA #<high+1"},
      {" LDA #>high+$80"},
      {" LDA #<high-<low"},
      {" LDA #>high-low+255"},
      {" .word <high+1"},
      {"n = <low+$400"},
      {" LDA #>high->high", {"7 low-high-all"}},
      {" LDA #>(high)->high", {"7 low-high-all"}},
      {" STA <low+$2000,X", {"6 low-high-all"}},
  });
}

TEST(CheckValues, AllowModesThatAreMeant) {
  expectRows({
      {" JMP (high)"},
      {" JMP ((high)+2)"},
      {" JMP (high+255)", {"2 page-wrap-jump"}},
      {" LDA (high)+1"},
      {" LDA (high+1),X"},
      {" LDA (low+1),X", {"6 accidental-indirect"}},
      {" LDA (high) , X", {"6 accidental-indirect"}},
      {" LDA (small)*(2),Y", {"6 accidental-indirect"}},
      {" STA (high)+(5)", {"6 accidental-indirect"}},
      {" STA $10+high", {"6 first-number"}},
      {" STA $10-$20,X"},
      {" JMP $10+high"},
      {" STX $10+high,Y", {"6 cut-value"}},
  });
  expectRows({{" STA low", {"6 three-bytes"}}, {" STA low,Y"}, {" JMP low"}, {" ply", {"2 other-opcode"}}},
             "-Wextra -Wno-unused -Wno-unreachable");
}

TEST(CheckValues, PutFixesWhereTheyBelong) {
  const std::string source = "start: LDA #-5\n LDX #0x1F+'A'\n LDY #5--3\n STA $10+start+$2000\n .byte 1,##2\n";
  EXPECT_EQ(fixedSource({source}),
            "start: LDA #0-5\n LDX #$1F+65\n LDY #5-(0-3)\n STA 0+$10+start+$2000\n .byte 1,##2\n");
}

TEST(CheckValues, ReportTheLinesOfAMacroAtItsCall) {
  const std::string macro = ".macro load value\n LDA #value\n LDX #$1G\n\n .org $2000\n";
  expectFindings({macro + " load 300\n"}, {"6:2 number-ends-early", "6:2 cut-value"});
}

}  // namespace
}  // namespace kiln::test
