// What a program consists of, as an outline shows it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "lsp/analysis.h"

namespace kiln {

enum class OutlineKind : uint8_t {
  Code,        // a full label of code
  Data,        // one of anything else
  LocalLabel,  // or one with ">", which begins no scope
  Assignment,
  Macro,
  Region,  // ".code_regions"
  Bank,
  Move,  // ".org" and the like, where banks and routines end
};

struct OutlineItem {
  OutlineKind kind;
  std::string_view name;   // the real name of a label; the argument of a directive; else as written
  std::string_view scope;  // of a local label
  std::string_view text;   // as written, a view into the text of a file
};

// What the program defines: in the order of its statements, then its macros. What macros make is left out.
std::vector<OutlineItem> outlineOf(const Analysis& analysis);

// An item and the part of its file that belongs to it.
struct OutlinePart {
  OutlineItem item;
  size_t begin;   // offset in the file: of its line
  size_t end;     // of the end of the last line that belongs to it
  size_t parent;  // index of the part that this one is in; its own when there is none
};

// The items of one file in the order of the text, without moves. In a bank is all up to the next one or the next move,
// in a full label its local ones and the assignments between its code.
std::vector<OutlinePart> outlineOfFile(const Analysis& analysis, const SourceNotes::File& file);

}  // namespace kiln
