#include "support/machine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace kiln::test {
namespace {

constexpr uint16_t runVector = 0x02E0;
constexpr uint16_t initVector = 0x02E2;
constexpr uint16_t portB = 0xD301;
constexpr uint8_t romByte = 0x60;
constexpr uint64_t maxInitSteps = 4'000'000;
constexpr std::string_view marker = "\xFF\xFF";

constexpr uint8_t byte(int value) { return static_cast<uint8_t>(value); }
constexpr uint16_t word(int value) { return static_cast<uint16_t>(value); }

uint16_t wordIn(std::string_view file, size_t at) {
  return word(static_cast<uint8_t>(file[at]) | static_cast<uint8_t>(file[at + 1]) << 8);
}

std::string hex(unsigned value, int digits = 4) {
  char text[16];
  std::snprintf(text, sizeof text, "$%0*X", digits, value);
  return text;
}

// The instruction set, laid out by hand. Operations that find their operand in memory have a row with a column a mode,
// where 0 stands for "none"; the others name their mode.
// clang-format off
enum class Operation : uint8_t {
  Unknown, Adc, Add, And, Asl, Bcc, Bcs, Beq, Bit, Bmi, Bne, Bpl, Bra, Brk, Bvc, Bvs, Clc, Cld, Cli, Clv, Cmp, Cpx,
  Cpy, Dec, Dex, Dey, Eor, Inc, Inx, Iny, Jmp, Jsr, Lda, Ldx, Ldy, Lsr, Nop, Ora, Pha, Php, Phx, Phy, Pla, Pll, Plp,
  Plx, Ply, Psh, Rol, Ror, Rti, Rts, Sbc, Sec, Sed, Sei, Sta, Stx, Sty, Tax, Tay, Tsx, Txa, Txs, Tya
};
enum class Mode : uint8_t {
  Immediate, ZeroPage, ZeroPageX, ZeroPageY, Absolute, AbsoluteX, AbsoluteY, IndexedIndirectX, IndirectIndexedY,
  StackRelative, StackIndirectY, StackRelativeX,  // up to here the columns of memoryRows
  Implied, Accumulator, Relative, Indirect
};
using enum Operation;
using enum Mode;
using enum Machine::Flag;

constexpr size_t memoryModes = 12;
constexpr uint8_t reads[memoryModes]    =  {2,    3,    4,    4,    4,    4,    4,    6,    5,    4,    6,    5   };
constexpr uint8_t stores[memoryModes]   =  {0,    3,    4,    4,    4,    5,    5,    6,    6,    4,    6,    5   };
constexpr uint8_t modifies[memoryModes] =  {0,    5,    6,    0,    6,    7,    0,    0,    0,    0,    0,    0   };

struct MemoryRow {
  Operation operation;
  const uint8_t* cycles;
  uint8_t opcodes[memoryModes];
};
constexpr MemoryRow memoryRows[] = {
    //               imm   zp    zp,x  zp,y  abs   abs,x abs,y (zp,x) (),y n,sp  (),y  n,sp,x
    {Adc, reads,    {0x69, 0x65, 0x75, 0,    0x6D, 0x7D, 0x79, 0x61, 0x71, 0x72, 0,    0   }},
    {And, reads,    {0x29, 0x25, 0x35, 0,    0x2D, 0x3D, 0x39, 0x21, 0x31, 0,    0,    0   }},
    {Asl, modifies, {0,    0x06, 0x16, 0,    0x0E, 0x1E, 0,    0,    0,    0,    0,    0   }},
    {Bit, reads,    {0,    0x24, 0,    0,    0x2C, 0,    0,    0,    0,    0,    0,    0   }},
    {Cmp, reads,    {0xC9, 0xC5, 0xD5, 0,    0xCD, 0xDD, 0xD9, 0xC1, 0xD1, 0xD2, 0,    0   }},
    {Cpx, reads,    {0xE0, 0xE4, 0,    0,    0xEC, 0,    0,    0,    0,    0,    0,    0   }},
    {Cpy, reads,    {0xC0, 0xC4, 0,    0,    0xCC, 0,    0,    0,    0,    0,    0,    0   }},
    {Dec, modifies, {0,    0xC6, 0xD6, 0,    0xCE, 0xDE, 0,    0,    0,    0,    0,    0   }},
    {Eor, reads,    {0x49, 0x45, 0x55, 0,    0x4D, 0x5D, 0x59, 0x41, 0x51, 0,    0,    0   }},
    {Inc, modifies, {0,    0xE6, 0xF6, 0,    0xEE, 0xFE, 0,    0,    0,    0,    0,    0   }},
    {Lda, reads,    {0xA9, 0xA5, 0xB5, 0,    0xAD, 0xBD, 0xB9, 0xA1, 0xB1, 0xB2, 0x03, 0x23}},
    {Ldx, reads,    {0xA2, 0xA6, 0,    0xB6, 0xAE, 0,    0xBE, 0,    0,    0x42, 0,    0   }},
    {Ldy, reads,    {0xA0, 0xA4, 0xB4, 0,    0xAC, 0xBC, 0,    0,    0,    0x52, 0,    0   }},
    {Lsr, modifies, {0,    0x46, 0x56, 0,    0x4E, 0x5E, 0,    0,    0,    0,    0,    0   }},
    {Ora, reads,    {0x09, 0x05, 0x15, 0,    0x0D, 0x1D, 0x19, 0x01, 0x11, 0,    0,    0   }},
    {Rol, modifies, {0,    0x26, 0x36, 0,    0x2E, 0x3E, 0,    0,    0,    0,    0,    0   }},
    {Ror, modifies, {0,    0x66, 0x76, 0,    0x6E, 0x7E, 0,    0,    0,    0,    0,    0   }},
    {Sbc, reads,    {0xE9, 0xE5, 0xF5, 0,    0xED, 0xFD, 0xF9, 0xE1, 0xF1, 0xF2, 0,    0   }},
    {Sta, stores,   {0,    0x85, 0x95, 0,    0x8D, 0x9D, 0x99, 0x81, 0x91, 0x92, 0x13, 0x33}},
    {Stx, stores,   {0,    0x86, 0,    0x96, 0x8E, 0,    0,    0,    0,    0x02, 0,    0   }},
    {Sty, stores,   {0,    0x84, 0x94, 0,    0x8C, 0,    0,    0,    0,    0x12, 0,    0   }},
};

struct Instruction {
  uint8_t opcode = 0;
  Operation operation = Unknown;
  Mode mode = Implied;
  uint8_t cycles = 0;
};
constexpr Instruction singleRows[] = {
    {0x60, Rts, Implied, 6}, {0x40, Rti, Implied, 6}, {0x00, Brk, Implied, 7}, {0xEA, Nop, Implied, 2},
    {0x18, Clc, Implied, 2}, {0x38, Sec, Implied, 2}, {0x58, Cli, Implied, 2}, {0x78, Sei, Implied, 2},
    {0xB8, Clv, Implied, 2}, {0xD8, Cld, Implied, 2}, {0xF8, Sed, Implied, 2}, {0x88, Dey, Implied, 2},
    {0xC8, Iny, Implied, 2}, {0xCA, Dex, Implied, 2}, {0xE8, Inx, Implied, 2}, {0x8A, Txa, Implied, 2},
    {0x98, Tya, Implied, 2}, {0x9A, Txs, Implied, 2}, {0xA8, Tay, Implied, 2}, {0xAA, Tax, Implied, 2},
    {0xBA, Tsx, Implied, 2}, {0x08, Php, Implied, 3}, {0x48, Pha, Implied, 3}, {0x44, Phx, Implied, 3},
    {0x54, Phy, Implied, 3}, {0x28, Plp, Implied, 4}, {0x68, Pla, Implied, 4}, {0x64, Plx, Implied, 4},
    {0x74, Ply, Implied, 4},
    {0x0A, Asl, Accumulator, 2}, {0x4A, Lsr, Accumulator, 2}, {0x2A, Rol, Accumulator, 2}, {0x6A, Ror, Accumulator, 2},
    {0x10, Bpl, Relative, 2},    {0x30, Bmi, Relative, 2},    {0x50, Bvc, Relative, 2},    {0x70, Bvs, Relative, 2},
    {0x80, Bra, Relative, 2},    {0x90, Bcc, Relative, 2},    {0xB0, Bcs, Relative, 2},    {0xD0, Bne, Relative, 2},
    {0xF0, Beq, Relative, 2},    {0x4C, Jmp, Absolute, 3},    {0x6C, Jmp, Indirect, 5},    {0x20, Jsr, Absolute, 6},
    {0x22, Add, Immediate, 2},   {0x32, Psh, Immediate, 2},   {0x62, Pll, Immediate, 2},
};
// clang-format on

constexpr std::array<Instruction, 256> makeDecodeTable() {
  std::array<Instruction, 256> table{};
  for (const Instruction& row : singleRows)
    table[row.opcode] = row;
  for (const MemoryRow& row : memoryRows) {
    for (size_t mode = 0; mode < memoryModes; ++mode) {
      const uint8_t opcode = row.opcodes[mode];
      if (opcode != 0) table[opcode] = {opcode, row.operation, static_cast<Mode>(mode), row.cycles[mode]};
    }
  }
  return table;
}

constexpr std::array<Instruction, 256> decodeTable = makeDecodeTable();

// 151 documented opcodes and 21 extensions; fewer would mean that a row hides another.
static_assert(std::ranges::count(decodeTable, Unknown, &Instruction::operation) == 256 - 172);

// One instruction at work.
struct Processor {
  Machine& m;
  Mode mode = Implied;
  uint16_t at = 0;  // the operand's address, or where JMP and JSR lead

  uint8_t fetch() { return m.peek(m.pc++); }
  uint16_t fetchWord() { return m.peekWord(std::exchange(m.pc, word(m.pc + 2))); }
  // The high byte comes from the same page, for JMP as for the pointers in the zero page and on the stack.
  uint16_t pointerAt(uint16_t low) const {
    return word(m.peek(low) | m.peek(word((low & 0xFF00) | byte(low + 1))) << 8);
  }
  uint16_t onStack(int n) const { return word(0x0100 | byte(m.s + n)); }

  void store(uint16_t address, uint8_t stored) {
    if (m.onWrite) m.onWrite(address, stored);
    m.poke(address, stored);
  }
  void push(uint8_t pushed) { store(word(0x0100 | m.s--), pushed); }
  uint8_t pull() { return m.peek(word(0x0100 | ++m.s)); }
  void pushWord(uint16_t pushed) {
    push(byte(pushed >> 8));
    push(byte(pushed));
  }
  uint16_t pullWord() {
    const uint8_t low = pull();
    return word(low | pull() << 8);
  }
  void pushFlags(uint8_t mark) { push(byte((m.p & ~breakMark) | alwaysSet | mark)); }
  void pullFlags() { m.p = byte((pull() & ~breakMark) | alwaysSet); }

  bool has(uint8_t flag) const { return (m.p & flag) != 0; }
  void set(uint8_t flag, bool on) { m.p = byte(on ? m.p | flag : m.p & ~flag); }
  void judge(uint8_t result) {
    set(zero, result == 0);
    set(negative, result >= 0x80);
  }

  uint8_t value() const { return mode == Accumulator ? m.a : m.peek(at); }
  void load(uint8_t& target, int result) { judge(target = byte(result)); }
  void replace(int result) {
    if (mode == Accumulator) return load(m.a, result);
    store(at, byte(result));
    judge(byte(result));
  }
  void shift(int result, uint8_t bitOut) {
    set(carry, (value() & bitOut) != 0);
    replace(result);
  }
  void add(int term) {
    const int sum = m.a + term + has(carry);
    set(carry, sum > 0xFF);
    set(overflow, (~(m.a ^ term) & (m.a ^ sum) & 0x80) != 0);
    load(m.a, sum);
  }
  void compare(uint8_t held) {
    set(carry, held >= value());
    judge(byte(held - value()));
  }
  void testBits() {
    m.p = byte((m.p & 0x3F) | (value() & 0xC0));
    set(zero, (m.a & value()) == 0);
  }
  void branch(bool taken) {
    m.cycles += taken;
    if (taken) m.pc = word(m.pc + static_cast<int8_t>(value()));
  }

  uint16_t resolve();
  void execute(Operation operation);
};

// clang-format off
uint16_t Processor::resolve() {
  switch (mode) {
    case Immediate:
    case Relative:         return m.pc++;
    case ZeroPage:         return fetch();
    case ZeroPageX:        return byte(fetch() + m.x);
    case ZeroPageY:        return byte(fetch() + m.y);
    case Absolute:         return fetchWord();
    case AbsoluteX:        return word(fetchWord() + m.x);
    case AbsoluteY:        return word(fetchWord() + m.y);
    case IndexedIndirectX: return pointerAt(byte(fetch() + m.x));
    case IndirectIndexedY: return word(pointerAt(fetch()) + m.y);
    case StackRelative:    return onStack(fetch());
    case StackIndirectY:   return word(pointerAt(onStack(fetch())) + m.y);
    case StackRelativeX:   return onStack(fetch() + m.x);
    case Indirect:         return pointerAt(fetchWord());
    default:               return 0;  // none, or the accumulator
  }
}

void Processor::execute(Operation operation) {
  at = resolve();
  switch (operation) {
    case Lda: load(m.a, value()); break;    case Ldx: load(m.x, value()); break;  case Ldy: load(m.y, value()); break;
    case Sta: store(at, m.a); break;        case Stx: store(at, m.x); break;      case Sty: store(at, m.y); break;
    case Cmp: compare(m.a); break;          case Cpx: compare(m.x); break;        case Cpy: compare(m.y); break;
    case Pha: push(m.a); break;             case Phx: push(m.x); break;           case Phy: push(m.y); break;
    case Pla: load(m.a, pull()); break;     case Plx: load(m.x, pull()); break;   case Ply: load(m.y, pull()); break;
    case Inc: replace(value() + 1); break;  case Inx: load(m.x, m.x + 1); break;  case Iny: load(m.y, m.y + 1); break;
    case Dec: replace(value() - 1); break;  case Dex: load(m.x, m.x - 1); break;  case Dey: load(m.y, m.y - 1); break;
    case Txs: m.s = m.x; break;             case Tax: load(m.x, m.a); break;      case Tay: load(m.y, m.a); break;
    case Tsx: load(m.x, m.s); break;        case Txa: load(m.a, m.x); break;      case Tya: load(m.a, m.y); break;
    case Clc: set(carry, false); break;            case Sec: set(carry, true); break;
    case Cld: set(decimal, false); break;          case Sed: set(decimal, true); break;
    case Cli: set(interruptsOff, false); break;    case Sei: set(interruptsOff, true); break;
    case Clv: set(overflow, false); break;         case Bra: branch(true); break;
    case Bcc: branch(!has(carry)); break;          case Bcs: branch(has(carry)); break;
    case Bne: branch(!has(zero)); break;           case Beq: branch(has(zero)); break;
    case Bpl: branch(!has(negative)); break;       case Bmi: branch(has(negative)); break;
    case Bvc: branch(!has(overflow)); break;       case Bvs: branch(has(overflow)); break;
    case And: load(m.a, m.a & value()); break;     case Ora: load(m.a, m.a | value()); break;
    case Eor: load(m.a, m.a ^ value()); break;     case Bit: testBits(); break;
    case Adc: add(value()); break;                 case Sbc: add(value() ^ 0xFF); break;
    case Asl: shift(value() << 1, 0x80); break;    case Rol: shift(value() << 1 | has(carry), 0x80); break;
    case Lsr: shift(value() >> 1, 0x01); break;    case Ror: shift(value() >> 1 | has(carry) << 7, 0x01); break;
    case Php: pushFlags(breakMark); break;         case Plp: pullFlags(); break;
    case Jmp: m.pc = at; break;                    case Jsr: pushWord(word(m.pc - 1)), m.pc = at; break;
    case Rts: m.pc = word(pullWord() + 1); break;  case Rti: pullFlags(), m.pc = pullWord(); break;
    case Psh: m.s = byte(m.s - value()); break;    case Pll: case Add: m.s = byte(m.s + value()); break;
    case Unknown: case Brk: case Nop: break;
  }
}
// clang-format on

}  // namespace

bool Machine::showsRom(uint16_t address) const {
  return osRom && (memory_[portB] & 1) != 0 && address >= 0xC000 && (address < 0xD000 || address >= 0xD800);
}

Machine::BankKey Machine::selectedAt(uint16_t address) const {
  for (size_t i = 0; i < windows.size(); ++i) {
    const BankWindow& window = windows[i];
    if (address < window.low || address > window.high) continue;
    uint32_t bank = memory_[window.registerLow];
    if (window.registerHigh != 0) bank += memory_[window.registerHigh] * 256u;
    if (bank != 0) return {i, bank};
  }
  return {};
}

uint8_t Machine::bankByte(size_t window, uint32_t bank, uint16_t address) const {
  if (bank == 0) return memory_[address];
  const auto found = banks_.find({window, bank});
  return found == banks_.end() ? uint8_t{0} : found->second.at(size_t{address} - windows[window].low);
}

uint8_t Machine::peek(uint16_t address) const {
  if (showsRom(address)) return romByte;
  const auto [window, bank] = selectedAt(address);
  return bankByte(window, bank, address);
}

uint16_t Machine::peekWord(uint16_t address) const { return word(peek(address) | peek(word(address + 1)) << 8); }

void Machine::poke(uint16_t address, uint8_t value) {
  if (showsRom(address)) return;
  const BankKey key = selectedAt(address);
  if (key.second == 0) {
    memory_[address] = value;
    return;
  }
  const BankWindow& window = windows[key.first];
  std::vector<uint8_t>& bytes = banks_[key];
  bytes.resize(size_t{window.high} - window.low + 1);
  bytes[size_t{address} - window.low] = value;
}

bool Machine::fail(std::string text) {
  error = std::move(text);
  return false;
}

void Machine::loadSegment(uint16_t first, std::string_view bytes) {
  uint16_t address = first;
  for (const char c : bytes)
    poke(address++, static_cast<uint8_t>(c));
  segments.push_back({first, word(address - 1)});
}

bool Machine::honourVectors(const Segment& segment) {
  const auto holds = [&segment](uint16_t vector) { return segment.first <= vector + 1 && segment.last >= vector; };
  if (holds(runVector)) runAddress = peekWord(runVector);
  if (!holds(initVector)) return true;
  const bool done = call(peekWord(initVector), maxInitSteps);
  poke(initVector, 0);
  poke(initVector + 1, 0);
  return done;
}

bool Machine::loadXex(std::string_view file) {
  if (!file.starts_with(marker)) return fail("no marker at the start of the file");
  file.remove_prefix(marker.size());
  while (!file.empty()) {
    if (file.starts_with(marker)) file.remove_prefix(marker.size());
    if (file.size() < 4) return fail("the last segment's header is cut short");
    const Segment segment{wordIn(file, 0), wordIn(file, 2)};
    const std::string name = "segment " + hex(segment.first) + "-" + hex(segment.last);
    file.remove_prefix(4);
    if (segment.last < segment.first) return fail(name + " ends before it begins");
    const size_t length = size_t{segment.last} - segment.first + 1;
    if (file.size() < length) return fail(name + " is cut short");
    loadSegment(segment.first, file.substr(0, length));
    if (!honourVectors(segment)) return false;
    file.remove_prefix(length);
  }
  return true;
}

bool Machine::loadPrg(std::string_view file) {
  if (file.size() < 3) return fail("no byte behind the load address");
  const uint16_t first = wordIn(file, 0);
  file.remove_prefix(2);
  if (first + file.size() > 0x10000) return fail("the file runs past $FFFF");
  loadSegment(first, file);
  return true;
}

void Machine::jumpTo(uint16_t address) {
  error.clear();
  pc = address;
}

void Machine::beginCall(uint16_t address) {
  const uint16_t returnAddress = returnMark - 1;
  poke(word(0x0100 | s--), byte(returnAddress >> 8));
  poke(word(0x0100 | s--), byte(returnAddress));
  jumpTo(address);
}

bool Machine::call(uint16_t address, uint64_t maxSteps) {
  beginCall(address);
  for (uint64_t i = 0; i < maxSteps && !returned(); ++i) {
    if (!step()) return false;
  }
  return returned() || fail("no return after " + std::to_string(maxSteps) + " steps, at " + hex(pc));
}

bool Machine::run(uint64_t maxSteps) {
  if (!runAddress.has_value()) return fail("no run address");
  return call(*runAddress, maxSteps);
}

bool Machine::step() {
  if (!error.empty()) return false;
  const Instruction& instruction = decodeTable[peek(pc)];
  if (instruction.operation == Brk) return fail("hit BRK at " + hex(pc));
  if (instruction.operation == Unknown) return fail("unknown opcode " + hex(peek(pc), 2) + " at " + hex(pc));
  ++pc;
  ++steps;
  cycles += instruction.cycles;
  Processor{*this, instruction.mode}.execute(instruction.operation);
  return true;
}

void Machine::nmi() {
  Processor processor{*this};
  processor.pushWord(pc);
  processor.pushFlags(0);
  p |= interruptsOff;
  pc = nmiVector;
  cycles += 7;
}

}  // namespace kiln::test
