// The three writers against the literal ones, byte for byte and line for line; and the flat file once more, taken apart
// again: what it loads and what its copy table moves must be the bytes of the segments.
//
// The input is read as bytes: the settings, the shadow ranges, then segments until it ends.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "literal_writers.h"
#include "load_file.h"
#include "output/banked.h"
#include "output/prg.h"
#include "output/xex.h"

namespace kiln::fuzz {
namespace {

constexpr size_t mostSegments = 24;
constexpr size_t mostLongSegments = 3;
constexpr size_t mostRanges = 48;  // more than the copy table's index can reach

// Where something begins, ends or overflows.
constexpr uint32_t edges[] = {0,      1,      2,      0x7F,   0x80,   0x82,   0x83,   0xFF,    0x100,      0x3FF,
                              0x3FFF, 0x4000, 0x4001, 0x5FFF, 0x6000, 0x7F00, 0x7FFF, 0x8000,  0x8001,     0x9FFF,
                              0xA000, 0xBFFF, 0xC000, 0xD000, 0xFEFF, 0xFF00, 0xFFFE, 0xFFFF,  0x10000,    0x10001,
                              0x2000, 0x3400, 0x1000, 0x5000, 0x50FF, 0x84,   0x85,   0x1FFFF, 0x7FFFFFFF, 0xFFFFFFFF};

class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

  bool atEnd() const { return bytes_.empty(); }

  uint32_t byte() {
    if (bytes_.empty()) return 0;
    const uint8_t value = static_cast<uint8_t>(bytes_.front());
    bytes_.remove_prefix(1);
    return value;
  }
  uint32_t word() {
    const uint32_t low = byte();
    return low | byte() << 8;
  }
  // An edge, a word, or 32 bits.
  uint32_t number() {
    const uint32_t tag = byte();
    if (tag < 0xC0) return edges[tag % std::size(edges)];
    if (tag < 0xFC) return word();
    const uint32_t low = word();
    return low | word() << 16;
  }
  uint32_t address() { return number() & 0xFFFF; }

 private:
  std::string_view bytes_;
};

struct Program {
  std::vector<AsSegment> segments;
  ShadowPlan plan;
  BankedSettings settings;
  uint32_t runAddress = 0;
};

// Short ones mostly, for speed; a few that fill their window or the whole memory and more.
size_t decodeLength(ByteReader& reader, bool mayBeLong) {
  const uint32_t tag = reader.byte();
  if (tag < 0xF0 || !mayBeLong) return tag % 0x40;
  if (tag < 0xFC) return reader.address();
  return 0xFF00 + reader.word() % 0x400;
}

AsSegment decodeSegment(ByteReader& reader, bool mayBeLong) {
  AsSegment segment;
  const uint32_t flags = reader.byte();
  segment.start = reader.address();
  segment.bytes.resize(decodeLength(reader, mayBeLong));
  uint32_t value = reader.byte();
  for (size_t i = 0; i < segment.bytes.size(); ++i)
    segment.bytes[i] = static_cast<uint8_t>(value + i + i / 256);  // repeats nowhere within two pages
  if ((flags & 1) != 0) segment.bank = static_cast<int32_t>(reader.number());
  segment.cloaked = (flags & 6) == 6;
  if ((flags & 8) != 0) segment.cloakedId = static_cast<int32_t>(reader.number());
  return segment;
}

Program decode(std::string_view input) {
  ByteReader reader(input);
  Program program;
  BankedSettings& settings = program.settings;
  const uint32_t given = reader.byte();  // a group of settings for every bit
  if ((given & 1) != 0) settings.codeBankRegister = reader.number();
  if ((given & 2) != 0) settings.dataBankRegister = reader.number();
  for (uint32_t* number : {&settings.bankWindowLow, &settings.bankWindowHigh})
    *number = (given & 4) != 0 ? reader.number() : 0;
  settings.splitBank = (given & 8) != 0;
  for (uint32_t* number : {&settings.dataWindowLow, &settings.dataWindowHigh})
    *number = (given & 16) != 0 ? reader.number() : 0;
  for (uint32_t* number :
       {&settings.regcWindowLow, &settings.regcWindowHigh, &settings.regcRegisterLow, &settings.regcRegisterHigh})
    *number = (given & 32) != 0 ? reader.number() : 0;
  for (uint32_t* number : {&settings.mainRegionLow, &settings.mainRegionHigh})
    *number = (given & 64) != 0 ? reader.number() : 0;
  program.runAddress = reader.address();
  if ((given & 128) != 0) {
    program.plan.stageAddress = reader.address();
    const size_t count = reader.byte() % mostRanges;
    for (size_t i = 0; i < 2 * count; ++i)
      program.plan.ranges.push_back(reader.address());
  }
  while (!reader.atEnd() && program.segments.size() < mostSegments) {
    program.segments.push_back(decodeSegment(reader, program.segments.size() < mostLongSegments));
  }
  return program;
}

struct Lines final : Console {
  void printError(std::string_view text) override { errors.emplace_back(text); }
  void printOutput(std::string_view) override { fail("a writer prints to standard output"); }
  std::vector<std::string> errors;
};

std::optional<std::string> bytesOf(const std::optional<Image>& image) {
  if (!image.has_value()) return std::nullopt;
  std::string bytes;
  for (std::string_view part : image->parts())
    bytes += part;
  return bytes;
}

void compare(const char* writer, const std::optional<std::string>& image, const std::vector<std::string>& lines,
             const LiteralFile& literal) {
  const std::string name = writer;
  if (image.has_value() != literal.image.has_value()) fail(name + (image ? ": a file for none" : ": no file"));
  if (image.has_value() && *image != *literal.image) {
    const auto [at, other] = std::mismatch(image->begin(), image->end(), literal.image->begin(), literal.image->end());
    fail(name + ": another byte at " + std::to_string(at - image->begin()));
  }
  bool equal = lines.size() == literal.messages.size();
  for (size_t i = 0; equal && i < lines.size(); ++i)
    equal = lines[i].starts_with(literal.messages[i]) && lines[i].find('\n') == lines[i].size() - 1;
  if (equal) return;
  std::string lists = name + ": other messages\n";
  for (const std::string& line : lines)
    lists.append("  product: ").append(line);
  for (const std::string& message : literal.messages)
    lists.append("  literal: ").append(message).append("\n");
  fail(lists);
}

// Bytes with their addresses, in one number each.
using Loaded = std::vector<uint32_t>;

void addLoaded(Loaded& loaded, uint32_t address, std::string_view bytes) {
  loaded.reserve(loaded.size() + bytes.size());
  for (const char byte : bytes)
    loaded.push_back((address++ & 0xFFFF) << 8 | static_cast<uint8_t>(byte));
}

uint32_t wordAt(std::string_view bytes, size_t at) {
  require(at + 2 <= bytes.size(), "a copy table without an end");
  return static_cast<uint8_t>(bytes[at]) | static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + 1])) << 8;
}

// What the copy stub of a staging segment would move.
void addStaged(Loaded& loaded, const LoadRecord& stage) {
  constexpr size_t tableOffset = 109;
  for (size_t entry = tableOffset;; entry += 6) {
    const uint32_t length = wordAt(stage.bytes, entry + 4);
    if (length == 0) return;
    const size_t source = wordAt(stage.bytes, entry) - stage.address;
    require(source <= stage.bytes.size() && length <= stage.bytes.size() - source, "a copy from beyond the segment");
    addLoaded(loaded, wordAt(stage.bytes, entry + 2), stage.bytes.substr(source, length));
  }
}

bool isDisjoint(const std::vector<uint32_t>& ranges) {
  for (size_t i = 0; i + 1 < ranges.size(); i += 2) {
    for (size_t j = 0; j < i; j += 2) {
      if (ranges[i] <= ranges[j + 1] && ranges[j] <= ranges[i + 1]) return false;
    }
  }
  return true;
}

// Ranges that overlap may bring a byte to its place more than once, and none may be missing.
void checkLoaded(const Program& program, std::string_view file, bool staged) {
  std::optional<std::vector<LoadRecord>> records = parseLoadFile(file);
  require(records.has_value() && !records->empty() && isRunAddress(records->back()), "the flat file is malformed");
  records->pop_back();
  Loaded loaded;
  if (staged) {
    require(records->size() >= 2 && records->back().address == 0x02E2, "the staged code is not called");
    records->pop_back();
    addStaged(loaded, records->back());
    records->pop_back();
  }
  for (const LoadRecord& record : *records)
    addLoaded(loaded, record.address, record.bytes);
  Loaded expected;
  for (const AsSegment& segment : program.segments)
    addLoaded(expected, segment.start, {reinterpret_cast<const char*>(segment.bytes.data()), segment.bytes.size()});
  std::sort(loaded.begin(), loaded.end());
  std::sort(expected.begin(), expected.end());
  if (!isDisjoint(program.plan.ranges)) {
    loaded.erase(std::unique(loaded.begin(), loaded.end()), loaded.end());
    expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
  }
  require(loaded == expected, "the flat file loads other bytes than those of the segments");
}

bool touchesRange(const Program& program) {
  const std::vector<uint32_t>& ranges = program.plan.ranges;
  for (const AsSegment& segment : program.segments) {
    for (size_t i = 0; !segment.bytes.empty() && program.plan.stageAddress != 0 && i + 1 < ranges.size(); i += 2) {
      const uint32_t low = ranges[i];
      const uint32_t high = ranges[i + 1];
      if (low <= high && high >= segment.start && low < segment.start + segment.bytes.size()) return true;
    }
  }
  return false;
}

void checkWriters(std::string_view input) {
  const Program program = decode(input);
  Lines flatLines;
  const std::optional<std::string> flat =
      bytesOf(writeXex(program.segments, program.plan, program.runAddress, flatLines));
  compare("flat", flat, flatLines.errors, literalXex(program.segments, program.plan, program.runAddress));
  const bool tellable = std::all_of(program.segments.begin(), program.segments.end(),
                                    [](const AsSegment& segment) { return segment.bytes.size() <= 0x10000; });
  if (flat.has_value() && tellable) checkLoaded(program, *flat, touchesRange(program));

  Lines bankedLines;
  const std::optional<std::string> banked =
      bytesOf(writeBanked(program.segments, program.plan, program.settings, program.runAddress, bankedLines));
  compare("banked", banked, bankedLines.errors,
          literalBanked(program.segments, program.plan, program.settings, program.runAddress));
  if (banked.has_value() && tellable) {
    const std::optional<std::vector<LoadRecord>> records = parseLoadFile(*banked);
    require(records.has_value() && isRunAddress(records->back()), "the banked file is malformed");
  }
  compare("prg", bytesOf(writePrg(program.segments)), {}, {literalPrg(program.segments), {}});
}

}  // namespace
}  // namespace kiln::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kiln::fuzz::checkWriters({reinterpret_cast<const char*>(data), size});
  return 0;
}
