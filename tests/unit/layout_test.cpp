#include "layout/layout.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/format.h"
#include "layout/layout_parser.h"
#include "layout/layout_values.h"
#include "support/program.h"

namespace kiln {
namespace {

using test::range;

// Everything that is set, in the order of the fields; the error alone when there is one.
std::string shown(const AsLayout& layout) {
  if (!layout.error.empty()) return layout.error;
  std::string text = (layout.hasBanking ? " banking" : "") + range("window", layout.codeWindowLo, layout.codeWindowHi);
  for (size_t i = 0; i + 1 < layout.mainRegion.size(); i += 2)
    text += range("main", layout.mainRegion[i], layout.mainRegion[i + 1]);
  text += (layout.codeWindowSplit ? " split" : "") + range("half", layout.codeHalfLo, layout.codeHalfHi) +
          range("data", layout.dataWindowLo, layout.dataWindowHi) + range("registers", layout.codeReg, layout.dataReg) +
          (layout.hasRegc ? " regc" : "") + range("regcWindow", layout.regcWindowLo, layout.regcWindowHi) +
          range("regcPage", layout.regcPageSize, 0) + range("regcReg", layout.regcRegLo, layout.regcRegHi);
  for (const std::string& id : layout.cloakedIds)
    text += " '" + id + "'";
  return text.substr(text.empty() ? 0 : 1);
}

AsLayout parsed(const std::string& text) {
  AsLayout layout;
  parseLayout(layout, test::MemoryHost{}, "d/t.lnk", text);
  return layout;
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

// Each text sets these fields when it follows the header.
void expectFields(const std::string& header, const Pairs& rows) {
  for (const auto& [text, fields] : rows)
    EXPECT_EQ(shown(parsed(header + text)), fields) << text;
}

// clang-format off
TEST(LayoutNumbers, AreDollarHexadecimalOrDecimal) {
  expectFields("[banking]\ncodereg = ", {
      {" 12\t",      "banking registers $C-$0"},
      {"$aF",        "banking registers $AF-$0"},
      {"4294967298", "banking registers $2-$0"},
      {"$123456789", "banking registers $23456789-$0"},
  });
  for (const char* other : {"", "$", "$G", "$1 2", "1a", "-1", "0x1"})
    EXPECT_FALSE(parseLayoutNumber(other).has_value()) << other;
}

TEST(LayoutRanges, AreFoundAnywhereInAValue) {
  expectFields("[banking]\nwindow = ", {
      {"at $4000 \t-\t $7fff, or so", "banking window $4000-$7FFF"},
      {"$1 $2000$3000-x-$-$4-$5-$6",  "banking window $4-$5"},
      {"$9-$1",                       "banking window $9-$1"},
      {"$100000001-$2",               "banking window $1-$2"},
  });
  for (const char* none : {"$4000", "$4000-7FFF", "4000-$7FFF", "$-$7FFF", "$4000-$", "$4000.$7FFF", ""})
    EXPECT_FALSE(findLayoutRange(none).has_value()) << none;
}

TEST(LayoutSections, HoldLinesOfKeysAndValues) {
  expectFields("", {
      {"# a\n\n \t\r\n[BANKING]\r\n  CodeReg\t=\t1 \r\n",           "banking registers $1-$0"},
      {"[banking] # a\ncodereg = 1 # 2\ndatareg = #2",              "banking registers $1-$0"},
      {"[ banking ]\ncodereg = 1\n[]\ncodereg = 1\n[banking]x = 1", ""},
      {"[memory]\ncodereg = 1\n[banking]\nmain = $1-$2",            "banking"},
      {"# a\n[banking]\r\n\ncodereg",                               "d/t.lnk:4: expected 'key = value'"},
      {"[memory",                                                   "d/t.lnk:1: expected 'key = value'"},
      {std::string("[bank\0]\na\0b = 1\n]", 17),                    "d/t.lnk:3: expected 'key = value'"},
      {"\n Main = a = b\n[",                                        "d/t.lnk:2: key 'main' outside any section"},
      {"=",                                                         "d/t.lnk:1: key '' outside any section"},
  });
  expectFields("[memory]\n", {
      {"main = $A000-$BFFF, free, x $C0 - $CF\nother = $1-$2", "main $A000-$BFFF main $C0-$CF"},
      {"main = $1-$2\nmain = $3-$4",                           "main $3-$4"},
      {"main = $1-$2\nmain = none",                            ""},
  });
}

TEST(BankingKeys, SetTheirFields) {
  expectFields("[banking]\n", {
      {"",                                              ""},
      {"Code Bank-Window = $1-$2\ndata-window = $3-$4", "banking window $1-$2 data $3-$4"},
      {"code-reg = $82\ndata-reg = 131",                "banking registers $82-$83"},
      {"CodeReg = 1\nDATAREG = 2",                      "banking registers $1-$2"},
      {"codereg = 1\ncodereg = 1x\ncodereg = 0",        "banking"},
      {"regcpagesize = 16",                             "banking regc regcPage $10-$0"},
      {"regcwindow = $1-$2",                            "banking regc regcWindow $1-$2"},
      {"regcreg = $D5-$D6\nregcreg = 5",                "banking regc regcReg $5-$0"},
      {"regcregion = $1-$2",                            "banking regc"},
      {"regcregionspan = $1-$2",                        "banking regc"},
      // The code window ends where an earlier data window ends.
      {"datawindow = $0-$7FFF\ncodewindow = $4000-$5FFF",
       "banking window $4000-$7FFF split half $4000-$5FFF data $0-$7FFF"},
      {"codewindow = $4000-$5FFF\ndatawindow = $6000-$7FFF",
       "banking window $4000-$0 split half $4000-$5FFF data $6000-$7FFF"},
      {"window = $1-$2\ncodewindow = $0-$5FFF", "banking window $1-$2 split half $0-$5FFF"},
  });
  for (const char* range : {"code-window", "data-window", "window", "codewindow", "datawindow", "regcwindow",
                            "regcregion", "regcregionspan"})
    EXPECT_EQ(shown(parsed(concat({"[banking]\n", range, "= 1"}))), "banking") << range;
  for (const char* number : {"code-reg", "data-reg", "codereg", "datareg", "regcpagesize", "my-reg", "regc-window"})
    EXPECT_EQ(shown(parsed(concat({"[banking]\n", number, "= $1-$2\n", "regcreg = x"}))), "banking") << number;
}

TEST(BankRegisters, AreTheFirstTwoItemsThatParse) {
  expectFields("[banking]\nregisters = ", {
      {"x, , $82:$FF:1, $82:, :1, 130 : $3FF, 131, 132", "banking registers $82-$83"},
      {"$82:$F0, $83",                                   "banking registers $0-$83"},
      {"$82, $83:254, $84",                              "banking registers $82-$0"},
      {"$82:$1FE",                                       "banking"},
  });
}

TEST(CloakedEntries, NameTheirIds) {
  expectFields("[cloaked]\n", {
      {"",                                                                      "'lib'"},
      {"[memory]\n[banking]",                                                   "'lib'"},
      {"id = a \r\n",                                                           "'a'"},
      {"bank = 3\nid = Ext 1\nother = 2-3\n[CLOAKED]\nbank = 4-5\nid = ext<n>", "'Ext 1' 'ext4' 'ext5'"},
      {"bank = $9 - $B\nid = <n>a<n>b",                                         "'9a9b' '10a10b' '11a11b'"},
      {"bank = 5-3\nid = ext\n[cloaked]\nid =",                                 "'ext' ''"},
      {"bank = 1-2\nbank = x\nbank = 7-\nbank = -7\nbank = 1-2-3\nid = <n>",    "'1' '2'"},
      {"bank = $FFFFFFFE-1\nid = <n>",                                          "'-2' '-1' '0' '1'"},
      {"bank = 2147483646-2147483647\nid = <n>",                                "'2147483646' '2147483647'"},
  });
  EXPECT_EQ(parsed("[cloaked]\nbank = 7").cloakedBankLo, 7);
  EXPECT_EQ(parsed("[cloaked]\nbank = 0-999999\nid = <n>").cloakedIds.back(), "999999");
  for (const char* noBank : {"bank = 5-3\nbank = none", "bank = 5-3\n[cloaked]\nid = a"})
    EXPECT_EQ(parsed(concat({"[cloaked]\n", noBank})).cloakedBankLo, -1) << noBank;
}

TEST(CloakedEntries, AreRefusedWhenTheirIdsAreTooManyOrNotDistinct) {
  const std::string notRange = "' contains '<n>' but bank is not a range — placeholder is only valid with `bank = N-M`",
                    noPlaceholder = " (range) needs '<n>' placeholder in id (e.g. `id = ext<n>`); got 'lib'",
                    repeated = "' (check for overlapping `bank = N-M` ranges or repeated `id = ` lines)",
                    tooLong = " (range) is too long";
  for (const auto& [text, error] : Pairs{
      {"bank = 1-2\nbank = none\nid = <n>",                            "id '<n>" + notRange},
      {"[cloaked]\nid = <n>",                                          "id '<n>" + notRange},
      {"bank = 3-5\n[memory]\nx",                                      "bank = 3-5" + noPlaceholder},
      {"bank = 0-9000000",                                             "bank = 0-9000000" + noPlaceholder},
      {"bank = 0-1000000\nid = <n>",                                   "bank = 0-1000000" + tooLong},
      {"bank = $80000000-$7FFFFFFF\nid = <n>",                         "bank = -2147483648-2147483647" + tooLong},
      {"bank = 0-999998\nid = a<n>\n[cloaked]\nbank = 1-2\nid = b<n>", "bank = 1-2" + tooLong},
      {"bank = 0-500000\nid = <n>" + std::string(61, 'x'),             "bank = 0-500000" + tooLong},
  })
    EXPECT_EQ(shown(parsed("[cloaked]\n" + text)), "d/t.lnk: [cloaked] " + error) << text;
  expectFields("[cloaked]\n", {
      {"bank = 3-5\nx", "d/t.lnk:3: expected 'key = value'"},
      {"[cloaked]\n",   "d/t.lnk: duplicate [cloaked] id 'lib" + repeated},
      {"id = a\n[cloaked]\nbank = 1-3\nid = <n>\n[cloaked]\nid = 3\n[cloaked]\nid = a",
       "d/t.lnk: duplicate [cloaked] id '3" + repeated},
  });
}
// clang-format on

// What the layout t/x.lnk sets beside other files.
struct Includes {
  std::map<std::string, std::string> files;
  std::string fields;
};

void expectIncludes(const std::vector<Includes>& rows) {
  test::MemoryHost reader;
  for (const Includes& row : rows) {
    reader.files = row.files;
    EXPECT_EQ(shown(loadLayout(reader, "t/x.lnk")), row.fields) << reader.files["t/x.lnk"];
  }
}

// clang-format off
TEST(LayoutIncludes, AreReadBeforeTheFileThatNamesThem) {
  const std::string main12 = "[memory]\nmain = $1-$2";
  expectIncludes({
      // The file's own lines come last, wherever its "#include" is; the first include wins.
      {{{"t/x.lnk", "[banking]\ncodereg = 1\ncodereg = x\n #include \"a\" \r\n#include \"b\"\n[memory]\nmain = $5-$6"},
        {"t/a", "[banking]\ncodereg = 2\ndatareg = 3\n[memory]\nmain = $1-$2\n[cloaked]"},
        {"t/b", "[banking]\ndatareg = 4\nwindow = $7-$8\n[cloaked]"}}, "banking window $7-$8 main $5-$6 registers $1-$3"},
      {{{"t/x.lnk", "[banking]\ncodewindow = $1-$2\n#include \"a\""}, {"t/a", "[banking]\ndatawindow = $3-$4"}},
       "banking window $1-$4 split half $1-$2 data $3-$4"},
      // The name reaches from the first quote to the last; it is relative to the file that holds the line.
      {{{"t/x.lnk", "#include\n#include \"\n#includes \"s//a.lnk\" # of all"}, {"t/s/a.lnk", "#include \"a\"b\""},
        {"t/s/layouts/a\"b", "#include \"c.lnk\""}, {"t/s/layouts/c.lnk", main12}}, "main $1-$2"},
      {{{"t/x.lnk", "#include \"a\""}, {"t/a", main12}, {"t/layouts/a", "x"}}, "main $1-$2"},
      {{{"t/x.lnk", "#include \"b\"\n#include \"a\"\n#include \"b\""}, {"t/a", main12},
        {"t/b", "#include \"a\"\n[memory]\nmain = none"}}, "main $1-$2"},
  });
}

TEST(LayoutIncludes, FailWithTheFirstError) {
  expectIncludes({
      {{{"t/x.lnk", "[memory]\n#include\"a\"\n #Include \"b\"\nx#include \"c\""}, {"t/a", ""}},
       "t/x.lnk:4: expected 'key = value'"},
      {{{"t/x.lnk", "x\n#include \"a\"\n#include \"b\""}, {"t/a", "#include \"c\""}, {"t/c", "\ny"}, {"t/b", "z"}},
       "t/c:2: expected 'key = value'"},
      {{{"t/x.lnk", "#include \"d/x.lnk\""}, {"x.lnk", ""}},
       "The file “x.lnk” couldn’t be opened because there is no such file."},
      {{{"t/x.lnk", "\xFF"}}, "The file “x.lnk” couldn’t be opened using text encoding Unicode (UTF-8)."},
      // Circles, however the path is written.
      {{{"t/x.lnk", "#include \"./x.lnk\""}, {"t/./x.lnk", ""}}, "t/x.lnk: #include of './x.lnk' never ends"},
      {{{"t/x.lnk", "#include \"./a\""}, {"t/./a", "#include \"a\""}}, "t/./a: #include of 'a' never ends"},
      {{{"t/x.lnk", "#include \"s/a\""}, {"t/s/a", "#include \"../x.lnk\""}, {"t/s/../x.lnk", ""}},
       "t/s/a: #include of '../x.lnk' never ends"},
  });
}
// clang-format on

TEST(LayoutMerging, FillsEachFieldThatIsNotSet) {
  const std::string keys =
      "[banking]\ndatawindow = $14-$15\ncodewindow = $12-$13\nwindow = $10-$11\nregisters = $16, $17\n"
      "regcwindow = $18-$19\nregcpagesize = $1A\nregcreg = $1B-$1C\n[memory]\nmain = $1-$2\n";
  const std::string fields =
      "banking window $10-$11 main $1-$2 split half $12-$13 data $14-$15 registers $16-$17 regc regcWindow $18-$19 "
      "regcPage $1A-$0 regcReg $1B-$1C";
  AsLayout filled;
  mergeLayout(filled, parsed(keys));
  EXPECT_EQ(shown(filled), fields);
  AsLayout other = parsed(std::regex_replace(keys, std::regex("1"), "2") + "[cloaked]\nid = a");
  other.error = "e";
  mergeLayout(filled, other);
  mergeLayout(filled, AsLayout{});
  EXPECT_EQ(shown(filled), fields);
  parseLayout(filled, test::MemoryHost{}, "t", "[banking]\ncodereg = 0");
  EXPECT_EQ(filled.codeReg, 0u);
  EXPECT_EQ(filled.dataReg, 0x17u);
}

}  // namespace
}  // namespace kiln
