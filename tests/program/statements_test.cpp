// What source text means: lines to statements, statements to bytes.
#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

#include "source/statements.h"
#include "support/program.h"

namespace kiln::test {
namespace {

struct Row {
  std::string source;
  std::string hex;                          // of the one segment, at address 0; empty: there is none
  std::vector<std::string> undefined = {};  // the names that are warned of
};

void expectRows(const std::vector<Row>& rows, const std::string& options = "") {
  for (auto [source, hex, warnings] : rows) {
    for (std::string& warning : warnings)
      warning = "undefined symbol '" + warning + "', using 0";
    const Contents segments = hex.empty() ? Contents{} : Contents{{0, hex}};
    expectCode(source, segments, warnings, options);
    // Blanks at the ends of lines change nothing, but long lines are looked at in another way than short ones.
    const std::string wide = std::regex_replace(source + "\n", std::regex("\n"), std::string(41, ' ') + "\n");
    expectCode(wide, segments, warnings, options);
  }
}

// clang-format off
TEST(Lines, EndAtACommentAndFallIntoStatements) {
  expectRows({
      {"\tLDA\t#1\t; LDA #2\n\tInx\t",                     "A901 E8"},
      {"NOP : .byte 1 :  : .byte 3 : \n : .byte 4\n : \n", "EA 01 03 04"},
      {"NOP\n; : .byte 5",                                 "EA"},
      {".string \"a;b\" : NOP ; c : INX",                  "613B6200 EA"},
      {".string \"a\";\"b\"",                              "6100"},
      {".string \"a : b\"",                                "226100"},
      {".string \"a;b ; c",                                "22613B62203B206300"},
      {".string \"",                                       "00"},
      {"a: .byte a : b = 2 ; \"",                          "00"},
      // What is no mnemonic vanishes; a carriage return is a character like any other.
      {"FOO 1\nNOP\r\nINX\n\vNOP",                         "E8"},
      {"LDA #1\r\n.byte $1\r,2\r",                         "A900 0100", {"1\r", "2\r"}},
  });
}

TEST(Labels, ReachToTheFirstColonAndLocalOnesBelongToTheGlobalOneBeforeThem) {
  expectRows({
      {"NOP\nx \t: .word x : y:\n.word y\nz: .org 7\n.word z",     "EA 0100 0300 0000 0500"},
      {"NOP\nLDA #1:STA $10\n.word LDA #1",                        "EA 8510 0100"},
      {"NOP\n_:\r\n.word _\na \"b:NOP\n.word a \"b",               "EA 0100 EA 0300"},
      {".string \"a:.byte 7\n.string \"a:b\"\n.byte 1: .byte 2",   "07 02"},
      {"m: NOP\n.l: JMP .l\nn:\n.l: JMP (.l)\nJMP m.l",            "EA 4C0100 6C0400 4C0100"},
      {"m: NOP\n>far: NOP\n.b: JMP far\nJMP m.b",                  "EA EA 4C0100 4C0200"},
      {"NOP\n.x: JMP .x\nm: NOP\n_klb_1: NOP\n.x: JMP m.x",        "EA 4C0100 EA EA 4C0600"},
      {"_klb: NOP\n>.y: JMP _klb.y",                               "EA 4C0100"},
      {"NOP\n.byte:\n.word:\n.org:\nLDA .byte+.word+.org",         "EA AD0300"},
      {"NOP\n.dbyte:\n.end:\nm: NOP\n.ends: LDA .dbyte+.end+.ends+.ends", "EA EA AD0600"},
      {"m: LDA #.5\nLDA #.\nLDA #..l\nm ,x: LDA #.l",              "A900 A900 A900 A900", {".5", ".", ".m.l", "m,x.l"}},
      {"m: .string .x\n.x: y = .x+m.x\n.byte .x,y",                "2E7800 0003",         {".x", ".x"}},
      {"m: .space .x\n.x: .org .x+1\n.byte 2",                     "00 02",               {".x"}},
  });
}

TEST(Directives, AreMatchedAsPrefixesOfWhatIsNoAssignment) {
  expectRows({
      {"x = 5\nLDA #x\nl: y=l+1\nLDA #y\n.a = 5\n.byte .a",       "A905 A903 05"},
      {".byte 1 = 2\n.word .byte 1",                              "0200"},
      {".byte x,y\nx = 1\ny = x\nx = x+2\n= 5\nx =\n5 = 6",       "0301"},
      {"lda = 5\n_a = b = 3\n.byte _a,__bank_code_reg",           "AD0000 0000", {"b = 3", "= 5", "__bank_code_reg"}},
      {"1: .byte 2\n: .byte 3\n>: .byte 4\nx .byte 5",            ""},
      {".byte\t1\n.byte\n.bytes 1\n.org\n.space\n.spill_pointer", ""},
      {".BYTE ,1\n.ByTe  1,2, \n.byte $1, ,$02,,,,",              "01 0102 0102"},
      {".byte 256,0-1,<$1234,>$1234,1,23,134,4099,$5,$06,$007,8", "00 FF 34 12 01 17 86 03 05 06 07 08"},
      {".word 4, 55555 ,18446744073709551617,, $0008,$12345,0-2", "0400 03D9 FFFF 0800 4523 FEFF"},
      {".long 0-2,$123456789\n.long 1,\t,2\n.byte x\nx:",         "FEFFFFFF 89674523 01000000 02000000 11"},
      {".byte \"a,b\",__bank_data_reg",                           "00 00 00",    {"\"a", "b\"", "__bank_data_reg"}},
      {".string Hi\n.string \t\"x\"\n.string  \"\"",              "486900 7800 00"},
      {".string \"a\"b\" ",                                       "61226200"},
      // The address after a string counts its UTF-16 units and the zero.
      {".string \"é—😀\"\n.byte x\nx:",                            "C3A9 E28094 F09F9880 00 06"},
      {"n = 2\n.space n\n.space 2\n.space $100000001\nNOP",       "0000 00 EA",  {"n"}},
  });
  expectCode(".byte ,", {{0, ""}});
  expectCode("NOP\n.Cloaked_segment$10\nINX\n.cloaked_segment_endless $20\nINY", {{0, "EA"}, {16, "E8"}, {17, "C8"}});
}

TEST(Operands, SpellTheirAddressingMode) {
  expectRows({
      {"brk\ninx\nasl\nlsr\nROL\nror\nASL a",           "00 E8 0A 4A 2A 6A 0A"},
      {"lda # 5\nLDA #$10,X",                           "A905 A910"},
      {"JMP 16\nJMP ( $1234 )\nBIT 16",                 "4C1000 6C3412 2410"},
      {"lda ( $80 ) ,y\nLDA ($80), Y",                  "B180 B180"},
      {"lda ($80\t , x)\nsta ($80,X)",                  "A180 8180"},
      {"add sp , 5\nADD SP,5",                          "2205 2205"},
      {"lda ( 2 ,SP), y\nSTA (2,sp),y",                 "0302 1302"},
      {"lda 4 , sp\nLDA 4,SP",                          "B204 B204"},
      {"lda 1 , sp ,  x\nSTA 1,SP,X",                   "2301 3301"},
      {"LDA $10 , x\nLDA $100 ,X\nLDA , X",             "B510 BD0001 BD0000"},
      {"LDX $10 , y\nLDX $100, Y\nSTX $FF,Y\nLDA 16,Y", "B610 BE0001 96FF B91000"},
      {"LDA $ff\nLDA 255\nLDA %11\nLDA 0\nJSR 255",     "A5FF A5FF A503 A500 20FF00"},
      {"LDA 256\nLDA $0100\nLDA 0FFh",                  "AD0001 AD0001 ADFF00"},
      {"LDA 1+1\nLDA <$1234\nLDA (1)+0",                "AD0200 AD3400 AD0100"},
      {"LDA $-1\nLDA $-1,X\nLDX $-1,Y",                 "ADFFFF BDFFFF BEFFFF"},
      {"NOP\na b: LDA a\tb , x\nLDA a  b",              "EA BD0100 AD0100"},
      {"LDA -1",                                        "AD0000",           {"-1"}},
      {"BRA #1\nLDA #5,SP\nJMP (1)+(2)",                "80FE B200 6C0000", {"#1", "#1", "#5", "1)+(2"}},
  });
  // The zero page is for what is known before the source is read, whatever the source says.
  expectRows({
      {"LDA z\nLDA Z\nLDA z+0\nLDA z,X\nLDX z,Y",             "A580 AD8000 AD8000 B580 B680"},
      {"LDA w\nLDA n\nLDX n,Y",                               "AD0001 ADFFFF BEFFFF"},
      {"LDA RTCLOK\nLDA rtclok\nLDA POKMSK",                  "A512 AD1200 AD3412"},
      {"LDA __bank_code_reg\nLDA __bank_data_reg",            "A582 AD01D3"},
      {"x = $80\nNOP\nRTCLOK: LDA RTCLOK\ny: LDA x\nLDX y,Y", "EA A501 AD8000 BE0300"},
      {".space two",                                          "0000"},
  }, "-Dz=$80 -Dw=$100 -Dn=$-1 -Dtwo=2 -DPOKMSK=$1234 -code-reg 82 -data-reg D301");
}
// clang-format on

// A line whose length has 33 bits, of which nothing is read.
TEST(Statements, RefusesALineOf4Gigabytes) {
  SymbolTable symbols;
  MessageList warnings;
  TextStore texts;
  Evaluator evaluator(symbols, warnings);
  Statements statements;
  const std::string_view line("NOP", (uint64_t{1} << 32) + 3);
  EXPECT_THROW(StatementParser(evaluator, texts).parseLine(line, 1, statements), std::length_error);
}

}  // namespace
}  // namespace kiln::test
