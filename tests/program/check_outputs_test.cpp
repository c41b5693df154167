// The files that kiln-check writes: whole files, compared exactly. docs/check.md shows each of them in its usual form.
#include <gtest/gtest.h>

#include <array>

#include "inspect/check_run.h"
#include "inspect/cycles.h"
#include "support/program.h"

namespace kiln::test {
namespace {

const std::string bankLayout = R"([memory]
main = $2000-$3FFF
[banking]
window = $4000-$7FFF
registers = $82, $83
)";

using Files = std::map<std::string, std::string>;

// Checks a program that assembles, whatever is found in it, and gives the files that are written.
Files written(const std::vector<std::string>& arguments, const Files& files) {
  MemoryHost host;
  host.files = files;
  EXPECT_NE(runCheck(host, arguments, false), 2) << host.standardOutput;
  EXPECT_EQ(host.standardError, "");
  return host.written;
}
Files written(const std::string& options, const Files& files) { return written(words("kiln-check " + options), files); }

TEST(CheckOutputs, ListWhatComesOfALineBelowIt) {
  const std::string library = R"(.macro WAIT count,label
        LDX #count
        ; until it is 0
        label: DEX
        BNE label

limit   = 5
)";
  const std::string source = R"(        .include "lib.inc"
        .org $2000
start:  WAIT limit,.w

        BEQ far
        PHX
        NOP : LDA $12FF,X       ; two
        .space 200
far:    RTS)";
  const std::string listing = R"(main.asm:
                           1          .include "lib.inc"

lib.inc:
                           1  .macro WAIT count,label
                           2          LDX #count
                           3          ; until it is 0
                           4          label: DEX
                           5          BNE label
                           6
                           7  limit   = 5

main.asm:
2000                       2          .org $2000
2000                       3  start:  WAIT limit,.w
2000  A2 05        2       +          LDX #limit
                           +          ; until it is 0
2002  CA           2       +          .w: DEX
2003  D0 FD        2/3     +          BNE .w
                           4
                           5          BEQ far
2005  D0 03        2/3     +      BNE _klb_0 ; longbr
2007  4C D7 20     3       +      JMP far
200A                       +  _klb_0:
200A  44                   6          PHX
200B  EA           2       7          NOP : LDA $12FF,X       ; two
200C  BD FF 12     4+
200F  00 x 200             8          .space 200
20D7  60           6       9  far:    RTS

second:
                           1  ; nothing
)";
  const Files files = {{"main.asm", source}, {"lib.inc", library}, {"empty", ""}, {"second", "; nothing\n"}};
  EXPECT_EQ(written("--listing=~ main.asm empty second", files)["~"], listing);
}

TEST(CheckOutputs, ListWhatCodeRegionsAdd) {
  const std::string source = R"(        .org $2000
        .code_regions $2000-$200F,$3000-$30FF
        JMP next
        LDA #1
        LDA #2
next:
        RTS
)";
  const std::string listing = R"(main.asm:
2000                       1          .org $2000
                           2          .code_regions $2000-$200F,$3000-$30FF
2000  4C 02 30     3       3          JMP next
2003  A9 01        2       4          LDA #1
2005  4C 00 30     3       +      JMP $3000 ; auto-spill
3000                       +      .org $3000 ; auto-spill
3000  A9 02        2       5          LDA #2
3002                       6  next:
3002  60           6       7          RTS
)";
  EXPECT_EQ(written("--listing=~ main.asm", {{"main.asm", source}})["~"], listing);
}

TEST(CheckOutputs, ShowBanks) {
  // The second segment in the window counts as a bank, too, so "level" is bank 3 in the file.
  const std::string source = R"(        .org $2000
main:   RTS
        .bank code
.go:    BNE .go
        .org $5000
more:   .byte 1
        .bank level
data:   .string "é"
end:
        .org $3000
last:   RTS
)";
  const Files files = written("-L l.lnk --listing=lst --labels=mads:mads --labels=json:json --map=map.txt main.asm",
                              {{"main.asm", source}, {"l.lnk", bankLayout}});
  EXPECT_EQ(files.at("lst"), R"(main.asm:
       2000                       1          .org $2000
       2000  60           6       2  main:   RTS
    1  4000                       3          .bank code
    1  4000  D0 FE        2/3     4  .go:    BNE .go
    2  5000                       5          .org $5000
    2  5000  01                   6  more:   .byte 1
    3  4000                       7          .bank level
    3  4000  C3 A9 00             8  data:   .string "é"
    3  4002                       9  end:
       3000                      10          .org $3000
       3000  60           6      11  last:   RTS
)");
  EXPECT_EQ(files.at("mads"), R"(00	2000	main
01	4000	main.go
02	5000	more
03	4000	data
03	4002	end
00	3000	last
)");
  EXPECT_EQ(files.at("json"), R"([
{"name":"main","address":8192,"bank":null,"file":"main.asm","line":2},
{"name":"main.go","address":16384,"bank":1,"file":"main.asm","line":4},
{"name":"more","address":20480,"bank":2,"file":"main.asm","line":6},
{"name":"data","address":16384,"bank":3,"file":"main.asm","line":8},
{"name":"end","address":16386,"bank":3,"file":"main.asm","line":9},
{"name":"last","address":12288,"bank":null,"file":"main.asm","line":11}
]
)");
  EXPECT_EQ(files.at("map.txt"), R"(main.xex: 8 bytes in 5 segments

Segments        bytes
  $2000-$2000       1
  $4000-$4001       2  bank 1 (code)
  $5000-$5000       1  bank 2
  $4000-$4002       3  bank 3 (level)
  $3000-$3000       1

Banks                                    used    free
  bank 1 (code)           $4000-$7FFF       2   16382
  bank 2                  $4000-$7FFF       1   16383
  bank 3 (level)          $4000-$7FFF       3   16381

Regions                                  used    free
  main region             $2000-$3FFF       2    8190

Largest routines             bytes
  main                           1  $2000  main.asm:2
  last                           1  $3000  main.asm:11
)");
}

TEST(CheckOutputs, NameLabels) {
  const std::string source = R"(.macro HERE label
        label: NOP

        .org $2000
a b:    HERE first
A"B":   NOP
.twice: NOP
.twice: NOP
>x.y:   NOP
size    = 5
        BEQ far
        .cloaked_segment $5000,7
hidden: RTS
        .cloaked_segment_end
        .org $2200
far:    RTS
)";
  const Files files =
      written("--labels=vice:vice --labels=mads:mads --labels=json:json main.asm", {{"main.asm", source}});
  EXPECT_EQ(files.at("vice"), R"(al C:2000 .a_b
al C:2000 .first
al C:2001 .A_B_
al C:2003 .A_B__twice
al C:2004 .x_y
al C:200A ._klb_0
al C:5000 .hidden
al C:2200 .far
)");
  EXPECT_EQ(files.at("mads"), R"(00	2000	a_b
00	2000	first
00	2001	A_B_
00	2003	A_B_.twice
00	2004	x.y
00	200A	_klb_0
00	5000	hidden
00	2200	far
)");
  EXPECT_EQ(files.at("json"), R"([
{"name":"a b","address":8192,"bank":null,"file":"main.asm","line":5},
{"name":"first","address":8192,"bank":null,"file":"main.asm","line":5},
{"name":"A\"B\"","address":8193,"bank":null,"file":"main.asm","line":6},
{"name":"A\"B\".twice","address":8195,"bank":null,"file":"main.asm","line":8},
{"name":"x.y","address":8196,"bank":null,"file":"main.asm","line":9},
{"name":"_klb_0","address":8202,"bank":null,"file":"main.asm","line":11},
{"name":"hidden","address":20480,"bank":null,"file":"main.asm","line":13},
{"name":"far","address":8704,"bank":null,"file":"main.asm","line":16}
]
)");
  EXPECT_EQ(written("--labels=json:json main.asm", {{"main.asm", " NOP"}}).at("json"), "[]\n");
}

TEST(CheckOutputs, NameWhatTheProgramDependsOn) {
  const Files files = {{"a b#c$d.asm", " .include \"x%y:z.inc\"\n .include \"back\\ slash\\.inc\"\n NOP"},
                       {"second.asm", " .include \"x%y:z.inc\""},
                       {"x%y:z.inc", " NOP"},
                       {"back\\ slash\\.inc", ""},
                       {"unused.inc", ""},
                       {"l.lnk", "#include \"m.lnk\""},
                       {"m.lnk", "[memory]\nmain = $2000-$3FFF"},
                       {"names.sym", "A = $1"}};
  const std::vector<std::string> arguments = {"kiln-check", "--depfile=out/main.d", "-s",        "names.sym", "-L",
                                              "l.lnk",      "a b#c$d.asm",          "second.asm"};
  EXPECT_EQ(written(arguments, files), (Files{{"out/main.d", R"(a\ b\#c$$d.xex: \
  a\ b\#c$$d.asm \
  second.asm \
  names.sym \
  l.lnk \
  m.lnk \
  x%y\:z.inc \
  back\\\ slash\.inc

a\ b\#c$$d.asm:

second.asm:

names.sym:

l.lnk:

m.lnk:

x\%y\:z.inc:

back\\\ slash\.inc:
)"}}));
}

TEST(CheckOutputs, MapShadowCodeOverlapsAndGaps) {
  // The stage is 109 bytes, 12 for its table and 3 for the piece. The gap before $2012 is filled.
  const std::string source = R"(        .shadow_ranges $C000-$CFFF
        .shadow_stage $3800
        .org $2000
start:  JMP hidden
        .org $2012
table:  .word start
        .org $2001
patch:  .byte 1,2,3
        .org $BFFE
hidden: LDA #1
        LDX #2
        RTS
        .cloaked_segment $5000,7
cloak:  RTS
        .cloaked_segment_end
)";
  const std::string map = R"(main.xex: 29 bytes in 4 segments

Segments        bytes
  $2000-$2013      20
  $2001-$2003       3
  $BFFE-$C002       5
  $5000-$5000       1  cloaked

Shadow code     bytes
  $C000-$C002       3
  $3800-$387B     124  the stage, while the program loads

Overlaps        bytes
  $2001-$2003       3  in 2 segments

Largest routines             bytes
  hidden                         5  $BFFE  main.asm:10
  start                          3  $2000  main.asm:4
  cloak                          1  $5000  main.asm:14
)";
  EXPECT_EQ(written("--map=a.txt main.asm", {{"main.asm", source}})["a.txt"], map);
}

TEST(CheckOutputs, MapWhatABankedFileLeavesOut) {
  const std::string source = R"(        .org $3FFE
start:  NOP
        .code_regions $2000-$20FF,$3F00-$3FFF
        RTS
        .cloaked_segment $5000,none
        RTS
        .cloaked_segment_end
        .org $FFFF
        .byte 1,2
)";
  const std::string map = R"(main.xex: 5 bytes in 3 segments

Segments        bytes
  $3FFE-$3FFF       2
  $5000-$5000       1  cloaked
  $FFFF-$10000       2

Regions                                  used    free
  main region             $2000-$3FFF       2    8190
  code region             $2000-$20FF       0     256
  code region             $3F00-$3FFF       2     254

Largest routines             bytes
  start                          2  $3FFE  main.asm:2
)";
  EXPECT_EQ(written("-L l.lnk --map=a.txt main.asm", {{"main.asm", source}, {"l.lnk", bankLayout}})["a.txt"], map);
}

// A page is 44 pixels wide, a row 30 high, and the first row begins at (74, 96).
TEST(CheckOutputs, DrawTheMap) {
  const std::string source = R"(        .org $2F00
a<&>b:  .byte 1
        .space 511
        .bank code
go:     NOP
)";
  const std::string picture =
      written("-L l.lnk --map=a.SVG main.asm", {{"main.asm", source}, {"l.lnk", bankLayout}})["a.SVG"];
  const std::string expected[] = {
      // The last page of the third row, but for its first byte, and the first page of the fourth.
      R"svg(<rect x="734.2" y="156" width="43.8" height="24" fill="url(#reserved)"/>)svg",
      R"svg(<rect x="74" y="186" width="44" height="24" fill="url(#reserved)"/>)svg",
      R"svg( font-size="9">a&lt;&amp;&gt;b</text>)svg",
      R"svg(>bank 1 (code): 1 byte</text>)svg",
      R"svg(>zeros, 511 bytes</text>)svg",
  };
  for (const std::string& element : expected)
    EXPECT_NE(picture.find(element), std::string::npos) << element << " is not in\n" << picture;
  EXPECT_EQ(picture.find("<script"), std::string::npos);
}

// Nothing is written, and the status is 2.
TEST(CheckOutputs, RefuseWhatCannotBeWritten) {
  const std::pair<std::string, std::string> rows[] = {
      // clang-format off
      {"--map=a.png nop",                        "--map expects a file whose name ends in .txt or .svg"},
      {"--labels=dot:a nop",                     "--labels expects vice, mads or json, a colon and a file"},
      {"--labels=vice:ok --listing=nop nop",     "cannot write 'nop'"},
      {"--labels=vice:ok --depfile=inc nop",     "cannot write 'inc'"},
      {"--map=full.txt nop",                     "cannot write 'full.txt'"},
      {"--depfile=d -o a;b nop",                 "cannot write 'd': no rule can name 'a;b'"},
      {"--depfile=d nop a|b",                    "cannot write 'd': no rule can name 'a|b'"},
      {"--depfile=d /",                          "cannot write 'd': the program's file has no name"},
      {"--depfile=d --listing=l --map=m.txt bad", ""},
      // clang-format on
  };
  for (const auto& [line, complaint] : rows) {
    MemoryHost host;
    host.unwritable = {"full.txt"};
    host.files = {{"nop", " .include \"inc\""}, {"inc", " NOP"}, {"a|b", ""}, {"/", " NOP"}, {"bad", " NOP #1"}};
    EXPECT_EQ(runCheck(host, words("kiln-check " + line), false), 2) << line;
    EXPECT_EQ(host.standardError, complaint.empty() ? "" : "kiln-check: " + complaint + "\n");
    EXPECT_EQ(host.written, Files()) << line;
  }
}

// A program that the assembler cannot write is reported, and its map helps to find the reason.
TEST(CheckOutputs, EndWithFailureWhenTheProgramCannotBeWritten) {
  const Files files = {{"l.lnk", bankLayout}, {"big", " .bank one\n .space $4001"}, {"none", ""}, {"nop", " NOP"}};
  for (const std::string line :
       {"-L l.lnk big", "-f prg none", "-o nop nop", "-l nop nop", "-o x -L l.lnk -o l.lnk nop"}) {
    MemoryHost host;
    host.files = files;
    EXPECT_EQ(runCheck(host, words("kiln-check -Wno-before-origin --map=map.txt " + line), false), 2) << line;
    EXPECT_NE(host.standardOutput.find("error: "), std::string::npos) << line;
    EXPECT_EQ(host.written.count("map.txt"), 1U) << line;
  }
}

// The stager's code comes after a line that a macro has made, and that line has a message.
TEST(CheckOutputs, EndAfterALineThatTheStagerKeeps) {
  const std::string source = R"(.macro DONE
        RTS
        STA zero

zero    = 0
        .org $2000
start:  JSR draw
        DONE
        .bank pictures
draw:   RTS
)";
  const std::string listing =
      written("-L l.lnk --listing=~ main.asm", {{"main.asm", source}, {"l.lnk", bankLayout}})["~"];
  const std::string begin = R"(main.asm:
                                  1  .macro DONE
                                  2          RTS
                                  3          STA zero
                                  4
                                  5  zero    = 0
       2000                       6          .org $2000
                                  7  start:  JSR draw
       2000  20 07 20     6       +  start:  JSR _kxb_0 ; xbank
                                  8          DONE
       2003  60           6       +          RTS
       2004  8D 00 00     4       +          STA zero
       2007  48           3       +  >_kxb_0: PHA ; xbank
)";
  EXPECT_EQ(listing.substr(0, begin.size()), begin);
}

TEST(Cycles, AreThoseOfTheProcessorsManual) {
  constexpr int p = 100;  // one more when indexing leads to another page
  static constexpr Mode modes[] = {Mode::Implied,   Mode::Accumulator, Mode::Immediate,        Mode::ZeroPage,
                                   Mode::ZeroPageX, Mode::ZeroPageY,   Mode::Absolute,         Mode::AbsoluteX,
                                   Mode::AbsoluteY, Mode::Indirect,    Mode::IndexedIndirectX, Mode::IndirectIndexedY,
                                   Mode::Relative};
  const struct {
    std::string name;
    std::array<int, std::size(modes)> cycles;
  } rows[] = {
      // clang-format off
      //    imp  A  #n  zp zpx zpy  abs  abx  aby ind izx  izy rel
      {"ADC", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"AND", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"ASL", {0, 2, 0, 5, 6, 0, 6, 7,     0,     0, 0, 0,     0}},
      {"BCC", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BCS", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BEQ", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BIT", {0, 0, 0, 3, 0, 0, 4, 0,     0,     0, 0, 0,     0}},
      {"BMI", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BNE", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BPL", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BRK", {7, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"BVC", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"BVS", {0, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     2}},
      {"CLC", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"CLD", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"CLI", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"CLV", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"CMP", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"CPX", {0, 0, 2, 3, 0, 0, 4, 0,     0,     0, 0, 0,     0}},
      {"CPY", {0, 0, 2, 3, 0, 0, 4, 0,     0,     0, 0, 0,     0}},
      {"DEC", {0, 0, 0, 5, 6, 0, 6, 7,     0,     0, 0, 0,     0}},
      {"DEX", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"DEY", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"EOR", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"INC", {0, 0, 0, 5, 6, 0, 6, 7,     0,     0, 0, 0,     0}},
      {"INX", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"INY", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"JMP", {0, 0, 0, 0, 0, 0, 3, 0,     0,     5, 0, 0,     0}},
      {"JSR", {0, 0, 0, 0, 0, 0, 6, 0,     0,     0, 0, 0,     0}},
      {"LDA", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"LDX", {0, 0, 2, 3, 0, 4, 4, 0,     4 + p, 0, 0, 0,     0}},
      {"LDY", {0, 0, 2, 3, 4, 0, 4, 4 + p, 0,     0, 0, 0,     0}},
      {"LSR", {0, 2, 0, 5, 6, 0, 6, 7,     0,     0, 0, 0,     0}},
      {"NOP", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"ORA", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"PHA", {3, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"PHP", {3, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"PLA", {4, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"PLP", {4, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"ROL", {0, 2, 0, 5, 6, 0, 6, 7,     0,     0, 0, 0,     0}},
      {"ROR", {0, 2, 0, 5, 6, 0, 6, 7,     0,     0, 0, 0,     0}},
      {"RTI", {6, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"RTS", {6, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"SBC", {0, 0, 2, 3, 4, 0, 4, 4 + p, 4 + p, 0, 6, 5 + p, 0}},
      {"SEC", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"SED", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"SEI", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"STA", {0, 0, 0, 3, 4, 0, 4, 5,     5,     0, 6, 6,     0}},
      {"STX", {0, 0, 0, 3, 0, 4, 4, 0,     0,     0, 0, 0,     0}},
      {"STY", {0, 0, 0, 3, 4, 0, 4, 0,     0,     0, 0, 0,     0}},
      {"TAX", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"TAY", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"TSX", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"TXA", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"TXS", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      {"TYA", {2, 0, 0, 0, 0, 0, 0, 0,     0,     0, 0, 0,     0}},
      // clang-format on
  };
  std::map<std::pair<Mnemonic, Mode>, int> expected;
  for (const auto& [name, cycles] : rows) {
    for (size_t i = 0; i < std::size(modes); ++i)
      expected[{mnemonicOf(name), modes[i]}] = cycles[i];
  }
  // All others, those with SP among them, have none.
  for (size_t mnemonic = 1; mnemonic <= mnemonicCount; ++mnemonic) {
    for (size_t mode = 0; mode < modeCount; ++mode) {
      const std::pair key(static_cast<Mnemonic>(mnemonic), static_cast<Mode>(mode));
      const std::optional<Cycles> cycles = cyclesOf(key.first, key.second);
      EXPECT_EQ(cycles.has_value() ? cycles->count + (cycles->mayGrow ? p : 0) : 0, expected[key])
          << mnemonicText(key.first) << " in mode " << mode;
    }
  }
}

TEST(Cycles, OfATakenBranchDependOnThePageAfterIt) {
  const struct {
    uint32_t address, target, cycles;
  } rows[] = {
      {0x2000, 0x2010, 3}, {0x20FD, 0x20FF, 3}, {0x20FD, 0x2100, 4},
      {0x20FE, 0x2100, 3}, {0x20FE, 0x20F0, 4}, {0xFFFE, 0x0005, 3},
  };
  for (const auto& [address, target, cycles] : rows)
    EXPECT_EQ(takenBranchCycles(address, target), cycles) << std::hex << address << " to " << target;
}

}  // namespace
}  // namespace kiln::test
