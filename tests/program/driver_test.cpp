// The command line, and what a run makes of it.
#include <gtest/gtest.h>

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

// Runs a command line on a few files: the status, what the run says, and the files it writes. A blank in an
// argument is a tab.
std::string outcome(const std::string& line) {
  MemoryHost host;
  // clang-format off
  host.files = {
      {"x", " .org $2000\n NOP"}, {"bank", " .org $4000\n NOP"}, {"", ""}, {".asm", ""}, {"/", ""}, {"bad", "\xFF"},
      {"s/g.a.asm", " .org $20\n NOP\ny=$77\nbig=$12345\n .org $5000\n .org $4000\n.include \"i\""}, {"s/i", "NOP\n\n"},
      {"set", " .byte A,B,C,D,E,F,G,ata,RTCLOK,__bank_code_reg,__bank_data_reg,H"}, {"bad.lnk", "main=1"}, {"t/i", ""},
      {"seed", " .org $77\nRTCLOK: LDA RTCLOK"}, {"dup", "X:\n__bank_code_reg:\n__bank_data_reg:"}, {"lock", ""},
      {"lines", ".macro M\n a\n b\n.include \"i\"\nM\nx:\nx:"}, {"self", ".include self"}, {"lax", "\n;\xED\xA0\x80"},
      {"huge", " NOP\n .space $80000001"}, {"miss", ".include no\na = y\nb = z\nx:\nx:\n NOP #1"}};
  // clang-format on
  host.directories = {"folder"};
  host.unreadable = {"lock"};
  host.unwritable = {"full"};
  const int status = runLine(host, line);
  std::string text = std::to_string(status) + " " + host.standardError;
  if (!host.standardOutput.empty()) host.written["output"] = host.standardOutput;
  for (const auto& [path, content] : host.written)
    text += path + ": " + content;
  return text;
}

// The outcome of a run that assembles to one file.
std::string made(const std::string& input, const std::string& path, const std::string& size, const std::string& image) {
  return "0 " + say("assembled '" + input + "' -> '" + path + "' (" + size + ")") + path + ": " + image;
}

TEST(Driver, DoesWhatTheCommandLineSays) {
  const std::string one = "1 bytes, 1 segment", prg = bytes("00 20 EA"), flat = xex({{0x2000, "EA"}}, 0x2000);
  const auto runs = [](unsigned address) {
    return made("s/g.a.asm", "s/g.a.xex", "2 bytes, 3 segments", xex({{0x20, "EA"}, {0x4000, "EA"}}, address));
  };
  // clang-format off
  for (const auto& [line, result] : Pairs{
      {"-V -o x -D", "1 " + say("no input files") + usage}, {"none -h -x", "0 " + usage},
      {"none -v -x", "0 output: kiln-as 0.61\n"}, {"--version", "0 output: kiln-as 0.61\n"},
      {"-f PRG x", made("x", "x.prg", one, prg)}, {"-o A.PRG x", made("x", "A.PRG", one, prg)},
      {"-o a.bin x", made("x", "a.bin", one, flat)}, {"-f xex -o a.prg x", made("x", "a.prg", one, flat)},
      {"-f other -l full -b x", made("x", "x.xex", one, flat)}, {"-f  -o a.prg x", made("x", "a.prg", one, flat)},
      {"-f xex -f prg -o b -o -h x", made("x", "-h", one, prg)}, {"-e Y s/g.a.asm .asm", runs(0x20)},
      {"-e big s/g.a.asm", runs(0x2345)}, {"-e  s/g.a.asm", runs(0x20)}, {"-e y -e  s/g.a.asm -D", runs(1)},
      {".asm -l a", made(".asm", ".asm.xex", "0 bytes, 0 segments", xex({}, 0x3400)) +
                        "a:                      \n                     \n"},
      {"seed", made("seed", "seed.xex", "2 bytes, 1 segment", xex({{0x77, "A5 77"}}, 0x77))},
      {"-DA -D B -D C=7 -DD=$10 -DE=1=2 -DF= -D G=%11 -DC=8 -Data -DRTCLOK=9 -code-reg 82 -data-reg 83 "
       "-D__bank_data_reg=4 set", "0 " + say("warning: undefined symbol 'H', using 0") +
       made("set", "set.xex", "12 bytes, 1 segment", xex({{0, "01 01 08 10 00 00 03 01 09 82 04 00"}}, 0)).substr(2)}})
    EXPECT_EQ(outcome(line), result) << line;
  for (const auto& [line, message] : Pairs{
      {"-o full -l a x", "error: cannot write 'full'"}, {"-o  x", "error: cannot write ''"},
      {" x", "error: cannot write '(null)'"}, {"/", "error: cannot write '(null)'"}, {"-x none -h", "unknown option '-x'"},
      {"--data-window 1 -x", "--data-window expects START:END"}, {"--data-window 1:", "--data-window bad hex ''"},
      {"--data-window 1:2:3", "--data-window expects START:END"}, {"--data-window 0XG:h", "--data-window bad hex 'G'"},
      {"--data-window $1:7FFG", "--data-window bad hex '7FFG'"}, {"--data-window $0x1:2", "--data-window bad hex '0x1'"},
      {"--data-window \t1:2", "--data-window bad hex '\t1'"}, {"-I s -I t lines", "error: lines:7: duplicate label 'x'"},
      {"self", "error: Cannot include 'self': it includes itself"}, {"-f prg lax", "error: cannot write 'lax.prg'"},
      {"a/b none", "cannot read 'a/b': The file “b” couldn’t be opened because there is no such file."},
      {"huge", "error: out of memory"}, {"folder", "cannot read 'folder': The file “folder” couldn’t be opened."},
      {"lock", "cannot read 'lock': The file “lock” couldn’t be opened because you don’t have permission to view it."},
      {"x bad -L no", "cannot read 'bad': The file “bad” couldn’t be opened using text encoding Unicode (UTF-8)."},
      {"-L bad.lnk miss", "cannot read layout 'bad.lnk': bad.lnk:1: key 'main' outside any section"},
      {"-DX -code-reg 1 lax dup", "error: lax:3: duplicate label 'X'\n"
                                  "kiln-as: error: lax:4: duplicate label '__bank_code_reg'"},
      {"miss", "warning: undefined symbol 'y', using 0\nkiln-as: warning: undefined symbol 'z', using 0\n"
               "kiln-as: error: Cannot find include file 'no'\nkiln-as: error: miss:4: duplicate label 'x'"},
      {"-b bank", "banked output requires a code bank register from the layout (registers = <code>, <data>); none set "
                  "— there is no $82 default\nkiln-as: error: cannot write 'bank.xex'"}})
    EXPECT_EQ(outcome(line), "1 " + say(message)) << line;
  // clang-format on
  for (const std::string& option : words("-x --help - -H -bV -splitbank --split --code-reg=1 -L -f -s -o -l -I -e "
                                         "--data-window -code-window -data-window -code-reg -data-reg"))
    EXPECT_EQ(outcome("none -b " + option), "1 " + say("unknown option '" + option + "'"));
}

// Has no toolchain, and keeps where it is looked for.
struct BareHost final : MemoryHost {
  bool exists(const std::string& path) const override { return places += path + " ", false; }
  mutable std::string places;
};

TEST(Home, IsNamedByVariablesOrStandsBesideTheProgramOrInAUsualPlace) {
  BareHost host;
  host.variables = {{"TARN_HOME", "t/"}, {"KILN_HOME", "k"}, {"HOME", " \"\\h\""}};
  EXPECT_EQ(findSupportDirectory(host, "a//b/kiln-as"), std::nullopt);
  std::string places;
  for (const char* home : {"k", "t", "a/b", "a/b/..", ".", "/h/kiln", "/h/tarn", "/opt/kiln/0.61", "/opt/kiln",
                           "/usr/local/kiln", "/usr/local/tarn", "/opt/tarn"})
    places += concat({home, "/lib/kl ", home, "/kl ", home, "/support "});
  EXPECT_EQ(host.places, places);
  const std::string longest(4095, 'x');
  // clang-format off
  for (const auto& [value, home] : Pairs{
      {"\t\"C:\\a b \" ", "C:/a b "}, {"\"a", "\"a"}, {"a\"", "a\""}, {"\"", "\""}, {longest, longest},
      {longest + " ", "."}, {"\"\"", "."}, {" \t", "."}}) {
    // clang-format on
    BareHost named;
    named.variables["TARN_HOME"] = value;
    EXPECT_EQ(findSupportDirectory(named, "kiln-as"), std::nullopt);
    EXPECT_EQ(named.places.find(home + "/lib/kl "), 0U) << value;
  }
}

// What the options settle for a program beside its toolchain: the seeds, for more than a few of them one number that
// stands for all, then what is said of banking, each 0 as a ".".
std::string settled(MemoryHost host, const std::string& line) {
  const std::vector<std::string> arguments = words("p/kiln-as " + line);
  Options options;
  Settings settings;
  EXPECT_EQ(scanArguments(std::span(arguments).subspan(1), host, options), std::nullopt);
  EXPECT_EQ(settle(host, arguments, options, settings), "");
  std::string seeds;
  for (const auto& [name, value] : settings.seeds)
    seeds += concat({seeds.empty() ? "" : ", ", name, " ", dollarHex(value, value < 256 ? 2 : 4)});
  uint32_t number = 0;
  for (char c : seeds)
    number = number * 31 + static_cast<uint32_t>(c);
  const BankedSettings& b = settings.banking;
  std::string text = concat({seeds.size() < 99 ? seeds : dollarHex(number), settings.verbose ? " verbose " : " ",
                             options.banked ? "banked " : "", b.splitBank ? "split " : ""});
  for (uint32_t value :
       {b.bankWindowLow, b.bankWindowHigh, b.codeBankRegister, b.dataBankRegister, b.dataWindowLow, b.dataWindowHigh,
        b.mainRegionLow, b.mainRegionHigh, b.regcWindowLow, b.regcWindowHigh, b.regcRegisterLow, b.regcRegisterHigh})
    text += value == 0 ? "." : dollarHex(value, 1);
  return text;
}

TEST(Driver, SettlesSeedsAndBankingByOptionsAndByFiles) {
  const std::string banking = "[banking]\ndatawindow=$6000-$7FFE\n", equates = "$4E884BE2", none = " ............";
  MemoryHost host;
  // clang-format off
  host.files = {
      {"main", "[memory]\nmain=$A000-$BFFF"},
      {"code", "[memory]\nmain=$A001-$AFFF\n" + banking + "window=$4001-$4FFF\ncodereg=$84"},
      {"all", "[memory]\nmain=$A000-$A7FF,$B000-$BFFF\n" + banking +
              "codewindow=$4000-$5FFF\ndatareg=$85\nregcwindow=$5000-$50FF\nregcreg=$86-$87"},
      {"p/kl/atari/symbols/b.sym", "B=$2"}, {"p/kl/atari/symbols/a.x.sym", "A=$1\nB=$1\nC=$1"},
      {"p/kl/atari/symbols/z.SYM", "Z=$8"}, {"p/kl/atari/symbols/.sym", "Z=$8"},
      {"p/kl/atari/symbols/z.sym.z", "Z=$8"}, {"p/kl/generic/symbols/a.sym", "C=$7"}};
  for (const auto& [line, expected] : Pairs{
      {"-V -b -code-window 4000-0 -data-window 4000-0 -L main", "verbose banked ............"},
      {"-code-window 4000-$7FFFz -data-window $12345-6 -data-reg 123456789", "$4000$7FFF.$23456789$12345$6......"},
      {"-code-window -7FFF-8 -data-window 1-2 -data-window 3-4 -data-window 5 -data-reg \tA\t", ".$7FFF.$A$3$4......"},
      {"-split-bank -data-window 1-2 --data-window 3:4 -code-reg $$1 -data-reg 1aBxF", "split ...$1AB$1$2......"},
      {"--split-bank -data-window 1-2", "split ............"},
      {"--split-bank --data-window 0x1ABCD:$7fff\t", "split ....$ABCD$7FFF......"},
      {"-code-window 1-2 -code-reg 3 -data-reg 4 -L code", "banked $4001$4FFF$84$4..$A001$AFFF...."},
      {"-code-reg 3 -L all -data-window 1-2", "banked split $4000$7FFE$3$85$6000$7FFE$A000$BFFF$5000$50FF$86$87"}})
    EXPECT_EQ(settled(host, line), equates + " " + expected) << line;
  for (const auto& [text, seeds] : Pairs{
      {"RTCLOK = $14 ; clock\nFOO = 20\nBAR\nX = $12ZZ", "RTCLOK $14, X $12"}, {"A=$1\nB=$2\nA=$3", "A $03, B $02"},
      {"\tA\t=\t$aF\t\r\nb\r=\r$1\n;C=$2;\nD;=$3\n\nB=$100", "A $AF, b $01, B $0100"}, {"= $10", " $10"},
      {"A=$FFFFFFFF\nB=$123456789\nC=$1=$2\n\xED\xA0\x80=$1", "A $FFFFFFFF, B $23456789, C $01, \xED\xA0\x80 $01"},
      {"\n;", equates}, {"A=$1\n\xFF", equates}, {"A=$\nB=$G\nC=$ 1\nD=B=$1\nE=0x10\nF=%1\nG=", equates}}) {
    host.files["x.sym"] = text;
    EXPECT_EQ(settled(host, "-s x.sym"), seeds + none);
  }
  // clang-format on
  EXPECT_EQ(settled(host, "-s no.sym"), equates + none);
  host.directories = {"p/kl", "p/support", "./kl", "p/kl/atari/symbols", "p/kl/generic/symbols"};
  EXPECT_EQ(settled(host, "x"), "A $01, B $02, C $07" + none);
  host.unreadable = {"p/kl/atari/symbols"};
  EXPECT_EQ(settled(host, "x"), "C $07" + none);
}

}  // namespace
}  // namespace kiln::test
