// The machine that other tests trust: what it computes, what its memory shows, and how a run ends.
#include "support/machine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kiln::test {
namespace {

using Bytes = std::vector<uint8_t>;

// Pokes hexadecimal bytes; "4000:" among them moves on to another address.
void place(Machine& m, const std::string& text) {
  std::istringstream words(text);
  uint16_t address = 0x0600;
  for (std::string word; words >> word;) {
    const auto number = static_cast<uint16_t>(std::stoul(word, nullptr, 16));
    if (word.back() == ':') {
      address = number;
    } else {
      m.poke(address++, static_cast<uint8_t>(number));
    }
  }
}

std::string run(Machine& m, const std::string& text) {
  place(m, text);
  m.call(0x0600, 1000);
  return m.error;
}

std::string file(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(Machine, computes) {
  const struct {
    std::string text;
    uint8_t a, x, y, flags;  // the flags are $20, and $80 negative, $40 overflow, 2 zero, 1 carry
  } programs[] = {
      {"18 A9 50 69 50 60", 0xA0, 0, 0, 0xE0},  // ADC #
      {"38 A9 FF 69 00 60", 0x00, 0, 0, 0x23},
      {"18 A9 D0 69 90 60", 0x60, 0, 0, 0x61},
      {"38 A9 50 E9 B0 60", 0xA0, 0, 0, 0xE0},  // SBC #
      {"18 A9 01 E9 00 60", 0x00, 0, 0, 0x23},
      {"38 A9 D0 E9 70 60", 0x60, 0, 0, 0x61},
      {"18 A9 40 C9 40 60", 0x40, 0, 0, 0x23},  // CMP #
      {"38 A9 40 C9 41 60", 0x40, 0, 0, 0xA0},
      {"18 A9 C1 C9 40 60", 0xC1, 0, 0, 0xA1},
      {"38 A9 02 24 82 60 0082: C1", 0x02, 0, 0, 0xE3},  // BIT
      // LDA #3, LDX #5, five times JSR $0613, BRA over a BRK, ROR A, ROL $80, LDX $80; $0613: ASL A, INY
      {"A9 03 A2 05 20 13 06 CA D0 FA 80 01 00 6A 26 80 A6 80 60 0A C8 60 0080: C0", 0x30, 0x80, 5, 0xA1},
      // LDX #15, LDY #5, LDA ($FF),Y, STA ($F0,X), JMP ($10FF), LDX $F0,Y, LDY $3000: no pointer leaves its page
      {"A2 0F A0 05 B1 FF 81 F0 6C FF 10 B6 F0 AC 00 30 60 0000: 30 00F5: 99 1000: 06 10FF: 0B 3005: 77", 0x77, 0x99,
       0x77, 0x20},
      // LDA #$11, PHA, PSH #2, LDA #$22, STA 1,SP, LDX #$33, STX 2,SP, LDY #4, STA (1,SP),Y, LDX #1, LDA 1,SP,X,
      // ADC 3,SP, PLL #2, PLX, PHY, PHX, ADD SP,#2, LDY -1,SP, LDX $3326
      {"A9 11 48 32 02 A9 22 92 01 A2 33 02 02 A0 04 13 01 A2 01 23 01 72 03 62 02 64 54 44 22 02 52 FF AE 26 33 60",
       0x44, 0x22, 0x11, 0x20}};
  for (const auto& program : programs) {
    Machine m;
    EXPECT_EQ(run(m, program.text), "");
    EXPECT_EQ((Bytes{m.a, m.x, m.y, m.s, m.p}), (Bytes{program.a, program.x, program.y, 0xFF, program.flags}))
        << program.text;
  }
}

TEST(Machine, windowsShowTheSelectedBank) {
  Machine m;
  m.windows = {{0x4000, 0x5FFF, 0x82, 0x83}, {0x6000, 0x7FFF, 0xD500}};
  place(m, "5FFF: 01 02 0082: 03 01 D500: 05");
  EXPECT_EQ(m.peekWord(0x5FFF), 0);
  place(m, "5FFF: 08 09");
  EXPECT_EQ(m.peekWord(0x5FFF), 0x0908);
  place(m, "0082: 00 00");
  EXPECT_EQ(m.peekWord(0x5FFF), 0x0901);
  EXPECT_EQ((Bytes{m.bankByte(0, 0x103, 0x5FFF), m.bankByte(0, 3, 0x5FFF), m.bankByte(1, 5, 0x6000), m.ram(0x6000)}),
            (Bytes{8, 0, 9, 2}));
}

TEST(Machine, romHidesMemory) {
  Machine m;  // STA $C000, DEC $D301, STA $C001, LDX $C001, INC $D301, LDY $C001, JSR $E456 (an RTS in ROM)
  m.osRom = true;
  m.a = 0x42;
  std::vector<std::pair<int, int>> written;
  m.onWrite = [&written](uint16_t address, uint8_t value) { written.emplace_back(address, value); };
  EXPECT_EQ(run(m, "8D 00 C0 CE 01 D3 8D 01 C0 AE 01 C0 EE 01 D3 AC 01 C0 20 56 E4 60"), "");
  EXPECT_EQ((Bytes{m.ram(0xC000), m.x, m.y}), (Bytes{0, 0x42, 0x60}));
  EXPECT_EQ(written, (std::vector<std::pair<int, int>>{
                         {0xC000, 0x42}, {0xD301, 0xFE}, {0xC001, 0x42}, {0xD301, 0xFF}, {0x1FD, 6}, {0x1FC, 0x14}}));
}

TEST(Machine, loadersCallInitRoutinesAndKeepTheRunAddress) {
  Machine m;  // an init routine LDA #1, STA $82; a byte of bank 1; a second marker before LDA #7
  m.windows = {{0x4000, 0x7FFF, 0x82}};
  EXPECT_TRUE(
      m.loadXex(file({0xFF, 0xFF, 0xFD, 3,    1, 4, 0xA9, 1, 0x85, 0x82, 0x60, 0xE2, 2, 0xE3, 2, 0xFD, 3, 0, 0x40, 0,
                      0x40, 0xAA, 0xFF, 0xFF, 0, 6, 2,    6, 0xA9, 7,    0x60, 0xE0, 2, 0xE1, 2, 0,    6})))
      << m.error;
  EXPECT_TRUE(m.run(100)) << m.error;
  EXPECT_EQ((Bytes{m.a, m.bankByte(0, 1, 0x4000), m.ram(0x4000), m.ram(0x2E2)}), (Bytes{7, 0xAA, 0, 0}));
  EXPECT_EQ(m.segments.size(), 5u);
  EXPECT_EQ(m.segments.at(3).last, 0x0602);
  EXPECT_TRUE(m.loadPrg(file({0, 0x20, 0xA2, 8, 0x60})) && m.call(0x2000, 9)) << m.error;
  EXPECT_EQ(m.x, 8);
}

TEST(Machine, failuresHaveAText) {
  const std::pair<Bytes, const char*> files[] = {
      {{0, 6, 0, 6, 0x60}, "no marker at the start of the file"},
      {{0xFF, 0xFF, 0, 6, 0}, "the last segment's header is cut short"},
      {{0xFF, 0xFF, 1, 6, 0, 6}, "segment $0601-$0600 ends before it begins"},
      {{0xFF, 0xFF, 0, 6, 1, 6, 0x60}, "segment $0600-$0601 is cut short"},
      {{0xFF, 0xFF, 0xE2, 2, 0xE3, 2, 0, 6}, "hit BRK at $0600"}};
  Machine m;
  for (const auto& [bytes, error] : files) {
    EXPECT_FALSE(m.loadXex(file(bytes)));
    EXPECT_EQ(m.error, error);
  }
  EXPECT_FALSE(m.loadPrg(file({0xFF, 0xFF, 1, 2})));
  EXPECT_EQ(m.error, "the file runs past $FFFF");
  EXPECT_EQ(run(m, "EA FF"), "unknown opcode $FF at $0601");
  EXPECT_EQ(run(m, "4C 00 06"), "no return after 1000 steps, at $0600");
}

TEST(Machine, interruptsBeforeEveryInstruction) {
  Machine m;  // SEC, LDA #$80, PHA, ADC #$80, PLA, ROR A; the handler: PHA, INC $90, LDA #0, PLA, RTI
  place(m, "38 A9 80 48 69 80 68 6A 60 0700: 48 E6 90 A9 00 68 40");
  m.nmiVector = 0x0700;
  for (m.beginCall(0x0600); !m.returned() && m.error.empty(); m.step()) {
    Machine hit = m;
    hit.nmi();
    EXPECT_EQ(hit.p, m.p | Machine::interruptsOff);
    while (!hit.returned() && hit.step()) {
    }
    EXPECT_EQ((Bytes{hit.a, hit.s, hit.p, hit.peek(0x90)}), (Bytes{0xC0, 0xFF, 0xE0, 1})) << hit.error;
  }
  EXPECT_EQ(m.cycles, 21u);
}

}  // namespace
}  // namespace kiln::test
