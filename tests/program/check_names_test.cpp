// What kiln-check finds about names, beside what docs/check.md shows.
#include <gtest/gtest.h>

#include <set>

#include "support/findings.h"

namespace kiln::test {
namespace {

const std::set<std::string> nameChecks = {"undefined",     "letter-case",       "label-twice",       "reserved-local",
                                          "local-in-list", "label-before-move", "assigned-twice",    "used-too-early",
                                          "early-count",   "number-like-name",  "define-overridden", "address-zero",
                                          "unused",        "assembler"};

struct Row {
  std::string source;
  std::vector<std::string> expected = {};  // findings of these checks
  std::string options = "";
};

void expectNames(const std::vector<Row>& rows, const std::map<std::string, std::string>& files = {}) {
  for (const auto& [source, expected, options] : rows) {
    SCOPED_TRACE(source);
    std::vector<std::string> found = findingsIn({source, options, files});
    std::erase_if(found,
                  [](const std::string& place) { return !nameChecks.contains(place.substr(place.find(' ') + 1)); });
    EXPECT_EQ(found, expected);
  }
}

// clang-format off
TEST(CheckNames, FindUndefinedNamesWhereTheyAreWritten) {
  expectNames({
      {".org $2000\n LDA #<(one+2)*two\n",               {"2:9 undefined", "2:16 undefined"}},
      {".org $2000\n .word 1,one ,$20,one\n LDA one\n",  {"2:10 undefined"}},
      {".org $2000\n LDA (one),Y\n LDX two , Y\n",       {"2:7 undefined", "3:6 undefined"}},
      {".org $2000\n LDA one2+one\n",                    {"2:6 undefined", "2:11 undefined"}},
      {".org one\n.code_regions two-$30FF\n .space three\n NOP\n",
       {"1:6 undefined", "2:15 undefined", "3:9 undefined"}},
      // A branch to an unknown name becomes a long one: its line is made by the assembler.
      {".org $2000\nx: NOP\n BNE .one\n BRA two\n",      {"3:6 undefined", "4:6 undefined"}},
      // A macro: the argument of a call, or the call itself.
      {".macro PUT what\n LDA what\n STA three\n\n.org $2000\nx: PUT one ; here\n PUT two\n",
       {"6:1 undefined", "6:8 undefined", "7:6 undefined"}},
      // So are calls into other banks, whose lines keep their labels.
      {".org $2000\nx: JSR .y\n RTS\n.bank one\ny: JSR z\n RTS\n.bank two\nz: RTS\n", {"2:8 undefined"},
       "-code-window 4000-7FFF -code-reg 82 -b"},
      // With an error above, no bytes are made, and the assembler says nothing of the name.
      {".org $2000\nx: LDA one\nx: RTS\n",               {"2:8 undefined", "3:1 assembler"}},
      {".org $2000\n .cloaked_segment one,none\n RTS\n", {"2:19 undefined"}},
  });
}

TEST(CheckNames, ReportNoConsequences) {
  expectNames({
      // The definition vanishes.
      {".org $2000\nagain\n JMP again\n"},
      {".org $2000\nmain: NOP\n.again JMP .again\n"},
      {"size EQU 5\n.org $2000\n LDA size\n"},
      {".const size = 5\n.org $2000\n LDA size\n"},
      // It goes with the line of a long branch.
      {".org $2000\nloop: BEQ far\n BNE loop\n .space 200\nfar: RTS\n"},
      // It may be in a missing file.
      {" .include \"names.inc\"\n LDA one\nsize = two\n", {"1:2 assembler"}},
      // The text of a string is an assignment, or a list.
      {".org $2000\n .string A=one+\n .byte \"A,one,B\"\n LDA #1\n", {}, "-Wno-assembler"},
      // A name that comes to 0 because of another one.
      {".org $2000\n JMP start\nsize = last\ntwice = size*2\n STA twice\nstart: RTS\nlast:\n", {"3:8 used-too-early"}},
      {".org base\nx: JMP x\nbase = $2000\n",            {"1:6 used-too-early"}},
      {".org $2000\n STA one\n",                         {"2:6 undefined"}},
      // The parameter is still there because the call has too few arguments.
      {".macro PUT value,target\n LDA value\n STA target\n\n.org $2000\n PUT #1\n"},
  });
}

TEST(CheckNames, FindDefinitionsThatDoNotCount) {
  expectNames({
      {".org $2000\n>in: NOP\n>in: NOP\n>in: JMP in\n",  {"3:1 label-twice", "4:1 label-twice"}},
      {".org $2000\n.x: NOP\n.x: JMP .x\n",              {"3:1 label-twice"}},
      {".org $2000\na:\n.x: NOP\nb:\n.x: JMP .x\n"},
      // A label replaces a platform name; another one of its name is one too many.
      {".org $2000\n>CH: NOP\n>CH: JMP CH\n",            {"3:1 label-twice"}},
      {".org $2000\nCH: JMP CH\n"},
      {".org $2000\nx: NOP\nx = 5\n LDA x\n",            {"3:1 assigned-twice"}},
      {".org $2000\nx: NOP\nx = $2000\n LDA x\n"},
      {"CH = 5\nCH = 6\n.org $2000\n LDA CH\n",          {"2:1 assigned-twice"}},
      {"n = 1\nn = 1\n.org $2000\n LDA #n\n"},
      {"n = 1\n.org $2000\n LDA #N\nn = 2\n",            {"4:1 assigned-twice"}},
      {"n = 1\nm = n\nn = 2\n.org $2000\n LDA #n+m\n"},
      // A counter begins anew after a step that nothing uses.
      {"n = 0\na = n\nn = n+1\nn = 0\nb = n\nn = n+2\nc = n\n.org $2000\n LDA #a+b+c\n"},
      {"n = 1\nn = 2\nm = n\nn = 3\nn = 4\n.org $2000\n LDA #m\n",  {"2:1 assigned-twice"}},
      {"n = 1\n.org $2000\n LDA #n\n",                   {}, "-D n=1"},
      {"n = 2\n.org $2000\n LDA #n\n",                   {"1:1 define-overridden"}, "-D n=1"},
      {"n = 2\n.org $2000\n LDA #n\n",                   {}, "defaults.inc"},
      {".org $2000\nx: .org $2000\n JMP x\n"},
      {".org $2000\n NOP\nx: .bank b\n JMP x\n",         {"3:1 label-before-move"}, "-code-window 4000-7FFF"},
  }, {{"defaults.inc", "n = 1\n"}});
}

// The source has the names that the call stager replaces, and not those that it makes.
TEST(CheckNames, KnowTheNamesOfStagedCalls) {
  const std::string main = ".org $2000\n.code_regions $2000-$3FFF\nloop: JSR draw\nJMP loop\n";
  const std::string bank = ".bank b\ndraw: RTS\n", options = "-code-window 4000-7FFF -code-reg 82 -b";
  expectNames({
      {main + bank, {}, options + " -Wunused"},
      {main + bank + "hide: RTS\n", {"7:1 unused"}, options + " -Wunused"},
      // The routines of the stager, which come after this line, are too long for the region.
      {".org $2000\n.code_regions $2000-$2020\nloop: JSR draw\nJMP loop\n" + bank, {"4:1 assembler"}, options},
  });
}

TEST(CheckNames, KnowWhenANameHasItsValue) {
  expectNames({
      {"n = n+1\n.org $2000\n LDA #n\n",                 {"1:5 used-too-early"}},
      {"a = Late\n.org $2000\n LDA #a\nlate = 5\n",      {"1:5 used-too-early"}},
      {"a = CH\n.org $2000\n LDA #a\n"},
      {".org $2000\na: .byte size\nsize = 1\n .word a,size\n"},
      {"a = b+c\nb = 1\nc = 2\n.org $2000\n LDA #a\n",   {"1:5 used-too-early"}},
      {".org $2000\n .space CH-CH+1\n .space four\nfour = 4\n RTS\n", {"3:9 early-count"}},
      {".org $2000\n .space SIZE\nSIZE = 2\n RTS\n",     {}, "-D SIZE=2"},
  });
}

TEST(CheckNames, KnowTheScopes) {
  expectNames({
      {".org $2000\n.end: BNE .end\n .word .end\n"},
      {".org $2000\na: NOP\n.org: JMP .org\n JMP .org\n", {"3:11 reserved-local"}},
      {".org $2000\na: JMP .end\nb: RTS\n.end: RTS\n",   {"2:8 undefined"}},
      {".org $2000\na: NOP\n.b: .word .b\nc: .word .b\nd = .b\n",
       {"3:11 local-in-list", "4:10 local-in-list"}},
  });
}

TEST(CheckNames, FindNamesThatAreNumbersAndAddresses) {
  expectNames({
      {".org $2000\n LDA A0h\n LDA d0\n LDA beach\n LDA each\n LDA c64\n",
       {"2:6 number-like-name", "3:6 number-like-name", "4:6 number-like-name", "5:6 undefined", "6:6 undefined"}},
      {".org $2000\nFFh: JMP FFh\n"},
      {".org $2000\n LDA #$12h\n LDA #34h\n",            {}, "-D 12h=5"},
      {".org $2000\n LDX #3+12h\n LDA #12h\n",           {"2:9 number-like-name"}, "-D 12h=5"},
      {"z = 0\n.org $2000\n LDA z : STA z-0 : LDX #z : LDA (z),Y\n STA $00\n",
       {"3:6 address-zero", "3:14 address-zero"}},
      {".org $2000\n STA LINZBS\n",                      {"2:6 address-zero"}},
  });
}

TEST(CheckNames, FindMoreWhenAsked) {
  expectNames({
      {".org $2000\naB: LDA colbk\n STA ColBk\n JMP Ab\n", {"2:9 letter-case", "3:6 letter-case", "4:6 letter-case"},
       "-Wletter-case"},
      {".org $2000\na: JMP b.c\nb: NOP\n.c: RTS\nd: RTS\n.e: RTS\n", {"5:1 unused", "6:1 unused"}, "-Wunused"},
      {".org $2000\na: RTS\nb: RTS\nc:\nsize = c-a\nd: .byte size\n", {"6:1 unused"}, "-Wunused -e b"},
      {" .include \"library.inc\"\n.org $3000\n JMP draw\n", {}, "-Wunused"},
  }, {{"library.inc", ".org $2000\nstart: RTS\ndraw: RTS\nerase: RTS\n"}});
}
// clang-format on

TEST(CheckNames, SayWhatMayBeMeant) {
  const std::map<std::string, std::string> files = {{"screen.sym", "SCREEN = $58\n"}};
  const std::vector<std::string> expected = {
      "'SAVMSC' is not defined: it counts as 0",
      "it is a built-in name, but a symbol file replaces all of these",
      "'SCREN' is not defined: it counts as 0",
      "did you mean 'SCREEN'?",
      "'.nxt' is not defined in the scope 'draw': it counts as 0",
      "did you mean '.next'?",
      "'__bank_two' is not defined: it counts as 0",
      "'.bank two' defines it",
  };
  const std::string source =
      ".org $2000\n LDA SAVMSC\n STA SCREN\ndraw: NOP\n.next: JMP .nxt\nother: NOP\n.nxy: LDA #__bank_two\n";
  EXPECT_EQ(findingTextsIn({source, "-s screen.sym -Wno-assembler", files}), expected);
}

TEST(CheckNames, CorrectWhatIsCertain) {
  EXPECT_EQ(fixedSource({".org $2000\na: NOP\n.b: .word 1 , .b\nc = .b\n LDA #FFh\n STA beach\n JMP C\n", "-Wextra"}),
            ".org $2000\na: NOP\n.b: .word 1 , a.b\nc = a.b\n LDA #$FF\n STA beach\n JMP c\n");
}

}  // namespace
}  // namespace kiln::test
