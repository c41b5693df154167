// A banked program is larger than the memory it is loaded to: many segments share the addresses of the bank window,
// each in a bank of its own. The loader writes to the bank that the window shows. So every banked segment is between
// two routines that the loader calls as soon as it has read them: one shows the segment's bank, the other shows bank 0.
//
// Example: the window $4000-$7FFF, registers $82 and $83, and the segments
//
//     $2000  main               loaded as usual, after all the banked segments
//     $4000  banked             bank 1
//     $4000  banked, number 7   bank 7
//     $5000  banked             bank 3: the second has used up the number 2
//
// The first bank is shown by LDA #$01, STA $82, LDA #$00, STA $83, RTS at $03FD. Register $83 takes the high byte of
// the number and is written again only when it changes, so the next routine is LDA #$07, STA $82, RTS.
//
// With the window split into a code half at $4000 and a data half at $6000, each half has a register and numbers of its
// own: $82 shows a bank below $6000, $83 one above. A segment too long for its half would continue in memory that the
// other register controls, in the wrong bank, so lengths are checked; where a segment ends is not.
#include "output/banked.h"

#include <string>
#include <string_view>

#include "base/format.h"
#include "output/atari_records.h"
#include "output/pieces.h"
#include "output/preload.h"
#include "output/shadow.h"

namespace kiln {
namespace {

// Shows main memory in the bank window, where staged code may be loaded.
constexpr std::string_view showMainMemory =
    "AD 01 D3 "  // LDA $D301   PORTB
    "09 10 "     // ORA #$10
    "8D 01 D3 "  // STA $D301
    "60 ";       // RTS

struct BankedSegment {
  const AsSegment* segment;
  BankValue bank;
};

struct Program {
  Pieces main;
  std::vector<BankedSegment> banked;  // empty ones too
  int64_t cloaked = 0;                // those without a number
  int64_t numberedCloaked = 0;
};

Program sortOut(const std::vector<AsSegment>& segments, const ShadowPlan& plan, const BankedSettings& settings) {
  const ShadowSplitter splitter(plan);
  Program program;
  BankCounters counters(settings);
  for (const AsSegment& segment : segments) {
    if (segment.cloaked) {
      ++(segment.cloakedId < 0 ? program.cloaked : program.numberedCloaked);
    } else if (const std::optional<BankValue> bank = counters.next(segment.start, segment.bank)) {
      program.banked.push_back({&segment, *bank});
    } else if (!segment.bytes.empty()) {
      splitter.split(segment, program.main);
    }
  }
  return program;
}

bool appendShadow(Image& image, const ShadowPlan& plan, const std::vector<Piece>& pieces, Console& console) {
  if (pieces.empty()) return true;
  Image stub;
  appendHexText(stub, showMainMemory);
  appendPreloadInit(image, stub);
  if (!stageShadow(image, plan.stageAddress, pieces, console)) return false;
  appendPreloadInit(image, stub);
  return true;
}

void warnAboutCloaked(std::string_view what, int64_t count, Console& console) {
  if (count == 0) return;
  console.printError(concat({"kiln-as: ", what, " are only supported on xe-family targets (xeBankMask = 0); ignoring ",
                             decimal(count), " segment(s)\n"}));
}

// The beginning of a message about the length of a segment.
std::string tooLong(std::string_view what, const AsSegment& segment, int64_t size) {
  const int64_t length = static_cast<int64_t>(segment.bytes.size());
  return concat({"kiln-as: banked ", what, " at ", dollarHex(segment.start), " is ", decimal(length),
                 " bytes — exceeds the ", decimal(size), "B "});
}

bool fits(const BankedSegment& banked, const BankedSettings& settings, Console& console) {
  const AsSegment& segment = *banked.segment;
  const int64_t length = static_cast<int64_t>(segment.bytes.size());
  const int64_t low = settings.bankWindowLow;
  const int64_t high = settings.bankWindowHigh;
  if (length > high - low + 1) {
    return fail(console, {tooLong("segment", segment, high - low + 1), "bank page size\n"});
  }
  const int64_t dataLow = settings.dataWindowLow;
  const int64_t dataHigh = settings.dataWindowHigh;
  const int64_t dataSize = dataHigh - dataLow + 1;
  if (banked.bank.kind == BankKind::DataHalf && length > dataSize) {
    return fail(console,
                {tooLong("data segment", segment, dataSize), "split-bank data half (", dollarHex(dataLow), "-",
                 dollarHex(dataHigh),
                 "). Code likely overflowed the code half and bled into the data window; rebuild with -O3 (smaller "
                 "main) or split the function across banks.\n"});
  }
  const int64_t codeHigh = dataLow == 0 ? high : dataLow - 1;
  const int64_t codeSize = codeHigh - low + 1;
  if (banked.bank.kind == BankKind::CodeHalf && length > codeSize) {
    return fail(
        console,
        {tooLong("code segment", segment, codeSize), "split-bank code half (", dollarHex(low), "-", dollarHex(codeHigh),
         "). The packer's size estimate drifted from vosk's actual emit (often a long-branch rewrite inside a "
         "function); the segment overflows into the $83-selected data window where the per-bank XEX preload "
         "would put unrelated bytes at runtime, and JMP/JSR/branch into the overflow BRKs.\n"});
  }
  return true;
}

bool appendBanked(Image& image, const std::vector<BankedSegment>& segments, const BankedSettings& settings,
                  Console& console) {
  if (!segments.empty() && settings.codeBankRegister == 0) {
    return fail(console,
                {"kiln-as: banked output requires a code bank register from the layout (registers = <code>, <data>); "
                 "none set — there is no $82 default\n"});
  }
  BankPreload preload(settings);
  for (const BankedSegment& banked : segments) {
    if (banked.segment->bytes.empty()) continue;
    if (!fits(banked, settings, console)) return false;
    preload.appendSelect(image, banked.bank);
    appendLoadSegment(image, banked.segment->start, banked.segment->bytes);
    preload.appendReset(image, banked.bank.kind);
  }
  return true;
}

// Code that runs past the main region is lost, except on a machine without banks.
bool appendMain(Image& image, const std::vector<Piece>& pieces, const BankedSettings& settings, Console& console) {
  const int64_t low = settings.mainRegionLow;
  const int64_t high = settings.mainRegionHigh;
  for (const Piece& piece : pieces) {
    const int64_t start = piece.address;
    const int64_t length = static_cast<int64_t>(piece.bytes.size());
    const int64_t end = start + length - 1;
    if (low <= start && start <= high && end > high) {
      return fail(console, {"kiln-as: main code segment at ", dollarHex(start), " is ", decimal(length),
                            " bytes — overflows the ", decimal(high - low + 1), "B main region (", dollarHex(low), "-",
                            dollarHex(high), ") by ", decimal(end - high),
                            " bytes. The program will load under vell (flat 64 KB) but crash on real hardware.\n"});
    }
    appendLoadSegment(image, piece.address, piece.bytes);
  }
  return true;
}

}  // namespace

std::optional<Image> writeBanked(const std::vector<AsSegment>& segments, const ShadowPlan& plan,
                                 const BankedSettings& given, uint32_t runAddress, Console& console) {
  const BankedSettings settings = withDefaults(given);
  const Program program = sortOut(segments, plan, settings);
  Image image;
  appendMarker(image);
  if (!appendShadow(image, plan, program.main.shadow, console)) return std::nullopt;
  warnAboutCloaked("cloaked segments", program.cloaked, console);
  warnAboutCloaked("numbered-bank cloaked segments", program.numberedCloaked, console);
  if (!appendBanked(image, program.banked, settings, console)) return std::nullopt;
  if (!appendMain(image, program.main.plain, settings, console)) return std::nullopt;
  appendRunAddress(image, runAddress);
  return image;
}

}  // namespace kiln
