#include "machine/machine.h"

#include <array>
#include <span>
#include <utility>

#include "base/format.h"
#include "isa/opcodes.h"

namespace kiln {
namespace {

constexpr uint16_t runVector = 0x02E0;
constexpr uint16_t initVector = 0x02E2;
constexpr uint16_t portBData = 0xD301;
constexpr uint16_t portBControl = 0xD303;
constexpr uint8_t romByte = 0x60;
constexpr int mostSteps = 1'000'000;
constexpr std::string_view marker = "\xFF\xFF";

constexpr uint8_t byte(int value) { return static_cast<uint8_t>(value); }
constexpr uint16_t word(int value) { return static_cast<uint16_t>(value); }

uint16_t wordIn(std::string_view file, size_t at) {
  return word(static_cast<uint8_t>(file[at]) | static_cast<uint8_t>(file[at + 1]) << 8);
}

using enum Mnemonic;
using enum Mode;
using enum Machine::Flag;

struct Instruction {
  Mnemonic operation = None;
  Mode mode = Implied;
};

// The program's own table serves here as well: a test compares it with the manual.
const std::array<Instruction, 256> decodeTable = [] {
  std::array<Instruction, 256> table;
  for (const OpcodeRow& row : std::span(opcodeRows(), opcodeRowCount))
    table[row.opcode] = {row.mnemonic, row.mode};
  return table;
}();

// The documented cycles, without page crossings.
int cyclesOf(const Instruction& instruction) {
  const Mode mode = instruction.mode;
  // In the order of the modes, of instructions that do no more than read an operand.
  constexpr int cycles[modeCount] = {2, 2, 2, 3, 4, 4, 4, 4, 4, 5, 6, 5, 2, 4, 2, 6, 5};
  const int reading = cycles[static_cast<size_t>(mode)];
  // clang-format off
  switch (instruction.operation) {
    case PHA: case PHP: case PHX: case PHY: return 3;
    case PLA: case PLP: case PLX: case PLY: return 4;
    case JSR: case RTS: case RTI:           return 6;
    case JMP: return mode == Absolute ? 3 : reading;
    case STA: return reading + (mode == AbsoluteX || mode == AbsoluteY || mode == IndirectIndexedY);
    case ASL: case DEC: case INC: case LSR: case ROL: case ROR:
      return mode == Accumulator ? 2 : reading + (mode == AbsoluteX ? 3 : 2);
    default: return reading;
  }
  // clang-format on
}

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
  uint8_t pull() { return m.peek(0x0100 | ++m.s); }
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
  void execute(Mnemonic operation);
};

// clang-format off
uint16_t Processor::resolve() {
  switch (mode) {
    case Immediate:
    case Relative:
    case StackAdjust:      return m.pc++;
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

void Processor::execute(Mnemonic operation) {
  at = resolve();
  switch (operation) {
    case LDA: load(m.a, value()); break;    case LDX: load(m.x, value()); break;  case LDY: load(m.y, value()); break;
    case STA: store(at, m.a); break;        case STX: store(at, m.x); break;      case STY: store(at, m.y); break;
    case CMP: compare(m.a); break;          case CPX: compare(m.x); break;        case CPY: compare(m.y); break;
    case PHA: push(m.a); break;             case PHX: push(m.x); break;           case PHY: push(m.y); break;
    case PLA: load(m.a, pull()); break;     case PLX: load(m.x, pull()); break;   case PLY: load(m.y, pull()); break;
    case INC: replace(value() + 1); break;  case INX: load(m.x, m.x + 1); break;  case INY: load(m.y, m.y + 1); break;
    case DEC: replace(value() - 1); break;  case DEX: load(m.x, m.x - 1); break;  case DEY: load(m.y, m.y - 1); break;
    case TXS: m.s = m.x; break;             case TAX: load(m.x, m.a); break;      case TAY: load(m.y, m.a); break;
    case TSX: load(m.x, m.s); break;        case TXA: load(m.a, m.x); break;      case TYA: load(m.a, m.y); break;
    case CLC: set(carry, false); break;            case SEC: set(carry, true); break;
    case CLD: set(decimalMode, false); break;      case SED: set(decimalMode, true); break;
    case CLI: set(interruptsOff, false); break;    case SEI: set(interruptsOff, true); break;
    case CLV: set(overflow, false); break;         case BRA: branch(true); break;
    case BCC: branch(!has(carry)); break;          case BCS: branch(has(carry)); break;
    case BNE: branch(!has(zero)); break;           case BEQ: branch(has(zero)); break;
    case BPL: branch(!has(negative)); break;       case BMI: branch(has(negative)); break;
    case BVC: branch(!has(overflow)); break;       case BVS: branch(has(overflow)); break;
    case AND: load(m.a, m.a & value()); break;     case ORA: load(m.a, m.a | value()); break;
    case EOR: load(m.a, m.a ^ value()); break;     case BIT: testBits(); break;
    case ADC: add(value()); break;                 case SBC: add(value() ^ 0xFF); break;
    case ASL: shift(value() << 1, 0x80); break;    case ROL: shift(value() << 1 | has(carry), 0x80); break;
    case LSR: shift(value() >> 1, 0x01); break;    case ROR: shift(value() >> 1 | has(carry) << 7, 0x01); break;
    case PHP: pushFlags(breakMark); break;         case PLP: pullFlags(); break;
    case JMP: m.pc = at; break;                    case JSR: pushWord(word(m.pc - 1)), m.pc = at; break;
    case RTS: m.pc = word(pullWord() + 1); break;  case RTI: pullFlags(), m.pc = pullWord(); break;
    case PSH: m.s = byte(m.s - value()); break;    case PLL: case ADD: m.s = byte(m.s + value()); break;
    case None: case BRK: case NOP: break;
  }
}
// clang-format on

}  // namespace

uint8_t Machine::portB() const { return byte(held(portBData) | ~portBDirections_); }

bool Machine::seesDirections(uint16_t address) const { return address == portBData && (held(portBControl) & 4) == 0; }

bool Machine::showsRom(uint16_t address) const {
  if (address >= 0xA000 && address < 0xC000) return basicRom && (portB() & 2) == 0;
  return osRom && (portB() & 1) != 0 && address >= 0xC000 && (address < 0xD000 || address >= 0xD800);
}

uint32_t Machine::placeOf(uint16_t address) const {
  uint32_t bank = 0;
  for (const BankWindow& window : windows) {
    if (address < window.low || address > window.high) continue;
    bank = held(window.registerLow);
    if (window.registerHigh != 0) bank += held(window.registerHigh) * 256u;
  }
  if (xeBanks && address >= 0x4000 && address < 0x8000 && (portB() & 0x10) == 0) bank = 1u + (portB() >> 2 & 3);
  return bank << 16 | address;
}

uint8_t Machine::held(uint32_t place) const {
  const auto found = memory_.find(place);
  return found == memory_.end() ? uint8_t{0} : found->second;
}

uint8_t Machine::peek(int address) const {
  if (word(address) == portBData) return seesDirections(portBData) ? portBDirections_ : portB();
  return showsRom(word(address)) ? romByte : held(placeOf(word(address)));
}

uint16_t Machine::peekWord(int address) const { return word(peek(address) | peek(address + 1) << 8); }

void Machine::poke(int address, int value) {
  if (seesDirections(word(address)))
    portBDirections_ = byte(value);
  else if (!showsRom(word(address)))
    memory_[placeOf(word(address))] = byte(value);
}

std::string Machine::memory(int from, size_t count) const {
  std::string bytes;
  while (bytes.size() < count)
    bytes.push_back(static_cast<char>(peek(from++)));
  return bytes;
}

bool Machine::fail(std::string text) {
  error = std::move(text);
  return false;
}

bool Machine::loadSegment(uint16_t first, std::string_view bytes) {
  int address = first;
  for (const char c : bytes)
    poke(address++, static_cast<uint8_t>(c));
  const Segment& segment = segments.emplace_back(Segment{first, word(address - 1)});
  const auto holds = [&segment](uint16_t vector) { return segment.first <= vector + 1 && segment.last >= vector; };
  if (holds(runVector)) runAddress = peekWord(runVector);
  if (!holds(initVector)) return true;
  const bool done = call(peekWord(initVector));
  poke(initVector, 0);
  poke(initVector + 1, 0);
  return done;
}

bool Machine::loadXex(std::string_view file) {
  if (!file.starts_with(marker)) return fail("no marker at the start of the file");
  while (!file.empty()) {
    if (file.starts_with(marker)) file.remove_prefix(marker.size());
    if (file.size() < 4) return fail("the last segment's header is cut short");
    const uint16_t first = wordIn(file, 0), last = wordIn(file, 2);
    file.remove_prefix(4);
    if (last < first || file.size() <= size_t{last} - first)
      return fail(concat({"segment ", dollarHex(first), "-", dollarHex(last), " is cut short"}));
    const size_t length = size_t{last} - first + 1;
    if (!loadSegment(first, file.substr(0, length))) return false;
    file.remove_prefix(length);
  }
  return true;
}

void Machine::beginCall(uint16_t address) {
  const uint16_t returnAddress = returnMark - 1;
  poke(0x0100 | s--, returnAddress >> 8);
  poke(0x0100 | s--, returnAddress);
  error.clear();
  pc = address;
}

bool Machine::finishCall() {
  for (int i = 0; i < mostSteps && !returned(); ++i) {
    if (!step()) return false;
  }
  return returned() || fail("no return, at " + dollarHex(pc));
}

bool Machine::call(uint16_t address) {
  beginCall(address);
  return finishCall();
}

bool Machine::step() {
  if (!error.empty()) return false;
  const Instruction& instruction = decodeTable[peek(pc)];
  if (instruction.operation == BRK) return fail("hit BRK at " + dollarHex(pc));
  if (instruction.operation == None) return fail("unknown opcode at " + dollarHex(pc));
  ++pc;
  cycles += cyclesOf(instruction);
  Processor{*this, instruction.mode}.execute(instruction.operation);
  return true;
}

void Machine::nmi(uint16_t handler) {
  Processor processor{*this};
  processor.pushWord(pc);
  processor.pushFlags(0);
  p |= interruptsOff;
  pc = handler;
}

}  // namespace kiln
