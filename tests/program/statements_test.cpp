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

TEST(Lines, EndAtACommentAndFallIntoStatements) {
  expectRows({
      {"\tLDA\t#1\t; LDA #2\n\tInx\t : .byte 1 :  : .byte 3 : \n : .byte 4\n : \n; : .byte 5", "A901E8010304"},
      {".string \"a;b\" : NOP ; c : INX\n.string \"a\";\"b\"\n.string \"a : b\"", "613B6200EA6100226100"},
      {"a: .byte a : b = 2 ; \"", "00"},
      {".string \"a;b ; c", "22613B62203B206300"},
      {".string \"", "00"},
      // What is no mnemonic vanishes; a carriage return is a character like any other.
      {"FOO 1\nNOP\r\nINX\n\vNOP\nLDA #1\r\n.byte $1\r,2\r", "E8A9000100", {"1\r", "2\r"}},
  });
}

TEST(Labels, ReachToTheFirstColonAndLocalOnesBelongToTheGlobalOneBeforeThem) {
  expectRows({
      {"NOP\nx \t: .word x : y:\n.word y\nz: .org 7\n.word z", "EA0100030000000500"},
      {"NOP\nLDA #1:STA $10\n.word LDA #1\n_:\r\n.word _\na \"b:NOP\n.word a \"b", "EA851001000500EA0700"},
      {".string \"a:.byte 7\n.string \"a:b\"\n.byte 1: .byte 2", "0702"},
      {"m: NOP\n.l: JMP .l\n>far: NOP\n.b: JMP far\nn:\n.l: JMP (.l)\nJMP m.b", "EA4C0100EA4C04006C08004C0500"},
      {"NOP\n.x: JMP .x\nm: NOP\n_klb_1: NOP\n.x: JMP m.x\n_klb: NOP\n>.y: JMP _klb.y", "EA4C0100EAEA4C0600EA4C0A00"},
      {"NOP\n.byte:\n.word:\n.org:\n.dbyte:\n.end:\nm: NOP\n.ends: LDA .byte+.word+.org+.dbyte+.end+.ends+.ends",
       "EAEAAD0900"},
      {"m: LDA #.5\nLDA #.\nLDA #..l\nm ,x: LDA #.l", "A900A900A900A900", {".5", ".", ".m.l", "m,x.l"}},
      {"m: .string .x\n.x: y = .x+m.x\n.byte .x,y", "2E78000003", {".x", ".x"}},
      {"m: .space .x\n.x: .org .x+1\n.byte 2", "0002", {".x"}},
  });
}

TEST(Directives, AreMatchedAsPrefixesOfWhatIsNoAssignment) {
  expectRows({
      {"x = 5\nLDA #x\nl: y=l+1\nLDA #y\n.a = 5\n.byte .a\n.byte 1 = 2\n.word .byte 1", "A905A903050200"},
      {".byte x,y\nx = 1\ny = x\nx = x+2\n= 5\nx =\n5 = 6", "0301"},
      {"lda = 5\n_a = b = 3\n.byte _a,__bank_code_reg", "AD00000000", {"b = 3", "= 5", "__bank_code_reg"}},
      {"1: .byte 2\n: .byte 3\n>: .byte 4\nx .byte 5\n.byte\t1\n.byte\n.bytes 1\n.org\n.space\n.spill_pointer", ""},
      {".BYTE ,1\n.ByTe  1,2, \n.byte 256,0-1,<$1234,>$1234\n.word 1,$12345,0-2", "01010200FF341201004523FEFF"},
      {".long 0-2,$123456789\n.byte 10,2,3,$00000004,5,$0000000000000006", "FEFFFFFF896745230A0203040506"},
      {".byte 1, ,2\n.word 1,,2\n.long 1,\t,2\n.byte x\nx:", "01020100020001000000020000000F"},
      {".byte \"a,b\",__bank_data_reg", "000000", {"\"a", "b\"", "__bank_data_reg"}},
      {".string Hi\n.string \t\"x\"\n.string  \"\"\n.string \"a\"b\" ", "48690078000061226200"},
      {".string \"é—😀\"\n.byte x\nx:", "C3A9E28094F09F98800006"},
      {"n = 2\n.space n\n.space 2\n.space $100000001\nNOP", "000000EA", {"n"}},
  });
  expectCode(".byte ,", {{0, ""}});
  expectCode("NOP\n.Cloaked_segment$10\nINX\n.cloaked_segment_endless $20\nINY", {{0, "EA"}, {16, "E8"}, {17, "C8"}});
}

TEST(Operands, SpellTheirAddressingMode) {
  expectRows({
      {"brk\ninx\nasl\nlsr\nROL\nror\nASL a\nlda # 5\nLDA #$10,X\nJMP ( $1234 )", "00E80A4A2A6A0AA905A9106C3412"},
      {"lda ( $80 ) ,y\nLDA ($80), Y\nlda ($80\t , x)\nsta ($80,X)\nadd sp , 5\nADD SP,5", "B180B180A180818022052205"},
      {"lda ( 2 ,SP), y\nSTA (2,sp),y\nlda 4 , sp\nLDA 4,SP\nlda 1 , sp ,  x\nSTA 1,SP,X", "03021302B204B20423013301"},
      {"LDA $10 , x\nLDA $100 ,X\nLDX $10 , y\nLDX $100, Y\nSTX $FF,Y", "B510BD0001B610BE000196FF"},
      {"LDA $ff\nLDA 255\nLDA %11\nLDA 0\nLDA 256\nLDA $0100", "A5FFA5FFA503A500AD0001AD0001"},
      {"LDA 0FFh\nLDA 1+1\nLDA <$1234\nLDA (1)+0\nLDA , X", "ADFF00AD0200AD3400AD0100BD0000"},
      {"LDA -1\nLDA $-1\nLDA $-1,X\nLDX $-1,Y", "AD0000ADFFFFBDFFFFBEFFFF", {"-1"}},
      {"JMP 16\nLDA 16,Y\nJSR 255\nBIT 16\na b: LDA a\tb , x\nLDA a  b", "4C1000B9100020FF002410BD0B00AD0B00"},
      {"BRA #1\nLDA #5,SP\nJMP (1)+(2)", "80FEB2006C0000", {"#1", "#1", "#5", "1)+(2"}},
  });
  // The zero page is for what is known before the source is read, whatever the source says.
  expectRows(
      {{"LDA z\nLDA Z\nLDA z+0\nLDA z,X\nLDX z,Y\nLDA w\nLDA n\nLDX n,Y", "A580AD8000AD8000B580B680AD0001ADFFFFBEFFFF"},
       {"LDA RTCLOK\nLDA rtclok\nLDA POKMSK\nLDA __bank_code_reg\nLDA __bank_data_reg", "A512AD1200AD3412A582AD01D3"},
       {"x = $80\nNOP\nRTCLOK: LDA RTCLOK\ny: LDA x\nLDX y,Y\n.space two", "EAA501AD8000BE03000000"}},
      "-Dz=$80 -Dw=$100 -Dn=$-1 -Dtwo=2 -DPOKMSK=$1234 -code-reg 82 -data-reg D301");
}

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
