#include "source/source_lines.h"

#include <cstring>

namespace kiln {
namespace {

constexpr uint64_t mostBytes = (uint64_t{1} << 40) - 1;
constexpr uint64_t mostLines = (uint64_t{1} << 24) - 1;

}  // namespace

void SourceLines::add(std::string_view line) {
  pieces_.push_back({line.data(), line.size() & mostBytes, 1});
  ++count_;
  size_ += line.size();
}

void SourceLines::addNext(std::string_view line) {
  Piece& last = pieces_.back();
  if (last.count == mostLines) return add(line);
  last.size = (last.size + line.size() + 1) & mostBytes;
  last.count = (last.count + 1) & mostLines;
  ++count_;
  size_ += line.size() + 1;
}

std::vector<SourceLines::Piece> SourceLines::takePieces(size_t first) {
  std::vector<Piece> taken(pieces_.begin() + static_cast<std::ptrdiff_t>(first), pieces_.end());
  pieces_.resize(first);
  for (const Piece& piece : taken) {
    count_ -= piece.count;
    size_ -= piece.size;
  }
  return taken;
}

bool LineReader::next(std::string_view& line) {
  if (piece_ == pieces_.size()) return false;
  if (lineOfPiece_ == pieces_[piece_].count) {
    lineOfPiece_ = 0;
    if (++piece_ == pieces_.size()) return false;
  }
  const SourceLines::Piece& piece = pieces_[piece_];
  const char* const begin = lineOfPiece_ == 0 ? piece.begin : rest_;
  const char* end = piece.begin + piece.size;
  if (++lineOfPiece_ < piece.count) {
    end = static_cast<const char*>(std::memchr(begin, '\n', static_cast<size_t>(end - begin)));
    rest_ = end + 1;
  }
  line = line_ = {begin, static_cast<size_t>(end - begin)};
  ++read_;
  return true;
}

std::string_view LineReader::at(size_t index) {
  if (read_ > index + 1) {
    piece_ = lineOfPiece_ = read_ = 0;
    line_ = {};
  }
  std::string_view line = line_;
  while (read_ <= index && next(line)) {
  }
  return line_;
}

}  // namespace kiln
