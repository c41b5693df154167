// A small machine that runs the program files kiln-as writes: a 6502 with the pell extensions, 64 KB of memory, bank
// windows, an operating system ROM that can be switched off, and PORTB of a 130XE. Two things are simpler than in the
// real one: ADC and SBC always count in binary (SED and CLD move the flag, and nothing else), and cycles are the
// documented base numbers without page crossings. A machine can be copied, to try several continuations of one state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kiln {

// The addresses low..high show the bank whose number the registers hold: the byte at registerLow, and 256 times that
// at registerHigh when there is one. Registers are plain memory; several windows may share one.
struct BankWindow {
  uint16_t low = 0;
  uint16_t high = 0;
  uint16_t registerLow = 0;
  uint16_t registerHigh = 0;  // 0: none
};

class Machine {
 public:
  // The flags of p.
  // clang-format off
  enum Flag : uint8_t {
    carry = 0x01, zero = 0x02, interruptsOff = 0x04, decimalMode = 0x08,
    breakMark = 0x10, alwaysSet = 0x20, overflow = 0x40, negative = 0x80
  };
  // clang-format on

  struct Segment {
    uint16_t first = 0;
    uint16_t last = 0;
  };

  // What the machine consists of; set before loading. Where windows overlap, the last one counts.
  std::vector<BankWindow> windows;
  bool osRom = false;     // $C000-$CFFF and $D800-$FFFF are ROM, full of RTS, while bit 0 of PORTB is 1
  bool basicRom = false;  // the same for $A000-$BFFF while bit 1 is 0
  bool xeBanks = false;   // while bit 4 is 0, $4000-$7FFF show the extended bank in bits 2 and 3; not with windows
  // Called before every store of an instruction or of nmi(), lost ones included; not for poke and the loader.
  std::function<void(uint16_t address, uint8_t value)> onWrite;

  uint8_t a = 0, x = 0, y = 0, s = 0xFF, p = alwaysSet;
  uint16_t pc = 0;
  int cycles = 0;

  std::string error;              // why a load, a call or a step failed; the next call clears it
  std::vector<Segment> segments;  // all that was loaded so far, in order
  uint16_t runAddress = 0;        // the last word that was loaded to $02E0

  // Memory as the processor sees it. What is poked into ROM is lost.
  uint8_t peek(int address) const;
  // The levels at port B. Pins that are inputs are 1, because nothing pulls them down.
  uint8_t portB() const;
  uint16_t peekWord(int address) const;
  void poke(int address, int value);
  std::string memory(int from, size_t count) const;

  // Loads an Atari binary-load file, calling each init address as its segment has been loaded. False with `error`
  // set when the file is malformed or an init routine fails.
  bool loadXex(std::string_view file);

  // Calls a subroutine with the registers as they are. False with `error` set when it does not return.
  bool call(uint16_t address);
  // Calls the run address of the loaded file.
  bool run() { return call(runAddress); }

  // The same in steps: begin, step until returned, or finish. A step is false, with `error` set and pc at the culprit,
  // at a BRK or an opcode that is none; from then on all steps are.
  void beginCall(uint16_t address);
  bool returned() const { return pc == returnMark; }
  bool step();
  bool finishCall();

  // Enters the handler, as between two instructions; its RTI comes back here.
  void nmi(uint16_t handler);

 private:
  static constexpr uint16_t returnMark = 0xFFFF;  // half of the interrupt vector, so never the place of an instruction

  bool seesDirections(uint16_t address) const;
  bool showsRom(uint16_t address) const;
  uint32_t placeOf(uint16_t address) const;
  uint8_t held(uint32_t place) const;
  bool loadSegment(uint16_t first, std::string_view bytes);
  bool fail(std::string text);

  // By bank, 0 in main memory, times 65,536 plus address; what is not there is 0. $D301 holds the outputs of port B,
  // and its directions, 1 for an output, are seen there instead while bit 2 of $D303 is 0.
  std::unordered_map<uint32_t, uint8_t> memory_ = {{0xD301, 0xFF}, {0xD303, 0x3C}};
  uint8_t portBDirections_ = 0xFF;
};

}  // namespace kiln
