// Other names for things, in all files, and when they are refused.
#include <gtest/gtest.h>

#include "support/editor.h"

namespace kiln::test {
namespace {

using Files = std::map<std::string, std::string>;

// Carries out the edits of an answer to "rename", from the last to the first.
Files edited(Files files, const Json& answer) {
  const std::string prefix = Editor::uriOf("");
  const Json changes = answer.value("changes", Json::object());
  for (const auto& [uri, edits] : changes.items()) {
    std::string& text = files.at(uri.substr(prefix.size()));
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
      const TextIndex index(text, Encoding::Utf16);
      const auto [start, end] = rangeFrom((*edit)["range"]);
      text.replace(index.offsetOf(start), index.offsetOf(end) - index.offsetOf(start), (*edit)["newText"]);
    }
  }
  return files;
}

// The file "main.asm" after a rename at the cursor; or why it was refused.
std::string renamed(const std::string& program, const std::string& name, const Files& others = {}) {
  Editor editor(others);
  editor.open("main.asm", program);
  const Json answer = editor.request("textDocument/rename", {{"newName", name}});
  if (answer.contains("message")) return "refused: " + answer["message"].get<std::string>();
  std::string text = program;
  text.erase(text.find('|'), 1);
  return edited({{"main.asm", text}}, answer)["main.asm"];
}

struct Row {
  std::string program;  // with the cursor
  std::string name;
  std::string result;
};

TEST(Rename, ChangesEveryUse) {
  const Row rows[] = {
      // Labels, in any letter case, in expressions and lists, and before their local labels.
      {" .org $2000\nma|in: JMP main\n JMP MAIN+1-main\n .word main,>main,main.x\n.x: JMP .x ; main\n", "init",
       " .org $2000\ninit: JMP init\n JMP init+1-init\n .word init,>init,init.x\n.x: JMP .x ; main\n"},
      {" .org $2000\n>far: RTS\nmain: JMP |far\n", "near", " .org $2000\n>near: RTS\nmain: JMP near\n"},
      // Local labels: those of another scope stay.
      {" .org $2000\na1:\n.loop: BNE .l|oop\n JMP a1.loop\nb1:\n.loop: BNE .loop\n", "next",
       " .org $2000\na1:\n.next: BNE .next\n JMP a1.next\nb1:\n.loop: BNE .loop\n"},
      {" .org $2000\na1:\n.loop: BNE .loop\n JMP a1.lo|op\n", "a1.next",
       " .org $2000\na1:\n.next: BNE .next\n JMP a1.next\n"},
      {" .org $2000\na1:\n|.loop: BNE .loop\n", ".next", " .org $2000\na1:\n.next: BNE .next\n"},
      {" .org $2000\na1:\n.loop: BNE .loop\n JMP |a1.loop\n", "b1",
       " .org $2000\nb1:\n.loop: BNE .loop\n JMP b1.loop\n"},
      // Assigned names; what looks like one in a number, a text or a comment is none.
      {"be|ef = 5\nsum = beef*2\n .org $2000\n LDA #beef ; beef\n .word $beef\n .string \"beef\"\n", "meat",
       "meat = 5\nsum = meat*2\n .org $2000\n LDA #meat ; beef\n .word $beef\n .string \"beef\"\n"},
      // Banks.
      {" .org $2000\n LDA #__bank_co|de\n .bank code\n NOP\n", "work",
       " .org $2000\n LDA #__bank_work\n .bank work\n NOP\n"},
      // A branch that becomes a jump.
      {" .org $2000\nstart:\n BEQ f|ar\n .space 200\nfar: JMP start\n", "end",
       " .org $2000\nstart:\n BEQ end\n .space 200\nend: JMP start\n"},
  };
  for (const auto& [program, name, result] : rows)
    EXPECT_EQ(renamed(program, name), result) << program;
}

TEST(Rename, FollowsMacros) {
  const std::string macro = ".macro PAINT colour,target\n LDA #colour+colour\n STA target\n\n";
  const std::string calls = "colour = 5\n .org $2000\nstart: PAINT colour,start\n PAINT 7,start\n";
  const Row rows[] = {
      // The macro, a parameter, and an argument with the parameter's name.
      {macro + "colour = 5\n .org $2000\nstart: PA|INT colour,start\n PAINT 7,start\n", "DRAW",
       ".macro DRAW colour,target\n LDA #colour+colour\n STA target\n\n"
       "colour = 5\n .org $2000\nstart: DRAW colour,start\n DRAW 7,start\n"},
      {".macro PAINT co|lour,target\n LDA #colour+colour\n STA target\n\n" + calls, "hue",
       ".macro PAINT hue,target\n LDA #hue+hue\n STA target\n\n" + calls},
      {macro + "co|lour = 5\n .org $2000\nstart: PAINT colour,start\n PAINT 7,start\n", "hue",
       macro + "hue = 5\n .org $2000\nstart: PAINT hue,start\n PAINT 7,start\n"},
      {macro + "colour = 5\n .org $2000\nst|art: PAINT colour,start\n PAINT 7,start\n", "begin",
       macro + "colour = 5\n .org $2000\nbegin: PAINT colour,begin\n PAINT 7,begin\n"},
      // A label in the body is a local one of both scopes.
      {".macro WAIT count\n LDX #count\n .w: DEX\n BNE .w\n\n .org $2000\na1: WAIT 5\n JMP .|w\nb1: WAIT 6\n JMP .w\n",
       "again",
       ".macro WAIT count\n LDX #count\n .again: DEX\n BNE .again\n\n"
       " .org $2000\na1: WAIT 5\n JMP .again\nb1: WAIT 6\n JMP .again\n"},
      // Nothing calls the macro: its words are not left behind.
      {".macro LATER p\n JSR start ; start\n .string \"start\"\n LDA #p\n\n .org $2000\nst|art: RTS\n", "begin",
       ".macro LATER p\n JSR begin ; start\n .string \"start\"\n LDA #p\n\n .org $2000\nbegin: RTS\n"},
  };
  for (const auto& [program, name, result] : rows)
    EXPECT_EQ(renamed(program, name), result) << program;
}

TEST(Rename, RefusesWhatChangesTheProgram) {
  const std::string program = "count = 5\nother = 5\n .org $2000\nst|art: LDA #count\n.x: JMP start\n.y: LDA other,X\n";
  const std::string local = " .org $2000\nstart: RTS\n.|x: RTS\n.y: RTS\n";
  const std::string bad = "refused: '";
  const std::string noName = "' is no name: letters, digits and '_', no digit first";
  const Row rows[] = {
      {program, "", bad + noName},
      {program, "1st", bad + "1st" + noName},
      {program, "a b", bad + "a b" + noName},
      {program, "a.b", bad + "a.b" + noName},
      {program, "lda", bad + "lda' is an instruction"},
      {program, "count", "refused: there is a 'count' already"},
      {program, "COLPF0", "refused: there is a 'COLPF0' already"},
      {local, "y", "refused: there is a 'start.y' already"},
      // "JMP a" is another mode than "JMP start".
      {program, "a", "refused: kiln-as would say: line 5: invalid addressing mode for JMP"},
      // A name that nothing defined gets a value.
      {" .org $2000\nst|art: LDA nowhere\n", "nowhere",
       "refused: kiln-as would no longer say: undefined symbol 'nowhere', using 0"},
      // The parameter "val" would replace a part of "val_at", also where nothing calls the macro.
      {".macro PUT va|lue,val_at\n LDA #value\n STA val_at\n\n .org $2000\n NOP\n", "val",
       "refused: a macro would not be the same"},
      // A parameter inside a word.
      {".macro PUT n|n\n label_nn: LDA #nn\n\n .org $2000\n NOP\n", "mm", "refused: a macro would not be the same"},
      // A name that a macro puts together.
      {".macro PUT n\n JMP lab_n\n\n .org $2000\nlab|_1: PUT 1\n", "lab_x",
       "refused: kiln-as would say: undefined symbol 'lab_1', using 0"},
      // A macro of the name exists.
      {".macro ON|E\n NOP\n\n.macro TWO\n RTS\n\n .org $2000\n ONE\n TWO\n", "TWO",
       "refused: the program would not be the same"},
      // What was a call is an instruction or nothing.
      {".macro O|NE\n NOP\n\n .org $2000\n ONE\n", "DEX", "refused: 'DEX' is an instruction"},
      {" .org $2000\n LDA COL|PF0\n", "x1", "refused: 'COLPF0' is not defined in the source alone"},
      {" .org $2000\n LDA| #5\n", "x1", "refused: there is no name here that the source defines"},
  };
  for (const auto& [source, name, result] : rows)
    EXPECT_EQ(renamed(source, name), result) << source << name;
}

TEST(Rename, ReachesAllProgramsOfAllFiles) {
  const Files files = {{"one.asm", " .include \"lib.inc\"\n .org $2000\n JSR print\n"},
                       {"two.asm", " .include \"lib.inc\"\n .org $3000\n JMP print\n"},
                       {"lib.inc", " .org $4000\nprint: RTS\n"},
                       {"alone.asm", " .org $2000\nprint: RTS\n"}};
  Editor editor(files);
  editor.open("one.asm", " .include \"lib.inc\"\n .org $2000\n JSR pr|int\n");
  Files expected = files;
  expected["one.asm"] = " .include \"lib.inc\"\n .org $2000\n JSR show\n";
  expected["two.asm"] = " .include \"lib.inc\"\n .org $3000\n JMP show\n";
  expected["lib.inc"] = " .org $4000\nshow: RTS\n";
  EXPECT_EQ(edited(files, editor.request("textDocument/rename", {{"newName", "show"}})), expected);
}

TEST(Rename, RefusesWhatBreaksAnotherProgram) {
  const Files files = {{"one.asm", " .include \"lib.inc\"\n .org $2000\n JSR print\n"},
                       {"two.asm", " .include \"lib.inc\"\n .org $3000\nshow: JMP print\n"},
                       {"lib.inc", " .org $4000\nprint: RTS\n"}};
  Editor editor(files);
  editor.open("one.asm", " .include \"lib.inc\"\n .org $2000\n JSR pr|int\n");
  EXPECT_EQ(editor.request("textDocument/rename", {{"newName", "show"}})["code"], -32803);
}

TEST(Rename, KeepsWhatTheCommandLineNames) {
  const Files files = {{".kiln", "-e begin main.asm\n"}};
  const std::string program = " .org $2000\n NOP\nbe|gin: RTS\n";
  EXPECT_EQ(renamed(program, "start", files), "refused: the program would not be the same");
  EXPECT_EQ(renamed(" .org $2000\nfi|rst: NOP\nbegin: RTS\n", "start", files), " .org $2000\nstart: NOP\nbegin: RTS\n");
}

TEST(Rename, WorksInAProgramWithMistakes) {
  EXPECT_EQ(renamed(" .org $2000\nst|art: JMP start\n LDA (5)\n", "begin"),
            " .org $2000\nbegin: JMP begin\n LDA (5)\n");
}

TEST(Rename, SaysWhatIsRenamed) {
  const Row rows[] = {
      {" .org $2000\na1:\n.loop: BNE .lo|op\n", "loop", "3:13-17"},
      {" .org $2000\na1:\n|.loop: BNE .loop\n", "loop", "3:2-6"},
      {" .org $2000\na1:\n.loop: JMP |a1.loop\n", "a1", "3:12-14"},
      {" .org $2000\n .bank co|de\n NOP\n", "code", "2:8-12"},
  };
  for (const auto& [program, placeholder, range] : rows) {
    Editor editor;
    editor.open("main.asm", program);
    const Json answer = editor.request("textDocument/prepareRename");
    EXPECT_EQ(answer.value("placeholder", ""), placeholder) << program;
    EXPECT_EQ(placeText(answer["range"]), range) << program;
  }
}

TEST(Rename, NamesTheVersionsOfDocuments) {
  Editor editor({}, {{"capabilities", {{"workspace", {{"workspaceEdit", {{"documentChanges", true}}}}}}}});
  editor.open("main.asm", " .org $2000\nst|art: RTS\n");
  const Json answer = editor.request("textDocument/rename", {{"newName", "begin"}});
  const Json document = {{"uri", Editor::uriOf("main.asm")}, {"version", 1}};
  EXPECT_EQ(answer["documentChanges"][0]["textDocument"], document);
  EXPECT_EQ(placeText(answer["documentChanges"][0]["edits"][0]["range"]), "2:1-6");
}

}  // namespace
}  // namespace kiln::test
