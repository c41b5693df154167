// What can be written at the cursor, and the parameters of a macro that is being called.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/editor.h"

namespace kiln::test {
namespace {

using Labels = std::vector<std::string>;

const std::map<std::string, std::string> files = {
    {"lib.inc", "count = 5\n"}, {"notes.txt", ""}, {"sub/deep.asm", ""}, {"sub/more.s", ""}};

const std::string program = R"( .include "lib.inc"
.macro PAINT colour,row
 LDA #colour

 .org $2000
start: LDX #count
.loop: DEX
 BNE .loop
other: INX
.near: RTS
 .bank main
)";

// The items for the last line of the program, in the order in which an editor shows them.
Json itemsFor(const std::string& line, bool hasSnippets = false) {
  Json parameters = Json::object();
  parameters["capabilities"]["textDocument"]["completion"]["completionItem"]["snippetSupport"] = hasSnippets;
  Editor editor(files, parameters);
  editor.open("main.asm", program + line);
  Json items = editor.request("textDocument/completion")["items"];
  std::sort(items.begin(), items.end(), [](const Json& a, const Json& b) { return a["sortText"] < b["sortText"]; });
  return items;
}

// Those of `labels` that are offered, in the order shown.
Labels offered(const Json& items, const Labels& labels) {
  Labels found;
  for (const Json& item : items) {
    const std::string label = item["label"];
    if (std::find(labels.begin(), labels.end(), label) != labels.end()) found.push_back(label);
  }
  return found;
}

Json itemNamed(const Json& items, const std::string& label) {
  for (const Json& item : items) {
    if (item["label"] == label) return item;
  }
  return nullptr;
}

TEST(Completion, OffersWhatFitsThePlace) {
  const Labels all = {".near", ".loop", "start",    "start.loop", "count", "COLPF0",
                      "LDA",   ".org",  ".include", "PAINT",      "main"};
  const Labels operands = {".near", "count", "start", "COLPF0"};
  const Labels statements = {"PAINT", "LDA", ".include", ".org"};
  const std::pair<std::string, Labels> rows[] = {
      {" |", statements},
      {" LD|", statements},
      {" .o|", statements},
      {"here: |", {"PAINT", "LDA", ".org"}},
      {" NOP : |", {"LDA", ".org"}},  // calls have their line to themselves
      {" LDA |", operands},
      {" LDA #|", operands},
      {" LDA #<|", operands},
      {" LDA (|", operands},
      {" LDA cou|,X", operands},
      {" NOP : LDA |", operands},
      {" LDA start.|", {".near", "count", "start", "start.loop", "COLPF0"}},
      {" .byte |", {"count", "start", "start.loop", "COLPF0"}},  // local names get no scope in lists
      {"name = |", {"count", "start", "start.loop", "COLPF0"}},
      {" PAINT |", operands},
      {" .bank |", {"main"}},
      {" .bank ma|", {"main"}},
      {" NOP |", {}},
      {" .spill_point |", {}},
      {" LDA $|", {}},
      {" LDA 1|", {}},
      {" unknown |", {}},
      {" LDA #1 ; st|", {}},
      {" .string \"st|", {}},
      {".macro |", {}},
  };
  for (const auto& [line, labels] : rows)
    EXPECT_EQ(offered(itemsFor(line), all), labels) << line;
}

TEST(Completion, ReplacesTheWordAtTheCursor) {
  const Json local = itemNamed(itemsFor(" BNE .n|ow"), ".near");
  EXPECT_EQ(local["textEdit"]["newText"], ".near");
  EXPECT_EQ(placeText(local["textEdit"]["range"]), "12:6-10");
  const Json directive = itemNamed(itemsFor(" .by|"), ".byte");
  EXPECT_EQ(directive["textEdit"]["newText"], ".byte ");
  EXPECT_EQ(itemNamed(itemsFor(" .by| 5"), ".byte")["textEdit"]["newText"], ".byte");
}

TEST(Completion, ShowsAddresses) {
  const Json items = itemsFor(" LDA |0");
  EXPECT_EQ(itemNamed(items, "COLPF0")["detail"], "$D016");
  EXPECT_EQ(itemNamed(items, "other")["detail"], "$2005");
  EXPECT_EQ(itemNamed(items, "count")["detail"], "$05");
}

TEST(Completion, FillsInMacros) {
  EXPECT_EQ(itemNamed(itemsFor(" |", true), "PAINT")["textEdit"]["newText"], "PAINT ${1:colour},${2:row}");
  EXPECT_EQ(itemNamed(itemsFor(" |"), "PAINT")["textEdit"]["newText"], "PAINT ");
}

TEST(Completion, FollowsTheDocumentsLetterCase) {
  Editor editor;
  editor.open("main.asm", " .org $2000\n lda #1\n nop\n RTS\n |\n");
  const Json items = editor.request("textDocument/completion")["items"];
  EXPECT_EQ(offered(items, {"lda", "LDA"}), Labels{"lda"});
}

TEST(Completion, KnowsTheMacroAround) {
  Editor editor;
  editor.open("main.asm", ".macro M value\n LDA #|\n\n .org $2000\nstart: RTS\n");
  EXPECT_EQ(offered(editor.request("textDocument/completion")["items"], {"value", "start"}),
            (Labels{"value", "start"}));
  editor.change("main.asm", ".macro M value\n |\n\n .org $2000\nstart: RTS\n");
  EXPECT_EQ(offered(editor.request("textDocument/completion")["items"], {"M", "NOP"}), Labels{"NOP"});
}

TEST(Completion, ListsFilesToInclude) {
  const auto labels = [](const Json& items) {
    Labels list;
    for (const Json& item : items)
      list.push_back(item["label"]);
    return list;
  };
  EXPECT_EQ(labels(itemsFor(" .include \"|")), (Labels{"lib.inc", "sub/"}));
  const Json below = itemsFor(" .include \"sub/de|\"");
  EXPECT_EQ(labels(below), (Labels{"deep.asm", "more.s"}));
  EXPECT_EQ(placeText(below[0]["textEdit"]["range"]), "12:16-18");
  EXPECT_EQ(labels(itemsFor(" .include \"/|")), Labels{});
}

TEST(Completion, CutsLongLists) {
  std::string text = " .org $2000\n";
  for (int i = 0; i < 2500; ++i)
    text += "label" + std::to_string(i) + ":\n";
  Editor editor;
  editor.open("main.asm", text + " JMP |");
  Json list = editor.request("textDocument/completion");
  EXPECT_EQ(list["isIncomplete"], true);
  EXPECT_EQ(list["items"].size(), 2000U);
  editor.change("main.asm", text + " JMP label249|");
  list = editor.request("textDocument/completion");
  EXPECT_EQ(list["isIncomplete"], true);
  EXPECT_EQ(list["items"].size(), 11U);  // label249, label2490 to label2499
}

// "LABEL [PARAMETER]", the active parameter in brackets.
std::string signatureFor(const std::string& line) {
  Editor editor(files);
  editor.open("main.asm", program + line);
  const Json help = editor.request("textDocument/signatureHelp");
  if (help.is_null()) return "";
  const Json& signature = help["signatures"][0];
  std::string text = signature["label"];
  if (!signature.contains("parameters")) return text;
  const Json& range = signature["parameters"][help["activeParameter"].get<size_t>()]["label"];
  return text + " [" + text.substr(range[0], range[1].get<size_t>() - range[0].get<size_t>()) + "]";
}

TEST(SignatureHelp, ShowsTheParameters) {
  const std::pair<std::string, std::string> rows[] = {
      {" PAINT |", "PAINT colour, row [colour]"},
      {" PAINT 1|", "PAINT colour, row [colour]"},
      {"here: PAINT (1,|", "PAINT colour, row [row]"},
      {" PAINT 1|,2", "PAINT colour, row [colour]"},
      {" PAINT 1,2,|", "PAINT colour, row"},  // an argument too many
      {" PAI|NT 1", ""},
      {" PAINT| 1", ""},
      {" PAINT 1 ; a, b|", ""},
      {" LDA |", ""},
      {" NOP : NOP : PAINT |", ""},  // no call
  };
  for (const auto& [line, signature] : rows)
    EXPECT_EQ(signatureFor(line), signature) << line;
}

}  // namespace
}  // namespace kiln::test
