#include "inspect/foreign_words.h"

#include <array>
#include <string>
#include <unordered_map>

#include "base/text.h"

namespace kiln {
namespace {

// clang-format off
constexpr std::array rows = {
    // Data
    ForeignWords{"db dfb dcb byt by fcb defb dc.b fcc dta", ".byte", true, "write '.byte'"},
    ForeignWords{"dw da dcw fdb defw dc.w addr wor", ".word", true, "write '.word', which stores the low byte first"},
    ForeignWords{"dd dl dc.l dword defl", ".long", true, "write '.long', which stores four bytes"},
    ForeignWords{"text asc asciiz asciz ascii tx pet scr screen str null sbyte", "", true,
                 "write '.string \"text\"', which adds a 0, or the codes of the letters after '.byte'"},
    ForeignWords{"ds res rmb dsb defs blkb", ".space", true, "write '.space', with the count as a number"},
    ForeignWords{"fill", "", true, "write '.space 16' for 16 zero bytes, or list other bytes after '.byte'"},
    // Names and addresses
    ForeignWords{"equ", "=", true, "write 'name = value'"},
    ForeignWords{"set define const let var assign defc", "", true, "write 'name = value'"},
    ForeignWords{"org orig", ".org", false, "write '.org'"},
    ForeignWords{"pc rorg rend phase dephase offs offset pseudopc logical", "", false,
                 "write '.org'; code runs at the address that it is loaded to"},
    ForeignWords{"align balign even", "", false, "nothing aligns: write '.org' with the next address"},
    // Control
    ForeignWords{"if else elif elseif elsif endif ifdef ifndef ifeq ifne iff fi eif endc cond", "", false,
                 "there are no conditions: the lines between are always part of the program"},
    ForeignWords{"rept repeat endr endrep endrepeat dup edup for endfor while endwhile do until irp", "", false,
                 "there are no repetitions: write the lines as often as they are wanted"},
    ForeignWords{"macro mac", "", true, "write '.macro name first,second' above the indented lines of the body"},
    ForeignWords{"endm endmacro mend endmac eom", "", false,
                 "a macro ends before the first line that is not indented: leave this line empty"},
    ForeignWords{"proc endproc pend scope endscope block bend endblock local endlocal struct endstruct ends zone "
                 "subroutine namespace endnamespace func endfunc function union enum",
                 "", false, "there are no blocks: a full label begins a scope, and '.name:' is a label in it"},
    // Files
    ForeignWords{"include incl get source import_once icl incsrc", ".include", false, "write '.include \"name\"'"},
    ForeignWords{"incbin binary bin insert ins", "", false,
                 "no file is inserted as bytes: turn it into lines of '.byte'"},
    ForeignWords{"end", "", false, "a source ends with its last line: leave this line out"},
    // Settings
    ForeignWords{"processor cpu setcpu machine mach p02 pc02 psc02 arch target model", "", false,
                 "there is no processor to choose: leave this line out"},
    ForeignWords{"segment section seg code data bss zeropage zp rodata dsect dend dummy cseg dseg area", "", false,
                 "there are no sections: write '.org' where a part begins"},
    ForeignWords{"export import global globl extern external public importzp exportzp globalzp xdef xref", "", false,
                 "every file knows the names of all: leave this line out"},
    ForeignWords{"list nolist title ttl sbttl subttl page width opt option lst eject feature linecont localchar "
                 "debuginfo encoding enc smart autoimport a8 a16 i8 i16",
                 "", false, "there is no such setting: leave this line out"},
    ForeignWords{"print echo out warning warn error fail assert message", "", false,
                 "nothing is printed or tested while assembling: leave this line out"},
    // Instructions
    ForeignWords{"stz", "", false, "the 6502 has no STZ: write 'LDA #0 : STA address'"},
    ForeignWords{"ina inca", "", false, "write 'CLC : ADC #1'"},
    ForeignWords{"dea deca", "", false, "write 'SEC : SBC #1'"},
    ForeignWords{"blt blo", "BCC", false, "write 'BCC'"},
    ForeignWords{"bge bhs", "BCS", false, "write 'BCS'"},
    ForeignWords{"xor", "EOR", false, "write 'EOR'"},
    ForeignWords{"trb tsb brl jml jsl rtl pea pei per phb phd phk plb pld rep sep tcd tdc tcs tsc txy tyx xba xce wai "
                 "stp wdm cop mvn mvp",
                 "", false, "this is an instruction of later processors"},
    ForeignWords{"lax sax aax dcp dcm isc isb slo aso rla sre lse rra anc alr asr arr sbx axs ane xaa las shx shy sha "
                 "ahx lxa jam kil hlt",
                 "", false, "undocumented instructions have no names: write the opcode and operand after '.byte'"},
};
// clang-format on

using Index = std::unordered_map<std::string_view, const ForeignWords*>;

Index makeIndex() {
  Index index;
  for (const ForeignWords& row : rows) {
    std::string_view words = row.words;
    for (std::string_view word = takeWord(words); !word.empty(); word = takeWord(words))
      index.emplace(word, &row);
  }
  return index;
}

constexpr size_t longestForeignWord = 16;

}  // namespace

const ForeignWords* foreignWordOf(std::string_view word) {
  static const Index index = makeIndex();
  if (word.size() > 1 && (word.front() == '.' || word.front() == '!' || word.front() == '#')) word.remove_prefix(1);
  if (word.size() > longestForeignWord) return nullptr;
  const auto found = index.find(toLower(word));
  return found == index.end() ? nullptr : found->second;
}

}  // namespace kiln
