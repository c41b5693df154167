// Whole programs: where statements go, what is said about them and when, how branches are repaired, and the files.
#include <gtest/gtest.h>

#include <array>
#include <numeric>

#include "output/pieces.h"
#include "passes/pipeline.h"
#include "support/program.h"

namespace kiln::test {
namespace {

const std::string window = "-code-window 4000-7FFF";
const std::pair<unsigned, std::string> bank = {0x4000, ""};

struct Row {
  std::string source;
  Contents segments;
  std::string options = "";
};

void expectRows(const std::vector<Row>& rows) {
  for (const auto& [source, segments, options] : rows)
    expectCode(source, segments, {}, options);
}

// clang-format off
TEST(Segments, OpenWhereNoShortGapCanBeFilled) {
  expectRows({
      {"NOP\n.org 2\nNOP\n.org $102\nINX",                        {{0, "EA 00 EA" + zeros(255) + "E8"}}},
      {"NOP\n.org $101\nINY\n.org $102\nNOP\n.org $102\nCLC",    {{0, "EA"}, {0x101, "C8 EA"}, {0x102, "18"}}},
      {"NOP\n.org $2000\n.byte ,\n.org $12000\n.org $2002\nINX", {{0, "EA"}, {0x2000, ""}, {0x2000, "0000 E8"}}},
      {".org $FFFF\n.byte 1,2\nNOP\n.org 4\nINX",                {{0xFFFF, "01 02 EA 0000 E8"}}},
      {".cloaked_segment 99\nINX\n.cloaked_segment_end\nINY",    {{99, "E8"}, {100, "C8"}}},
      {".cloaked_segment 9\n.cloaked_segment_end\n.org 10",      {{9, ""}, {10, ""}}},
  });
}
// clang-format on

TEST(Segments, CarryTheirBankAndTheirCloak) {
  Assembler assembler;
  assembler.settings.banking.bankWindowLow = 0x14000;
  assembler.lines.add(assembler.texts.join(
      {"NOP : .bank b : .bank c : .bank b : .cloaked_segment $5000 , 3+4 : NOP : .cloaked_segment $15001, NONE : "
       ".cloaked_segment : .cloaked_segment 1, : .org 0 : .shadow_ranges $C000-$CFFF, $D800-$1FFFF : .shadow_stage "
       "$FFFF"}));
  ASSERT_TRUE(assemble(assembler));
  // Each segment's address, bank (-1: none), cloak and id.
  using Rows = std::vector<std::array<int64_t, 4>>;
  Rows found;
  for (const AsSegment& segment : assembler.segments)
    found.push_back({segment.start, segment.bank, segment.cloaked, segment.cloaked ? segment.cloakedId : 0});
  // clang-format off
  EXPECT_EQ(found, (Rows{
      {0x0000, -1, false, 0},
      {0x4000, 1,  false, 0},
      {0x4000, 2,  false, 0},
      {0x4000, 1,  false, 0},
      {0x5000, -1, true,  7},
      {0x5001, -1, true,  -1},
      {0x0000, -1, true,  -1},
      {0x0001, -1, true,  0},
      {0x0000, -1, false, 0},
  }));
  // clang-format on
  EXPECT_EQ(assembler.shadowPlan.ranges, (std::vector<uint32_t>{0xC000, 0xCFFF, 0xD800, 0xFFFF}));
  EXPECT_EQ(assembler.shadowPlan.stageAddress, 0xFFFFu);
}

// clang-format off
TEST(Banks, AreNumberedInTheOrderInWhichTheyAreMet) {
  const std::string abc = ".bank a\n.bank b\n.bank c\n.byte __bank_a,__bank_b,__bank_c";
  expectRows({
      {abc,                              {{0, ""}, {0, ""}, {0, "01 02 03"}}},
      {".bank b\n.bank c\n" + abc,       {bank, bank, bank, bank, {0x4000, "03 01 02"}},                 window},
      // An origin in the window takes a number, too.
      {".org $7FFF\n.org $3FFF\n" + abc, {{0x7FFF, ""}, {0x3FFF, ""}, bank, bank, {0x4000, "02 03 04"}}, window},
      {".org $8000\n.org $4000\n" + abc, {{0x8000, ""}, bank, bank, bank, {0x4000, "02 03 04"}},         window},
      {".org 9\n" + abc,                 {{9, ""}, {0, ""}, {0, ""}, {0, "02 03 04"}},                   "-code-window 0-9"},
  });
}
// clang-format on

TEST(DuplicateLabels, AreReportedWithBadStageAddressesBeforeOperandsAreChecked) {
  const std::string twice = ": duplicate label ", stage = ": invalid .shadow_stage address ";
  expectErrors(
      ".include \"no\"\nx: NOP\nx = y\nx:\nD:\nv = 1\nv:\nx: INC A\n__bank_code_reg:\n.bank b\n__bank_b:\n"
      ".shadow_stage $10000\nv = $12345\n.shadow_stage v + 0\n.shadow_stage .q",
      {"Cannot find include file 'no'", "main.asm:3" + twice + "'x'", "main.asm:4" + twice + "'D'",
       "main.asm:6" + twice + "'v'", "main.asm:7" + twice + "'x'", "main.asm:8" + twice + "'__bank_code_reg'",
       "main.asm:10" + twice + "'__bank_b'", "main.asm:11" + stage + "'$10000'", "main.asm:13" + stage + "'v + 0'"},
      undefined({"y", "__bank_b.q"}), "-DD -code-reg 82");
  expectCode("NOP\nCH: NOP\nCH: NOP\n>l:\n>l:\n.l:\n.l:\nx:\nx = 9\nRTCLOK:\n.word CH,l,CH.l,x",
             {{0, "EAEAEA0200030003000900"}}, {}, "-DRTCLOK");
}

// clang-format off
TEST(LongBranches, BecomeJumpsWhereTheTargetIsOutOfReach) {
  const std::string at200 = ".org $200\n";
  expectRows({
      {at200 + "BNE $281",           {{0x200, "D0 7F"}}},
      {at200 + "BNE $282",           {{0x200, "F0 03 4C 82 02"}}},
      {at200 + "BNE $182",           {{0x200, "D0 80"}}},
      {at200 + "BNE $181",           {{0x200, "F0 03 4C 81 01"}}},
      {at200 + "BRA $282",           {{0x200, "4C 82 02"}}},
      {at200 + "BNE $10182",         {{0x200, "D0 80"}}},
      {at200 + "bcc $400",           {{0x200, "B0 03 4C 00 04"}}},
      {at200 + "BEQ x : NOP : x:",   {{0x200, "F0 01 EA"}}},
      {".bank b\n.byte 1\nx: BNE x", {{0x4000, "01 D0 FE"}}, window},
      // Each rewritten branch may push another one out of reach, in the next iteration.
      {".org $2000\nBNE t\n.space 100\nBEQ u\n.space 25\nt: .space 103\nu: RTS",
       {{0x2000, "F0 03 4C 87 20" + zeros(100) + "D0 03 4C EE 20" + zeros(128) + "60"}}, "-V"},
  });
}
// clang-format on

// Cloaked code never settles: its branches are judged at another address than its own, the inverted ones as well.
TEST(LongBranches, AreRewrittenInNoMoreThanEightIterations) {
  const std::string source = ".cloaked_segment $3000\nx:\nBNE x",
                    code = "F0 03 4C 08 30 4C 0B 30 4C 0E 30 4C 11 30 4C 14 30 4C 17 30 4C 00 30";
  expectCode(source, {{0x3000, code}});
  expectCode(source, {{0x3000, code}}, {"iteration 8: rewrote 1 long branch"}, "-V");
  expectCode(source + "\n.cloaked_segment $5000\ny:\nBVC y",
             {{0x3000, code}, {0x5000, "70 03 4C 08 50 4C 0B 50 4C 0E 50 4C 11 50 4C 14 50 4C 17 50 4C 00 50"}},
             {"iteration 8: rewrote 2 long branches"}, "-V");
}

// A rewritten branch takes the whole line: label, second statement and comment are gone.
TEST(Listing, ShowsEachStatementOfTheFinalSource) {
  const std::string source = R"(.code_regions $2110-$211F,$2200-$22FF
m:
>l: BVC .far : BCC .far ; lost
 BRA .far : BRA .far
.cloaked_segment $3000
.y: .string "ab" ; y
.space 2
.cloaked_segment_end
.bank b
FOO

; 1
; longbr
 .org $2110
.far: .byte 1 : .word l
.long 1
.org $FFFF
.word 1
NOP)";
  const std::string blankLine = std::string(21, ' ') + "\n";
  const std::string listing = R"(                     .code_regions $2110-$211F,$2200-$22FF
                     m:
  0000                   BVS _klb_0 ; longbr
  0002                   JMP m.far
                     _klb_0:
  0005                   JMP m.far
                     .cloaked_segment $3000
  0008               .y: .string "ab" ; y
  000B               .space 2
                     .cloaked_segment_end
                     .bank b
                     FOO
)" + blankLine + R"(                     ; 1
                     ; longbr
       2110           .org $2110
  2110               .far: .byte 1 : .word l
  2111               .far: .byte 1 : .word l
  2113                   JMP $2200 ; auto-spill
       2200              .org $2200 ; auto-spill
  2200               .long 1
       FFFF          .org $FFFF
  FFFF               .word 1
  0001               NOP
)" + blankLine;
  const std::string image = xex({{0, "7003 4C1021 4C1021"},
                                 {0x3000, "616200 0000"},
                                 {0x2110, "01 0000 4C0022"},
                                 {0x2200, "01000000"},
                                 {0xFFFF, "0100 EA"}},
                                0);
  expectRun({.source = source,
             .line = "main.asm -l a.lst",
             .standardError = say("warning: " + undefined({"l"})[0]) +
                              say("assembled 'main.asm' -> 'main.xex' (26 bytes, 6 segments)"),
             .written = {{"main.xex", image}, {"a.lst", listing}}});
}

// Ordered by address, filled where there is a gap, and never checked for an overlap.
TEST(Prg, IsMemoryFromTheLowestSegmentOn) {
  expectRun(
      {.source = ".org $FFFE\n.byte 8,9\n"
                 ".org $FFFF\n.byte 10\n"
                 ".org $FFF5\n.byte 6\n"
                 ".org $FFF0\n.byte 1,2,3,4\n"
                 ".org $FFF1\n.byte 5\n"
                 ".org $1000\n"
                 ".org $FFF1\n.byte 7",
       .line = "-f prg main.asm",
       .standardError = say("assembled 'main.asm' -> 'main.prg' (10 bytes, 7 segments)"),
       .written = {{"main.prg", bytes("F0FF 01020304 05 07 000000 06" + zeros(8) + "0809" + zeros(65535) + "0A")}}});
  expectRun({".org 1", "-f prg main.asm", 1, say("error: cannot write 'main.prg'")});
}

TEST(Pieces, AreCutAtTheShadowRangesThatTouchTheSegment) {
  AsSegment segment{.start = 256, .bytes = std::vector<uint8_t>(256)};
  std::iota(segment.bytes.begin(), segment.bytes.end(), 0);
  const ShadowPlan plan = {{0, 255, 511, 512, 512, 600, 0, 256, 272, 287, 272, 279, 280, 280, 9}, 1};
  Pieces pieces;
  ShadowSplitter(plan).split(segment, pieces);
  // Each piece by its address, its first byte and its size.
  using Rows = std::vector<std::array<size_t, 3>>;
  const auto rows = [](const std::vector<Piece>& list) {
    Rows result;
    for (const auto& [address, bytes] : list)
      result.push_back({address, bytes.front(), bytes.size()});
    return result;
  };
  EXPECT_EQ(rows(pieces.plain), (Rows{{257, 1, 15}, {281, 25, 230}}));
  EXPECT_EQ(rows(pieces.shadow), (Rows{{256, 0, 1}, {272, 16, 16}, {272, 16, 8}, {280, 24, 1}, {511, 255, 1}}));
}

}  // namespace
}  // namespace kiln::test
