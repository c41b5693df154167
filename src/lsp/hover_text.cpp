#include "lsp/hover_text.h"

#include <algorithm>

#include "base/format.h"

namespace kiln {
namespace {

// Longer than every run of backticks in the text.
std::string fenceFor(std::string_view text, size_t least) {
  size_t longest = 0;
  size_t run = 0;
  for (char c : text) {
    run = c == '`' ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return std::string(std::max(least, longest + 1), '`');
}

std::string binary(uint64_t value) {
  std::string digits;
  const size_t width = value > 0xFF ? 16 : 8;
  for (; value != 0 || digits.size() < width; value >>= 1)
    digits.push_back((value & 1) != 0 ? '1' : '0');
  return "%" + std::string(digits.rbegin(), digits.rend());
}

}  // namespace

std::string HoverText::code(std::string_view text) const {
  if (!isMarkdown_) return std::string(text);
  const std::string fence = fenceFor(text, 1);
  const std::string_view pad = text.starts_with('`') || text.ends_with('`') ? " " : "";
  return concat({fence, pad, text, pad, fence});
}

std::string HoverText::number(int64_t value) const {
  if (value < 0) return decimal(value);
  const std::string hex = dollarHex(value, value > 0xFF ? 4 : 2);
  return concat({code(hex), " = ", decimal(value), " = ", code(binary(static_cast<uint64_t>(value)))});
}

void HoverText::addParagraph(std::string_view text) {
  if (!text_.empty()) text_ += isMarkdown_ ? "\n\n" : "\n";
  text_ += text;
}

void HoverText::addBlock(std::string_view lines) {
  if (!isMarkdown_) return addParagraph(lines);
  const std::string fence = fenceFor(lines, 3);
  addParagraph(concat({fence, "kiln\n", lines, "\n", fence}));
}

Json HoverText::contents() const { return {{"kind", isMarkdown_ ? "markdown" : "plaintext"}, {"value", text_}}; }

}  // namespace kiln
