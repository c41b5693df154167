// The expanded source: a list of text lines, most of which follow each other in the files that they came from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kiln {

// Lines that follow each other in one text are kept as one piece, so that a plain source costs next to nothing beside
// its text. The texts must outlive the list.
class SourceLines {
 public:
  struct Piece {
    const char* begin;
    uint64_t size : 40;   // bytes, the line ends between the lines included
    uint64_t count : 24;  // lines
  };

  // A line that has nothing to do with the one before it.
  void add(std::string_view line) { add(line, 1); }
  // A line that follows the last one in the same text, with one line end between them.
  void addNext(std::string_view line) { addNext(line, 1); }

  // The same for `count` lines, at most mostAtOnce, with line ends between them.
  static constexpr size_t mostAtOnce = (size_t{1} << 24) - 1;
  void add(std::string_view lines, size_t count);
  void addNext(std::string_view lines, size_t count);

  // All lines, and the bytes of their texts.
  size_t count() const { return count_; }
  size_t size() const { return size_; }

  const std::vector<Piece>& pieces() const { return pieces_; }
  // Takes the pieces from index `first` on off the list.
  std::vector<Piece> takePieces(size_t first);

 private:
  std::vector<Piece> pieces_;
  size_t count_ = 0;
  size_t size_ = 0;
};

// Reads the lines of consecutive pieces in order. The pieces must outlive it, and stay as they are.
class LineReader {
 public:
  explicit LineReader(const std::vector<SourceLines::Piece>& pieces, size_t firstPiece = 0)
      : pieces_(pieces), nextPiece_(firstPiece) {}

  // Moves to the next line; false when there is none left.
  bool next(std::string_view& line);

  // True when the last line that next() gave follows the one before it in the same piece.
  bool follows() const { return follows_; }
  // The index of the piece with that line.
  size_t piece() const { return nextPiece_ - 1; }

  // The line with this index, counted from the first piece of all, with which the reader must have begun. Quick when
  // the indices rise from call to call.
  std::string_view at(size_t index);

 private:
  const std::vector<SourceLines::Piece>& pieces_;
  size_t nextPiece_;
  const char* rest_ = nullptr;  // the lines of the piece that are left; null when none are
  const char* end_ = nullptr;
  bool follows_ = false;
  size_t read_ = 0;  // lines given in all
  std::string_view line_;
};

// Appends the line to `lines`, to the last piece if `follows` says that it belongs there.
inline void appendLine(SourceLines& lines, std::string_view line, bool follows) {
  if (follows) {
    lines.addNext(line);
  } else {
    lines.add(line);
  }
}

}  // namespace kiln
