// The macros of a program beside their calls, and the parts of their lines.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "inspect/program.h"

namespace kiln {

// True for mnemonics, directives, registers, and names with a value, in any letter case.
bool meansSomething(const Program& program, std::string_view word);

// A line of a body: the label of its first statement, with "." or ">" and without the colon, and the first word after
// it. Both may be empty.
struct BodyLine {
  explicit BodyLine(std::string_view line);

  std::string_view code;  // trimmed, without its comment
  std::string_view label;
  std::string_view word;
};

// The lines of a text, one after the other.
class TextLines {
 public:
  explicit TextLines(std::string_view text) : rest_(text) {}

  // The next line; null data at the end.
  std::string_view next();

 private:
  std::string_view rest_;
};

// The lines after a macro's body: the first of them ends the macro.
TextLines linesAfter(const Macro& macro, const SourceMap& map);

// A definition of a macro, and how often it is called.
struct MacroUse {
  std::string_view name() const;
  // The first ones: more than that are seen in torture tests only.
  std::span<const std::string_view> parameters() const {
    return std::span(macro->parameters).first(std::min<size_t>(macro->parameters.size(), 32));
  }
  // All lines of the body; empty without any.
  std::string_view body() const;
  // True when the text has a parameter's letters anywhere.
  bool mayReplaceIn(std::string_view text) const;

  const Macro* macro = nullptr;
  size_t calls = 0;
  std::string_view firstCall = {};  // its line
};

class MacroUses {
 public:
  // The notes have to stay.
  explicit MacroUses(const SourceNotes& notes);

  // In the order of the definitions.
  const std::vector<MacroUse>& all() const { return uses_; }
  // The index of the macro that is called.
  size_t indexOf(const SourceNotes::Call& call) const { return byHead_.at(call.macroHead.data()); }

 private:
  std::vector<MacroUse> uses_;
  std::unordered_map<const char*, size_t> byHead_;
};

}  // namespace kiln
