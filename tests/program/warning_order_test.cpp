// The order of warnings: which pass evaluates which operand, and when. Each program has undefined names in its
// operands, and its whole standard error is written out.
#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {
namespace {

std::string unknown(const std::string& name) { return say("warning: " + undefined({name})[0]); }

std::string ambiguous(const std::string& name, const std::string& digits) {
  return say("warning: label '" + name +
             "' is ambiguous with Z80-style hex literal; resolving to the label — rename it or use $" + digits +
             " to silence this warning");
}

std::string assembled(const std::string& size) { return say("assembled 'main.asm' -> 'main.xex' (" + size + ")"); }

struct Program {
  std::string source;
  std::string standardError;
  std::string options = "";
};

void expectStandardError(const std::vector<Program>& programs) {
  for (const Program& program : programs) {
    SCOPED_TRACE("source:\n" + program.source);
    MemoryHost host;
    host.files["main.asm"] = program.source;
    runLine(host, program.options + "main.asm");
    EXPECT_EQ(host.standardError, program.standardError);
  }
}

TEST(WarningOrder, FollowsTheOperandThroughThePasses) {
  const std::string u = unknown("u"), v = unknown("v");
  expectStandardError({
      // Parsing evaluates counts, before the layout evaluates anything.
      {" .org u\n .space v", v + u + u + u + assembled("0 bytes, 1 segment")},
      // The layout evaluates origins, assignments, ranges and addresses.
      {"x = u\n NOP", u + assembled("1 bytes, 1 segment")},
      {" .code_regions u-v\n NOP", u + v + assembled("1 bytes, 1 segment")},
      {" .shadow_ranges u-v\n NOP", u + v + assembled("1 bytes, 1 segment")},
      {" .shadow_stage u\n NOP", u + assembled("1 bytes, 1 segment")},
      // The id of a cloaked segment is for the emission alone.
      {" .cloaked_segment u,v\n NOP", u + u + v + assembled("1 bytes, 1 segment")},
      // Emission evaluates operands and data, in the order of the source.
      {" .byte v,u\n .word u", v + u + u + assembled("4 bytes, 1 segment")},
      {".macro m p,q\n .byte p,q\n\n m v,u", v + u + assembled("2 bytes, 1 segment")},
      {" LDA v\n .byte u",
       v + say("warning: line 1: LDA v resolves to $0000 — probable undefined symbol (compiler internal error?)") + u +
           assembled("4 bytes, 1 segment")},
  });
}

TEST(WarningOrder, HasAllOriginsBeforeAnyBranchInTheLongBranchRewriter) {
  const std::string u = unknown("u"), v = unknown("v"), w = unknown("w"), z = unknown("z");
  expectStandardError({
      // Layout, rewriter, emission.
      {" BNE u\n .org v", v + (v + u) + (u + v) + assembled("2 bytes, 2 segments")},
      {" BNE u\n .org v\n BEQ w\n .org z",
       (v + z) + (v + z + u + w) + (u + v + w + z) + assembled("4 bytes, 3 segments")},
      // The warnings of an iteration that ends in a rewrite are dropped.
      {" BNE u\n BEQ far\n .org $200\nfar: NOP", u + u + assembled("8 bytes, 2 segments")},
      // An error of the layout ends the run before the rewriter.
      {"x:\nx:\n .org u\n BNE v", u + say("error: main.asm:2: duplicate label 'x'")},
  });
}

TEST(WarningOrder, HasTheAmbiguityOfANameOnce) {
  const std::string u = unknown("u"), v = unknown("v");
  expectStandardError({
      {" BNE u\n>0Ah: NOP\n .org 0Ah\n .byte 0Ah,v",
       ambiguous("0Ah", "0A") + u + u + v + assembled("5 bytes, 2 segments")},
      // The origin comes before its label: only the bank map and the emission see the label.
      {" .org 0FFh\n NOP\n>0FFh: NOP\n .org $2000\n RTS\n .bank a\nfa: RTS\n .bank b\n JSR fa\n RTS",
       ambiguous("0FFh", "0FF") + assembled("549 bytes, 4 segments"), "-code-reg 82 -code-window 4000-7FFF "},
  });
}

}  // namespace
}  // namespace kiln::test
