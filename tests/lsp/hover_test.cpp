// What the editor shows about the thing under the cursor.
#include <gtest/gtest.h>

#include <regex>

#include "host/real_host.h"
#include "inspect/statement_words.h"
#include "lsp/directive_texts.h"
#include "lsp/hardware.h"
#include "source/seeds.h"
#include "support/editor.h"

namespace kiln::test {
namespace {

const Json plainText = {{"capabilities", {{"textDocument", {{"hover", {{"contentFormat", {"plaintext"}}}}}}}}};

const std::map<std::string, std::string> files = {
    {"sub/banks.lnk", "[banking]\nwindow = $4000-$7FFF\nregisters = $82, $83\n"},
    {"lib.inc", "; How many\n; there are.\ncount = 5\n"},
    {"sub/.kiln", "-L banks.lnk main.asm\n"},
};

// The text at the cursor; "null" for nothing.
std::string hoverIn(Editor& editor) {
  const Json answer = editor.request("textDocument/hover");
  return answer.is_object() ? answer["contents"]["value"].get<std::string>() : answer.dump();
}

std::string hoverOf(const std::string& text, const std::string& file = "main.asm") {
  Editor editor(files, plainText);
  editor.open(file, text);
  return hoverIn(editor);
}

TEST(Hover, DescribesNames) {
  EXPECT_EQ(hoverOf(" .org $2000\n\n; Waits,\n; and waits.\nwa|it: NOP ; one\n JSR wait\n"),
            "wait: label at $2000 = 8192 = %0010000000000000\n"
            "used once, main.asm line 5\n"
            "; Waits,\n; and waits.\nwait: NOP ; one");
  EXPECT_EQ(hoverOf(" .org $2000\nwait: NOP\n.loop: JMP .lo|op\n"),
            "wait.loop: label at $2001 = 8193 = %0010000000000001\n"
            "used once, main.asm line 3\n"
            ".loop: JMP .loop");
  EXPECT_EQ(hoverOf(" .include \"lib.inc\"\n LDA #cou|nt\n LDX #count\n"),
            "count: $05 = 5 = %00000101\nused 2 times, lib.inc line 3\n; How many\n; there are.\ncount = 5");
  EXPECT_EQ(hoverOf(" .include \"li|b.inc\"\n"), "/project/lib.inc");
  EXPECT_EQ(hoverOf(" LDA nowhe|re\n"), "null");
}

TEST(Hover, DescribesBanks) {
  const std::string program = " .org $2000\n NOP\n .bank fir|st\n NOP\n .bank second\nlabel: RTS\n RTS\n";
  EXPECT_EQ(hoverOf(program, "sub/main.asm"), "first: bank 1, 1 byte\nnot used, main.asm line 3\n .bank first");
  EXPECT_EQ(hoverOf(" .org $2000\n NOP\n .bank first\n NOP\n .bank second\nlab|el: RTS\n", "sub/main.asm"),
            "label: label at $4000 = 16384 = %0100000000000000, bank 2, second\nnot used, main.asm line 6\nlabel: RTS");
}

TEST(Hover, DescribesBuiltInNames) {
  EXPECT_EQ(hoverOf(" LDA COL|BK\n"),
            "COLBK: $D01A = 53274 = %1101000000011010\nGTIA\n"
            "write: colour of background and border; the OS stores COLOR4 here each frame\nused once");
  EXPECT_EQ(hoverOf(" LDA RANDO|M\n"),
            "RANDOM: $D20A = 53770 = %1101001000001010\nPOKEY\nread: a random number\n"
            "write: as SKREST: any value resets the error bits of SKSTAT\nused once");
}

TEST(Hover, DescribesNumbers) {
  const std::pair<std::string, std::string> rows[] = {
      {" LDA #4|4\n", "$2C = 44 = %00101100"},
      {" LDA $12|34,X\n", "$1234 = 4660 = %0001001000110100"},
      {" .byte 1,%1|01,3\n", "$05 = 5 = %00000101"},
      {"x = 0F|Fh+1\n", "$FF = 255 = %11111111"},
      {".macro M a\n LDA #1|0+a\n", "$0A = 10 = %00001010"},
      {".macro M a\n LDA a\n\n M $1|0\n", "$10 = 16 = %00010000"},
      {" LDA #1 ; 1|0\n", "null"},
      {" .string \"1|0\"\n", "null"},
  };
  for (const auto& [program, text] : rows)
    EXPECT_EQ(hoverOf(program), text) << program;
}

TEST(Hover, DescribesInstructionsAsAssembled) {
  const std::pair<std::string, std::string> rows[] = {
      {" LD|A #5\n", "LDA: loads A\nflags: N Z\nimmediate: 2 bytes, 2 cycles, opcode $A9\n2000: A9 05"},
      {" l|da $1234,x\n",
       "LDA: loads A\nflags: N Z\nabsolute, indexed with X: 3 bytes, 4 cycles and one more when indexing leads to the "
       "next page, opcode $BD\n2000: BD 34 12"},
      {"here: |BNE here\n",
       "BNE: branches when the result was not zero, or not equal\nflags: none change\n"
       "relative: 2 bytes, 2 cycles, taken 3, opcode $D0\n2000: D0 FE"},
      // The manual does not say how long the pell machine's instructions take, nor which flags they change.
      {" PH|X\n", "PHX: an instruction of the pell machine\nimplied: 1 byte, opcode $44\n2000: 44"},
      // There are no bytes when the program does not assemble.
      {" ST|A #1\n", "STA: stores A\nflags: none change\nimmediate: not a mode of this instruction"},
      // A rewritten line.
      {" B|EQ far\n .space 200\nfar: RTS\n",
       "BEQ: branches when the result was zero, or equal\nflags: none change\n"
       "2000: D0 03     BNE _klb_0 ; longbr\n2002: 4C CD 20  JMP far\n2005:           _klb_0:"},
  };
  for (const auto& [program, text] : rows)
    EXPECT_EQ(hoverOf(" .org $2000\n" + program), text) << program;
}

TEST(Hover, DescribesMacrosAndTheirCalls) {
  const std::string macro = ".macro SET address,number\n LDA #number ; low\n STA address\n\n .org $2000\n";
  const std::string definition = ".macro SET address,number\n LDA #number ; low\n STA address";
  EXPECT_EQ(hoverOf(macro + "start: S|ET $80,3\n SET $81,4\n"),
            definition + "\nthis call makes:\n2000: A9 03     LDA #3 ; low\n2002: 85 80     STA $80");
  EXPECT_EQ(hoverOf(macro + " S|ET $80,3\n STA #1\n"), definition + "\nthis call makes:\nLDA #3 ; low\nSTA $80");
  EXPECT_EQ(hoverOf(".macro SE|T value\n LDA #value\n"), ".macro SET value\n LDA #value");
  EXPECT_EQ(hoverOf(".macro SET value\n LDA #val|ue\n"),
            "value: parameter 1 of the macro SET\n.macro SET value\n LDA #value");
}

TEST(Hover, DescribesDirectives) {
  EXPECT_EQ(hoverOf(" .O|RG $2000\n"), ".org address: continues at another address");
  EXPECT_EQ(hoverOf(".mac|ro M\n NOP\n"), ".macro name parameters: defines a macro");
  EXPECT_EQ(hoverOf(" .incl|ude \"nowhere\"\n"), ".include name: inserts another file");
  EXPECT_EQ(hoverOf(" .cloaked_segment_e|nd\n"), ".cloaked_segment_end: ends a cloaked segment");
}

TEST(Hover, IsMarkdownWhereTheEditorTakesIt) {
  Editor editor;
  editor.open("main.asm", "; a ``` b\nx|`y: NOP\n");
  const Json answer = editor.request("textDocument/hover");
  EXPECT_EQ(answer["contents"]["kind"], "markdown");
  EXPECT_EQ(answer["contents"]["value"],
            "``x`y``: label at `$00` = 0 = `%00000000`\n\nnot used, main.asm line 2\n\n"
            "````kiln\n; a ``` b\nx`y: NOP\n````");
  EXPECT_EQ(placeText(answer["range"]), "2:1-4");
}

TEST(Hover, HasTheManualsLineOfEachDirective) {
  const std::string root = std::string(KILN_EXAMPLES_DIR) + "/..";
  const std::string manual = RealHost().readFile(root + "/docs/language.md").value_or("");
  const std::string plain = std::regex_replace(manual, std::regex("\\[([^\\]]*)\\]\\([^)]*\\)"), "$1");
  for (const DirectiveText& directive : directiveTexts()) {
    const std::string row = "| `" + std::string(directive.form) + "` | " + std::string(directive.does);
    EXPECT_NE(plain.find(row), std::string::npos) << row;
  }
  EXPECT_EQ(directiveTexts().size(), directiveWords.size());
}

TEST(Hover, KnowsEveryBuiltInName) {
  SymbolTable builtIn;
  enterSeeds({}, builtIn);
  for (const Symbol& symbol : builtIn.symbols())
    EXPECT_NE(findHardware(symbol.name, symbol.value), nullptr) << symbol.name;
  EXPECT_EQ(hardwareNames().size(), builtIn.symbols().size());
  for (const HardwareName& row : hardwareNames())
    EXPECT_FALSE(row.about.empty() && row.read.empty() && row.write.empty()) << row.name;
}

}  // namespace
}  // namespace kiln::test
