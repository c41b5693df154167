// The order of warnings: which pass evaluates which operand, and when. Each program has undefined names in its
// operands.
#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {
namespace {

// A source, the names that are warned of, in this order, and what it assembles to.
struct Row {
  std::string source;
  std::vector<std::string> names;
  Contents segments;
};

void expectRows(const std::vector<Row>& rows) {
  for (const auto& [source, names, segments] : rows)
    expectCode(source, segments, undefined(names));
}

std::string ambiguous(const std::string& name, const std::string& digits) {
  return "label '" + name + "' is ambiguous with Z80-style hex literal; resolving to the label — rename it or use $" +
         digits + " to silence this warning";
}

// clang-format off
TEST(WarningOrder, FollowsTheOperandThroughThePasses) {
  expectRows({
      // Parsing evaluates counts, before the layout evaluates anything.
      {".org u\n.space v",                   {"v", "u", "u", "u"}, {{0, ""}}},
      // The layout evaluates origins, assignments, ranges and addresses.
      {"x = u\nNOP",                         {"u"},                {{0, "EA"}}},
      {".code_regions u-v\nNOP",             {"u", "v"},           {{0, "EA"}}},
      {".shadow_ranges u-v\nNOP",            {"u", "v"},           {{0, "EA"}}},
      {".shadow_stage u\nNOP",               {"u"},                {{0, "EA"}}},
      // The id of a cloaked segment is for the emission alone.
      {".cloaked_segment u,v\nNOP",          {"u", "u", "v"},      {{0, "EA"}}},
      // Emission evaluates operands and data, in the order of the source.
      {".byte v,u\n.word u",                 {"v", "u", "u"},      {{0, "00 00 0000"}}},
      {".macro m p,q\n .byte p,q\n\n m v,u", {"v", "u"},           {{0, "00 00"}}},
  });
}

TEST(WarningOrder, HasAllOriginsBeforeAnyBranchInTheLongBranchRewriter) {
  expectRows({
      // Layout, rewriter, emission.
      {"BNE u\n.org v",                         {"v",  "v", "u",  "u", "v"}, {{0, "D0FE"}, {0, ""}}},
      {"BNE u\n.org v\nBEQ w\n.org z",
       {"v", "z",  "v", "z", "u", "w",  "u", "v", "w", "z"},                 {{0, "D0FE"}, {0, "F0FE"}, {0, ""}}},
      // The warnings of an iteration that ends in a rewrite are dropped.
      {"BNE u\nBEQ far\n.org $200\nfar: NOP",   {"u", "u"},                  {{0, "D0FE D003 4C0002"}, {0x200, "EA"}}},
  });
  // An error of the layout ends the run before the rewriter.
  expectErrors("x:\nx:\n.org u\nBNE v", {"main.asm:2: duplicate label 'x'"}, undefined({"u"}));
}
// clang-format on

TEST(WarningOrder, HasTheAmbiguityOfANameOnce) {
  std::vector<std::string> warnings = undefined({"u", "u", "v"});
  warnings.insert(warnings.begin(), ambiguous("0Ah", "0A"));
  expectCode("BNE u\n>0Ah: NOP\n.org 0Ah\n.byte 0Ah,v", {{0, "D0FE EA"}, {2, "02 00"}}, warnings);
  // The origin comes before its label: only the bank map and the emission see the label.
  MemoryHost host;
  host.files["main.asm"] = ".org 0FFh\nNOP\n>0FFh: NOP\n.org $2000\nRTS\n.bank a\nfa: RTS\n.bank b\nJSR fa\nRTS";
  runLine(host, "-code-reg 82 -code-window 4000-7FFF main.asm");
  EXPECT_EQ(host.standardError, say("warning: " + ambiguous("0FFh", "0FF")) +
                                    say("assembled 'main.asm' -> 'main.xex' (549 bytes, 4 segments)"));
}

}  // namespace
}  // namespace kiln::test
