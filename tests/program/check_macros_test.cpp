// What kiln-check finds in macros, includes and the flow of control, beyond the examples of docs/check.md.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/findings.h"

namespace kiln::test {
namespace {

struct Row {
  std::string source;
  std::vector<std::string> findings = {};
};

void expectEach(const std::vector<Row>& rows) {
  for (const Row& row : rows)
    expectFindings({.source = row.source}, row.findings);
}

const std::string program = "\n\n .org $2000\nstart: ";

TEST(CheckMacros, SeeABodyThatEndsEarly) {
  expectEach({
      // Its parameters are used below.
      {".macro M address\n LDA #0\n\n STA address\n STA address+1" + program + "M $10\n RTS", {"3:1 macro-end"}},
      {".macro M value\n; one\n LDA #value" + program + "M 5\n RTS", {"2:1 macro-end"}},
      {".macro M frames,label\n LDX #frames\nlabel: DEX\n BNE label" + program + "M 5,.a\n RTS", {"3:1 macro-end"}},
      {".macro M n,label\n BNE label\n\n label: INX" + program + "M 5,.a\n RTS", {"3:1 macro-end"}},
      // Neither a label nor the code before it leads to the rest of the body.
      {".macro M\n LDA #0\n\n STA $10" + program + "M\n RTS", {"3:1 macro-end"}},
      {" .org $2000\n JMP start\n.macro M\n LDA #0\n\n STA $10\n\nstart: M\n RTS", {"5:1 macro-end"}},
      // The only instruction of the file that is not indented.
      {".macro M\n LDA #0\nSTA $10" + program + "M\n M\n RTS", {"3:1 macro-end"}},
      {".macro M\nLDA #0" + program + "CLC\n M\n RTS", {"2:1 macro-end"}},
      {".macro M\n\n LDA #0" + program + "M\n RTS", {"2:1 macro-end"}},
  });
}

TEST(CheckMacros, AllowWhatFollowsABody) {
  expectEach({
      // A parameter with a name of the program, in another letter case, or with that of a register.
      {".macro M count,X\n LDA #count\n\n.org $2000\nstart: M 1,2\n LDA table,X\n RTS\ncount = 5\ntable: .byte count"},
      {".macro M value\n LDA #value\n\n .org $2000\n LDX #VALUE\n M 5\n RTS\nVALUE = 5"},
      // The word stands in a comment or in a text.
      {".macro M value\n LDA #value\n\n ; no value\n .org $2000\n M 1\n RTS\n .string \"value\""},
      // A macro in the middle of the code, and at the begin of a program.
      {" .org $2000\n CLC\n.macro M\n LDA #0\n\n M\n RTS"},
      {" .org $2000\n.macro M\n LDA #0\n\n CLC\n M\n RTS"},
      // A macro that is empty on purpose, a file whose instructions all begin in the first column.
      {".macro TRACE\n; INC $D020" + program + "TRACE\n RTS"},
      {".org $2000\nJMP start\n.macro M\n LDA #0\nstart:\nM\nSTA $10\nRTS"},
      {".org $2000\n.macro M\n LDA #0\nCLC\nM\nSTA $10\nRTS"},
      // An indented .macro ends the macro above it.
      {"  .macro M\n LDA #0\n  .macro N\n LDX #0" + program + "M\n N\n RTS"},
  });
}

TEST(CheckMacros, SeeABodyThatGoesOn) {
  expectEach({
      {" .org $2000\n JMP start\n.macro M\n INX\n .ENDM\n INY\n\nstart: M\n RTS", {"5:2 macro-end"}},
      {".macro M\n LDA #0\n .org $2000\nstart: M\n RTS", {"3:2 macro-end"}},
      {".macro M\n LDA #0\n \t \n .org $2000\n CLC\nstart: M\n RTS", {"4:2 macro-end"}},
      {" .org $2000\n JMP start\n.macro M\n LDA #0\n M\n RTS\nstart: RTS", {"5:2 macro-end"}},
      // Moves that are meant.
      {".macro AT address\n CLC\n .org address" + program + "RTS\n AT $3000\n RTS"},
      {".macro VECTORS\n .org $FFFA\n .word start,start,start" + program + "RTS\n VECTORS"},
  });
}

TEST(CheckMacros, CountArguments) {
  const std::string macro = ".macro SET address,number\n LDA #number\n STA address" + program;
  expectEach({
      {macro + "SET $10,1\n RTS"},
      {macro + "SET $10\n RTS", {"6:8 macro-arguments"}},
      {macro + "SET\n RTS", {"6:8 macro-arguments"}},
      {macro + "SET $10,1,2 ; three\n RTS", {"6:18 macro-arguments"}},
      {macro + "SET ($10,2),1\n RTS", {"6:20 macro-arguments"}},
      {macro + "SET $10,\n RTS", {"6:8 macro-arguments"}},
      {macro + "SET $10,1,\n RTS"},
      {".macro NONE\n CLC" + program + "NONE 5\n RTS", {"5:13 macro-arguments"}},
      // An operand may be left out, and so may what no line uses.
      {".macro SHIFT what\n ASL what" + program + "SHIFT ,\n RTS"},  // the comma loses nothing
      {".macro SHIFT what,why\n ASL what ; why" + program + "SHIFT $10\n SHIFT ,5\n RTS"},
      // A default.
      {macro + "SET $10\n RTS\nNumber = 5"},
      // The label of a call defines its own parameter.
      {".macro M label\n label: RTS" + program + "M\n", {"5:8 macro-arguments"}},
  });
}

TEST(CheckMacros, SeeWhatAParameterBreaks) {
  expectEach({
      {".macro M at,at2\n STA at\n STX at2" + program + "M $10,$20\n RTS", {"3:6 macro-parameter"}},
      {".macro M at2,at\n STA at\n STX at2" + program + "M $10,$20\n RTS"},
      {".macro M b\n LDX #b\n .byte 1" + program + "M 5\n RTS", {"3:2 macro-parameter"}},
      {".macro M A\n LDX #A\n LDY #$A0" + program + "M 5\n RTS", {"3:7 macro-parameter"}},
      {".macro M e\n LDX #e\n STX here" + program + "M 5\n RTS\nhere: .byte 0", {"3:6 macro-parameter"}},
      {".macro M b\n LDX #b\n .byte 1" + program + "M b\n RTS\nb = 5"},
      {".macro SET X\n LDX #5\n STX $10" + program + "SET Y\n RTS"},
      // Made of the parameter on purpose, or wrong in the same way everywhere.
      {".macro M n\n LDA table_n\n CMP #$n0" + program + "M 1\n RTS\ntable_1: .byte 0"},
      {".macro M a\n .wait: LDA #a\n BNE .wait" + program + "M 5\n RTS"},
      // A parameter in an argument.
      {".macro M from,to\n LDA from\n STA to" + program + "M tone,$10\n RTS\ntone: .byte 1", {"6:10 macro-parameter"}},
      {".macro M from,to\n LDA #from\n STA to" + program + "M 5,from\n RTS\nfrom: .byte 1"},
  });
}

TEST(CheckMacros, SeeLabelsThatDouble) {
  const auto macro = [](const std::string& label) {
    return ".macro WAIT\n LDX #5\n " + label + " DEX\n BNE " + label.substr(label[0] == '>', 4) + program;
  };
  expectEach({
      {macro("loop:") + "WAIT\n WAIT\n WAIT\n RTS", {"8:2 macro-label"}},
      {macro("loop:") + "WAIT\n RTS"},
      {macro("loop:") + "WAIT\nloop: RTS", {"8:1 assembler"}},
      // The label is an argument.
      {".macro M label\n label: RTS" + program + "M .a\n M .b\n M .a\nother: M .a", {"7:2 macro-label"}},
      {".macro M label\n label: RTS" + program + "M a\n M b\n M a", {"7:2 macro-label"}},
      {macro(".lop:") + "WAIT\n WAIT\n RTS", {"8:2 macro-label"}},
      {macro(".lop:") + "WAIT\nother: WAIT\n RTS"},
      {macro(">loop:") + "WAIT\nother: WAIT\n RTS", {"8:1 macro-label"}},
  });
}

TEST(CheckMacros, SeeCallsThatAreNotExpanded) {
  const std::string wait = ".macro WAIT n\n LDX #n\n\n";
  expectEach({
      // In a macro, once for all calls, or because of the argument.
      {wait + ".macro TWICE\n NOP : WAIT 1" + program + "TWICE\n TWICE\n RTS", {"5:8 macro-in-macro"}},
      {wait + ".macro DO what\n what" + program + "DO WAIT\n DO CLC\n RTS", {"8:1 macro-in-macro"}},
      {".macro M\n INX\n .include \"a\"" + program + "M\n M\n RTS", {"3:2 macro-in-macro"}},
      {".macro M\n INX\n  .macro N\n INY" + program + "M\n N\n RTS", {"3:3 macro-in-macro"}},
      {wait + ".macro UNUSED\n WAIT 1" + program + "RTS"},
      // With other statements in the line.
      {wait + " .org $2000\n NOP : WAIT 1", {"5:2 macro-line"}},
      {wait + " .org $2000\n WAIT 1 : NOP", {"5:2 macro-line"}},
      {wait + " .org $2000\n NOP : NOP : WAIT 1 : NOP", {"5:14 macro-line"}},
      {wait + " .org $2000\nstart: WAIT 1 : NOP", {"5:17 macro-line"}},
      {wait + " .org $2000\nhere : WAIT 1"},
      {wait + " .org $2000\na123456789012345678: WAIT 1"},
      {wait + " .org $2000\na1234567890123456789: WAIT 1", {"5:23 macro-line"}},
      {".macro DO_IT_TWICE what\n what\n what\n\n .org $2000\n DO_IT_TWICE STA $10 : INX"},
  });
}

TEST(CheckMacros, ReportAMistakeInABodyOnce) {
  const std::string body = ".macro M n\n LDA #300\n LDX #n";
  expectFindings({.source = body + program + "M 1\n M 2\n M 300\n M 300\n RTS"},
                 {"6:1 cut-value", "8:2 cut-value", "9:2 cut-value"});
  // Not at a call that allows it.
  expectFindings({.source = body + program + "M 1 ; check: allow cut-value\n M 2\n M 3\n RTS"}, {"7:2 cut-value"});
  const std::vector<std::string> texts = findingTextsIn({.source = body + program + "M 1\n M 2\n RTS"});
  EXPECT_EQ(texts.back(), "the same in 1 more call of the macro");
}

TEST(CheckMacros, FixWhatTheyCan) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {".macro M n\n LDA #1\n; two\n\n LDX #n\n\n .org $2000\n M 1",
       ".macro M n\n LDA #1\n        ; two\n        \n LDX #n\n\n .org $2000\n M 1"},
      {".macro M\n INX\n .endm\n .org $2000\n M", ".macro M\n INX\n\n .org $2000\n M"},
      {".macro M\n INX\n\n .org $2000\n NOP : M\n M : NOP ; twice\n",
       ".macro M\n INX\n\n .org $2000\n NOP\n        M\n M\n        NOP ; twice\n"},
  };
  for (const auto& [source, fixed] : rows) {
    EXPECT_EQ(fixedSource({.source = source}), fixed);
    expectFindings({.source = fixed});
  }
}

TEST(CheckIncludes, NameTheWayAndTheFile) {
  const std::string main = " .org $2000\n .include \"lib/a\"\n", b = " .include \"b\"\n";
  const std::string a = " .include \"a\"\n";
  expectFindings({a, "", {{"a", a + " .include \"c\"\n"}, {"c", a}}}, {"a:1:2 include-circle", "c:1:2 include-circle"});
  // Found in a folder of its own, it looks beside the main source.
  expectFindings({main, "-I i", {{"i/lib/a", b}, {"i/lib/b", " NOP"}, {"i/b", " RTS"}}},
                 {"i/lib/a:1:2 include-elsewhere"});
  expectFindings({main, "-I i", {{"i/lib/a", b}, {"i/lib/b", " NOP"}}}, {"i/lib/a:1:2 include-elsewhere"});
  // The other file is the same, there is none, or it is the one beside the including file.
  expectFindings({main, "-I i", {{"i/lib/a", b}, {"i/lib/b", " NOP"}, {"i/b", " NOP"}}});
  expectFindings({main, "-I i", {{"i/lib/a", b}, {"i/b", " NOP"}}});
  expectFindings({main, "", {{"lib/a", b}, {"lib/b", " NOP"}, {"b", " RTS"}}});
  expectFindings({main + b, "-I i", {{"i/lib/a", b}, {"i/lib/b", " NOP"}}},
                 {"3:2 assembler", "i/lib/a:1:2 include-elsewhere"});
}

TEST(CheckFlow, SeesWhatIsNeverReached) {
  const std::vector<Row> rows = {
      {"start: JMP start\n LDA #1\n TAX\n RTS", {"3:2 unreachable"}},
      {"start: RTS\n NOP\n INX\n RTI", {"4:2 unreachable"}},
      // Computed addresses: of a jump, of a table with one less, of code that changes itself.
      {"start: JMP start+3\n LDA #1\n RTS"},
      {"start: LDA table\n RTS\n INX\n RTS\ntable: .word start+3"},
      {"start: LDA table\n RTS\n INX\n RTS\ntable: .byte <(start+3),>(start+3)"},
      {"start: LDA #$EA\n STA exit\nexit: RTS\n INX\n RTS"},
      // After data, in a table of jumps, at another address.
      {"start: JSR start\n .byte 5\n INX\n RTS"},
      {"start: .byte $2C\n RTS\n INX\n RTS"},
      {"start: JMP start\n JMP start\n NOP\n JMP start"},
      {"start: RTS\n .org $3000\n INX\n JMP start"},
  };
  for (const Row& row : rows)
    expectFindings({.source = " .org $2000\n" + row.source, .options = "-Wunreachable"}, row.findings);
}

}  // namespace
}  // namespace kiln::test
