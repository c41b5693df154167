// Macros and includes: what lines a source becomes.
#include "source/preprocessor.h"

#include <gtest/gtest.h>

#include "support/program.h"

namespace kiln::test {
namespace {

// Each row has a source and, behind " -> ", its lines and then the errors.
void expectLines(MemoryHost& host, const std::vector<std::string>& rows, const std::string& path = "src/main.asm") {
  const std::vector<std::string> directories = {"inc", "lib"};
  for (const std::string& row : rows) {
    const std::string source = row.substr(0, row.find(" -> "));
    TextStore texts;
    MessageList errors;
    Preprocessor preprocessor(host, directories, texts, errors);
    std::string found = source + " -> ";
    const SourceLines lines = preprocessor.run(texts.own(std::string(source)), path);
    LineReader reader(lines.pieces());
    for (std::string_view line; reader.next(line);)
      found.append(line).append("\n");
    for (size_t i = 0; i < errors.size(); ++i)
      found.append(errors[i]).append("\n");
    EXPECT_EQ(found, row + "\n");
  }
}

// clang-format off
TEST(Sources, HaveMacrosReplacedByTheIndentedLinesBehindTheirDefinition) {
  MemoryHost host;
  const std::string label = "abcdefghijklmnopqrs", head = ".macro M P\n P N\n";
  expectLines(host, {
      " -> ", "\na\r\n\n -> \na\r\n\n", "M\n.macro M\n A ->  A", ".macro E\n\n  NOP\nE\nX: E -> \n  NOP\nX:",
      ".macro PUSHW addr\n  LDA addr\n\tPHA ; addr\nRTS ; c\n PUSHW $1234\n -> RTS ; c\n  LDA $1234\n\tPHA ; $1234\n",
      "M 1\n.macro M P\n a P\n.macro M P\n b P\nM 2 ->  b 1\n b 2", ".macro M\n A\n.macro \n B\nM -> .macro \n B\n A",
      ".macro M\n .include a\n .MACRO N;c\n\tNOP\n.Macro  O\tP , Q\n\tP Q\nM\nN\nO 1,2 ->  .include a\n\tNOP\n\t1 2",
      ".macro\n A\n.macro ;x\n B\n.macro\tM\n.macros D -> .macro\n A\n.macro ;x\n B\n.macro\tM\n.macros D",
      ".macro M\r\n A\r\n\r\nM\r\nM -> \r\n A\r\nM", ".macro M P,Q\n .byte P,Q\nM Q+1,2 ->  .byte 2+1,2",
      ".macro M X,Y\n INX ; XYx\nM A\nM A,B,C\nM ->  INA ; AYx\n INA ; ABx\n INX ; XYx",
      ".macro M P, ,Q ,\n P-Q-,\nM 1,,3\nM ,2\n M\t1 2  ->  1--,\n -2-,\n 1 2-Q-,",
      ".macro M AA\n AAAAA\nM A\nM AAA ->  AAA\n AAAAAAA", ".macro M P,Q\n P.Q\nM 1 ; 2,3\nM \";,(2\" ->  1.Q\n \";.(2\"",
      head + "m\nM\nMx\nx M\nM:\n\"M\" M\n  M\t;\n -> m\n P N\nMx\nx M\nM:\n\"M\" M\n P N\n",
      head + "a: M 1\n.b : M\n>c: M\n _:M 2;\n1: M\n>: M -> a:\n 1 N\n.b :\n P N\n>c:\n P N\n_:\n 2 N\n1: M\n>: M",
      head + "a: b: M\nM a:b\nM " + label + ":b\na:M b:c -> a: b: M\nM a:b\n " + label + ":b N\na:\n b:c N",
      head + "\n  " + label + ": M\n" + label + "t: M -> \n" + label + ":\n P N\n" + label + "t: M"});
}

TEST(Sources, HaveIncludesReplacedByTheLinesOfTheFirstFileThatIsSoundText) {
  MemoryHost host;
  host.directories = {"src/folder"};
  host.unreadable = {"inc/c", "src/locked"};
  host.files = {
      {"src/a", "A1\n\n"}, {"inc/a", "A2"}, {"b", "B0"}, {"inc/b", "B2"}, {"lib/b", "B3"}, {"src/c", "\xED\xA0\x80"},
      {"inc/c", "C2"}, {"lib/c", "C3"}, {"inc/sub/n/d", ".include e\n.include b"}, {"sub/n/e", "E1"}, {"inc/e", "E3"},
      {"inc/sub/n/e", "E2"}, {"//a", "A0"}, {"src/locked", "L"}, {"inc/\"b>", "Q1"}, {"inc/<b>", "Q2"},
      {"inc/s", "x\n.include s\ny"}, {"inc/p", ".include q\np"}, {"inc/q", ".include p\nq"}, {"src/w", "1\n.include w"},
      {"w", "0"}, {"inc/t", "X\n.include u"}, {"inc/u", "X\n.include u"},
      {"inc/i", "A"}, {"inc/j", "B\n.include i\nA"}, {"inc/z", "Z"}, {"inc/k", ".include z\nY"},
      {"inc/m", ".macro Z\n z\n.macro Y\n y\nZ"}, {"inc/d", ".macro D\n d"}};
  const std::string missing = "Cannot find include file ", endless = ": it includes itself";
  expectLines(host, {
      "1\n.include \"a\"\n2\n  .INCLUDE <b> ; c\n.include c\n.include \"sub/n/d\" -> 1\nA1\n\n\n2\nB2\nC3\nE1\nB2",
      ".include\tb\n.includes b\n.include\n.include ;b -> .include\tb\n.includes b\n.include\n.include ;b",
      ".include \v\"b\"\f\r\n.include\t b\n.include \"b>\n.include \"<b>\" -> B2\n.include\t b\nQ1\nQ2",
      ".include \" -> " + missing + "''", ".include \"\"\nx\n.include folder\n.include locked -> x\n" + missing + "''\n" + missing + "'folder'\n" +
          missing + "'locked'", ".include w\n.include w -> 1\n0\n1\n0", ".include t -> X\nX\nCannot include 'u'" + endless,
      ".include s\n.include p -> x\ny\nq\np\nCannot include 's'" + endless + "\nCannot include 'p'" + endless});
  expectLines(host, {".include a\n.include b -> A2\nB0"}, "main.asm");
  expectLines(host, {".include a -> A0"}, "/main.asm");
  std::string lines = host.files["inc/0"] = "end";
  for (int i = 1; i <= 10000; lines += "\n " + std::to_string(i++))
    host.files["inc/" + std::to_string(i)] = ".include " + std::to_string(i - 1) + "\nM " + std::to_string(i);
  expectLines(host, {".macro M P\n P\n.include 10000 -> " + lines});
  // What would never end is given up: 1,024 times a megabyte.
  std::string growing = ".macro M\n " + std::string(1 << 20, 'x') + "\n\n";
  for (int i = 0; i < 1024; ++i)
    growing += "M\n";
  expectLines(host, {growing + " -> The source is too large: its macros and includes make more than 1 GB of it"});
  for (int i = 0; i < 40; ++i)
    host.files["lib/twice" + std::to_string(i)] = ".include twice" + std::to_string(i + 1) + "\n.include twice" + std::to_string(i + 1);
  host.files["lib/twice40"] = "";
  expectLines(host, {".include twice0 -> The source is too large: it includes more than 2,097,152 files"});
  // A line is looked at once in each file that it goes through.
  expectLines(host, {
      ".macro A\n B\n.macro B\n NOP\nA\nB ->  B\n NOP", "Z\n.include z\nZ\n.macro Z\n NOP ->  NOP\n NOP\n NOP",
      ".macro A\n B\n.macro B\n C\n.macro C\n NOP\nA\n.include i\n.include j ->  B\n C\n NOP\n NOP\n C",
      ".macro Q\n q\n.include k\nQ\n.include m\nZ\nY ->  z\n y\n q\n z\n z\n y", ".include d\n x\nD ->  x\n d",
      ".macro A\n 1\n.include i\n.macro A\n 2\nA ->  1\n 2", ".macro A\n 1\nA\n.include z ->  1\nZ"});
}
// clang-format on

}  // namespace
}  // namespace kiln::test
