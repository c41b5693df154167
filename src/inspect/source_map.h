// True places: file, line and column of any text of the expanded source.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "source/source_notes.h"

namespace kiln {

// Lines and columns count from 1, columns in bytes. The end is one past the last byte; a text that is cut at the end of
// its first line. Line 0: no place.
struct Place {
  const SourceNotes::File* file = nullptr;
  uint32_t line = 0;
  uint32_t column = 0;
  uint32_t endColumn = 0;
};

// Finds places by the pointers of texts. The notes must outlive it, and stay as they are.
class SourceMap {
 public:
  explicit SourceMap(const SourceNotes& notes);

  const SourceNotes& notes() const { return *notes_; }

  // Where a view into the text of a file is; no place for other texts.
  Place placeOf(std::string_view text) const;
  // The file whose text this is a view into, every inclusion of a file being one of its own; null for other texts.
  const SourceNotes::File* fileOf(std::string_view text) const;
  // The made line that the text is a view into; null when it is in none.
  const SourceNotes::Made* madeLine(std::string_view text) const;
  // The text itself if it is in a file, else the line of a file in whose place it was made; null data for other texts.
  std::string_view originOf(std::string_view text) const;

  // A line of a file without its line end; empty past the end. `line` counts from 1.
  std::string_view lineOf(const SourceNotes::File& file, uint32_t line) const;

 private:
  struct FileLines {
    const SourceNotes::File* file;
    const SourceNotes::File* named;        // the first file with this path: a file may be included several times
    mutable std::vector<uint32_t> starts;  // of its lines; filled on first need
  };

  const FileLines* fileWith(const char* at) const;
  const std::vector<const SourceNotes::Made*>& made() const;
  static const std::vector<uint32_t>& startsOf(const FileLines& lines);

  const SourceNotes* notes_;
  std::vector<FileLines> files_;                        // by address
  mutable std::vector<const SourceNotes::Made*> made_;  // likewise; filled on first need
};

}  // namespace kiln
