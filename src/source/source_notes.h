// Where the lines of the expanded source come from. A run keeps these notes only when it is given a place for them: to
// assemble, nobody needs them. A line that is not made by a macro or a rewriter is a view into the text of its file, so
// its pointer says where it is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "source/macros.h"

namespace kiln {

struct SourceNotes {
  struct File {
    std::string_view text;
    std::string path;              // as opened
    std::string_view includeLine;  // the line that includes it; null data for an input
  };

  // A line that a macro or a rewriter made.
  struct Made {
    std::string_view text;
    std::string_view origin;   // the line in whose place it is, perhaps a made one, too
    std::string_view pattern;  // the line of the macro's body; null data for a rewriter's line
  };

  struct Call {
    std::string_view line;
    std::string_view macroHead;  // of the macro's definition
    std::string_view arguments;
  };

  std::vector<File> files;                   // in the order in which they were opened, inputs first
  std::vector<Made> made;                    // a text may be there twice, with the same origin
  std::vector<Call> calls;                   // of macros
  std::vector<std::string_view> errorLines;  // what each error of the preprocessor is about; null data: no line
  MacroTable macros;
};

}  // namespace kiln
