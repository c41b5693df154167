#include "source/line_text.h"

#include <array>
#include <bit>
#include <utility>

#include "base/byte_block.h"
#include "base/text.h"

namespace kiln {
namespace {

constexpr std::string_view statementSeparator = " : ";

constexpr std::array<uint8_t, 256> makeSpecials() {
  std::array<uint8_t, 256> specials{};
  specials['"'] = Quote;
  specials[';'] = Semicolon;
  specials[':'] = Colon;
  specials['='] = Equals;
  specials[','] = Comma;
  specials['.'] = Dot;
  specials[' '] = Blank;
  specials['\t'] = Blank;
  return specials;
}

constexpr std::array<uint8_t, 256> specialTable = makeSpecials();

uint8_t specialOf(char c) { return specialTable[static_cast<unsigned char>(c)]; }

// Longer lines are searched for the characters that make them more than one plain statement. Searching costs more per
// line but less per character (a tenth of the time of a source of data lists).
constexpr size_t longLine = hasFastBlocks ? 64 : 40;

// True when the line has none of the characters that could make it more than one plain statement.
bool isPlain(std::string_view line) {
  if constexpr (hasFastBlocks) {
    uint64_t found = 0;
    for (size_t at = 0; at < line.size(); at += 64) {
      const ByteBlock<4> block(line.data() + at);
      found |= block.equalTo('"', ';', ':', '=') & lowestBits(line.size() - at);
    }
    return found == 0;
  } else {
    const auto hasNo = [line](char c) { return line.find(c) == std::string_view::npos; };
    return hasNo('"') && hasNo(';') && hasNo(':') && hasNo('=');
  }
}

bool hasMark(std::string_view line) { return line.find(longBranchComment) != std::string_view::npos; }

}  // namespace

// Most lines have no semicolon.
std::string_view withoutComment(std::string_view line) {
  if (line.find(';') == std::string_view::npos) return line;
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    if (line[i] == ';' && !quoted) return line.substr(0, i);
  }
  return line;
}

LineShape::LineShape(std::string_view line) {
  if constexpr (hasFastBlocks) {
    if (line.size() <= 32 && lookAtOnce<2>(line)) return;
    if (line.size() > 32 && line.size() <= 64 && lookAtOnce<4>(line)) return;
  }
  if (line.size() > longLine && isPlain(line)) {
    code_ = trim(line);
    specials_ = Dot;
    return;
  }
  walk(line);
}

// For lines that fit a block and have no quote; false for others. No step depends on where in the line something is, so
// the processor has nothing to predict (7 % of the time of a million plain lines).
template <int Parts>
bool LineShape::lookAtOnce(std::string_view line) {
  const ByteBlock<Parts> block(line.data());
  const uint64_t inLine = lowestBits(line.size());
  if ((block.equalTo('"') & inLine) != 0) return false;
  const uint64_t semicolons = block.equalTo(';') & inLine;
  const uint64_t inCode = semicolons == 0 ? inLine : (semicolons & -semicolons) - 1;
  masked_ = line.data();
  blanks_ = block.equalTo(' ', '\t');
  commas_ = block.equalTo(',');
  const uint64_t text = ~blanks_ & inCode;
  if (text != 0) {
    const size_t begin = static_cast<size_t>(std::countr_zero(text));
    code_ = line.substr(begin, 64 - static_cast<size_t>(std::countl_zero(text)) - begin);
  }
  const uint64_t colons = block.equalTo(':') & inCode;
  splits_ = (colons & blanks_ << 1) != 0;
  specials_ = static_cast<uint8_t>((colons != 0 ? Colon : 0) | ((block.equalTo('=') & inCode) != 0 ? Equals : 0) |
                                   ((block.equalTo('.') & inCode) != 0 ? Dot : 0));
  marked_ = semicolons != 0 && hasMark(line);
  return true;
}

void LineShape::walk(std::string_view line) {
  bool quoted = false;
  size_t begin = 0;
  while (begin < line.size() && isBlank(line[begin]))
    ++begin;
  size_t end = line.size();
  for (size_t i = begin; i < line.size(); ++i) {
    const uint8_t special = specialOf(line[i]);
    specials_ |= special;
    if ((special & (Quote | Semicolon | Colon)) == 0) continue;
    if (special == Quote) quoted = !quoted;
    if (special == Colon) splits_ = splits_ || (i > 0 && isBlank(line[i - 1]));
    if (special == Semicolon && !quoted) {
      end = i;
      break;
    }
  }
  code_ = trimRight(line.substr(begin, end - begin));
  // A mark has a semicolon: the one that ends the code, or one before it.
  marked_ = has(Semicolon) && hasMark(line);
}

uint8_t LineShape::specialsIn(std::string_view part) const {
  uint8_t all = 0;
  if (masked_ == nullptr) {
    for (char c : part)
      all |= specialOf(c);
    return all;
  }
  const uint64_t in = lowestBits(part.size()) << (part.data() - masked_);
  return static_cast<uint8_t>(((blanks_ & in) != 0 ? Blank : 0) | ((commas_ & in) != 0 ? Comma : 0));
}

std::optional<std::string_view> StatementTexts::next() {
  while (!rest_.empty()) {
    const size_t separator = rest_.find(statementSeparator);
    const std::string_view text = trim(rest_.substr(0, separator));
    rest_ = separator == std::string_view::npos ? "" : rest_.substr(separator + statementSeparator.size());
    if (text.empty()) continue;
    found_ = true;
    return text;
  }
  if (std::exchange(found_, true)) return std::nullopt;
  return trim(code_);
}

}  // namespace kiln
