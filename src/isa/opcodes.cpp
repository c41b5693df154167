#include "isa/opcodes.h"

#include <array>
#include <utility>

#include "base/text.h"

namespace kiln {
namespace {

// Short names for the rows.
constexpr Mode imp = Mode::Implied;
constexpr Mode acc = Mode::Accumulator;
constexpr Mode imm = Mode::Immediate;
constexpr Mode zp = Mode::ZeroPage;
constexpr Mode zpx = Mode::ZeroPageX;
constexpr Mode zpy = Mode::ZeroPageY;
constexpr Mode abs = Mode::Absolute;
constexpr Mode abx = Mode::AbsoluteX;
constexpr Mode aby = Mode::AbsoluteY;
constexpr Mode ind = Mode::Indirect;
constexpr Mode izx = Mode::IndexedIndirectX;
constexpr Mode izy = Mode::IndirectIndexedY;
constexpr Mode rel = Mode::Relative;
constexpr Mode sr = Mode::StackRelative;
constexpr Mode sadj = Mode::StackAdjust;
constexpr Mode siy = Mode::StackIndirectY;
constexpr Mode srx = Mode::StackRelativeX;

// clang-format off
constexpr std::array<OpcodeRow, opcodeRowCount> rows = {{
    {Mnemonic::ADC, imm, 0x69}, {Mnemonic::ADC, zp, 0x65}, {Mnemonic::ADC, zpx, 0x75}, {Mnemonic::ADC, abs, 0x6D},
    {Mnemonic::ADC, abx, 0x7D}, {Mnemonic::ADC, aby, 0x79}, {Mnemonic::ADC, izx, 0x61}, {Mnemonic::ADC, izy, 0x71},
    {Mnemonic::ADC, sr, 0x72},
    {Mnemonic::AND, imm, 0x29}, {Mnemonic::AND, zp, 0x25}, {Mnemonic::AND, zpx, 0x35}, {Mnemonic::AND, abs, 0x2D},
    {Mnemonic::AND, abx, 0x3D}, {Mnemonic::AND, aby, 0x39}, {Mnemonic::AND, izx, 0x21}, {Mnemonic::AND, izy, 0x31},
    {Mnemonic::ASL, acc, 0x0A}, {Mnemonic::ASL, zp, 0x06}, {Mnemonic::ASL, zpx, 0x16}, {Mnemonic::ASL, abs, 0x0E},
    {Mnemonic::ASL, abx, 0x1E},
    {Mnemonic::BCC, rel, 0x90},
    {Mnemonic::BCS, rel, 0xB0},
    {Mnemonic::BEQ, rel, 0xF0},
    {Mnemonic::BMI, rel, 0x30},
    {Mnemonic::BNE, rel, 0xD0},
    {Mnemonic::BPL, rel, 0x10},
    {Mnemonic::BVC, rel, 0x50},
    {Mnemonic::BVS, rel, 0x70},
    {Mnemonic::BIT, zp, 0x24}, {Mnemonic::BIT, abs, 0x2C},
    {Mnemonic::BRK, imp, 0x00},
    {Mnemonic::CLC, imp, 0x18},
    {Mnemonic::CLD, imp, 0xD8},
    {Mnemonic::CLI, imp, 0x58},
    {Mnemonic::CLV, imp, 0xB8},
    {Mnemonic::CMP, imm, 0xC9}, {Mnemonic::CMP, zp, 0xC5}, {Mnemonic::CMP, zpx, 0xD5}, {Mnemonic::CMP, abs, 0xCD},
    {Mnemonic::CMP, abx, 0xDD}, {Mnemonic::CMP, aby, 0xD9}, {Mnemonic::CMP, izx, 0xC1}, {Mnemonic::CMP, izy, 0xD1},
    {Mnemonic::CMP, sr, 0xD2},
    {Mnemonic::CPX, imm, 0xE0}, {Mnemonic::CPX, zp, 0xE4}, {Mnemonic::CPX, abs, 0xEC},
    {Mnemonic::CPY, imm, 0xC0}, {Mnemonic::CPY, zp, 0xC4}, {Mnemonic::CPY, abs, 0xCC},
    {Mnemonic::DEC, zp, 0xC6}, {Mnemonic::DEC, zpx, 0xD6}, {Mnemonic::DEC, abs, 0xCE}, {Mnemonic::DEC, abx, 0xDE},
    {Mnemonic::DEX, imp, 0xCA},
    {Mnemonic::DEY, imp, 0x88},
    {Mnemonic::EOR, imm, 0x49}, {Mnemonic::EOR, zp, 0x45}, {Mnemonic::EOR, zpx, 0x55}, {Mnemonic::EOR, abs, 0x4D},
    {Mnemonic::EOR, abx, 0x5D}, {Mnemonic::EOR, aby, 0x59}, {Mnemonic::EOR, izx, 0x41}, {Mnemonic::EOR, izy, 0x51},
    {Mnemonic::INC, zp, 0xE6}, {Mnemonic::INC, zpx, 0xF6}, {Mnemonic::INC, abs, 0xEE}, {Mnemonic::INC, abx, 0xFE},
    {Mnemonic::INX, imp, 0xE8},
    {Mnemonic::INY, imp, 0xC8},
    {Mnemonic::JMP, abs, 0x4C}, {Mnemonic::JMP, ind, 0x6C},
    {Mnemonic::JSR, abs, 0x20},
    {Mnemonic::LDA, imm, 0xA9}, {Mnemonic::LDA, zp, 0xA5}, {Mnemonic::LDA, zpx, 0xB5}, {Mnemonic::LDA, abs, 0xAD},
    {Mnemonic::LDA, abx, 0xBD}, {Mnemonic::LDA, aby, 0xB9}, {Mnemonic::LDA, izx, 0xA1}, {Mnemonic::LDA, izy, 0xB1},
    {Mnemonic::LDA, sr, 0xB2}, {Mnemonic::LDA, siy, 0x03}, {Mnemonic::LDA, srx, 0x23},
    {Mnemonic::LDX, imm, 0xA2}, {Mnemonic::LDX, zp, 0xA6}, {Mnemonic::LDX, zpy, 0xB6}, {Mnemonic::LDX, abs, 0xAE},
    {Mnemonic::LDX, aby, 0xBE}, {Mnemonic::LDX, sr, 0x42},
    {Mnemonic::LDY, imm, 0xA0}, {Mnemonic::LDY, zp, 0xA4}, {Mnemonic::LDY, zpx, 0xB4}, {Mnemonic::LDY, abs, 0xAC},
    {Mnemonic::LDY, abx, 0xBC}, {Mnemonic::LDY, sr, 0x52},
    {Mnemonic::LSR, acc, 0x4A}, {Mnemonic::LSR, zp, 0x46}, {Mnemonic::LSR, zpx, 0x56}, {Mnemonic::LSR, abs, 0x4E},
    {Mnemonic::LSR, abx, 0x5E},
    {Mnemonic::NOP, imp, 0xEA},
    {Mnemonic::ORA, imm, 0x09}, {Mnemonic::ORA, zp, 0x05}, {Mnemonic::ORA, zpx, 0x15}, {Mnemonic::ORA, abs, 0x0D},
    {Mnemonic::ORA, abx, 0x1D}, {Mnemonic::ORA, aby, 0x19}, {Mnemonic::ORA, izx, 0x01}, {Mnemonic::ORA, izy, 0x11},
    {Mnemonic::PHA, imp, 0x48},
    {Mnemonic::PHP, imp, 0x08},
    {Mnemonic::PLA, imp, 0x68},
    {Mnemonic::PLP, imp, 0x28},
    {Mnemonic::ROL, acc, 0x2A}, {Mnemonic::ROL, zp, 0x26}, {Mnemonic::ROL, zpx, 0x36}, {Mnemonic::ROL, abs, 0x2E},
    {Mnemonic::ROL, abx, 0x3E},
    {Mnemonic::ROR, acc, 0x6A}, {Mnemonic::ROR, zp, 0x66}, {Mnemonic::ROR, zpx, 0x76}, {Mnemonic::ROR, abs, 0x6E},
    {Mnemonic::ROR, abx, 0x7E},
    {Mnemonic::RTI, imp, 0x40},
    {Mnemonic::RTS, imp, 0x60},
    {Mnemonic::SBC, imm, 0xE9}, {Mnemonic::SBC, zp, 0xE5}, {Mnemonic::SBC, zpx, 0xF5}, {Mnemonic::SBC, abs, 0xED},
    {Mnemonic::SBC, abx, 0xFD}, {Mnemonic::SBC, aby, 0xF9}, {Mnemonic::SBC, izx, 0xE1}, {Mnemonic::SBC, izy, 0xF1},
    {Mnemonic::SBC, sr, 0xF2},
    {Mnemonic::SEC, imp, 0x38},
    {Mnemonic::SED, imp, 0xF8},
    {Mnemonic::SEI, imp, 0x78},
    {Mnemonic::STA, zp, 0x85}, {Mnemonic::STA, zpx, 0x95}, {Mnemonic::STA, abs, 0x8D}, {Mnemonic::STA, abx, 0x9D},
    {Mnemonic::STA, aby, 0x99}, {Mnemonic::STA, izx, 0x81}, {Mnemonic::STA, izy, 0x91}, {Mnemonic::STA, sr, 0x92},
    {Mnemonic::STA, siy, 0x13}, {Mnemonic::STA, srx, 0x33},
    {Mnemonic::STX, zp, 0x86}, {Mnemonic::STX, zpy, 0x96}, {Mnemonic::STX, abs, 0x8E}, {Mnemonic::STX, sr, 0x02},
    {Mnemonic::STY, zp, 0x84}, {Mnemonic::STY, zpx, 0x94}, {Mnemonic::STY, abs, 0x8C}, {Mnemonic::STY, sr, 0x12},
    {Mnemonic::TAX, imp, 0xAA},
    {Mnemonic::TAY, imp, 0xA8},
    {Mnemonic::TSX, imp, 0xBA},
    {Mnemonic::TXA, imp, 0x8A},
    {Mnemonic::TXS, imp, 0x9A},
    {Mnemonic::TYA, imp, 0x98},
    {Mnemonic::ADD, sadj, 0x22},
    {Mnemonic::PSH, imm, 0x32},
    {Mnemonic::PLL, imm, 0x62},
    {Mnemonic::PHX, imp, 0x44},
    {Mnemonic::PHY, imp, 0x54},
    {Mnemonic::PLX, imp, 0x64},
    {Mnemonic::PLY, imp, 0x74},
    {Mnemonic::BRA, rel, 0x80},
}};
// clang-format on

constexpr char mnemonicLetters[] =
    "ADCANDASLBCCBCSBEQBMIBNEBPLBVCBVSBITBRKCLCCLDCLICLVCMPCPXCPYDECDEXDEYEORINCINXINYJMPJSRLDALDXLDYLSRNOPORAPHAPHP"
    "PLAPLPROLRORRTIRTSSBCSECSEDSEISTASTXSTYTAXTAYTSXTXATXSTYAADDPSHPLLPHXPHYPLXPLYBRA";
static_assert(sizeof mnemonicLetters == 3 * mnemonicCount + 1);
static_assert(static_cast<size_t>(Mnemonic::BRA) == mnemonicCount);

constexpr std::pair<Mnemonic, Mnemonic> oppositeBranches[] = {
    {Mnemonic::BCC, Mnemonic::BCS},
    {Mnemonic::BEQ, Mnemonic::BNE},
    {Mnemonic::BMI, Mnemonic::BPL},
    {Mnemonic::BVC, Mnemonic::BVS},
};

using OpcodeIndex = std::array<std::array<int16_t, modeCount>, mnemonicCount + 1>;

constexpr OpcodeIndex makeOpcodeIndex() {
  OpcodeIndex index{};
  for (std::array<int16_t, modeCount>& byMode : index)
    byMode.fill(-1);
  for (const OpcodeRow& row : rows)
    index[static_cast<size_t>(row.mnemonic)][static_cast<size_t>(row.mode)] = row.opcode;
  return index;
}

constexpr OpcodeIndex opcodeIndex = makeOpcodeIndex();

// No mnemonic and mode are in two rows, and no opcode is.
constexpr bool rowsAreDistinct() {
  size_t filled = 0;
  for (const std::array<int16_t, modeCount>& byMode : opcodeIndex) {
    for (int16_t opcode : byMode)
      filled += opcode >= 0 ? 1 : 0;
  }
  std::array<bool, 256> seen{};
  for (const OpcodeRow& row : rows) {
    if (seen[row.opcode]) return false;
    seen[row.opcode] = true;
  }
  return filled == opcodeRowCount;
}
static_assert(rowsAreDistinct());

// Three upper-case letters as an index below 26 * 26 * 26.
constexpr size_t lettersKey(char a, char b, char c) {
  return (static_cast<size_t>(a - 'A') * 26 + static_cast<size_t>(b - 'A')) * 26 + static_cast<size_t>(c - 'A');
}

using MnemonicIndex = std::array<Mnemonic, size_t{26} * 26 * 26>;

constexpr MnemonicIndex makeMnemonicIndex() {
  MnemonicIndex index{};
  for (size_t i = 0; i < mnemonicCount; ++i) {
    const char* const letters = mnemonicLetters + 3 * i;
    index[lettersKey(letters[0], letters[1], letters[2])] = static_cast<Mnemonic>(i + 1);
  }
  return index;
}

constexpr MnemonicIndex mnemonicIndex = makeMnemonicIndex();

}  // namespace

Mnemonic mnemonicOf(std::string_view word) {
  if (word.size() != 3 || !isLetter(word[0]) || !isLetter(word[1]) || !isLetter(word[2])) return Mnemonic::None;
  return mnemonicIndex[lettersKey(toUpper(word[0]), toUpper(word[1]), toUpper(word[2]))];
}

std::string_view mnemonicText(Mnemonic mnemonic) {
  if (mnemonic == Mnemonic::None) return {};
  return {mnemonicLetters + 3 * (static_cast<size_t>(mnemonic) - 1), 3};
}

int opcodeFor(Mnemonic mnemonic, Mode mode) {
  return opcodeIndex[static_cast<size_t>(mnemonic)][static_cast<size_t>(mode)];
}

Mnemonic invertBranch(Mnemonic branch) {
  for (const auto& [a, b] : oppositeBranches) {
    if (branch == a) return b;
    if (branch == b) return a;
  }
  return Mnemonic::None;
}

const OpcodeRow* opcodeRows() { return rows.data(); }

}  // namespace kiln
