// A staged call goes through main memory. Say bank 2 calls `draw` in bank 5 with JSR draw; the line becomes JSR _kxb_0.
// The routine there (one a target) saves what the call must not change and goes to _kxb_call with the target and its
// bank. That notes the return address and the bank of the caller in a ring, puts the address of _kxb_return in the
// place of the return address, selects bank 5 and enters `draw`:
//
//     the stack on entry          on entry of draw             the ring
//     $01FD  $4123-1 of bank 2    $01FD  _kxb_return-1         $4123-1, bank 2
//
// The RTS of `draw` leads to _kxb_return, which takes the entry back, selects bank 2 and continues at $4123. Everything
// above the return address, where arguments may be, is not moved.
//
// A JMP into another bank goes the same way. When the address on top of the stack is that of _kxb_return already, a
// caller further up is noted and nothing is added: so the target's RTS leads to that caller, and a program that jumps
// from bank to bank without end does not fill the ring. Anything else on top of the stack is taken for a return
// address.
//
// Interrupts may come between any two instructions, and their handlers may make staged calls, as long as they come back
// with the stack and the ring as they were. An entry is reserved by one INC before anything is written to it; a handler
// uses the entries above. All temporaries are on the stack. The bank is noted in __bank_current before the register is
// set: a handler that comes in between sets the register to the noted bank when it returns, which is the bank to be
// selected anyway.
//
// The stack is reached through X, which steps from byte to byte and so never leaves the page, whatever S is. The ring
// has 128 entries: when calls nest deeper, the oldest return is lost, and nothing else.
//
// With one register in zero page a call takes 278 cycles more than a direct one, and a jump after a noted return 128
// more. The code takes 17 bytes for each target and 138 once, the data 386 once.
#include "passes/stage_code.h"

#include <array>
#include <string>

#include "base/format.h"

namespace kiln {
namespace {

// Which programs need a line of the code: all, or only those with one register, or with two.
enum class With : uint8_t { Any, OneRegister, TwoRegisters };

// A line of the code with the bytes that it becomes. "{low}" and "{high}" stand for the registers, "{n}" for the
// target.
struct CodeLine {
  std::string_view text;
  uint8_t size;  // of a register store: without its high address byte
  With with = With::Any;
};

constexpr CodeLine routine[] = {
    {">_kxb_{n}: PHA", 1},  // room for the target's address
    {"    PHA", 1},
    {"    PHP", 1},
    {"    PHA", 1},
    {"    TXA", 1},
    {"    PHA", 1},
    {"    TYA", 1},
    {"    PHA", 1},
    {"    LDA #_kxb_{n}h", 2, With::TwoRegisters},
    {"    PHA", 1, With::TwoRegisters},
    {"    LDX #>_kxb_{n}a", 2},
    {"    LDY #<_kxb_{n}a", 2},
    {"    LDA #_kxb_{n}v", 2},
    {"    JMP _kxb_call", 3},
};

// On the stack from the top: bank (one byte or two), Y, X, A, P, room for the target, return address.
constexpr CodeLine common[] = {
    {">_kxb_call: PHA", 1},
    {"    TXA", 1},
    {"    TSX", 1},
    {"    INX", 1, With::TwoRegisters},
    {"    INX", 1},  // bank
    {"    INX", 1},  // Y
    {"    INX", 1},  // X
    {"    INX", 1},  // A
    {"    INX", 1},  // P
    {"    INX", 1},  // target, low
    {"    INX", 1},  // target, high
    {"    STA $0100,X", 3},
    {"    DEX", 1},
    {"    TYA", 1},
    {"    STA $0100,X", 3},
    {"    INX", 1},
    {"    INX", 1},  // return address, low
    {"    LDA $0100,X", 3},
    {"    CMP #<_kxb_return-1", 2},
    {"    BNE _kxb_note", 2},
    {"    INX", 1},
    {"    LDA $0100,X", 3},
    {"    DEX", 1},
    {"    CMP #>_kxb_return-1", 2},
    {"    BEQ _kxb_go", 2},
    {">_kxb_note: INC _kxb_depth", 3},
    {"    LDA _kxb_depth", 3},
    {"    AND #127", 2},
    {"    TAY", 1},
    {"    LDA __bank_current", 3},
    {"    STA _kxb_bank,Y", 3},
    {"    LDA __bank_current+1", 3, With::TwoRegisters},
    {"    STA _kxb_bankhigh,Y", 3, With::TwoRegisters},
    {"    LDA $0100,X", 3},
    {"    STA _kxb_low,Y", 3},
    {"    LDA #<_kxb_return-1", 2},
    {"    STA $0100,X", 3},
    {"    INX", 1},
    {"    LDA $0100,X", 3},
    {"    STA _kxb_high,Y", 3},
    {"    LDA #>_kxb_return-1", 2},
    {"    STA $0100,X", 3},
    {">_kxb_go: PLA", 1},
    {"    STA __bank_current", 3, With::OneRegister},
    {"    STA {low}", 2, With::OneRegister},
    {"    TAX", 1, With::TwoRegisters},
    {"    PLA", 1, With::TwoRegisters},
    {"    STX __bank_current", 3, With::TwoRegisters},
    {"    STA __bank_current+1", 3, With::TwoRegisters},
    {"    STX {low}", 2, With::TwoRegisters},
    {"    STA {high}", 2, With::TwoRegisters},
    {"    PLA", 1},
    {"    TAY", 1},
    {"    PLA", 1},
    {"    TAX", 1},
    {"    PLA", 1},
    {"    PLP", 1},
    {"    RTS", 1},
    {">_kxb_return: PHA", 1},  // room for the return address
    {"    PHA", 1},
    {"    PHP", 1},
    {"    PHA", 1},
    {"    TXA", 1},
    {"    PHA", 1},
    {"    TYA", 1},
    {"    PHA", 1},
    {"    LDA _kxb_depth", 3},
    {"    AND #127", 2},
    {"    TAY", 1},
    {"    TSX", 1},
    {"    INX", 1},  // Y
    {"    INX", 1},  // X
    {"    INX", 1},  // A
    {"    INX", 1},  // P
    {"    INX", 1},  // return address, low
    {"    LDA _kxb_low,Y", 3},
    {"    STA $0100,X", 3},
    {"    INX", 1},
    {"    LDA _kxb_high,Y", 3},
    {"    STA $0100,X", 3},
    {"    LDX _kxb_bank,Y", 3},
    {"    LDA _kxb_bankhigh,Y", 3, With::TwoRegisters},
    {"    DEC _kxb_depth", 3},
    {"    STX __bank_current", 3},
    {"    STA __bank_current+1", 3, With::TwoRegisters},
    {"    STX {low}", 2},
    {"    STA {high}", 2, With::TwoRegisters},
    {"    PLA", 1},
    {"    TAY", 1},
    {"    PLA", 1},
    {"    TAX", 1},
    {"    PLA", 1},
    {"    PLP", 1},
    {"    RTS", 1},
    {">__bank_current: .byte 0", 1, With::OneRegister},
    {">__bank_current: .byte 0,0", 2, With::TwoRegisters},
    {">_kxb_depth: .byte 0", 1},
    {">_kxb_low: .space 128", 128},
    {">_kxb_high: .space 128", 128},
    {">_kxb_bank: .space 128", 128},
    {">_kxb_bankhigh: .space 128", 128, With::TwoRegisters},
};

bool isNeeded(const CodeLine& line, const BankRegisters& registers) {
  return line.with != (registers.high.has_value() ? With::OneRegister : With::TwoRegisters);
}

template <size_t Count>
uint32_t sizeOf(const CodeLine (&code)[Count], const BankRegisters& registers) {
  uint32_t size = 0;
  for (const CodeLine& line : code) {
    if (!isNeeded(line, registers)) continue;
    const bool longLow = line.text.find("{low}") != std::string_view::npos && registers.low > 0xFF;
    const bool longHigh = line.text.find("{high}") != std::string_view::npos && registers.high.value_or(0) > 0xFF;
    size += line.size + (longLow || longHigh ? 1U : 0U);
  }
  return size;
}

template <size_t Count>
void append(const CodeLine (&code)[Count], const std::string& target, const BankRegisters& registers, TextStore& texts,
            std::vector<std::string_view>& lines) {
  const std::string low = dollarHex(registers.low, 2);
  const std::string high = dollarHex(registers.high.value_or(0), 2);
  for (const CodeLine& line : code) {
    if (!isNeeded(line, registers)) continue;
    const size_t open = line.text.find('{');
    if (open == std::string_view::npos) {
      lines.push_back(texts.join({line.text, stageComment}));
      continue;
    }
    const size_t close = line.text.find('}');
    const std::string_view name = line.text.substr(open + 1, close - open - 1);
    const std::string_view value = name == "n" ? target : name == "low" ? low : high;
    lines.push_back(texts.join({line.text.substr(0, open), value, line.text.substr(close + 1), stageComment}));
  }
}

}  // namespace

uint32_t stageRoutineSize(const BankRegisters& registers) { return sizeOf(routine, registers); }

uint32_t stageCommonSize(const BankRegisters& registers) { return sizeOf(common, registers); }

std::string_view stageRoutineName(size_t target, TextStore& texts) {
  return texts.join({"_kxb_", decimal(static_cast<int64_t>(target))});
}

std::string_view stageSymbolName(size_t target, StageSymbol symbol, TextStore& texts) {
  const char letter = static_cast<char>(symbol);
  return texts.join({"_kxb_", decimal(static_cast<int64_t>(target)), {&letter, 1}});
}

void appendStageRoutine(size_t target, const BankRegisters& registers, TextStore& texts,
                        std::vector<std::string_view>& lines) {
  append(routine, decimal(static_cast<int64_t>(target)), registers, texts, lines);
}

void appendStageCommon(const BankRegisters& registers, TextStore& texts, std::vector<std::string_view>& lines) {
  append(common, "", registers, texts, lines);
}

}  // namespace kiln
