// Places in a text as editors count them: lines from 0, and code units in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "lsp/json.h"

namespace kiln {

enum class Encoding : uint8_t { Utf16, Utf8 };

struct Position {
  uint32_t line = 0;
  uint32_t character = 0;  // in units of the encoding
};

struct Range {
  Position start;
  Position end;
};

Json toJson(const Position& position);
Json toJson(const Range& range);
// What is missing or no number counts as 0.
Position positionFrom(const Json& json);
Range rangeFrom(const Json& json);

// Lines end with "\n", "\r\n" or "\r", as the protocol has it. A byte that is not valid UTF-8 counts as one character.
class TextIndex {
 public:
  // The text has to stay.
  TextIndex(std::string_view text, Encoding encoding);

  std::string_view text() const { return text_; }
  uint32_t lineCount() const { return static_cast<uint32_t>(starts_.size()); }
  // Without its line end.
  std::string_view lineAt(uint32_t line) const;
  // The number of the line that the offset is in.
  uint32_t lineOf(size_t offset) const;
  size_t startOf(uint32_t line) const { return starts_[line]; }
  // Places past the end of a line or of the text are at these ends; one within a character is before it.
  size_t offsetOf(Position position) const;
  Position positionOf(size_t offset) const;
  Range rangeOf(size_t begin, size_t end) const { return {positionOf(begin), positionOf(end)}; }
  // The units of a part of the text.
  uint32_t unitsIn(size_t begin, size_t end) const;

 private:
  std::string_view text_;
  Encoding encoding_;
  std::vector<size_t> starts_;  // of the lines
};

// The positions of offsets that grow: a line is walked once, however many there are in it.
class PositionWalk {
 public:
  // The index has to stay.
  explicit PositionWalk(const TextIndex& index) : index_(index) {}

  // `offset` is not before that of the last call.
  Position at(size_t offset);

 private:
  const TextIndex& index_;
  size_t offset_ = 0;
  Position position_;
};

}  // namespace kiln
