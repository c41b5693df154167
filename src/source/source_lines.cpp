#include "source/source_lines.h"

#include <cstring>

namespace kiln {
namespace {

constexpr uint64_t mostBytes = (uint64_t{1} << 40) - 1;

}  // namespace

void SourceLines::add(std::string_view lines, size_t count) {
  pieces_.push_back({lines.data(), lines.size() & mostBytes, count & mostAtOnce});
  count_ += count;
  size_ += lines.size();
}

void SourceLines::addNext(std::string_view lines, size_t count) {
  Piece& last = pieces_.back();
  if (last.count + count > mostAtOnce) return add(lines, count);
  last.size = (last.size + lines.size() + 1) & mostBytes;
  last.count = (last.count + count) & mostAtOnce;
  count_ += count;
  size_ += lines.size() + 1;
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
  follows_ = rest_ != nullptr;
  if (!follows_) {
    if (nextPiece_ == pieces_.size()) return false;
    const SourceLines::Piece& piece = pieces_[nextPiece_++];
    rest_ = piece.begin;
    end_ = piece.begin + piece.size;
  }
  const size_t left = static_cast<size_t>(end_ - rest_);
  const char* const lineEnd = left == 0 ? nullptr : static_cast<const char*>(std::memchr(rest_, '\n', left));
  line = line_ = {rest_, lineEnd == nullptr ? left : static_cast<size_t>(lineEnd - rest_)};
  rest_ = lineEnd == nullptr ? nullptr : lineEnd + 1;
  ++read_;
  return true;
}

std::string_view LineReader::at(size_t index) {
  if (read_ > index + 1) {
    nextPiece_ = read_ = 0;
    rest_ = nullptr;
    line_ = {};
  }
  std::string_view line = line_;
  while (read_ <= index && next(line)) {
  }
  return line_;
}

}  // namespace kiln
