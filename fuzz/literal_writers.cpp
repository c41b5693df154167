#include "literal_writers.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <utility>

namespace kiln::fuzz {
namespace {

using Bytes = std::string;

struct LiteralPiece {
  int64_t address;
  Bytes bytes;
  int64_t length() const { return static_cast<int64_t>(bytes.size()); }
};

std::string hex(int64_t value) {
  char text[32];
  std::snprintf(text, sizeof text, "$%04llX", static_cast<unsigned long long>(value));
  return text;
}

void append(Bytes& to, const Bytes& from) { to += from; }

void append(Bytes& to, std::initializer_list<int64_t> values) {
  for (const int64_t value : values)
    to.push_back(static_cast<char>(value & 0xFF));
}

Bytes bytesOf(std::initializer_list<int64_t> values) {
  Bytes bytes;
  append(bytes, values);
  return bytes;
}

void appendWord(Bytes& to, int64_t value) { append(to, {value, value >> 8}); }

void appendHeader(Bytes& to, int64_t first, int64_t last) {
  appendWord(to, first);
  appendWord(to, last);
}

// The bytes of the segment from one address to another, both inclusive.
Bytes slice(const AsSegment& segment, int64_t from, int64_t to) {
  const auto begin = segment.bytes.begin();
  return Bytes(begin + (from - segment.start), begin + (to + 1 - segment.start));
}

void split(const AsSegment& segment, const ShadowPlan& plan, std::vector<LiteralPiece>& plain,
           std::vector<LiteralPiece>& shadow) {
  const int64_t s = segment.start;
  const int64_t e = s + static_cast<int64_t>(segment.bytes.size()) - 1;
  std::vector<std::pair<int64_t, int64_t>> kept;
  for (size_t i = 0; plan.stageAddress != 0 && i + 1 < plan.ranges.size(); i += 2) {
    const int64_t low = plan.ranges[i];
    const int64_t high = plan.ranges[i + 1];
    if (high < low) continue;  // turned round when it was cut to 16 bits: it holds no address
    if (high < s || low > e) continue;
    const std::pair<int64_t, int64_t> clipped(std::max(s, low), std::min(high, e));
    size_t at = kept.size();
    while (at > 0 && kept[at - 1].first > clipped.first)
      --at;
    kept.insert(kept.begin() + static_cast<std::ptrdiff_t>(at), clipped);
  }
  int64_t k = s;
  for (const auto& [start, end] : kept) {
    if (k < start) plain.push_back({k & 0xFFFF, slice(segment, k, start - 1)});
    shadow.push_back({start & 0xFFFF, slice(segment, start, end)});
    k = end + 1;
  }
  if (k <= e) plain.push_back({k & 0xFFFF, slice(segment, k, e)});
}

bool stage(Bytes& image, int64_t t, const std::vector<LiteralPiece>& pieces, std::vector<std::string>& messages) {
  const int64_t a = t + 109 + 6 * (static_cast<int64_t>(pieces.size()) + 1);
  int64_t b = a;
  for (const LiteralPiece& piece : pieces)
    b += piece.length();
  if (b > 0x8000) {
    messages.push_back("kiln-as: warning: shadow staging segment " + hex(t) + "-" + hex(b - 1) + " extends " +
                       std::to_string(b - 0x8000) + " bytes into screen RAM at $8000. ");
  }
  Bytes table;
  int64_t source = a;
  for (const LiteralPiece& piece : pieces) {
    if (source > 0xFFFF) {
      messages.push_back("kiln-as: shadow staging payload at " + hex(t) + " overflows 64 KB ");
      return false;
    }
    appendWord(table, source);
    appendWord(table, piece.address);
    appendWord(table, piece.length());
    source += piece.length();
  }
  append(table, {0, 0, 0, 0, 0, 0});
  Bytes segment;
  append(segment,
         {0x08, 0x78, 0xA9, 0x00, 0x8D, 0x0E, 0xD4, 0xAD, 0x01, 0xD3, 0x29, 0xFE, 0x8D, 0x01, 0xD3, 0xA2, 0x00});
  for (int64_t k = 0; k <= 5; ++k) {
    append(segment, {0xBD});
    appendWord(segment, t + 109);
    append(segment, {0x85, 0xC0 + k, 0xE8});
  }
  append(segment, {0xA5, 0xC4, 0x05, 0xC5, 0xF0, 0x23, 0xA0, 0x00, 0xB1, 0xC0, 0x91, 0xC2, 0xE6,
                   0xC0, 0xD0, 0x02, 0xE6, 0xC1, 0xE6, 0xC2, 0xD0, 0x02, 0xE6, 0xC3, 0xA5, 0xC4,
                   0xD0, 0x02, 0xC6, 0xC5, 0xC6, 0xC4, 0xA5, 0xC4, 0x05, 0xC5, 0xD0, 0xE0, 0x4C});
  appendWord(segment, t + 17);
  append(segment, {0xAD, 0x01, 0xD3, 0x09, 0x01, 0x8D, 0x01, 0xD3, 0xA9, 0x40, 0x8D, 0x0E, 0xD4, 0x28, 0x60});
  append(segment, table);
  for (const LiteralPiece& piece : pieces)
    append(segment, piece.bytes);
  const int64_t length = static_cast<int64_t>(segment.size());
  if (t + length - 1 > 0xFFFF) {
    messages.push_back("kiln-as: shadow staging payload at " + hex(t) + " is " + std::to_string(length) +
                       " bytes, runs past $FFFF. ");
    return false;
  }
  appendHeader(image, t, t + length - 1);
  append(image, segment);
  append(image, {0xE2, 0x02, 0xE3, 0x02});
  appendWord(image, t);
  return true;
}

void appendPiece(Bytes& image, const LiteralPiece& piece) {
  appendHeader(image, piece.address, piece.address + piece.length() - 1);
  append(image, piece.bytes);
}

void appendRun(Bytes& image, int64_t address) {
  append(image, {0xE0, 0x02, 0xE1, 0x02});
  appendWord(image, address);
}

void appendPreload(Bytes& image, const Bytes& stub) {
  const int64_t n = static_cast<int64_t>(stub.size());
  appendHeader(image, 0x03FD, 0x03FD + n - 1);
  append(image, stub);
  append(image, {0xE2, 0x02, 0xE3, 0x02, 0xFD, 0x03});
  appendHeader(image, 0x03FD, 0x03FD + n - 1);
  append(image, stub);
}

void appendStore(Bytes& routine, int64_t bankRegister) {
  if (bankRegister < 256) {
    append(routine, {0x85, bankRegister});
  } else {
    append(routine, {0x8D});
    appendWord(routine, bankRegister);
  }
}

bool within(int64_t value, int64_t low, int64_t high) { return low <= value && value <= high; }

class LiteralBanked {
 public:
  LiteralBanked(const ShadowPlan& plan, const BankedSettings& settings)
      : plan_(plan),
        settings_(settings),
        windowLow_(settings.bankWindowLow == 0 ? 0x4000 : settings.bankWindowLow),
        windowHigh_(settings.bankWindowHigh == 0 ? 0x7FFF : settings.bankWindowHigh),
        mainLow_(settings.mainRegionLow == 0 ? 0xA000 : settings.mainRegionLow),
        mainHigh_(settings.mainRegionHigh == 0 ? 0xBFFF : settings.mainRegionHigh) {}

  LiteralFile write(const std::vector<AsSegment>& segments, uint32_t runAddress) {
    if (!writeBody(segments)) return {std::nullopt, messages_};
    appendRun(image_, runAddress);
    return {image_, messages_};
  }

 private:
  enum class Kind { Regc, DataHalf, CodeHalf, Plain };

  bool writeBody(const std::vector<AsSegment>& segments) {
    std::vector<const AsSegment*> banked;
    std::vector<LiteralPiece> plain;
    std::vector<LiteralPiece> shadow;
    int64_t unnumbered = 0;
    int64_t numbered = 0;
    for (const AsSegment& segment : segments) {
      if (segment.cloaked) {
        ++(segment.cloakedId < 0 ? unnumbered : numbered);
      } else if (within(segment.start, windowLow_, windowHigh_)) {
        banked.push_back(&segment);
      } else if (!segment.bytes.empty()) {
        split(segment, plan_, plain, shadow);
      }
    }
    append(image_, {0xFF, 0xFF});
    if (!shadow.empty()) {
      const Bytes stub = bytesOf({0xAD, 0x01, 0xD3, 0x09, 0x10, 0x8D, 0x01, 0xD3, 0x60});
      appendPreload(image_, stub);
      if (!stage(image_, plan_.stageAddress, shadow, messages_)) return false;
      appendPreload(image_, stub);
    }
    warnOfCloaked("cloaked segments", unnumbered);
    warnOfCloaked("numbered-bank cloaked segments", numbered);
    if (!banked.empty() && settings_.codeBankRegister == 0) {
      return fails("kiln-as: banked output requires a code bank register from the layout ");
    }
    for (const AsSegment* const segment : banked) {
      const Kind kind = kindOf(*segment);
      if (!segment->bytes.empty() && !writeBankedSegment(*segment, kind)) return false;
      ++counters_[static_cast<size_t>(kind)];
    }
    return std::all_of(plain.begin(), plain.end(), [this](const LiteralPiece& piece) { return writeMain(piece); });
  }

  Kind kindOf(const AsSegment& segment) const {
    const bool regc = settings_.regcWindowLow != 0 && settings_.regcRegisterLow != 0;
    if (regc && within(segment.start, settings_.regcWindowLow, settings_.regcWindowHigh)) return Kind::Regc;
    if (!settings_.splitBank) return Kind::Plain;
    const bool data = within(segment.start, settings_.dataWindowLow, settings_.dataWindowHigh);
    return data ? Kind::DataHalf : Kind::CodeHalf;
  }

  bool writeBankedSegment(const AsSegment& segment, Kind kind) {
    if (!checkSizes(segment, kind)) return false;
    uint16_t value = counters_[static_cast<size_t>(kind)];
    if (kind == Kind::Plain && segment.bank >= 0) value = static_cast<uint16_t>(segment.bank & 0xFFFF);
    appendPreload(image_, selectRoutine(kind, value));
    const int64_t last = segment.start + static_cast<int64_t>(segment.bytes.size()) - 1;
    appendHeader(image_, segment.start, last);
    append(image_, slice(segment, segment.start, last));
    appendPreload(image_, resetRoutine(kind));
    return true;
  }

  bool checkSizes(const AsSegment& segment, Kind kind) {
    const int64_t length = static_cast<int64_t>(segment.bytes.size());
    const auto tooLong = [&](const std::string& what, int64_t size, const std::string& rest) {
      return fails("kiln-as: banked " + what + " at " + hex(segment.start) + " is " + std::to_string(length) +
                   " bytes \xE2\x80\x94 exceeds the " + std::to_string(size) + "B " + rest);
    };
    const int64_t window = windowHigh_ - windowLow_ + 1;
    if (length > window) return tooLong("segment", window, "bank page size");
    const int64_t dataLow = settings_.dataWindowLow;
    const int64_t dataHigh = settings_.dataWindowHigh;
    const int64_t data = dataHigh - dataLow + 1;
    if (kind == Kind::DataHalf && length > data) {
      return tooLong("data segment", data, "split-bank data half (" + hex(dataLow) + "-" + hex(dataHigh) + "). ");
    }
    const int64_t codeHigh = dataLow == 0 ? windowHigh_ : dataLow - 1;
    const int64_t code = codeHigh - windowLow_ + 1;
    if (kind == Kind::CodeHalf && length > code) {
      return tooLong("code segment", code, "split-bank code half (" + hex(windowLow_) + "-" + hex(codeHigh) + "). ");
    }
    return true;
  }

  Bytes selectRoutine(Kind kind, uint16_t value) {
    const int64_t low = value & 0xFF;
    const int64_t high = value >> 8;
    Bytes routine = bytesOf({0xA9, low});
    if (kind == Kind::Regc) {
      appendStore(routine, settings_.regcRegisterLow);
      if (settings_.regcRegisterHigh != 0) {
        append(routine, {0xA9, high});
        appendStore(routine, settings_.regcRegisterHigh);
      }
    } else if (kind == Kind::Plain) {
      appendStore(routine, settings_.codeBankRegister);
      if (high != lastHigh_) {
        append(routine, {0xA9, high});
        appendStore(routine, settings_.dataBankRegister);
        lastHigh_ = high;
      }
    } else {
      appendStore(routine, kind == Kind::DataHalf ? settings_.dataBankRegister : settings_.codeBankRegister);
    }
    append(routine, {0x60});
    return routine;
  }

  Bytes resetRoutine(Kind kind) {
    Bytes routine = bytesOf({0xA9, 0x00});
    if (kind == Kind::Regc) {
      appendStore(routine, settings_.regcRegisterLow);
      if (settings_.regcRegisterHigh != 0) appendStore(routine, settings_.regcRegisterHigh);
    } else if (kind == Kind::Plain) {
      appendStore(routine, settings_.codeBankRegister);
      if (lastHigh_ != 0) appendStore(routine, settings_.dataBankRegister);
      lastHigh_ = 0;
    } else {
      appendStore(routine, kind == Kind::DataHalf ? settings_.dataBankRegister : settings_.codeBankRegister);
    }
    append(routine, {0x60});
    return routine;
  }

  bool writeMain(const LiteralPiece& piece) {
    const int64_t end = piece.address + piece.length() - 1;
    if (within(piece.address, mainLow_, mainHigh_) && end > mainHigh_) {
      return fails("kiln-as: main code segment at " + hex(piece.address) + " is " + std::to_string(piece.length()) +
                   " bytes \xE2\x80\x94 overflows the " + std::to_string(mainHigh_ - mainLow_ + 1) + "B main region (" +
                   hex(mainLow_) + "-" + hex(mainHigh_) + ") by " + std::to_string(end - mainHigh_) + " bytes. ");
    }
    appendPiece(image_, piece);
    return true;
  }

  void warnOfCloaked(const std::string& what, int64_t count) {
    if (count == 0) return;
    messages_.push_back("kiln-as: " + what + " are only supported on xe-family targets (xeBankMask = 0); ignoring " +
                        std::to_string(count) + " segment(s)\n");
  }

  bool fails(const std::string& message) {
    messages_.push_back(message);
    return false;
  }

  const ShadowPlan& plan_;
  const BankedSettings& settings_;
  int64_t windowLow_;
  int64_t windowHigh_;
  int64_t mainLow_;
  int64_t mainHigh_;
  uint16_t counters_[4] = {1, 1, 1, 1};
  int64_t lastHigh_ = -1;
  Bytes image_;
  std::vector<std::string> messages_;
};

}  // namespace

LiteralFile literalXex(const std::vector<AsSegment>& segments, const ShadowPlan& plan, uint32_t runAddress) {
  LiteralFile file;
  std::vector<LiteralPiece> plain;
  std::vector<LiteralPiece> shadow;
  Bytes image = bytesOf({0xFF, 0xFF});
  for (const AsSegment& segment : segments) {
    if (!segment.bytes.empty()) split(segment, plan, plain, shadow);
  }
  for (const LiteralPiece& piece : plain)
    appendPiece(image, piece);
  if (!shadow.empty() && !stage(image, plan.stageAddress, shadow, file.messages)) return file;
  appendRun(image, runAddress);
  file.image = image;
  return file;
}

LiteralFile literalBanked(const std::vector<AsSegment>& segments, const ShadowPlan& plan,
                          const BankedSettings& settings, uint32_t runAddress) {
  return LiteralBanked(plan, settings).write(segments, runAddress);
}

std::optional<std::string> literalPrg(const std::vector<AsSegment>& segments) {
  std::vector<const AsSegment*> collected;
  for (const AsSegment& segment : segments) {
    if (segment.bytes.empty()) continue;
    size_t at = collected.size();
    while (at > 0 && collected[at - 1]->start > segment.start)
      --at;
    collected.insert(collected.begin() + static_cast<std::ptrdiff_t>(at), &segment);
  }
  if (collected.empty()) return std::nullopt;
  Bytes image;
  int64_t k = collected.front()->start;
  appendWord(image, k);
  for (const AsSegment* const segment : collected) {
    if (k < segment->start) image.append(static_cast<size_t>(segment->start - k), '\0');
    const int64_t end = segment->start + static_cast<int64_t>(segment->bytes.size());
    append(image, slice(*segment, segment->start, end - 1));
    k = end & 0xFFFF;
  }
  return image;
}

}  // namespace kiln::fuzz
