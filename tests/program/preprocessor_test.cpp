// Macros and includes: what lines a source becomes.
#include "source/preprocessor.h"

#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {
namespace {

struct Row {
  std::string source;
  std::string lines;  // that it becomes, with "\n" between them
  std::vector<std::string> errors = {};
};

void expectLines(const MemoryHost& host, const std::vector<Row>& rows, const std::string& path = "src/main.asm") {
  for (const auto& [source, lines, errors] : rows) {
    SCOPED_TRACE(source.substr(0, 2000));
    TextStore store;
    MessageList messages;
    const SourceLines found =
        Preprocessor(host, {"inc", "lib"}, store, messages).run(store.own(std::string(source)), path);
    std::string text;
    LineReader reader(found.pieces());
    for (std::string_view line; reader.next(line);)
      text.append(line).append("\n");
    EXPECT_EQ(text.substr(0, text.rfind('\n')), lines);
    EXPECT_EQ(texts(messages), errors);
  }
}

const std::string missing = "Cannot find include file ";

// clang-format off
TEST(Macros, AreReplacedByTheIndentedLinesAfterTheirDefinition) {
  expectLines({}, {
      {"\na\r\n\n",                                             "\na\r\n\n"},
      {".macro E\n\n  NOP\nE\nX: E",                            "\n  NOP\nX:"},
      {".macro PUSHW w\n  LDA w\n\tPHA ; w\nRTS\n PUSHW $12\n", "RTS\n  LDA $12\n\tPHA ; $12\n"},
      {"M 1\n.macro M P\n a P\n.macro M P\n b P\nM 2",          " b 1\n b 2"},
      {".macro M\n .include a\n .MACRO N;c\n\tNOP\nM\nN",       " .include a\n\tNOP"},
      {".Macro  O\tP , Q\n\tP Q\nO 1,2",                        "\t1 2"},
      {".macro\n A\n.macro ;x\n B\n.macro\tM\n.macros D",       ".macro\n A\n.macro ;x\n B\n.macro\tM\n.macros D"},
      {".macro M\r\n A\r\n\r\nM\r\nM",                          "\r\n A\r\nM"},
  });
}

TEST(Macros, HaveTheirParametersReplacedWhereverTheyStand) {
  expectLines({}, {
      {".macro M P,Q\n .byte P,Q\nM Q+1,2",                 " .byte 2+1,2"},
      {".macro M X,Y\n INX ; XYx\nM A\nM A,B,C\nM",         " INA ; AYx\n INA ; ABx\n INX ; XYx"},
      {".macro M P, ,Q ,\n P-Q-,\nM 1,,3\nM ,2\n M\t1 2  ", " 1--,\n -2-,\n 1 2-Q-,"},
      {".macro M AA\n AAAAA\nM A\nM AAA",                   " AAA\n AAAAAAA"},
      {".macro M P,Q\n P.Q\nM 1 ; 2,3\nM \";,(2\"",         " 1.Q\n \";.(2\""},
  });
}

TEST(Macros, AreCalledByTheFirstWordOfALineOrByTheFirstAfterItsLabel) {
  const std::string macro = ".macro M P\n P N\n", label = "abcdefghijklmnopqrs";
  expectLines({}, {
      {macro + "m\nM\nMx\nx M\nM:\n\"M\" M\n  M\t;\n", "m\n P N\nMx\nx M\nM:\n\"M\" M\n P N\n"},
      {macro + "a: M 1\n.b : M\n>c: M\n _:M 2;",       "a:\n 1 N\n.b :\n P N\n>c:\n P N\n_:\n 2 N"},
      {macro + "1: M\n>: M\na: b: M\nM a:b",           "1: M\n>: M\na: b: M\nM a:b"},
      {macro + "a:M b:c\n  " + label + ": M",          "a:\n b:c N\n" + label + ":\n P N"},
      // A label of 20 characters is too long.
      {macro + "M " + label + ":b\n" + label + "t: M", " " + label + ":b N\n" + label + "t: M"},
  });
}

TEST(Macros, AreReplacedOnceInEachFileThatTheirCallGoesThrough) {
  MemoryHost host;
  host.files = {
      {"inc/a", "A"}, {"inc/b", "B\n.include a\nA"}, {"inc/macros", ".macro Z\n z\n.macro Y\n y\nZ"},
      {"inc/z", "Z"}, {"inc/y", ".include z\nY"},
  };
  expectLines(host, {
      {".macro A\n B\n.macro B\n NOP\nA\nB",                                    " B\n NOP"},
      {"Z\n.include z\nZ\n.macro Z\n NOP",                                      " NOP\n NOP\n NOP"},
      {".macro A\n B\n.macro B\n C\n.macro C\n NOP\nA\n.include a\n.include b", " B\n C\n NOP\n NOP\n C"},
      {".macro Q\n q\n.include y\nQ\n.include macros\nY",                       " z\n y\n q\n z\n y"},
      {".macro A\n 1\n.include a\n.macro A\n 2\nA",                             " 1\n 2"},
      {".macro A\n 1\nA\n.include z",                                           " 1\nZ"},
  });
}

TEST(Includes, AreFoundAroundThePlacesWhereALargeFileIsCutForTheSearch) {
  MemoryHost host;
  host.files = {{"inc/b", "B"}};
  const size_t window = 65536;
  for (size_t size = window - 3; size <= window + 3; ++size) {
    const std::string oneLine = std::string(size, ';') + "\n", emptyLines(size, '\n');
    expectLines(host, {
        {oneLine + ".include b\nNOP",            oneLine + "B\nNOP"},
        {emptyLines + ".include b\nNOP",         emptyLines + "B\nNOP"},
        {emptyLines + ".word 1\n \t.include b", emptyLines + ".word 1\nB"},
    });
  }
}

TEST(Includes, AreReplacedByTheLinesOfTheFirstFileThatIsSoundText) {
  MemoryHost host;
  host.directories = {"src/folder"};
  host.unreadable = {"inc/c", "src/locked"};
  host.files = {
      {"src/a",       "A1\n\n"},        {"inc/a",     "A2"},       {"//a",         "A0"},
      {"b",           "B0"},                {"inc/b", "B2"},       {"lib/b",       "B3"},
      {"src/c",       "\xED\xA0\x80"},  {"inc/c",     "C2"},       {"lib/c",       "C3"},
      {"sub/n/e",     "E1"},          {"inc/e",       "E3"},       {"inc/sub/n/e", "E2"},
      {"src/locked",  "L"},        {"inc/\"b>",       "Q1"},    {"inc/<b>",        "Q2"},
      {"inc/sub/n/d", ".include e\n.include b"},
      {"src/w",       "1\n.include w"}, {"w",         "0"},
  };
  expectLines(host, {
      {"1\n.include \"a\"\n2",                            "1\nA1\n\n\n2"},
      {"  .INCLUDE <b> ; c",                              "B2"},
      {".include c",                                      "C3"},
      {".include \"sub/n/d\"",                            "E1\nB2"},
      {".include w\n.include w",                          "1\n0\n1\n0"},
      {".include \v\"b\"\f\r\n.include\tb\n.include\t b", "B2\n.include\tb\n.include\t b"},
      {".includes b\n.include\n.include ;b",              ".includes b\n.include\n.include ;b"},
      {".include \"b>\n.include \"<b>\"",                 "Q1\nQ2"},
      {"x\n.include \"\"\n.include \"",                   "x", {missing + "''", missing + "''"}},
      {"x\n.include folder\n.include locked",             "x", {missing + "'folder'", missing + "'locked'"}},
  });
  expectLines(host, {{".include a\n.include b", "A2\nB0"}}, "main.asm");
  expectLines(host, {{".include a", "A0"}}, "/main.asm");
}

TEST(Includes, AreGivenUpWhenTheyNeverEnd) {
  const std::string endless = ": it includes itself";
  MemoryHost host;
  host.files = {
      {"inc/p", ".include q\np"}, {"inc/t", "X\n.include u"}, {"inc/s", "x\n.include s\ny"},
      {"inc/q", ".include p\nq"}, {"inc/u", "X\n.include u"},
  };
  expectLines(host, {
      {".include s", "x\ny", {"Cannot include 's'" + endless}},
      {".include p", "q\np", {"Cannot include 'p'" + endless}},
      {".include t", "X\nX", {"Cannot include 'u'" + endless}},
  });
}
// clang-format on

TEST(Includes, MayNotBeTooLarge) {
  const std::string large = "The source is too large: ";
  std::string calls = ".macro M\n " + std::string(1 << 20, 'x') + "\n\n";
  for (int i = 0; i < 1024; ++i)
    calls += "M\n";
  expectLines({}, {{calls, "", {large + "its macros and includes make more than 1 GB of it"}}});
  MemoryHost host;
  for (char c = 'a'; c < 'x'; ++c)
    host.files[std::string("lib/") + c] = std::string(".include ") + char(c + 1) + "\n.include " + char(c + 1);
  host.files["lib/x"] = "";
  expectLines(host, {{".include a", "", {large + "it includes more than 2,097,152 files"}}});
}

}  // namespace
}  // namespace kiln::test
