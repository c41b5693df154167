#include "source/line_text.h"

#include <array>
#include <utility>

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
  specials[' '] = Space;
  specials['\t'] = Tab;
  return specials;
}

constexpr std::array<uint8_t, 256> specialTable = makeSpecials();

uint8_t specialOf(char c) { return specialTable[static_cast<unsigned char>(c)]; }

// Longer lines are searched for the characters that make them more than one plain statement. Searching costs more per
// line but less per character (a tenth of the time of a source of data lists).
constexpr size_t longLine = 40;

bool isPlain(std::string_view line) {
  for (char c : {'"', ';', ':', '='}) {
    if (line.find(c) != std::string_view::npos) return false;
  }
  return true;
}

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

uint8_t specialsOf(std::string_view text) {
  uint8_t all = 0;
  for (char c : text)
    all |= specialOf(c);
  return all;
}

LineShape shapeOf(std::string_view line) {
  LineShape shape;
  if (line.size() > longLine && isPlain(line)) {
    shape.code = trim(line);
    shape.specials = Dot;
    return shape;
  }
  bool quoted = false;
  size_t begin = 0;
  while (begin < line.size() && isBlank(line[begin]))
    ++begin;
  size_t end = line.size();
  for (size_t i = begin; i < line.size(); ++i) {
    const uint8_t special = specialOf(line[i]);
    shape.specials |= special;
    if ((special & (Quote | Semicolon | Colon)) == 0) continue;
    if (special == Quote) quoted = !quoted;
    if (special == Colon) shape.splits = shape.splits || (i > 0 && line[i - 1] == ' ');
    if (special == Semicolon && !quoted) {
      end = i;
      break;
    }
  }
  shape.code = trimRight(line.substr(begin, end - begin));
  // A mark has a semicolon: the one that ends the code, or one before it.
  if ((shape.specials & Semicolon) != 0) shape.marked = line.find(longBranchComment) != std::string_view::npos;
  return shape;
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
