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

struct Macro {
  struct Line {
    std::string_view text;  // as written, indentation and comments included
    size_t parameter;       // none before this one stands in it
    size_t at;              // where this one does; npos when that is not known
  };

  // Appends a line to the body.
  void addLine(std::string_view text);

  std::vector<std::string_view> parameters;
  std::vector<Line> body;
};

// All macros of a run. The last definition of a name holds.
class MacroTable {
 public:
  // The new macro, with an empty body. `head` is the text behind ".macro ": a name, then the parameters.
  Macro& define(std::string_view head);

  // Letter case counts. Null when there is none.
  const Macro* find(std::string_view name) const;

  // Definitions so far, repeated ones included: when it has not changed, no line has another meaning than before.
  size_t count() const { return macros_.size(); }

 private:
  std::vector<Macro> macros_;
  std::unordered_map<std::string_view, size_t, NameHash> byName_;
};

// How much macros and includes may still add to the source: a few lines of either can ask for more than any memory
// holds, and a run shall say so instead of trying.
class ExpansionRoom {
 public:
  // False when that much is not left; from then on nothing is.
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

// Writes macro calls out. Its scratch memory serves call after call.
class MacroExpander {
 public:
  // `texts` takes the lines that are made, as long as there is `room` for them.
  MacroExpander(TextStore& texts, ExpansionRoom& room) : texts_(texts), room_(room) {}

  // Appends the body lines with each parameter that has an argument replaced by it: one parameter after the other, so
  // that a later one also applies to what an earlier one brought in. `arguments` is the text behind the macro's name.
  // Leaves off when the room is exhausted.
  void instantiate(const Macro& macro, std::string_view arguments, SourceLines& lines);

  // Replaces every line from piece `begin` on that calls a macro. What a macro gives is not looked at again.
  // Leaves off when the room is exhausted.
  void expand(const MacroTable& macros, SourceLines& lines, size_t begin);

 private:
  std::string_view replaceParameters(const Macro& macro, const Macro::Line& line);
  void replaceAll(std::string_view text, size_t at, std::string_view name, std::string_view argument);
  void addMade(std::string_view line, SourceLines& lines);

  TextStore& texts_;
  ExpansionRoom& room_;
  std::vector<std::string_view> values_;
  std::string line_;
  std::string replaced_;
  const char* nextMade_ = nullptr;  // where a line must be made to follow the one added last; null when none can
};

// The index of the first of pieces [begin, end) that has a line which calls a macro; `end` when none does.
size_t findMacroCall(const MacroTable& macros, const SourceLines& lines, size_t begin, size_t end);

}  // namespace kiln
