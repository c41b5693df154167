// Macros: text templates whose parameters are replaced as plain text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/name_hash.h"
#include "base/text_store.h"
#include "source/source_lines.h"

namespace kiln {

struct SourceNotes;

struct Macro {
  struct Line {
    std::string_view text;  // as written, indentation and comments included
    size_t parameter;       // no parameter before this one occurs in the text
    size_t at;              // where this one occurs; npos = unknown
  };

  // Appends a line to the body.
  void addLine(std::string_view text);

  std::string_view head;  // its definition after ".macro "
  std::vector<std::string_view> parameters;
  std::vector<Line> body;
};

// All macros of a run. The last definition of a name counts.
class MacroTable {
 public:
  // The new macro, with an empty body. `head` is the text after ".macro ": a name, then the parameters.
  Macro& define(std::string_view head);

  // Case-sensitive. Null when there is none.
  const Macro* find(std::string_view name) const;

  // Definitions so far, repeated ones included. While it is unchanged, every line keeps its meaning.
  size_t count() const { return macros_.size(); }

  // All definitions, in order.
  const std::vector<Macro>& all() const { return macros_; }

 private:
  std::vector<Macro> macros_;
  std::unordered_map<std::string_view, size_t, NameHash> byName_;
};

// How much text macros and includes may still add to the source. A few lines of either can ask for more than any memory
// holds, so the run ends with a message when the room is exhausted.
class ExpansionRoom {
 public:
  // False when less than that is left, which exhausts the room.
  bool take(uint64_t bytes) {
    left_ = has(bytes) ? left_ - bytes : 0;
    return left_ != 0;
  }
  bool has(uint64_t bytes) const { return bytes < left_; }
  void exhaust() { left_ = 0; }
  bool isExhausted() const { return left_ == 0; }

 private:
  uint64_t left_ = uint64_t{1} << 30;
};

// Expands macro calls.
class MacroExpander {
 public:
  // Expanded lines are stored in `texts`, as long as there is `room` for them. `notes` may be null.
  MacroExpander(TextStore& texts, ExpansionRoom& room, SourceNotes* notes)
      : texts_(texts), room_(room), notes_(notes) {}

  // Replaces every line from piece `begin` on that calls a macro. The result is not expanded again. Stops when the room
  // is exhausted.
  void expand(const MacroTable& macros, SourceLines& lines, size_t begin);

 private:
  void instantiate(const Macro& macro, std::string_view call, std::string_view arguments, SourceLines& lines);
  std::string_view replaceParameters(const Macro& macro, const Macro::Line& line);
  void replaceAll(std::string_view text, size_t at, std::string_view name, std::string_view argument);
  std::string_view addExpanded(std::string_view line, SourceLines& lines);

  TextStore& texts_;
  ExpansionRoom& room_;
  SourceNotes* notes_;
  std::vector<std::string_view> values_;  // the arguments of the current call
  std::string line_;
  std::string replaced_;
  const char* nextExpanded_ = nullptr;  // a line stored here follows the last line of the list; null when none can
};

// The index of the first piece in [begin, end) with a macro call; `end` when there is none.
size_t findMacroCall(const MacroTable& macros, const SourceLines& lines, size_t begin, size_t end);

}  // namespace kiln
