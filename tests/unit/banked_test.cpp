// Banked files: which bank a segment gets, the routines around it, and the checks.
#include "output/banked.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/format.h"
#include "output/atari_records.h"
#include "output/preload.h"
#include "support/program.h"

namespace kiln::test {
namespace {

using Segments = std::vector<AsSegment>;

AsSegment cloaked(int32_t id, size_t size) { return {0x4000, std::vector<uint8_t>(size, 0xCC), -1, true, id}; }

const std::string start = "FF FF ";
const std::string end = "E0 02 E1 02 34 12 ";  // runs $1234

// The routine, spelled as "XX XX XX ", called and kept at $03FD.
std::string preload(const std::string& routine) {
  Image header;
  appendRangeHeader(header, 0x03FD, 0x03FD + static_cast<uint32_t>(routine.size()) / 3 - 1);
  const std::string once = hex(joined(header.parts())) + routine;
  return once + "E2 02 E3 02 FD 03 " + once;
}

// A bank between the routine that shows it and the one that shows bank 0, each without its RTS.
std::string bank(const std::string& show, const std::string& segment, const std::string& hide) {
  return preload(show + "60 ") + segment + preload(hide + "60 ");
}

// The file in hexadecimal, after what is said; "none" when there is no file.
std::string write(const Segments& segments, const BankedSettings& settings, const ShadowPlan& plan = {}) {
  MemoryHost console;
  const std::optional<Image> image = writeBanked(segments, plan, settings, 0x1234, console);
  return console.standardError + (image ? hex(joined(image->parts())) : "none");
}

bool isRefused(const Segments& segments, const BankedSettings& settings) {
  return write(segments, settings).ends_with("\nnone");
}

BankedSettings registers(uint32_t code, uint32_t data) { return {.codeBankRegister = code, .dataBankRegister = data}; }

BankedSettings split(uint32_t dataLow = 0x6000, uint32_t dataHigh = 0x6FFF) {
  return {.codeBankRegister = 0x82,
          .dataBankRegister = 0x83,
          .splitBank = true,
          .dataWindowLow = dataLow,
          .dataWindowHigh = dataHigh};
}

BankedSettings regc(BankedSettings settings) {
  settings.regcWindowLow = 0x5000;
  settings.regcWindowHigh = 0x50FF;
  settings.regcRegisterLow = 0x84;
  return settings;
}

// clang-format off
TEST(Banked, PutsBanksFirstInTheOrderOfTheSource) {
  const Segments segments = {{0x8000, {1, 2}}, {0x7FFF, {3}}, {0x4000, {}}, {0x3FFF, {4}}, {0x4000, {5, 6}}};
  EXPECT_EQ(write(segments, registers(0x82, 0x83)),
            start +
            bank("A9 01 85 82 A9 00 85 83 ", "FF 7F FF 7F 03 ",    "A9 00 85 82 ") +
            bank("A9 03 85 82 ",             "00 40 01 40 05 06 ", "A9 00 85 82 ") +
            "00 80 01 80 01 02 " +
            "FF 3F FF 3F 04 " + end);
}

TEST(Banked, StoresTheHighByteOfABankWhenItChanges) {
  const Segments segments = {{0x4000, {1}, 0x101}, {0x4000, {2}, 0x102}, {0x4000, {3}}, {0x4000, {4}, 0}};
  EXPECT_EQ(write(segments, registers(0x100, 0)),
            start +
            bank("A9 01 8D 00 01 A9 01 85 00 ", "00 40 00 40 01 ", "A9 00 8D 00 01 85 00 ") +
            bank("A9 02 8D 00 01 A9 01 85 00 ", "00 40 00 40 02 ", "A9 00 8D 00 01 85 00 ") +
            bank("A9 03 8D 00 01 ",             "00 40 00 40 03 ", "A9 00 8D 00 01 ") +
            bank("A9 00 8D 00 01 ",             "00 40 00 40 04 ", "A9 00 8D 00 01 ") + end);
}
// clang-format on

TEST(Banked, HasRegistersOfTheirOwnForDataAndRegcBanks) {
  const Segments segments = {{0x6000, {1}, 9}, {0x5000, {2}}, {0x4000, {3}}, {0x6FFF, {4}}};
  const std::string data = start + bank("A9 01 85 83 ", "00 60 00 60 01 ", "A9 00 85 83 ");
  const std::string rest = bank("A9 01 85 82 ", "00 40 00 40 03 ", "A9 00 85 82 ") +
                           bank("A9 02 85 83 ", "FF 6F FF 6F 04 ", "A9 00 85 83 ") + end;
  BankedSettings settings = regc(split());
  EXPECT_EQ(write(segments, settings), data + bank("A9 01 85 84 ", "00 50 00 50 02 ", "A9 00 85 84 ") + rest);
  settings.regcRegisterHigh = 0xD5FF;
  EXPECT_EQ(write(segments, settings),
            data + bank("A9 01 85 84 A9 00 8D FF D5 ", "00 50 00 50 02 ", "A9 00 85 84 8D FF D5 ") + rest);
}

using enum BankKind;
const BankValue none = {Plain, 0xFFFF};  // in main memory

// A segment by its address and its own number (-1: none), and the bank that it gets.
struct BankRow {
  uint32_t at;
  int32_t number;
  BankValue bank;
};

void expectBanks(const BankedSettings& settings, const std::vector<BankRow>& rows) {
  BankCounters counters(settings);
  for (const auto& [at, number, bank] : rows) {
    const BankValue found = counters.next(at, number).value_or(none);
    EXPECT_TRUE(found.kind == bank.kind && found.value == bank.value) << at << ": " << found.value;
  }
}

// clang-format off
TEST(BankCounters, CountEachKindForItselfAndOnForSegmentsWithoutANumber) {
  expectBanks({}, {
      {0x3FFF, 1,       none},
      {0x4000, -1,      {Plain, 1}},
      {0x7FFF, 7,       {Plain, 7}},
      {0x4000, 0,       {Plain, 0}},
      {0x4000, -1,      {Plain, 4}},
      {0x4000, 0x12345, {Plain, 0x2345}},
      {0x8000, 1,       none},
  });
  expectBanks(regc(split()), {
      {0x4FFF, 7,  {CodeHalf, 1}},
      {0x5000, 7,  {Regc, 1}},
      {0x50FF, -1, {Regc, 2}},
      {0x5100, 7,  {CodeHalf, 2}},
      {0x5FFF, -1, {CodeHalf, 3}},
      {0x6000, 7,  {DataHalf, 1}},
      {0x6FFF, 7,  {DataHalf, 2}},
      {0x7000, 7,  {CodeHalf, 4}},
  });
  // Neither the data window nor one half of the regc settings means anything by itself.
  const BankRow plain = {0x5000, -1, {Plain, 1}};
  expectBanks({.dataWindowLow = 0x5000, .dataWindowHigh = 0x50FF},                               {plain});
  expectBanks({.regcWindowLow = 0x5000, .regcWindowHigh = 0x50FF},                               {plain});
  expectBanks({.regcWindowHigh = 0x50FF, .regcRegisterLow = 0x84},                               {plain});
  // Each end of the window has a default.
  expectBanks({.bankWindowHigh = 0x47FF}, {{0x3FFF, 1, none}, {0x4000, 1, {Plain, 1}}, {0x4800, 1, none}});
  expectBanks({.bankWindowLow = 0x4700},  {{0x46FF, 1, none}, {0x7FFF, 1, {Plain, 1}}, {0x8000, 1, none}});
}
// clang-format on

TEST(BankCounters, StartAgainAt0After65535) {
  BankCounters counters({});
  for (uint32_t i = 1; i <= 0x10000; ++i)
    ASSERT_EQ(counters.next(0x7FFF, -1)->value, i % 0x10000);
  EXPECT_EQ(counters.next(0x4700, -1)->value, 1);
}

TEST(Banked, LeavesOutCloakedSegments) {
  const std::string reason = "cloaked segments are only supported on xe-family targets (xeBankMask = 0); ignoring ";
  const std::string unnumbered = say(reason + "2 segment(s)");
  const std::string numbered = say("numbered-bank " + reason + "1 segment(s)");
  EXPECT_EQ(write({cloaked(-1, 1), cloaked(0, 1), cloaked(-1, 0)}, {}), unnumbered + numbered + start + end);
  EXPECT_EQ(write({cloaked(5, 0)}, {}), numbered + start + end);
}

TEST(Banked, NeedsARegisterForBanksOnly) {
  EXPECT_TRUE(isRefused({{0x5000, {1}}}, regc(registers(0, 0x83))));
  EXPECT_TRUE(isRefused({{0x4000, {}}}, registers(0, 0x83)));
  EXPECT_EQ(write({{0x2000, {1}}}, registers(0, 0)), start + "00 20 00 20 01 " + end);
}

// Accepted with `size` bytes, refused with one more.
void expectLimit(uint32_t at, const BankedSettings& settings, size_t size) {
  EXPECT_EQ(write({{at, std::vector<uint8_t>(size)}}, settings).find(start), 0U) << at;
  EXPECT_TRUE(isRefused({{at, std::vector<uint8_t>(size + 1)}}, settings)) << at;
}

TEST(Banked, RefusesSegmentsThatDoNotFit) {
  expectLimit(0x5000, registers(0x82, 0x83), 0x4000);
  expectLimit(0x5000, regc(split()), 0x4000);
  expectLimit(0x6000, split(0, 0), 0x4000);
  expectLimit(0x6FFF, split(), 0x1000);
  expectLimit(0x4800, split(), 0x2000);
  expectLimit(0x4000, split(0x3FFF, 0x3FFF), 0);  // a data half below the window leaves no room for code at all
  expectLimit(0xA000, {}, 0x2000);
  const BankedSettings settings = {.mainRegionLow = 0xF000, .mainRegionHigh = 0xFFFE};
  expectLimit(0xFFFE, settings, 1);
  // Only what starts inside is checked.
  EXPECT_EQ(write({{0xEFFF, {1}}, {0xFFFF, {2, 3}}}, settings), start + "FF EF FF EF 01 " + "FF FF 00 00 02 03 " + end);
  // What is staged counts no longer.
  EXPECT_EQ(write({{0xBFFF, {1, 2}}}, {}, {{0xC000, 0xC000}, 0x2000}).find(start), 0U);
}

TEST(Banked, StagesShadowCodeBetweenTwoSwitchesToMainMemory) {
  const Segments segments = {{0xD7FF, {1, 2}}, {0x4000, {3}}};
  const std::string file = write(segments, registers(0x82, 0x83), {{0x4000, 0x4000, 0xD800, 0xD8FF}, 0x4800});
  const std::string toMain = preload("AD 01 D3 09 10 8D 01 D3 60 ");
  const std::string staging = file.substr((start + toMain).size(), 126 * 3);
  EXPECT_EQ(file, start + toMain + staging + "E2 02 E3 02 00 48 " + toMain +
                      bank("A9 01 85 82 A9 00 85 83 ", "00 40 00 40 03 ", "A9 00 85 82 ") + "FF D7 FF D7 01 " + end);
  EXPECT_EQ(staging.substr(0, 12), "00 48 79 48 ");
  // There is no other message once the staging has failed.
  EXPECT_EQ(write(segments, {}, {{0xD800, 0xD8FF}, 0xFFFF}).find("cloaked"), std::string::npos);
}

}  // namespace
}  // namespace kiln::test
