// What a file consists of: outline, search and folding.
#include <gtest/gtest.h>

#include "support/editor.h"

namespace kiln::test {
namespace {

using Lines = std::vector<std::string>;

// "NAME LINE-LINE", with two blanks in front for each level.
void addOutline(const Json& symbols, const std::string& indent, Lines& lines) {
  for (const Json& symbol : symbols) {
    const int first = symbol["range"]["start"]["line"].get<int>() + 1;
    const int last = symbol["range"]["end"]["line"].get<int>() + 1;
    lines.push_back(indent + symbol["name"].get<std::string>() + " " + std::to_string(first) + "-" +
                    std::to_string(last));
    if (symbol.contains("children")) addOutline(symbol["children"], indent + "  ", lines);
  }
}

Lines outlineOf(const std::string& program, const std::map<std::string, std::string>& files = {}) {
  Editor editor(files);
  editor.open("main.asm", "|" + program);
  Lines lines;
  addOutline(editor.request("textDocument/documentSymbol"), "", lines);
  return lines;
}

const std::string program = R"(; a program
; with a comment
; of three lines
limit = 5
.macro WAIT count
 LDX #count
 .wait: DEX
 BNE .wait

 .code_regions $2000-$2FFF
 .org $2000
start: LDA #limit
step = 2
.loop: BNE .loop
 WAIT 3

; before the table
other = 7
>far: RTS

table: .byte 1
after = 9
 .bank first
code: RTS
 .bank second
 RTS
 .org $3000
last: RTS
)";

TEST(Symbols, NestLocalLabelsAndBanks) {
  EXPECT_EQ(outlineOf(program), (Lines{"limit 4-4", "WAIT 5-8", ".code_regions $2000-$2FFF 10-10", "start 12-19",
                                       "  step 13-13", "  .loop 14-15", "  other 18-18", "  >far 19-19", "table 21-21",
                                       "after 22-22", "first 23-24", "  code 24-24", "second 25-26", "last 28-28"}));
  // A branch that does not reach has a line of its own in the assembler; an included file has its own outline.
  EXPECT_EQ(outlineOf(" .include \"lib.inc\"\n .org $2000\na1:\n.b: NOP\n BEQ far\n .space 200\nfar: RTS\n",
                      {{"lib.inc", "five = 5\n"}}),
            (Lines{"a1 3-6", "  .b 4-6", "far 7-7"}));
  // A bank has all its symbols within its lines.
  EXPECT_EQ(outlineOf(" .bank code\n NOP\n\n.macro M\n NOP\n\nlast = 5\n"),
            (Lines{"code 1-7", "  M 4-5", "  last 7-7"}));
  // What does not assemble has one, too.
  EXPECT_EQ(outlineOf(" .org $2000\na1: LDA (5)\n"), Lines{"a1 2-2"});
}

TEST(Symbols, AreFoundInAllProgramsOnce) {
  Editor editor({{"one.asm", " .include \"lib.inc\"\n .org $2000\nPrinter: RTS\n"},
                 {"two.asm", " .include \"lib.inc\"\n .org $3000\n.macro REPRINT\n RTS\n"},
                 {"lib.inc", " .org $4000\nprint: RTS\n.sprint: RTS\n"}});
  editor.open("lib.inc", " .org $4000\nprint: RTS\n.sprint: RTS\n");
  const auto find = [&editor](const std::string& query) {
    Lines lines;
    for (const Json& symbol : editor.request("workspace/symbol", {{"query", query}}))
      lines.push_back(symbol["name"].get<std::string>() + " " + placeText(symbol["location"]));
    return lines;
  };
  EXPECT_EQ(find("PRINT"), (Lines{"print lib.inc 2:1-6", "print.sprint lib.inc 3:1-8", "Printer one.asm 3:1-8",
                                  "REPRINT two.asm 3:8-15"}));
  EXPECT_EQ(find("nothing"), Lines());
  EXPECT_EQ(find("").size(), 4U);
}

TEST(Symbols, AreAThousandAtMost) {
  std::string many = "|";
  for (int i = 0; i < 1100; ++i)
    many += "n" + std::to_string(i) + " = 1\n";
  Editor editor;
  editor.open("main.asm", many);
  EXPECT_EQ(editor.request("workspace/symbol", {{"query", "N"}}).size(), 1000U);
}

TEST(Folding, HasMacrosRoutinesRegionsBanksAndComments) {
  Editor editor;
  editor.open("main.asm", "|" + program);
  Lines lines;
  for (const Json& range : editor.request("textDocument/foldingRange")) {
    lines.push_back(std::to_string(range["startLine"].get<int>() + 1) + "-" +
                    std::to_string(range["endLine"].get<int>() + 1) + " " + range.value("kind", ""));
  }
  EXPECT_EQ(lines, (Lines{"5-8 ", "10-21 region", "12-19 ", "23-24 region", "25-26 region", "1-3 comment"}));
}

}  // namespace
}  // namespace kiln::test
