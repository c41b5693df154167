// What kiln-check finds in lines and files, beyond the examples of docs/check.md.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/findings.h"

namespace kiln::test {
namespace {

struct Row {
  std::string line;                   // the second line of a program
  std::vector<std::string> findings;  // in it
};

std::string program(const std::string& line) { return "        .org $2000\n" + line + "\n        NOP\n"; }

void expectInLine(const std::vector<Row>& rows) {
  for (const Row& row : rows)
    expectFindings({.source = program(row.line)}, row.findings);
}

TEST(CheckLines, NamesTheMistakeInAVanishedStatement) {
  expectInLine({
      {"start:  RTX", {"2:9 vanished"}},
      {"RTX", {"2:1 vanished"}},
      {"start", {"2:1 missing-colon"}},
      {">inner  RTS", {"2:1 missing-colon"}},
      {"start   .byte 1", {"2:1 missing-colon"}},
      {"start : RTS", {"2:1 missing-colon"}},
      {"NOP : LDZ #1", {"2:7 vanished"}},
      {"a:b:    NOP", {"2:3 vanished"}},
      {"@loop:  NOP", {"2:1 vanished"}},
      {"10      LDA #1", {"2:1 vanished"}},
      {"size    =", {"2:1 vanished"}},
      {"        = 5", {"2:9 vanished"}},
      {"size:   = 5", {"2:9 vanished"}},
      {"Draws the border of the screen", {"2:1 vanished"}},
      {"        .byte ; nothing", {"2:9 missing-argument"}},
      {"        .byte\t; nothing", {"2:9 missing-argument"}},
      {"here:   .include \"a.inc\"", {"2:9 vanished"}},
      {"        .include", {"2:9 missing-argument"}},
      {"        .cloaked_segment", {"2:9 missing-argument"}},
      {"        .macro\tPAINT colour", {"2:9 tab-after-directive"}},
  });
}

TEST(CheckLines, SaysWhatToWrite) {
  struct Advice {
    std::string line;
    std::string note;
  };
  const std::vector<Advice> rows = {
      {"        .bite 1", "did you mean '.byte'?"},
      {"        byte 1", "did you mean '.byte'?"},
      {"        paint 1", "did you mean 'PAINT'?"},
      {"        .byteNOP", "a directive needs a space after it: '.byte '"},
      {"        LDA.w $10", "an instruction has a space after its name, and no size"},
      {"table   DFB 1,2", "write '.byte'"},
      {"        !byte 1,2", "did you mean '.byte'?"},
      {"        #include \"a\"", "write '.include \"name\"'"},
      {"        *=$3000", "write '.org $3000'"},
      {"        .IF 1", "there are no conditions: the lines between are always part of the program"},
      {"        STZ $10", "the 6502 has no STZ: write 'LDA #0 : STA address'"},
      {"        // draws", "a comment begins with ';'"},
      {"Draws the border again", "a comment begins with ';'"},
      {"2nd:    NOP", "a label begins with a letter, '_' or '.'"},
  };
  for (const Advice& row : rows) {
    const std::string macro = ".macro PAINT colour\n LDA #colour\n\n PAINT 1\n";
    const std::vector<std::string> texts = findingTextsIn({.source = program(row.line) + macro});
    ASSERT_EQ(texts.size(), 2U) << row.line;
    EXPECT_EQ(texts[1], row.note) << row.line;
  }
}

TEST(CheckLines, TellsStatementsFromLabelsAndAssignments) {
  expectInLine({
      {"        LDA #1:STA $10", {"2:15 separator"}},
      {"        x=1: y=2", {"2:12 separator"}},
      {"        .byte 1 :.byte 2", {"2:17 separator"}},
      {"start:  TXA: PHA", {"2:12 separator"}},
      {"start:  TXA :PHA", {"2:13 separator"}},
      {"        CLC : LDA #1: STA $10", {"2:21 separator"}},
      {"        LDA #1:", {"2:9 greedy-colon"}},
      {"        RTS:", {"2:9 greedy-colon"}},
      {"        LDA: #1", {"2:9 greedy-colon"}},
      {"        LDA #':'", {"2:9 greedy-colon"}},
      {"        LDA #'='", {"2:9 greedy-equals"}},
      {"        x *= 2", {"2:9 greedy-equals"}},
      {"        .equ size = 5", {"2:9 greedy-equals"}},
      {">size   = 5", {"2:1 greedy-equals"}},
      {"text:   .string \"A=B\"", {"2:9 cut-text"}},
      {"        .string A:B", {"2:9 cut-text"}},
      {"        .string \"A : B : C\" : NOP", {"2:9 cut-text"}},
      {"text:   .byte \"A:B\"", {"2:15 text-in-list"}},
      {"        .word 1,\"A,B\"", {"2:17 text-in-list"}},
      {"        LDA #\" ; a quote", {"2:14 odd-quote"}},
      {"        .string \"A;B ; comment", {"2:17 odd-quote"}},
  });
}

// Each of these does what it says.
TEST(CheckLines, FindsNothingInWhatWorks) {
  const std::vector<std::string> sources = {
      "add:    NOP",
      "rol:    ROL A\n        JSR rol",
      "loop$:  JMP loop$",
      "main.x: NOP",
      "gr\xC3\xB6\xC3\x9F"
      "e:  JMP gr\xC3\xB6\xC3\x9F"
      "e",
      "        .SPILL_POINT of this",
      "\f\n        NOP\n\x1A",
      "        .cloaked_segment$5000,3",
      "        .string A 5\" disk",
      "        .string \"A:B\" ; check: allow cut-text",
      "text:   .string \"A:B\"",
      "        .string \"say \"hi\"\"",
      "        NOP ; it's 5\" : a = b",
      "        NOP : ; and nothing else",
  };
  for (const std::string& source : sources)
    expectFindings({.source = program(source)});
}

TEST(CheckLines, GivesEditsThatMendTheLine) {
  struct Mend {
    std::string line;
    std::string mended;
  };
  const std::vector<Mend> rows = {
      {"        .byte\t1", "        .byte 1"},
      {"        .byte$10", "        .byte $10"},
      {"        ASLA", "        ASL A"},
      {"        LDA #1 :STA $10", "        LDA #1 : STA $10"},
      {"        LDA #1:", "        LDA #1"},
      {"start:: NOP", "start: NOP"},
      {"size := 5", "size = 5"},
      {"size EQU 5", "size = 5"},
      {"        .dw start", "        .word start"},
      {"        * = $3000", "        .org $3000"},
      {"x == 5", "x = 5"},
      {"        .byte \"AB\",0", "        .byte 65,66,0"},
      {"        .string \"A=B\"", "        .byte 65,61,66,0"},
      {"        .string \"A : B\"", "        .byte 65,32,58,32,66,0"},
  };
  const std::string start = "start:  NOP\n";
  for (const Mend& row : rows)
    EXPECT_EQ(fixedSource({.source = start + row.line + "\n"}), start + row.mended + "\n");
  // A label is one for sure when something uses it.
  EXPECT_EQ(fixedSource({.source = "loop LDX #1\n .word loop\n"}), "loop: LDX #1\n .word loop\n");
  EXPECT_EQ(fixedSource({.source = "loop LDX #1\n"}), "loop LDX #1\n");
}

// What comes of a definition that vanishes is not reported where the name is used.
TEST(CheckLines, ReportsAMistakeOnce) {
  expectInLine({
      {"second := 64\n LDA #second\n .byte second,second+1", {"2:9 vanished"}},
      {"@next:  INX\n BNE @next\n .word @next", {"2:1 vanished"}},
      {".next:  INX\n LDA @next", {"3:6 undefined"}},
      {"        JSR #start", {"2:9 assembler"}},
      {"        JSR #$1G+'A'", {"2:9 assembler"}},
  });
}

TEST(CheckLines, ExplainsWhatTheAssemblerSaysOfTheLine) {
  expectFindings({.source = program("        LDA #1:STA $10\n        LDA #1:STA $11")},
                 {"2:15 separator", "3:15 separator"});
  expectFindings({.source = program("start:  TXA :PHA")}, {"2:13 separator"});
  expectFindings({.source = program("start:  JMP .loop\n.loop   RTS")}, {"3:1 missing-colon"});
  // The missing file may have the macro.
  expectFindings({.source = program("        .include \"a.inc\"\n        PAINT 1")}, {"2:9 assembler"});
  EXPECT_EQ(findingTextsIn({.source = program("        .byte \"A\""), .options = "-Wno-text-in-list"}),
            std::vector<std::string>{"undefined symbol '\"A\"', using 0"});
}

TEST(CheckFiles, CountSpoiledLines) {
  // Harmless: comments, empty lines, labels alone, numbers.
  expectFindings({.source = "; all\r\n\r\nstart:\r\n        .org $2000\r\n        .byte $10,%11\r\n RTS ; done\r\n"});
  // The mistakes in other lines are reported, too.
  const CheckedSource mixed = {.source = "        LDZ #1\n        JMP start\r\nstart:  RTS ; x\r\n        LDX #1\r\n"};
  expectFindings(mixed, {"1:9 vanished", "2:18 carriage-return"});
  EXPECT_EQ(findingTextsIn(mixed).at(2), "carriage returns at the line ends spoil the last word of 2 lines");
  const std::map<std::string, std::string> files = {{"a.inc", "size = 5\r\n"}, {"b.inc", "        RTS\r\n"}};
  const std::string includes = "        .include \"a.inc\"\n        .include \"b.inc\"\n        .include \"b.inc\"\n";
  expectFindings({.source = includes, .files = files}, {"a.inc:1:9 carriage-return", "b.inc:1:12 carriage-return"});
}

TEST(CheckFiles, ReportAByteOrderMarkWhereItDoesHarm) {
  const std::string mark = "\xEF\xBB\xBF";
  expectFindings({.source = mark + "speed = 5\n        .org $2000\n        NOP\n"}, {"1:1 byte-order-mark"});
  expectFindings({.source = mark + "; a comment\n        .org $2000\n        NOP\n"});
  EXPECT_EQ(fixedSource({.source = mark + "        NOP\n"}), "        NOP\n");
}

}  // namespace
}  // namespace kiln::test
