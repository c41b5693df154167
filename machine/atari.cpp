#include "machine/atari.h"

#include <initializer_list>

namespace kiln {
namespace {

constexpr int linesInFrame = 312, cyclesInLine = 114, blankLine = 248;
constexpr int syncCycle = 105;    // WSYNC lets the processor continue here
constexpr int blankCycles = 600;  // about what the system's vertical blank takes
constexpr int clocksInCycle = 2;

// Variables and vectors of the operating system, and its entry points.
constexpr int rtclok = 0x12, atract = 0x4D, savmsc = 0x58, vdslst = 0x0200, vvblki = 0x0222, vvblkd = 0x0224;
constexpr int sdmctl = 0x022F, sdlstl = 0x0230, gprior = 0x026F, stick0 = 0x0278, strig0 = 0x0284;
constexpr int pcolr0 = 0x02C0, chbas = 0x02F4, lastKey = 0x02FC;
constexpr uint16_t setvbv = 0xE45C, sysvbv = 0xE45F, xitvbv = 0xE462;

constexpr int gtia = 0xD000, pokey = 0xD200, antic = 0xD400, portA = 0xD300;
constexpr int trig0 = 0xD010, consol = 0xD01F, randomNumber = 0xD20A, vcount = 0xD40B, nmiVector = 0xFFFA;
constexpr int textList = 0x9C20, textScreen = 0x9C40;  // where the system has them in 40 KB

constexpr uint8_t byte(int value) { return static_cast<uint8_t>(value); }

}  // namespace

Atari::Atari() {
  machine.osRom = true;
  machine.onWrite = [this](uint16_t address, uint8_t value) { noteStore(address, value); };
  prepare();
}

// The system's text screen: 24 lines of mode 2 in blue.
void Atari::prepare() {
  const auto pokeAll = [this](int address, std::initializer_list<int> bytes) {
    for (const int value : bytes)
      machine.poke(address++, value);
  };
  pokeAll(savmsc, {textScreen & 0xFF, textScreen >> 8});
  pokeAll(vvblki, {sysvbv & 0xFF, sysvbv >> 8, xitvbv & 0xFF, xitvbv >> 8});
  pokeAll(sdmctl, {0x22, textList & 0xFF, textList >> 8});
  pokeAll(pcolr0 + 4, {0x28, 0xCA, 0x94, 0x46, 0x00});
  pokeAll(chbas, {0xE0});
  pokeAll(lastKey, {0xFF});
  pokeAll(textList, {0x70, 0x70, 0x70, 0x42, textScreen & 0xFF, textScreen >> 8});
  for (int i = 0; i < 23; ++i)
    machine.poke(textList + 6 + i, 0x02);
  pokeAll(textList + 29, {0x41, textList & 0xFF, textList >> 8});
  copyShadows();
  store(antic + interruptEnable, 0x40);
}

bool Atari::load(std::string_view file) {
  if (!machine.loadXex(file)) return false;
  machine.cycles = 0;
  machine.beginCall(machine.runAddress);
  return true;
}

bool Atari::runFrame() {
  do {
    if (!advance()) return false;
  } while (!isFrameOver());
  return true;
}

// machine.cycles counts from the beginning of the line, and may begin with what is left of an instruction.
bool Atari::advance() {
  if (!isInLine_) return beginLine(), true;
  if (machine.cycles < cyclesInLine && !step()) return false;
  if (machine.cycles >= cyclesInLine) endLine();
  return true;
}

void Atari::beginLine() {
  isInLine_ = true;
  const bool isShown = line_ >= Screen::firstLine && line_ < blankLine;
  const bool interrupts = isShown && screen.beginLine(line_);
  if (isShown) machine.cycles += screen.stolenCycles();
  showReadable();
  interruptLine(line_, interrupts);
}

void Atari::endLine() {
  isInLine_ = false;
  if (line_ >= Screen::firstLine && line_ < blankLine) screen.drawUntil(clocksInLine);
  machine.cycles -= cyclesInLine;
  line_ = (line_ + 1) % linesInFrame;
}

bool Atari::step() {
  ++instructions;
  if (hasRom()) serveSystem();
  if (machine.returned()) {
    machine.cycles = cyclesInLine;
    return true;
  }
  random_ = random_ * 1664525 + 1013904223;
  machine.poke(randomNumber, random_ >> 24);
  if (!machine.step()) return false;
  if (stored_) showReadable();
  if (waits_) machine.cycles = syncCycle + (machine.cycles > syncCycle ? cyclesInLine : 0);
  stored_ = waits_ = false;
  return true;
}

void Atari::store(int address, uint8_t value) {
  noteStore(static_cast<uint16_t>(address), value);
  machine.poke(address, value);
}

void Atari::noteStore(uint16_t address, uint8_t value) {
  const int page = address & 0xFF00;
  if (page == pokey) chips.pokey[address & 15] = value;
  if (page == antic) {
    chips.antic[address & 15] = value;
    waits_ = (address & 15) == waitForSync;
  }
  if (page == gtia) {
    if (line_ >= Screen::firstLine && line_ < blankLine) screen.drawUntil(machine.cycles * clocksInCycle);
    chips.gtia[address & 31] = value;
    if ((address & 31) == clearCollisions) screen.collisions.fill(0);
  }
  stored_ = stored_ || page == gtia || page == pokey || page == antic;
}

// Puts what programs read from the chips into memory, where stores have left other values.
void Atari::showReadable() {
  for (size_t i = 0; i < screen.collisions.size(); ++i)
    machine.poke(gtia + static_cast<int>(i), screen.collisions[i]);
  machine.poke(trig0, trigger ? 0 : 1);
  machine.poke(consol, consoleKeys);
  machine.poke(portA, 0xF0 | stick);
  machine.poke(vcount, line_ / 2);
}

void Atari::interruptLine(int line, bool displayList) {
  const uint8_t enabled = chips.antic[interruptEnable];
  const bool isBlank = line == blankLine && (enabled & 0x40) != 0;
  if (!isBlank && (!displayList || (enabled & 0x80) == 0)) return;
  if (!hasRom()) return machine.nmi(machine.peekWord(nmiVector));
  machine.nmi(machine.peekWord(isBlank ? vvblki : vdslst));
  if (!isBlank) return;
  push(machine.a);
  push(machine.x);
  push(machine.y);
}

// The operating system, where the processor enters it.
void Atari::serveSystem() {
  if (machine.pc == setvbv) setVector();
  if (machine.pc == sysvbv) systemBlank();
  if (machine.pc == xitvbv) leaveBlank();
}

// A selects the immediate (6) or the deferred (7) routine; X and Y are its address. The RTS is in the ROM.
void Atari::setVector() {
  if (machine.a != 6 && machine.a != 7) return;
  const int vector = machine.a == 6 ? vvblki : vvblkd;
  machine.poke(vector, machine.y);
  machine.poke(vector + 1, machine.x);
}

// While the program has turned interrupts off, the second half is left out.
void Atari::systemBlank() {
  for (int place = rtclok + 2; place >= rtclok; --place) {
    machine.poke(place, byte(machine.peek(place) + 1));
    if (machine.peek(place) != 0) break;
    if (place == rtclok + 2) machine.poke(atract, byte(machine.peek(atract) + 1));
  }
  machine.cycles += blankCycles;
  const bool wasOff = (machine.peek(0x0100 | byte(machine.s + 4)) & Machine::interruptsOff) != 0;
  if (!wasOff) copyShadows();
  machine.pc = wasOff ? xitvbv : machine.peekWord(vvblkd);
}

void Atari::copyShadows() {
  // After ten minutes without a key the colours change, so that no picture burns in.
  const bool isIdle = machine.peek(atract) >= 0x80;
  const int shift = isIdle ? machine.peek(rtclok + 1) : 0, mask = isIdle ? 0xF6 : 0xFF;
  for (int i = 0; i < 9; ++i)
    store(gtia + playerColour + i, byte((machine.peek(pcolr0 + i) ^ shift) & mask));
  store(gtia + priority, machine.peek(gprior));
  store(antic + dmaControl, machine.peek(sdmctl));
  store(antic + displayListAddress, machine.peek(sdlstl));
  store(antic + displayListAddress + 1, machine.peek(sdlstl + 1));
  store(antic + fontPage, machine.peek(chbas));
  machine.poke(stick0, stick);
  machine.poke(strig0, trigger ? 0 : 1);
}

void Atari::leaveBlank() {
  machine.y = pull();
  machine.x = pull();
  machine.a = pull();
  machine.p = byte((pull() & ~Machine::breakMark) | Machine::alwaysSet);
  const uint8_t low = pull();
  machine.pc = static_cast<uint16_t>(low | pull() << 8);
}

}  // namespace kiln
