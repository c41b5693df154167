// Lines with their parts in columns, and never another program.
#include <gtest/gtest.h>

#include "support/editor.h"

namespace kiln::test {
namespace {

// "null" when nothing is done.
std::string formatted(const std::string& text, const Json& options = {{"tabSize", 8}, {"insertSpaces", true}},
                      const std::map<std::string, std::string>& files = {}) {
  Editor editor(files);
  editor.open("main.asm", "|" + text);
  const Json edits = editor.request("textDocument/formatting", {{"options", options}});
  return edits.is_array() ? applied(text, edits) : edits.dump();
}

TEST(Formatting, PutsPartsIntoColumns) {
  const std::string before = R"(count=5 ; five
   longerName   =   $10
 .org   $2000
start:LDX   #count;load
.loop:    DEX
  BNE .loop    ; again
   longLabel:  INX
other:
  TXA :PHA
 TXA  :  PHA
 .byte   1, 2,  3
 .string   "a   b"   ; text
; stays

  ; moves
      
 LDA  $1234 , X ;x
)";
  const std::string after = R"(count   = 5                     ; five
longerName = $10
        .org $2000
start:  LDX #count              ;load
.loop:  DEX
        BNE .loop               ; again
longLabel: INX
other:
  TXA :PHA
        TXA : PHA
        .byte 1, 2,  3
        .string "a   b"         ; text
; stays

        ; moves

        LDA $1234 , X           ;x
)";
  EXPECT_EQ(formatted(before), after);
  EXPECT_EQ(formatted(after), after);
}

TEST(Formatting, KeepsMacrosTogether) {
  const std::string before =
      ".macro M v,l\n LDA   #v\n   \n  l:\n l: NOP ; x\n ; note\nNOP\n .org $2000\n  M   5,.a\nb: M 6,.b\n";
  const std::string after =
      ".macro M v,l\n        LDA #v\n   \n        l:\n        l: NOP                  ; x\n        ; note\nNOP\n"
      "        .org $2000\n        M 5,.a\nb:      M 6,.b\n";
  EXPECT_EQ(formatted(before), after);
}

TEST(Formatting, LeavesWhatIsNotUnderstood) {
  const std::string text =
      " .org $2000\n  .byte\t5\n  LDZ   #1\n  LDA#1\n   a b: NOP\n  CMP = 5\n  .byte\t6 ; check: allow "
      "tab-after-directive\n";
  EXPECT_EQ(formatted(text), "        " + text.substr(1));
}

TEST(Formatting, DoesNothingToAProgramWithErrors) {
  EXPECT_EQ(formatted(" .org $2000\n  LDA   #1\n .include \"nowhere.inc\"\n"), "null");
  EXPECT_EQ(formatted(" .org $2000\r\n  LDA   #1\r\n"), "null");
}

// The blanks are part of a macro's parameter, so that the macro would become another one.
TEST(Formatting, NeverChangesTheProgram) {
  EXPECT_EQ(formatted(".macro M LDA  #1\n LDA  #1\n\n .org $2000\n M NOP\n"), "null");
}

TEST(Formatting, UsesTabsWhereTheyAreBlanks) {
  const Json tabs = {{"tabSize", 8}, {"insertSpaces", false}};
  EXPECT_EQ(formatted(" .org $2000\na: LDA   #1 ; one\n", tabs), "\t.org $2000\na:\tLDA #1\t\t\t; one\n");
  const Json narrow = {{"tabSize", 3}, {"insertSpaces", false}};
  EXPECT_EQ(formatted(" .org $2000\n", narrow), "\t\t  .org $2000\n");
}

TEST(Formatting, KeepsCommentsThatAreAligned) {
  const std::string text =
      "        .org $2000\n"
      "        .byte 1                         ; these two\n"
      "        .byte 1,2,3,4,5,6,7,8,9,10,11   ; are together\n"
      "        NOP\n"
      "        .byte 2                         ; alone\n";
  const std::string moved = "        .byte 2                 ; alone\n";
  EXPECT_EQ(formatted(text), text.substr(0, text.rfind("        .byte 2")) + moved);
}

// What one line's code becomes may decide where another one's comment goes.
TEST(Formatting, ChangesNothingTheSecondTime) {
  const std::string programs[] = {
      "        .org $2000                      ; alone, and stays on its own\n",
      "\t.org $2000\t\t\t; note\n\tNOP\t\t\t\t; note\n",
      // The first line's code gets too long for its comment, beside which the second one's is.
      " .org $2000\n.byte 1,2,3,4,5,6,7,8,9,10,11,12,13    ; a\n        NOP                             ; b\n",
      // Code that gets shorter.
      " .org $2000\n                        LDA             #1              ; a\n",
      // A comment one blank after code that ends before a multiple of eight.
      " .org $2000\n        .byte 1,2,3,4,5,6,7,8,9,10,123456 ;x\n .byte   1,2,3,4,5,6,7,8,9,10,1234 ;x\n",
  };
  for (const std::string& program : programs) {
    for (const int tabSize : {3, 4, 8}) {
      for (const bool usesSpaces : {false, true}) {
        const Json options = {{"tabSize", tabSize}, {"insertSpaces", usesSpaces}};
        const std::string once = formatted(program, options);
        EXPECT_NE(once, "null");
        EXPECT_EQ(formatted(once, options), once) << tabSize;
      }
    }
  }
}

TEST(Formatting, JoinsVeryManyEdits) {
  std::string before = " .org $2000\n";
  std::string after = "        .org $2000\n";
  for (int i = 0; i < 600; ++i) {
    before += "; note\n NOP\n NOP\n";
    after += "; note\n        NOP\n        NOP\n";
  }
  EXPECT_EQ(formatted(before), after);
}

TEST(Formatting, FormatsARange) {
  const std::string text = " .org $2000\n NOP\n NOP\n NOP\n";
  Editor editor;
  editor.open("main.asm", "|" + text);
  const Json edits = editor.request("textDocument/rangeFormatting",
                                    {{"range", toJson(Range{{1, 0}, {2, 0}})}, {"options", Json::object()}});
  EXPECT_EQ(applied(text, edits), " .org $2000\n        NOP\n NOP\n NOP\n");
}

}  // namespace
}  // namespace kiln::test
