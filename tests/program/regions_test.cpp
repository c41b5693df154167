// Code regions: what moves to the next region and how it is joined, and the messages.
#include <gtest/gtest.h>

#include "passes/code_regions.h"
#include "support/program.h"

namespace kiln::test {
namespace {

const std::string pair = ".code_regions $2000-$200F,$4000-$40FF\n";
const std::string regions = pair + ".org $2000\n";
const std::string window = "-code-window 4000-7FFF";

void expectPlaces(const std::vector<std::pair<std::string, Contents>>& rows) {
  for (const auto& [source, segments] : rows)
    expectCode(source, segments, {}, window);
}

std::string overflow(const std::string& line, const std::string& end, const std::string& pc) {
  return "main.asm:" + line + ": program exceeds the declared .code_regions (last region ends at " + end +
         ", tried to emit past it at PC " + pc + "). Reduce code size or add a larger region to the layout.";
}

// clang-format off
TEST(Regions, SpillBeforeTheirLastTenBytes) {
  expectPlaces({
      // A line of statements for each region. No jump follows RTS, RTI or JMP.
      {".code_regions 1-15,$10-$1F,$20-$2F,$30-$3F,$40-$4F,$50-$5F\n.org 1\n"
       ".space 4\nRTS\n"
       "LDA $1234\n.space 2\nRTI\n"
       ".word 1\n.byte 3\nJMP 1\n"
       "NOP\n.space 2\nJSR 1\n"
       "NOP\n.space 4\nRTS\nx:\n"
       "NOP",
       {{0x01, "00000000 60"}, {0x10, "AD3412 0000 40"}, {0x20, "0100 03 4C0100"}, {0x30, "EA 0000 200100 4C4000"},
        {0x40, "EA 00000000 60 4C5000"}, {0x50, "EA"}}},
      {regions + ".org $200D\nNOP",                      {{0x2000, zeros(13) + "4C0040"}, {0x4000, "EA"}}},
      {regions + ".org $200F\n.byte ,\n.space 0",        {{0x2000, zeros(15)}}},
      {".code_regions 0-8,$3000-$30FF\n.long 1,2,3",     {{0, "01000000 02000000 03000000"}}},
      {".code_regions 0-9,$100-$102,$3000-$30FF\nNOP",   {{0, "4C0001"}, {0x100, "4C0030"}, {0x3000, "EA"}}},
      // The inverted branch of a long one is not cut off from its jump.
      {regions + "JMP 1\nNOP\nBNE far\nNOP\nfar: NOP",   {{0x2000, "4C0100 EA F003 4C0140 4C0040"}, {0x4000, "EA EA"}}},
      // Only the line directly before counts: a comment in between brings the bridge back.
      {regions + "JMP 1\nNOP\nRTS\nLDX #1",             {{0x2000, "4C0100 EA 60"}, {0x4000, "A201"}}},
      {regions + "JMP 1\nNOP\nRTS\n ; c\nLDX #1",       {{0x2000, "4C0100 EA 60 4C0040"}, {0x4000, "A201"}}},
      // A mark holds the bridge off for one statement, also when it is on a line of its own.
      {regions + "JMP 1\nLDX #1\nINX\n\n; longbr\nINX\nINX", {{0x2000, "4C0100 A201 E8 E8 4C0040"}, {0x4000, "E8"}}},
      {regions + "JMP 1\nLDX #1\nINX\n; longbr\n\nINX",  {{0x2000, "4C0100 A201 E8 4C0040"}, {0x4000, "E8"}}},
  });
}

TEST(Regions, FollowEachOtherInTheOrderOfTheList) {
  expectPlaces({
      // The next region by number, though the first holds the address as well.
      {".code_regions 0-15,0-15\n.word 1,2,3\nNOP\n.space 15", {{0, "0100 0200 0300 4C0000"}, {0, "EA" + zeros(15)}}},
      // A short way into a later region opens a segment; any other is filled.
      {".code_regions 1-15,16-99\n.org 1\nJMP 1\nLDX #1\nNOP", {{1, "4C0100 A201 4C1000"}, {0x10, "EA"}}},
      {".code_regions 0-15,12-99\n.space 6\nNOP",              {{0, zeros(6) + "4C0C00" + zeros(3) + "EA"}}},
      {".code_regions 16-31,1-15\nNOP\n.org 2\nNOP\n.org 16\nNOP\n.org 32\nNOP",
       {{0, "EA 00 EA" + zeros(13) + "EA" + zeros(15) + "EA"}}},
      // Only code inside a region and outside cloaked segments spills.
      {regions + ".org $5000\nNOP\n.org $200D\nNOP",
       {{0x2000, ""}, {0x5000, "EA"}, {0x200D, "4C0040"}, {0x4000, "EA"}}},
      {".org $2010\n" + pair + "NOP\n.code_regions $2004-$2013,$3000-$30FF\nNOP",
       {{0x2010, "EA 4C0030"}, {0x3000, "EA"}}},
      {regions + ".cloaked_segment $2004\nJMP 1\nJMP 1\n.cloaked_segment_end\nNOP\n.cloaked_segment $40FF\nJMP 1",
       {{0x2000, ""}, {0x2004, "4C0100 4C0100"}, {0x200A, "4C0040"}, {0x4000, "EA"}, {0x40FF, "4C0100"}}},
      // In a shorter list the number of the region counts as that of the last one.
      {".code_regions 1-2,3-4,$4000-$40FF\n.org $4000\nNOP\n" + pair + ".spill_point\n.space 99",
       {{0x4000, "EA" + zeros(99)}}},
  });
}

TEST(SpillPoints, MoveTheWholeBlockAfterThemWhenItDoesNotFit) {
  expectPlaces({
      {regions + "NOP\n.spill_point\n.byte 1\n.space 14", {{0x2000, "EA 01"}, {0x4000, zeros(14)}}},
      {regions + "NOP\nl: .spill_point\n.byte 1\n.space 14\n.byte l",
       {{0x2000, "EA"}, {0x4000, "01" + zeros(14) + "01"}}},
      {regions + "NOP\n.spill_point\n.byte 1\n.spill_point\n.space 99", {{0x2000, "EA 01"}, {0x4000, zeros(99)}}},
      {regions + "NOP\n.spill_point\n.byte 1\n.org $2004\n.space 99", {{0x2000, "EA 01 0000"}, {0x4000, zeros(99)}}},
      {regions + ".org $4000\n.spill_point\n.space 200\n.spill_point\n.space 56", {{0x2000, ""}, {0x4000, zeros(256)}}},
      {regions + ".cloaked_segment $5000\n.spill_point\nNOP",       {{0x2000, ""}, {0x5000, ""}, {0x4000, "EA"}}},
      // The origin that a spill inserts counts as a bank; the one that a spill point becomes does not.
      {regions + ".space 7\n.bank b\n.byte __bank_b",               {{0x2000, ""}, {0x4000, zeros(7)}, {0x4000, "02"}}},
      {regions + ".spill_point\n.space 17\n.bank b\n.byte __bank_b",
       {{0x2000, ""}, {0x4000, zeros(17)}, {0x4000, "01"}}},
  });
}
// clang-format on

TEST(Regions, SayWhenTheyAreFullOrMalformed) {
  expectErrors(".code_regions , $2000-$2003,\n.org $2000\nJMP 1\nNOP\nNOP\nNOP", {overflow("5", "$2003", "$2004")});
  expectErrors(regions + ".bank b\nNOP\n.space 256\nx:\nx:",
               {overflow("5", "$40FF", "$4001"), "main.asm:7: duplicate label 'x'"}, {}, window);
  const std::string full = ": region $2000-$200F too full for auto-spill JMP bridge at PC ";
  expectErrors(regions + ".org $200E\nNOP\n.byte 1", {"main.asm:4" + full + "$200E", "main.asm:5" + full + "$200F"});
  expectErrors(
      ".code_regions $12000-$12001 , zz,$1-$2\n.org $2000\nJMP 1",
      {"main.asm:1: malformed .code_regions entry 'zz' (expected $START-$END)", overflow("3", "$2001", "$2000")});
  const std::string invalid = ": invalid .code_regions range ";
  expectErrors("m = 0-1\n.code_regions 0-0, m - u\nJMP 1\n.shadow_ranges 2-1\n.code_regions v-m",
               {"main.asm:2" + invalid + "'m - u'", "main.asm:4" + invalid + "'2-1'", "main.asm:5" + invalid + "'v-m'"},
               undefined({"u", "v"}));
  // Four gigabytes do not wrap round to nothing.
  expectErrors(regions + ".org $5000\n.spill_point\nNOP\n.space $FFFFB000", {overflow("6", "$40FF", "$4001")});
}

TEST(RegionList, FindsTheSameRegionHoweverOftenItIsSearched) {
  std::vector<uint32_t> bounds;
  for (uint32_t i = 0; i < 99; ++i)
    bounds.insert(bounds.end(), {i * 7919 % 60000, i * 7919 % 60000 + i * 50 % 1700});
  RegionList asked;
  asked.declare(bounds);
  const RegionList unasked = asked;
  for (uint32_t address = 0xFFFF; address > 0; address -= 3)
    ASSERT_EQ(asked.find(address), RegionList(unasked).find(address)) << address;
  asked.declare({0, 0xFFFF});
  EXPECT_EQ(asked.find(0xFFFF), 0);
}

}  // namespace
}  // namespace kiln::test
