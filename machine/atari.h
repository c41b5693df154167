// A PAL Atari around the processor, as far as the examples use one. It has the time (312 lines of 114 cycles, WSYNC,
// VCOUNT), interrupts of the display list and of the vertical blank, the picture, players, missiles and their
// collisions, RANDOM, one joystick and the console keys. There is no ROM: of the operating system it has the text
// screen that a program starts with, SETVBV for vertical blanks, SYSVBV and XITVBV. SYSVBV counts in RTCLOK and ATRACT
// and copies SDMCTL, SDLSTL, GPRIOR, CHBAS and the colours to the chips, and STICK0 and STRIG0 from them.
#pragma once

#include <cstdint>
#include <string_view>

#include "machine/chips.h"
#include "machine/machine.h"
#include "machine/screen.h"

namespace kiln {

class Atari {
 public:
  Atari();
  Atari(const Atari&) = delete;  // the machine's onWrite refers to this one
  Atari& operator=(const Atari&) = delete;

  Machine machine;
  Chips chips;  // what programs stored; chips.pokey is the sound
  Screen screen{machine, chips};

  // Input, to be set between frames.
  uint8_t stick = 15;       // 15 in the middle; up clears bit 0, down 1, left 2 and right 3
  bool trigger = false;     // pressed
  uint8_t consoleKeys = 7;  // START clears bit 0, SELECT 1, OPTION 2
  void pressKey(uint8_t code) { machine.poke(0x02FC, code); }

  // Loads a program and starts it with the first frame. False with machine.error set.
  bool load(std::string_view file);
  // Runs for a fiftieth of a second, to the end of the picture's last line and of the vertical blank. A program that
  // returns leaves its picture. False with machine.error set when the processor stops.
  bool runFrame();
  // Runs an instruction, or what comes between two: a line ends, an interrupt begins. False as above.
  bool advance();
  bool isFrameOver() const { return line_ == 0 && !isInLine_; }
  uint32_t instructions = 0;  // that were run so far

 private:
  void prepare();
  void beginLine();
  void endLine();
  bool step();
  void store(int address, uint8_t value);
  void noteStore(uint16_t address, uint8_t value);
  void showReadable();
  bool hasRom() const { return (machine.peek(0xD301) & 1) != 0; }
  void interruptLine(int line, bool displayList);
  void serveSystem();
  void setVector();
  void systemBlank();
  void copyShadows();
  void leaveBlank();
  uint8_t pull() { return machine.peek(0x0100 | ++machine.s); }
  void push(uint8_t value) { machine.poke(0x0100 | machine.s--, value); }

  int line_ = 0;
  bool isInLine_ = false;
  bool stored_ = false;  // the last instruction stored to a chip
  bool waits_ = false;   // it stored to WSYNC
  uint32_t random_ = 1;
};

}  // namespace kiln
