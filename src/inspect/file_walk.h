// The lines of all files of a program in the order in which they are read: an included file comes after the line that
// includes it, definitions of macros are lines like others.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "source/source_notes.h"

namespace kiln {

class FileWalk {
 public:
  struct Line {
    const SourceNotes::File* file = nullptr;
    uint32_t number = 0;  // from 1
    std::string_view text;
  };

  // The notes must outlive it, and stay as they are.
  explicit FileWalk(const SourceNotes& notes);

  // Moves to the next line; false when there is none left.
  bool next(Line& line);

 private:
  struct OpenFile {
    const SourceNotes::File* file;
    uint32_t linesRead = 0;
    size_t at = 0;  // where in the text the next line begins
  };

  bool openNext();

  const SourceNotes& notes_;
  size_t nextInput_ = 0;
  size_t inputCount_ = 0;
  size_t nextInclude_ = 0;
  std::vector<OpenFile> open_;
};

}  // namespace kiln
