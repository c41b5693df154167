// The command line, and what a run makes of it.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/format.h"
#include "driver/home.h"
#include "driver/settings.h"
#include "support/program.h"

namespace kiln::test {
namespace {

const std::string usage = R"(kiln-as — 6502 assembler
Usage: kiln-as [options] <input.asm ...>
Options:
  -D name[=value]  Define a symbol
  -f <which>       Output format: xex (default), prg
  -I path          Add include search path
  -o path          Output file (default: input stem + .xex)
  -l path          Output listing file
  -b               Enable banked output mode (for tarn bank-switched targets)
  --split-bank     pell Option B: segments at $6000-$7FFF get $83-only preloads,
                   segments at $4000-$5FFF get $82-only preloads. Requires -b.
  --data-window START:END  Data-window bounds for --split-bank (hex, e.g. $6000:$7FFF).
  -L <layout.lnk>  Read banking windows + bank registers from a layout file
                   (the same .lnk the tarn driver uses). Enables banked output
                   when the layout declares a [banking] section.
  -s path          Load platform symbol file (.sym)
  -v, --version    Print version
  -V               Verbose (show all warnings)
  -h               Show this help

The output format is auto-detected from the -o extension (.prg = PRG,
anything else = XEX), or set explicitly with -f.
)";

using Pairs = std::vector<std::pair<std::string, std::string>>;

MemoryHost hostWithSources() {
  MemoryHost host;
  host.directories = {"folder"};
  host.unreadable = {"locked"};
  host.unwritable = {"full"};
  host.files = {
      // clang-format off
      {"nop",       " .org $2000\n NOP"},        {"lines",   ".macro M\n a\n b\n.include \"i\"\nM\nx:\nx:"},
      {"bad",       "\xFF"},                      {"twice",   "X:\n__bank_code_reg:\n__bank_data_reg:"},
      {"huge",      " NOP\n .space $80000001"},  {"missing", ".include no\na = y\nb = z\nx:\nx:\n NOP #1"},
      {"lax",       "\n;\xED\xA0\x80"},          {"bad.lnk", "main=1"},
      {"s/i",       "NOP\n\n"},
      {"names",     " .byte A,B,C,D,E,F,G,ata,RTCLOK,__bank_code_reg,__bank_data_reg,H"},
      {"s/g.a.asm", " .org $20\n NOP\ny=$77\nbig=$12345\n .org $5000\n .org $4000\n.include \"i\""},
      // clang-format on
  };
  for (const char* empty : {"t/i", "locked", ".asm", "", "/"})
    host.files[empty] = "";
  return host;
}

// The run ends with these messages, and makes this one file when it succeeds.
void expectOutcome(const std::string& line, int status, const std::string& error, const std::string& path = "",
                   const std::string& image = "") {
  MemoryHost host = hostWithSources();
  EXPECT_EQ(runLine(host, line), status) << line;
  EXPECT_EQ(host.standardError, error);
  EXPECT_EQ(host.standardOutput, "");
  std::map<std::string, std::string> files;
  if (!path.empty()) files[path] = image;
  EXPECT_EQ(host.written, files) << line;
}

TEST(Driver, ShowsItsUsageAndItsVersion) {
  expectOutcome("none -h -x", 0, usage);
  expectOutcome("-V -o x -D", 1, say("no input files") + usage);
  MemoryHost host;
  EXPECT_EQ(runLine(host, "none -v -x") + runLine(host, "--version"), 0);
  EXPECT_EQ(host.standardOutput + host.standardError, "kiln-as 0.61\nkiln-as 0.61\n");
}

TEST(Driver, ChoosesTheFormatByTheOptionOrTheExtension) {
  const std::string prg = bytes("00 20 EA"), flat = xex({{0x2000, "EA"}}, 0x2000);
  const struct {
    std::string line, path, image;
  } rows[] = {
      // clang-format off
      {"-f PRG nop",                   "nop.prg", prg},
      {"-o A.PRG nop",                 "A.PRG",   prg},
      {"-o a.bin nop",                 "a.bin",   flat},
      {"-f xex -o a.prg nop",          "a.prg",   flat},
      {"-f  -o a.prg nop",             "a.prg",   flat},
      {"-f other -l full -b nop",      "nop.xex", flat},
      {"-f xex -f prg -o b -o -h nop", "-h",      prg},
      // clang-format on
  };
  for (const auto& [line, path, image] : rows)
    expectOutcome(line, 0, say("assembled 'nop' -> '" + path + "' (1 bytes, 1 segment)"), path, image);
}

TEST(Driver, RunsTheProgramAtTheEntryOrAtTheFirstSegment) {
  const std::pair<std::string, unsigned> rows[] = {
      // clang-format off
      {"-e big s/g.a.asm",      0x2345},
      {"-e Y s/g.a.asm .asm",   0x20},
      {"-e  s/g.a.asm",         0x20},
      // -D without a name defines the empty one.
      {"-e y -e  s/g.a.asm -D", 1},
      // clang-format on
  };
  for (const auto& [line, address] : rows)
    expectOutcome(line, 0, say("assembled 's/g.a.asm' -> 's/g.a.xex' (2 bytes, 3 segments)"), "s/g.a.xex",
                  xex({{0x20, "EA"}, {0x4000, "EA"}}, address));
}

TEST(Driver, DefinesNames) {
  expectOutcome(
      "-DA -D B -D C=7 -DD=$10 -DE=1=2 -DF= -D G=%11 -DC=8 -Data -DRTCLOK=9 -code-reg 82 -data-reg 83 "
      "-D__bank_data_reg=4 names",
      0, say("warning: undefined symbol 'H', using 0") + say("assembled 'names' -> 'names.xex' (12 bytes, 1 segment)"),
      "names.xex", xex({{0, "01 01 08 10 00 00 03 01 09 82 04 00"}}, 0));
}

TEST(Driver, SaysWhyItFails) {
  const std::string next = "\nkiln-as: ";
  const Pairs rows = {
      // clang-format off
      {"-o full -l a nop",      "error: cannot write 'full'"},
      {"-o  nop",               "error: cannot write ''"},
      {" nop",                  "error: cannot write '(null)'"},
      {"-o nop nop",            "error: cannot write 'nop'"},
      {"-l nop nop",            "error: cannot write 'nop'"},
      {"huge",                  "error: out of memory"},
      {"-I s -I t lines",       "error: lines:7: duplicate label 'x'"},
      {"folder",                "cannot read 'folder': The file “folder” couldn’t be opened."},
      {"locked",
       "cannot read 'locked': The file “locked” couldn’t be opened because you don’t have permission to view it."},
      {"nop bad -L no",
       "cannot read 'bad': The file “bad” couldn’t be opened using text encoding Unicode (UTF-8)."},
      {"-DX -code-reg 1 lax twice",
       "error: lax:3: duplicate label 'X'" + next + "error: lax:4: duplicate label '__bank_code_reg'"},
      {"missing",
       "warning: " + undefined({"y"})[0] + next + "warning: " + undefined({"z"})[0] + next +
       "error: Cannot find include file 'no'" + next + "error: missing:4: duplicate label 'x'"},
      {"-L bad.lnk missing",    "cannot read layout 'bad.lnk': bad.lnk:1: key 'main' outside any section"},
      {"-x none -h",            "unknown option '-x'"},
      {"--data-window 1:2:3",   "--data-window expects START:END"},
      {"--data-window 1:",      "--data-window bad hex ''"},
      {"--data-window 0XG:h",   "--data-window bad hex 'G'"},
      {"--data-window $0x1:2",  "--data-window bad hex '0x1'"},
      {"--data-window \t1:2",   "--data-window bad hex '\t1'"},
      // clang-format on
  };
  for (const auto& [line, message] : rows)
    expectOutcome(line, 1, say(message));
  // Options without their argument are unknown ones, too.
  for (const std::string& option : words("-x --help - -H -bV -splitbank --split --code-reg=1 -L -f -s -o -l -I -e "
                                         "--data-window -code-window -data-window -code-reg -data-reg"))
    expectOutcome("none -b " + option, 1, say("unknown option '" + option + "'"));
}

// Has no toolchain, and keeps where it is looked for.
struct BareHost final : MemoryHost {
  bool exists(const std::string& path) const override { return places += path + " ", false; }
  mutable std::string places;
};

TEST(Home, IsNamedByVariablesOrIsBesideTheProgramOrInAUsualPlace) {
  BareHost host;
  host.variables = {{"TARN_HOME", "t/"}, {"KILN_HOME", "k"}, {"HOME", " \"\\h\""}};
  EXPECT_EQ(findSupportDirectory(host, "a//b/kiln-as"), std::nullopt);
  std::string places;
  for (const char* home : {"k", "t", "a/b", "a/b/..", ".", "/h/kiln", "/h/tarn", "/opt/kiln/0.61", "/opt/kiln",
                           "/usr/local/kiln", "/usr/local/tarn", "/opt/tarn"})
    places += concat({home, "/lib/kl ", home, "/kl ", home, "/support "});
  EXPECT_EQ(host.places, places);
  const std::string longest(4095, 'x');
  const Pairs rows = {
      // clang-format off
      {"\t\"C:\\a b \" ", "C:/a b "},
      {"\"",              "\""},
      {"\"\"",            "."},
      {" \t",             "."},
      {longest,           longest},
      {longest + " ",     "."},
      // clang-format on
  };
  for (const auto& [value, home] : rows) {
    BareHost named;
    named.variables["TARN_HOME"] = value;
    EXPECT_EQ(findSupportDirectory(named, "kiln-as"), std::nullopt);
    EXPECT_EQ(named.places.find(home + "/lib/kl "), 0U) << value;
  }
}

// What the options settle for a program beside its toolchain.
Settings settled(MemoryHost host, const std::string& line, Options& options) {
  const std::vector<std::string> arguments = words("p/kiln-as " + line);
  Settings settings;
  EXPECT_EQ(scanArguments(std::span(arguments).subspan(1), host, options), std::nullopt);
  EXPECT_EQ(settle(host, arguments, options, settings), "");
  return settings;
}

// "verbose", "banked" and "split" if they are set, then the windows and registers that are.
std::string settledBanking(const MemoryHost& host, const std::string& line) {
  Options options;
  const Settings settings = settled(host, line, options);
  const BankedSettings& b = settings.banking;
  return concat({settings.verbose ? " verbose" : "", options.banked ? " banked" : "", b.splitBank ? " split" : "",
                 range("window", b.bankWindowLow, b.bankWindowHigh), range("data", b.dataWindowLow, b.dataWindowHigh),
                 range("registers", b.codeBankRegister, b.dataBankRegister),
                 range("main", b.mainRegionLow, b.mainRegionHigh), range("regc", b.regcWindowLow, b.regcWindowHigh),
                 range("regcreg", b.regcRegisterLow, b.regcRegisterHigh)});
}

TEST(Settings, OfBankingComeFromOptionsAndTheLayout) {
  MemoryHost host;
  host.files = {
      // clang-format off
      {"main", "[memory]\nmain=$A000-$BFFF"},
      {"code", "[memory]\nmain=$A001-$AFFF\n[banking]\ndatawindow=$6000-$7FFE\nwindow=$4001-$4FFF\ncodereg=$84"},
      {"all",
       "[memory]\nmain=$A000-$A7FF,$B000-$BFFF\n[banking]\ndatawindow=$6000-$7FFE\ncodewindow=$4000-$5FFF\n"
       "datareg=$85\nregcwindow=$5000-$50FF\nregcreg=$86-$87"},
      // clang-format on
  };
  const Pairs rows = {
      // clang-format off
      {"-V -b -L main",                                    " verbose banked"},
      {"-code-window 4000-0 -data-window 4000-0",          ""},
      {"-code-window 4000-$7FFFz",                         " window $4000-$7FFF"},
      {"-code-window -7FFF-8",                             " window $0-$7FFF"},
      {"-data-window $12345-6",                            " data $12345-$6"},
      {"-data-window 1-2 -data-window 3-4 -data-window 5", " data $3-$4"},
      {"-data-reg 123456789",                              " registers $0-$23456789"},
      {"-code-reg $$1 -data-reg 1aBxF",                    " registers $0-$1AB"},
      {"-data-reg \tA\t",                                  " registers $0-$A"},
      {"-split-bank -data-window 1-2 --data-window 3:4",   " split data $1-$2"},
      {"--split-bank -data-window 1-2",                    " split"},
      {"--split-bank --data-window 0x1ABCD:$7fff\t",       " split data $ABCD-$7FFF"},
      {"-code-window 1-2 -code-reg 3 -data-reg 4 -L code",
       " banked window $4001-$4FFF registers $84-$4 main $A001-$AFFF"},
      {"-code-reg 3 -L all -data-window 1-2",
       " banked split window $4000-$7FFE data $6000-$7FFE registers $3-$85 main $A000-$BFFF regc $5000-$50FF "
       "regcreg $86-$87"},
      // clang-format on
  };
  for (const auto& [line, expected] : rows)
    EXPECT_EQ(settledBanking(host, line), expected) << line;
}

using Names = std::vector<std::pair<std::string, int64_t>>;

Names settledNames(const MemoryHost& host, const std::string& line) {
  Options options;
  const Settings settings = settled(host, line, options);
  Names names;
  SymbolTable symbols;
  enterSeeds(settings.seeds, symbols);
  for (const Symbol& symbol : symbols.symbols())
    names.emplace_back(symbol.name, symbol.value);
  return names;
}

TEST(Settings, OfNamesComeFromSymbolFiles) {
  MemoryHost host;
  const Names equates = settledNames(host, "");
  EXPECT_NE(std::find(equates.begin(), equates.end(), Names::value_type("RTCLOK", 0x12)), equates.end());
  const std::pair<std::string, Names> rows[] = {
      // clang-format off
      {"RTCLOK = $14 ; clock\nFOO = 20\nBAR\nX = $12ZZ",     {{"RTCLOK", 0x14}, {"X", 0x12}}},
      {"A=$1\nB=$2\nA=$3",                                   {{"A", 3}, {"B", 2}}},
      {"\tA\t=\t$aF\t\r\nb\r=\r$1\n;C=$2;\nD;=$3\n\nB=$100", {{"A", 0xAF}, {"b", 1}, {"B", 0x100}}},
      {"= $10",                                              {{"", 0x10}}},
      {"A=$FFFFFFFF\nB=$123456789\nC=$1=$2",                 {{"A", 0xFFFFFFFF}, {"B", 0x23456789}, {"C", 1}}},
      {"\xED\xA0\x80=$1",                                    {{"\xED\xA0\x80", 1}}},
      // Without a definition or in another encoding it is no symbol file.
      {"\n;",                                                equates},
      {"A=$1\n\xFF",                                         equates},
      {"A=$\nB=$G\nC=$ 1\nD=B=$1\nE=0x10\nF=%1\nG=",         equates},
      // clang-format on
  };
  for (const auto& [text, names] : rows) {
    host.files["x.sym"] = text;
    EXPECT_EQ(settledNames(host, "-s x.sym"), names) << text;
  }
  EXPECT_EQ(settledNames(host, "-s no.sym"), equates);
}

TEST(Settings, OfNamesComeFromTheToolchain) {
  MemoryHost host;
  host.files = {
      // clang-format off
      {"p/kl/atari/symbols/b.sym",   "B=$2"},
      {"p/kl/atari/symbols/a.x.sym", "A=$1\nB=$1\nC=$1"},
      {"p/kl/generic/symbols/a.sym", "C=$7"},
      {"p/kl/atari/symbols/z.SYM",   "Z=$8"},
      {"p/kl/atari/symbols/.sym",    "Z=$8"},
      // clang-format on
  };
  host.directories = {"p/kl", "p/support", "./kl", "p/kl/atari/symbols", "p/kl/generic/symbols"};
  EXPECT_EQ(settledNames(host, "x"), (Names{{"A", 1}, {"B", 2}, {"C", 7}}));
  host.unreadable = {"p/kl/atari/symbols"};
  EXPECT_EQ(settledNames(host, "x"), (Names{{"C", 7}}));
}

}  // namespace
}  // namespace kiln::test
