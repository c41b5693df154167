// The reports for other programs, as they are printed.
#include <gtest/gtest.h>

#include "inspect/check_run.h"
#include "support/memory_host.h"
#include "support/program.h"

namespace kiln::test {
namespace {

// A tab is one column. The first note has no place of its own and gets that of its finding; the second has one.
TEST(CheckReports, PrintAnObjectALine) {
  MemoryHost host;
  host.files = {{"main.asm", R"(.macro PAINT colour
        LDA #colour

        .org $2000
	PAINT 300
	.dw 5
	LDA ($10)
)"}};
  EXPECT_EQ(runCheck(host, words("kiln-check --json main.asm"), false), 2);
  EXPECT_EQ(host.standardError, "");
  EXPECT_EQ(
      host.standardOutput,
      R"({"file":"main.asm","line":5,"column":2,"endColumn":11,"severity":"warning","check":"cut-value","text":"'300' is $012C and does not fit one byte: only $2C is left","notes":[{"file":"main.asm","line":5,"column":2,"text":"write '#<300' for the low byte, or '#>300' for the next"},{"file":"main.asm","line":2,"column":9,"text":"in this line of the macro"}],"fix":null}
{"file":"main.asm","line":6,"column":2,"endColumn":5,"severity":"warning","check":"vanished","text":"'.dw' is no instruction, directive or macro: this line makes nothing","notes":[{"file":"main.asm","line":6,"column":2,"text":"write '.word', which stores the low byte first"}],"fix":[{"file":"main.asm","line":6,"column":2,"endColumn":5,"text":".word"}]}
{"file":"main.asm","line":7,"column":6,"endColumn":11,"severity":"error","check":"accidental-indirect","text":"parentheses make '($10)' indirect, and LDA has no such mode","notes":[{"file":"main.asm","line":7,"column":6,"text":"write '$10' for the address, or '($10),Y' or '($10,X)' for what it points to"}],"fix":null}
)");
}

// What has no place is at line 0.
TEST(CheckReports, PrintWhatHasNoPlace) {
  MemoryHost host;
  host.files = {{"main.asm", "; nothing\n"}};
  EXPECT_EQ(runCheck(host, words("kiln-check --json -f prg main.asm"), false), 2);
  EXPECT_EQ(
      host.standardOutput,
      R"({"file":"","line":0,"column":0,"endColumn":0,"severity":"error","check":"assembler","text":"cannot write 'main.prg': the program has no bytes","notes":[],"fix":null}
)");
}

}  // namespace
}  // namespace kiln::test
