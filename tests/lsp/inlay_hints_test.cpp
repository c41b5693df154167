// What is shown at the ends of lines, before arguments and above labels.
#include <gtest/gtest.h>

#include "support/editor.h"

namespace kiln::test {
namespace {

using Texts = std::vector<std::string>;

const Json everything = {
    {"range", {{"start", {{"line", 0}, {"character", 0}}}, {"end", {{"line", 999}, {"character", 0}}}}}};

Json ofMain(Json more) {
  more["textDocument"] = {{"uri", Editor::uriOf("main.asm")}};
  return more;
}

// "LINE:COLUMN LABEL", counted from 1.
Texts hintsIn(Editor& editor, const Json& range = everything) {
  Texts texts;
  for (const Json& hint : editor.request("textDocument/inlayHint", ofMain(range))) {
    const Json& position = hint["position"];
    texts.push_back(std::to_string(position["line"].get<int>() + 1) + ":" +
                    std::to_string(position["character"].get<int>() + 1) + " " + hint["label"].get<std::string>());
  }
  return texts;
}

Texts hintsOf(const std::string& text) {
  Editor editor;
  editor.open("main.asm", text);
  return hintsIn(editor);
}

TEST(InlayHints, ShowAddressBytesAndCycles) {
  EXPECT_EQ(hintsOf(" .org $20FE ; here\n"
                    "start: LDA #5 ; five\n"
                    "\n"
                    " LDA $1234,X : TAX\n"
                    " LDA $1234,X\n"
                    ".loop: BNE .loop\n"
                    " PHX\n"
                    " .byte 1,2,3,4,5,6,7,8,9\n"
                    " BNE start : NOP\n"
                    "vanished\n"
                    "end:\n"),
            (Texts{
                "2:21 20FE: A9 05  2",
                "4:19 2100: BD 34 12 AA  6-7",
                "5:13 2104: BD 34 12  4+",
                "6:17 2107: D0 FE  2/3",
                "7:5 2109: 44",
                "8:25 210A: 01 02 03 04 05 06 07 08...",
                "9:17 2113: D0 E9 EA",
            }));
}

TEST(InlayHints, SumMacrosAndNameTheirParameters) {
  EXPECT_EQ(hintsOf(".macro SET address,number\n LDA #number\n STA address\n\n"
                    " .org $2000\nstart: SET $80,3\n SET  address , 4,5 ; more\n"),
            (Texts{"6:17 2000: A9 03 85 80  5", "7:27 2004: A9 04 8D 00 00  6",
                   "6:12 address:", "6:16 number:", "7:17 number:"}));
}

TEST(InlayHints, ShowWhatRewritersMake) {
  EXPECT_EQ(hintsOf(" .org $2000\n BEQ far\n .space 200\nfar: RTS\n"),
            (Texts{"2:9 2000: D0 03 4C CD 20", "3:12 2005: 00 00 00 00 00 00 00 00...", "4:9 20CD: 60  6"}));
}

TEST(InlayHints, CanBeLimitedAndSwitchedOff) {
  Editor editor;
  editor.open("main.asm", " NOP\n NOP\n NOP\n");
  const Json second = {
      {"range", {{"start", {{"line", 1}, {"character", 0}}}, {"end", {{"line", 1}, {"character", 2}}}}}};
  EXPECT_EQ(hintsIn(editor, second), Texts{"2:5 0001: EA  2"});
  editor.send({{"jsonrpc", "2.0"},
               {"method", "workspace/didChangeConfiguration"},
               {"params", {{"settings", {{"kiln", {{"inlayHints", false}}}}}}}});
  EXPECT_EQ(hintsIn(editor), Texts{});
  EXPECT_EQ(hintsOf(" LDA #5\n STA #1\n"), Texts{});  // does not assemble
}

// "LINE TITLE"
Texts lensesOf(const std::string& text) {
  Editor editor;
  editor.open("main.asm", text);
  Texts texts;
  for (const Json& lens : editor.request("textDocument/codeLens", ofMain(Json::object()))) {
    texts.push_back(std::to_string(lens["range"]["start"]["line"].get<int>() + 1) + " " +
                    lens["command"]["title"].get<std::string>());
  }
  return texts;
}

TEST(CodeLens, MeasuresRoutines) {
  EXPECT_EQ(lensesOf(" .org $2000\n"
                     "straight: LDA #5\n STA $80\n RTS\n"
                     "indexed: LDA $1234,X\n.local: LDA ($80),Y\n RTS\n"
                     "loop: DEX\n BNE loop\n RTS\n"
                     "calling: JSR straight\n JMP loop\n"
                     "foreign: PHX\n RTS\n"
                     "data: .byte 1\n"
                     "empty:\n"
                     " .org $3000\n"
                     ">inner: NOP\n"),
            (Texts{
                "2 5 bytes, 11 cycles",
                "2 1 reference",  //
                "5 6 bytes, 15 to 17 cycles",
                "5 no references",  //
                "8 4 bytes",
                "8 2 references",  //
                "11 6 bytes",
                "11 no references",  //
                "13 2 bytes",
                "13 no references",  //
                "15 1 byte",
                "15 no references",  //
                "16 no references",
                "18 no references",
            }));
}

TEST(CodeLens, SaysWhereTheReferencesAre) {
  Editor editor;
  editor.open("main.asm", "\n start: JMP start\n");
  const Json lenses = editor.request("textDocument/codeLens", ofMain(Json::object()));
  EXPECT_EQ(placeText(lenses[1]["range"]), "2:2-7");
  EXPECT_EQ(lenses[1]["command"]["command"], "kiln.showReferences");
  EXPECT_EQ(lenses[1]["command"]["arguments"], (Json{Editor::uriOf("main.asm"), {{"line", 1}, {"character", 1}}}));
}

}  // namespace
}  // namespace kiln::test
