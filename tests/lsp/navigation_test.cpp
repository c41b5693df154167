// From a name to its definition and its uses.
#include <gtest/gtest.h>

#include "support/editor.h"

namespace kiln::test {
namespace {

using Places = std::vector<std::string>;

const std::map<std::string, std::string> library = {{"lib.inc", "count = 5\n.macro PAINT colour\n LDA #colour\n"}};

struct Row {
  std::string line;  // the last of the program, with the cursor
  Places definitions;
};

TEST(Navigation, FindsDefinitions) {
  const std::string program = R"( .include "lib.inc"

 .org $2000
start: LDX #count
.loop: DEX
 BNE .loop
other: INX
.loop: BNE .loop
>far: RTS
)";
  const Row rows[] = {
      {" JMP st|art", {"main.asm 4:1-6"}},
      {" JMP |start", {"main.asm 4:1-6"}},
      {" JMP start|", {"main.asm 4:1-6"}},
      {" JMP START|", {"main.asm 4:1-6"}},
      {" JMP st|art+1", {"main.asm 4:1-6"}},
      {" JMP .lo|op", {"main.asm 8:1-6"}},  // of the scope "other"
      {" JMP start.lo|op", {"main.asm 5:1-6"}},
      {" LDA #>co|unt", {"lib.inc 1:1-6"}},
      {" .word start,co|unt", {"lib.inc 1:1-6"}},
      {" PAI|NT 5", {"lib.inc 2:8-13"}},
      {" PAINT cou|nt", {"lib.inc 1:1-6"}},
      {" LDA CO|LPF0", {}},  // built in
      {" LDA nowhe|re", {}},
      {" LD|A start", {}},
      {" NOP ; sta|rt", {}},
  };
  for (const auto& [line, definitions] : rows) {
    Editor editor(library);
    editor.open("main.asm", program + line);
    EXPECT_EQ(placeTexts(editor.request("textDocument/definition")), definitions) << line;
  }
}

TEST(Navigation, FindsUsesInAllPrograms) {
  Editor editor({{"lib.inc", "print: RTS\n"},
                 {"one.asm", " .org $2000\n .include \"lib.inc\"\n JSR print\n"},
                 {"two.asm", " .org $2000\nprint2: NOP\n JSR print\n .include \"lib.inc\"\n"}});
  const Places uses = {"one.asm 3:6-11", "two.asm 3:6-11"};
  editor.open("lib.inc", "pri|nt: RTS\n");
  EXPECT_EQ(placeTexts(editor.request("textDocument/references")), uses);
  editor.open("two.asm", " .org $2000\nprint2: NOP\n JSR pr|int\n .include \"lib.inc\"\n");
  EXPECT_EQ(placeTexts(editor.request("textDocument/references")), (Places{uses[1], uses[0]}));
}

// The code for the call into the bank is inserted after the line with the label, which that does not use.
TEST(Navigation, TakesNoLabelForAUse) {
  const std::string layout = "[memory]\nmain = $3000-$3FFF\n[banking]\nwindow = $4000-$7FFF\nregisters = $82, $83\n";
  const std::map<std::string, std::string> files = {{".kiln", "-L banks.lnk main.asm\n"}, {"banks.lnk", layout}};
  Editor editor(files);
  editor.open("main.asm", " .org $3000\n JSR draw\n>in|ner: RTS\n .bank gfx\ndraw: RTS\n");
  EXPECT_EQ(placeTexts(editor.request("textDocument/references")), Places());
  const Json withDefinition = {{"context", {{"includeDeclaration", true}}}};
  EXPECT_EQ(placeTexts(editor.request("textDocument/references", withDefinition)), Places{"main.asm 3:1-7"});
}

TEST(Navigation, FindsUsesInAllFiles) {
  Editor editor(library);
  editor.open("main.asm", " .include \"lib.inc\"\n\n .org $2000\n LDX #cou|nt\n PAINT count\n");
  const Json withDefinition = {{"context", {{"includeDeclaration", true}}}};
  EXPECT_EQ(placeTexts(editor.request("textDocument/references")), (Places{"main.asm 4:7-12", "main.asm 5:8-13"}));
  EXPECT_EQ(placeTexts(editor.request("textDocument/references", withDefinition)).size(), 3U);
}

TEST(Navigation, FollowsTheEditorsTextAndNotTheDisk) {
  Editor editor(library);
  editor.open("main.asm", " .include \"lib.inc\"\n\n .org $2000\n LDX #cou|nt\n");
  editor.open("lib.inc", "; a line more\ncount = 5\n");
  editor.open("main.asm", " .include \"lib.inc\"\n\n .org $2000\n LDX #cou|nt\n");
  EXPECT_EQ(placeTexts(editor.request("textDocument/definition")), Places{"lib.inc 2:1-6"});
  editor.close("lib.inc");
  EXPECT_EQ(placeTexts(editor.request("textDocument/definition")), Places{"lib.inc 1:1-6"});
}

}  // namespace
}  // namespace kiln::test
