// What can be done about findings.
#include <gtest/gtest.h>

#include "base/format.h"
#include "support/editor.h"

namespace kiln::test {
namespace {

using Titles = std::vector<std::string>;

const std::string head = " .org $2000\nstart: LDX #1\n";

struct Actions {
  Json list;
  std::string text;

  Titles titles() const {
    Titles all;
    for (const Json& action : list)
      all.push_back(action["title"]);
    return all;
  }
  // The lines after `head` once the action is done.
  std::string after(size_t action) const {
    return applied(text, list[action]["edit"]["changes"][Editor::uriOf("main.asm")]).substr(head.size());
  }
};

// For the third line of a program, which is the first of `lines`.
Actions actionsFor(const std::string& lines, const Json& only = nullptr) {
  Editor editor;
  editor.open("main.asm", "|" + head + lines);
  Json context = {{"diagnostics", Json::array()}};
  if (!only.is_null()) context["only"] = only;
  const Json list =
      editor.request("textDocument/codeAction", {{"range", toJson(Range{{2, 0}, {2, 0}})}, {"context", context}});
  return {list, head + lines};
}

struct Row {
  std::string line;
  std::string title;
  std::string fixed;
};

TEST(CodeActions, FixWhatIsFound) {
  const Row rows[] = {
      {" .byte\t5", "Replace a tab with a space", " .byte 5"},
      {"loop\n JMP loop", "Insert ':'", "loop:\n JMP loop"},
      {" LDX #-5", "Replace '-5' with '0-5'", " LDX #0-5"},
      {" LDX #'A'", "Replace 'A' with '65'", " LDX #65"},
      {" .db 5", "Replace '.db' with '.byte'", " .byte 5"},
      {" JMP strat", "Replace 'strat' with 'start'", " JMP start"},
      {" ldz #1", "Replace 'ldz' with 'ldx'", " ldx #1"},
      {" .bite 5", "Replace '.bite' with '.byte'", " .byte 5"},
      {" LDX #0x10", "Replace '0x10' with '$10'", " LDX #$10"},
      {" LDA#1", "Insert a space", " LDA #1"},
  };
  for (const auto& [line, title, fixed] : rows) {
    const Actions actions = actionsFor(line, Json::array({"quickfix"}));
    ASSERT_FALSE(actions.list.empty()) << line;
    EXPECT_EQ(actions.titles()[0], title) << line;
    EXPECT_EQ(actions.after(0), fixed) << line;
    EXPECT_EQ(actions.list[0]["diagnostics"].size(), 1U) << line;
  }
}

TEST(CodeActions, AreWhatEditorsExpect) {
  const Actions several = actionsFor(" LDZ #1");
  EXPECT_EQ(several.titles(), (Titles{"Replace 'LDZ' with 'LDX'", "Replace 'LDZ' with 'LDY'",
                                      "Replace 'LDZ' with 'LDA'", "Allow 'vanished' in this line"}));
  EXPECT_FALSE(several.list[0].contains("isPreferred"));
  EXPECT_EQ(several.list[0]["diagnostics"][0]["code"], "vanished");
  const Actions one = actionsFor(" LDX #-5");
  EXPECT_EQ(one.list[0]["isPreferred"], true);
  EXPECT_EQ(one.list[0]["kind"], "quickfix");
  EXPECT_EQ(actionsFor(" NOP\n LDX #-5").titles(), Titles{});  // another line
  EXPECT_EQ(actionsFor(" LDX #-5", Json::array({"refactor"})).titles(), Titles{});
}

TEST(CodeActions, AllowAFinding) {
  const std::pair<std::string, std::string> rows[] = {
      {" .byte 300", " .byte 300 ; check: allow cut-value"},
      {" .byte 300 ; big", " .byte 300 ; big ; check: allow cut-value"},
      {" .byte 300 ; check: allow unused", " .byte 300 ; check: allow unused, cut-value"},
  };
  for (const auto& [line, allowed] : rows) {
    const Actions actions = actionsFor(line);
    ASSERT_EQ(actions.titles().back(), "Allow 'cut-value' in this line") << line;
    const std::string after = actions.after(actions.list.size() - 1);
    EXPECT_EQ(after, allowed);
    EXPECT_EQ(actionsFor(after).titles(), Titles{}) << line;
  }
}

TEST(CodeActions, FixAll) {
  const Json only = Json::array({"source"});
  EXPECT_EQ(actionsFor(" LDX #-5\n NOP\n .db 5", only).after(0), " LDX #0-5\n NOP\n .byte 5");
  EXPECT_EQ(actionsFor(" LDX #1", only).titles(), Titles{});
  EXPECT_EQ(actionsFor(" LDX #-5\n .db 5").titles().back(), "Fix all in this file");
}

TEST(CodeActions, FixTheBodyOfAMacro) {
  const std::string text = ".macro M v\n .byte\tv\n STP #v\n\n .org $2000\n M 5\n";
  Editor editor;
  editor.open("main.asm", "|" + text);
  const Json list = editor.request("textDocument/codeAction", {{"range", toJson(Range{{1, 0}, {1, 0}})}});
  ASSERT_FALSE(list.empty());
  EXPECT_EQ(placeText(list[0]["edit"]["changes"][Editor::uriOf("main.asm")][0]["range"]), "2:7-8");
}

TEST(CodeActions, ConvertTexts) {
  const Json only = Json::array({"refactor"});
  const Actions actions = actionsFor("text: .string \"Hi _!\" ; shown", only);
  EXPECT_EQ(actions.titles(), Titles{"Convert 'Hi _!' to Atari screen codes"});
  EXPECT_EQ(actions.after(0), "text: .byte 40,105,0,63,1,0 ; shown");
  EXPECT_EQ(actionsFor(" .string \"\xC3\xA4\"", only).titles(), Titles{});
  EXPECT_EQ(actionsFor(" .byte 5", only).titles(), Titles{});
}

}  // namespace
}  // namespace kiln::test
