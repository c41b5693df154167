// What kiln-check says about segments, long branches, code regions, shadow code and banks, beside the examples of
// docs/check.md. Most of these programs differ in one line from one that gives the opposite.
#include <gtest/gtest.h>

#include "support/findings.h"

namespace kiln::test {
namespace {

struct Case {
  std::string source;
  std::vector<std::string> findings = {};  // "LINE:COLUMN CHECK"
  std::string options = "";
};

void expectAll(const std::vector<Case>& cases, const std::map<std::string, std::string>& files = {}) {
  for (const auto& [source, findings, options] : cases) {
    SCOPED_TRACE(options + "\n" + source);
    expectFindings({source, options, files}, findings);
  }
}

TEST(CheckMemory, FindsTheEndOfMemoryOnceASegment) {
  expectAll({
      {".org $FFFF\n.byte 1\n.org $FE00\n.space 256\n"},
      {".org $FFFF\n.word 1\n.word 2\n.org $FFFE\n.byte 0,1,0\n", {"2:1 past-end", "5:1 past-end"}},
  });
}

TEST(CheckMemory, FindsBytesBeforeTheFirstOriginOnce) {
  expectAll({
      {"start:\nn = 5\n.org $2000\nRTS\n"},
      {"NOP\nNOP\n.org $2000\nRTS\n", {"1:1 before-origin"}},
      {".space 0\n.org 0\nRTS\n"},
      // The line that has vanished is reported already.
      {".org\t$2000\nRTS\n", {"1:1 tab-after-directive"}},
      {"*= $2000\nRTS\n", {"1:1 vanished"}},
      {".zrg $2000\nRTS\n", {"1:1 vanished"}},
      {"\xEF\xBB\xBF .org $2000\nRTS\n", {"1:1 byte-order-mark"}},
  });
}

TEST(CheckMemory, FindsOverlapsThatLoseBytes) {
  const std::string code = ".org $2000\n.byte 1,2,3\n";
  expectAll({
      {code + ".org $1FFF\n.byte 9,9\n", {"3:1 overlap"}},
      {code + ".org $1FFF\n.byte 9,1\n"},                                                // an equal byte
      {code + ".org $1FFF\n.byte 9\n"},                                                  // ends before it
      {code + ".org $2001\n.byte 2,3,9\n"},                                              // goes on after it
      {code + ".org $2002\n.space 1\n", {"3:1 overlap"}},                                // zeros replace code
      {".org $2000\n.space 9\n.org $2003\n.byte 7\n"},                                   // code replaces zeros
      {code + ".org $02E2\n.word $2000\n.org $2000\n.byte 9\n"},                         // the loader calls $2000
      {code + ".org $02E2\n.byte 0\n.org $2000\n.byte 9\n", {"5:1 overlap"}},            // half a word
      {code + ".cloaked_segment $2000,1\n.byte 9\n.cloaked_segment_end\n"},              // loaded in its own way
      {code + ".org $2002\n.byte 3\n.org $1000\n.byte 1\n", {"3:1 overlap"}, "-f prg"},  // moved although it is equal
  });
}

TEST(CheckMemory, FindsWordsForTheLoaderThatDoNotWork) {
  const std::string code = ".org $2000\nNOP\nstart: RTS\n";
  expectAll({
      {code + ".org $02E0\n.word $2000\n"},                               // what is written anyway
      {code + ".org RUNAD\n.byte <start,>start\n", {"5:1 run-address"}},  // $2001
      {code + ".org RUNAD\n.byte <start,>start\n", {}, "-e start"},
      {code + ".org RUNAD\n.word start\n", {}, "-f prg"},
      {code + ".org $02D0\n.byte 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\n"},  // other data at $02E0
      {code + ".org $02E2\n.word start\n"},
      {code + ".org $02E2\n.word $E474\n"},  // in the ROM
      {code + ".org $02E2\n.word again\n.org $3000\nagain: RTS\n", {"5:1 run-address"}},
      {code + ".org $FFF0\n.space 752\n.word 5\n", {"5:1 past-end"}},  // comes to $02E0
      {".org $02E2\n.word $E474\n" + code, {"1:1 run-address"}},       // the program starts at the word
  });
}

TEST(CheckMemory, FindsWhatIsLostWithALongBranch) {
  const std::string far = ".space 200\nfar: RTS\n";
  expectAll({
      {".org $2000\nloop: BRA far\n" + far + "JMP loop\n", {"2:1 lost-with-branch"}},  // and not that loop is unknown
      {".org $2000\nBEQ near : BEQ far\nnear: " + far, {"2:1 lost-with-branch"}},      // BEQ near is lost
      {".org $2000\nBEQ  far+1 : NOP\n" + far, {"2:14 lost-with-branch"}},
      {".org $2000\nmain:\n.loop: BEQ far\n" + far + "JMP .loop\n", {"3:1 lost-with-branch"}},
      {".org $2000\nBEQ far ; a comment : NOP\n" + far},
      {".macro SKIP target\n BEQ target : NOP\n\n.org $2000\nSKIP far\n" + far, {"5:1 lost-with-branch"}},
  });
}

TEST(CheckMemory, FindsLongBranchesThatWereShortToSkip) {
  const std::string far = "RTS\n.space 200\nfar: RTS\n";
  expectAll({
      {".org $2000\nCLC\n.byte $24\nBCC far\n" + far, {"4:1 skipped-branch"}},
      {".org $2000\nCLC\n.byte skip\nlabel:\nBRA far\n" + far + "skip = 44\n", {"5:1 skipped-branch"}},
      {".org $2000\nBEQ far\n.byte $2C\nBNE far\n" + far, {"4:1 skipped-branch"}},
      {".org $2000\nRTS\ntable: .byte $2C\ncode:\nBNE far\n" + far},  // data after the end of a routine
      {".org $2000\nCLC\n.byte $2D\nBNE far\n" + far},
      {".org $2000\nCLC\n.byte $2C\nJMP far\n" + far},
  });
}

// Nothing may reach into the last ten bytes of a region: here everything from $2008 on moves to $3000.
TEST(CheckMemory, FindsDataThatARegionCuts) {
  const std::string regions = ".org $2000\n.code_regions $2000-$2011,$3000-$30FF\n";
  expectAll({
      {regions + "JMP $E474\n.byte 1,2,3,4\n.byte 5,6\n", {"5:1 cut-table"}},
      {regions + "JMP $E474\n.byte 1,2,3,4\nnext: .byte 5,6\n", {"5:1 region-bridge"}, "-Wregion-bridge"},
      {regions + "LDA $1234\n.byte 1,2,3,4\n.byte 5,6\n"},  // may be code
      {regions + "LDA $1234\n.byte 1,2,3,4\n.word 5\n", {"5:1 cut-table"}},
      {regions + "LDA $1234\nNOP\nJSR $E474\n.string \"HELLO\"\n", {"6:1 cut-table"}},
      {regions + "LDA $1234\nLDA $1234\n.byte $2C\nLDA #1\n", {"6:1 cut-table"}},
      {regions + "LDA $1234\nLDA $1234\n.byte $0C\nLDA #1\n"},
      {regions + "JMP $E474\n.byte 1,2,3,4\n.space 2\n", {"5:1 cut-table"}},
  });
}

TEST(CheckMemory, FindsLabelsThatStayInARegion) {
  const std::string regions = ".org $2000\n.code_regions $2000-$2011,$3000-$30FF\nLDA $1234\nJMP $E474\n";
  expectAll({
      {regions + "label:\n.byte 1,2,3,4\n", {"5:1 label-left"}},
      {regions + "label:\n\n.space 4\n", {"5:1 label-left"}},
      {regions + "label:\nLDA $1234\n"},           // the JMP is at the label
      {regions + "end:\nlabel: .byte 1,2,3,4\n"},  // the end of what is above
      {regions + "NOP\nlabel:\n.byte 1,2\n"},      // may be code
      {regions + "label:\n.spill_point\nLDA $1234\n.space 20\n", {"5:1 label-left"}},
      {regions + "end:\n.spill_point\nlabel:\nLDA $1234\n.space 20\n"},
      {regions + "label: .spill_point\nLDA $1234\n"},  // divided, with a JMP at the label
  });
  // The JMP to the data is at the label that a long branch makes.
  const std::string far = ".org $5000\nfar: RTS\n";
  expectAll({{".org $2000\n.code_regions $2000-$2013,$3000-$30FF\nLDA $1234\nBEQ far\n.byte 4,$80,4,$80\n" + far}});
}

TEST(CheckMemory, FindsJumpsBetweenRegionsThatNothingReaches) {
  const std::string regions = ".org $2000\n.code_regions $2000-$2011,$3000-$30FF\nLDA $1234\nLDA $1234\n";
  const std::string bridge = "-Wregion-bridge";
  expectAll({
      {regions + "RTS\n; a comment\nnext: LDA $1234\n", {"7:1 region-bridge"}, bridge},
      {regions + "RTS\nn = 5\nnext: .byte 1,2\n", {"7:1 region-bridge"}, bridge},
      {regions + "loop: BRA loop\nnext: LDA $1234\n", {"6:1 region-bridge"}, bridge},
      {regions + "RTS\nnext: LDA $1234\n", {}, bridge},
      {regions + "RTS\nnext:\nLDA $1234\n", {}, bridge},  // the JMP is at the label
      {regions + "NOP\n\nnext: LDA $1234\n", {}, bridge},
      {regions + "RTS\n\nnext: LDA $1234\n"},  // three bytes lost, and no harm
  });
}

TEST(CheckMemory, FindsShadowCodeThatIsNotCopied) {
  const std::string ranges = ".shadow_ranges $C000-$CFFF\n", code = ".org $2000\n.byte 1\n.org $C000\n.byte 1\n";
  expectAll({
      {ranges + ".shadow_stage 0\n" + code, {"1:1 half-shadow"}},
      {ranges + ".shadow_syage $3800\n" + code, {"2:1 vanished"}},
      {ranges + ".shadow_stage\t$3800\n" + code, {"2:1 tab-after-directive"}},
      {ranges + code, {}, "-f prg"},
      {ranges + ".shadow_stage nowhere\n" + code, {}, "-Wno-undefined -Wno-assembler"},
      {ranges + ".shadow_stage $1F86\n" + code},  // up to $2000: 122 bytes
      {ranges + ".shadow_stage $1F87\n" + code, {"2:1 stage-in-use"}},
      {".shadow_ranges $D000-$DFFF\n.shadow_stage $2000\n" + code},  // nothing is staged
  });
}

const std::map<std::string, std::string> layouts = {
    {"plain.lnk", "[memory]\nmain = $2000-$3FFF\n[banking]\nwindow = $4000-$7FFF\nregisters = $82, $83\n"},
    {"none.lnk", "[memory]\nmain = $2000-$3FFF\n[banking]\nwindow = $4000-$7FFF\n"},
    {"halves.lnk",
     "[memory]\nmain = $2000-$3FFF\n[banking]\ndatawindow = $6000-$7FFF\ncodewindow = $4000-$5FFF\n"
     "codereg = $82\n"},
    {"regc.lnk",
     "[memory]\nmain = $2000-$3FFF\n[banking]\nwindow = $4000-$7FFF\nregisters = $82, $83\n"
     "regcwindow = $4000-$7FFF\nregcreg = $D301\n"},
};

TEST(CheckMemory, FindsBanksThatCannotBeReached) {
  const std::string code = ".org $2000\nRTS\n", bank = ".bank first\n.byte 1,2\n";
  expectAll(
      {
          {code + bank, {"3:1 flat-bank"}},
          {code + bank + ".bank other\n.byte 1\n", {"3:1 flat-bank"}, "-f prg -L plain.lnk"},
          {code + bank, {}, "-code-window $4000-$7FFF"},
          {code + bank, {"3:1 missing-window"}, "-b"},
          {code + bank, {"3:1 missing-register"}, "-L none.lnk"},
          {code + bank, {"3:1 missing-register"}, "-L none.lnk -code-reg 82"},
          {code + bank, {}, "-L halves.lnk"},
          {code + bank + ".org $6000\n.byte 1\n", {"5:1 missing-register"}, "-L halves.lnk"},
          {code + bank, {"3:1 portb-register"}, "-L regc.lnk"},
          {code + bank + ".bank other\n.byte 1\n" + bank, {"7:1 bank-twice"}, "-L plain.lnk"},
          {code + bank + bank, {}, "-L halves.lnk"},
          {code + bank + bank + "LDA #__bank_first\n", {"5:1 bank-count"}, "-L halves.lnk"},
      },
      layouts);
}

TEST(CheckMemory, FindsCallsThatSelectNoBank) {
  const std::string main = ".org $2000\nJSR one\n", bank = ".bank first\none: NOP\n";
  const std::string other = ".org $4000\nother: NOP\n";
  expectAll(
      {
          {main + bank + "JSR other\n" + other, {"5:1 call-not-staged"}, "-L plain.lnk"},
          {main + bank + other + "JSR other\n", {}, "-L plain.lnk"},  // in its own bank
          {main + bank + other + "JSR one\n", {}, "-L plain.lnk"},    // staged
          {main + bank + other + "BEQ one\n", {"7:1 call-not-staged"}, "-L plain.lnk"},
          {main + "JMP other\n" + bank + other, {"3:1 call-not-staged"}, "-L plain.lnk"},
          {main + "STY $0082\nJMP other\n" + bank + other, {}, "-L plain.lnk"},  // selects it itself
          {main + "STY $0082\n" + bank + "JMP other\n" + other, {"6:1 call-not-staged"}, "-L plain.lnk"},
          {main + "LDA other\n" + bank + other, {}, "-L plain.lnk"},
      },
      layouts);
}

TEST(CheckMemory, ReportsWhatTheWritersOfFilesSay) {
  const std::string main = ".org $2000\nRTS\n", bank = ".bank one\n.byte 1\n";
  const std::string shadow = ".shadow_ranges $C000-$CFFF\n.org $C000\n.byte 1\n";
  expectAll(
      {
          {main + bank + ".bank two\n.space $4000\n", {}, "-L plain.lnk"},
          {main + bank + ".bank two\n.space $4001\n", {"5:1 assembler"}, "-L plain.lnk"},
          {".org $3FFF\nRTS\n" + bank, {}, "-L plain.lnk"},
          {".org $3FFF\nNOP\nRTS\n" + bank, {"1:1 assembler"}, "-L plain.lnk"},
          {shadow + ".shadow_stage $7F86\n"},  // up to $8000: 122 bytes
          {shadow + ".shadow_stage $7F87\n", {"4:1 assembler"}},
          {shadow + ".shadow_stage $FF87\n", {"4:1 assembler", "4:1 assembler"}},  // the screen, and the end of memory
          {".cloaked_segment $4000,1\n.byte 1\n.cloaked_segment_end\n" + main, {"1:1 assembler"}, "-L plain.lnk"},
          {"; nothing\n"},
          {"; nothing\n", {"assembler"}, "-f prg"},
      },
      layouts);
}

}  // namespace
}  // namespace kiln::test
