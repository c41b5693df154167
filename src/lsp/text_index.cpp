#include "lsp/text_index.h"

#include <algorithm>

namespace kiln {
namespace {

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The bytes of the character at the beginning of a text that is not empty.
size_t characterSize(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const size_t size = lead < 0xC2 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 1;
  if (size > text.size()) return 1;
  const bool isWhole = std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(size), isContinuation);
  return isWhole ? size : 1;
}

uint32_t unitsOf(size_t characterSize, Encoding encoding) {
  if (encoding == Encoding::Utf8) return static_cast<uint32_t>(characterSize);
  return characterSize == 4 ? 2 : 1;
}

}  // namespace

Json toJson(const Position& position) { return {{"line", position.line}, {"character", position.character}}; }

Json toJson(const Range& range) { return {{"start", toJson(range.start)}, {"end", toJson(range.end)}}; }

Position positionFrom(const Json& json) {
  return {numberOf(memberOf(json, {"line"})), numberOf(memberOf(json, {"character"}))};
}

Range rangeFrom(const Json& json) {
  return {positionFrom(memberOf(json, {"start"})), positionFrom(memberOf(json, {"end"}))};
}

TextIndex::TextIndex(std::string_view text, Encoding encoding) : text_(text), encoding_(encoding) {
  starts_.push_back(0);
  for (size_t at = text.find_first_of("\r\n"); at != std::string_view::npos; at = text.find_first_of("\r\n", at)) {
    at += text.substr(at, 2) == "\r\n" ? 2 : 1;
    starts_.push_back(at);
  }
}

std::string_view TextIndex::lineAt(uint32_t line) const {
  if (line >= starts_.size()) return {};
  const size_t end = line + 1 < starts_.size() ? starts_[line + 1] : text_.size();
  std::string_view found = text_.substr(starts_[line], end - starts_[line]);
  while (line + 1 < starts_.size() && (found.ends_with('\n') || found.ends_with('\r')))
    found.remove_suffix(1);
  return found;
}

size_t TextIndex::offsetOf(Position position) const {
  if (position.line >= starts_.size()) return text_.size();
  std::string_view rest = lineAt(position.line);
  uint32_t units = 0;
  while (!rest.empty()) {
    const size_t size = characterSize(rest);
    units += unitsOf(size, encoding_);
    if (units > position.character) break;
    rest.remove_prefix(size);
  }
  return static_cast<size_t>(rest.data() - text_.data());
}

uint32_t TextIndex::lineOf(size_t offset) const {
  const auto after = std::upper_bound(starts_.begin(), starts_.end(), offset);
  return static_cast<uint32_t>(after - starts_.begin() - 1);
}

uint32_t TextIndex::unitsIn(size_t begin, size_t end) const {
  std::string_view rest = text_.substr(begin, end - begin);
  uint32_t units = 0;
  while (!rest.empty()) {
    const size_t size = characterSize(rest);
    units += unitsOf(size, encoding_);
    rest.remove_prefix(size);
  }
  return units;
}

Position TextIndex::positionOf(size_t offset) const {
  offset = std::min(offset, text_.size());
  const uint32_t line = lineOf(offset);
  return {line, unitsIn(starts_[line], offset)};
}

Position PositionWalk::at(size_t offset) {
  const uint32_t line = index_.lineOf(offset);
  const size_t from = line == position_.line ? offset_ : index_.startOf(line);
  const uint32_t before = line == position_.line ? position_.character : 0;
  position_ = {line, before + index_.unitsIn(from, offset)};
  offset_ = offset;
  return position_;
}

}  // namespace kiln
