#include "source/macros.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"
#include "source/source_notes.h"
#include "source/statements.h"

namespace kiln {
namespace {

// A label before a macro's name is recognised only if its colon is in the first columns.
constexpr size_t labelColumns = 20;

// What a line costs besides its text, for its place in the list of lines.
constexpr uint64_t lineCost = 16;
// A search for a parameter costs `searchCost`, and one more for each `searchedPerByte` characters of the line. Each
// replacement costs `placeCost` besides its text.
constexpr uint64_t searchCost = 8;
constexpr uint64_t searchedPerByte = 8;
constexpr uint64_t placeCost = 16;

// Up to this many parameters are searched for in a line of the body when it is read, until one is found. Calls then do
// not search for the ones that are not there (3 % of the time of a source of macro calls).
constexpr size_t lookedUp = 16;

struct Call {
  const Macro* macro = nullptr;  // null: the line calls none
  std::string_view label;        // up to and including its colon; empty without one
  std::string_view arguments;
};

Call findCall(const MacroTable& macros, std::string_view line) {
  Call call;
  std::string_view rest = trim(withoutComment(line));
  const size_t colon = rest.substr(0, labelColumns).find(':');
  if (colon != std::string_view::npos && beginsLikeLabel(trim(rest.substr(0, colon)))) {
    call.label = rest.substr(0, colon + 1);
    rest.remove_prefix(colon + 1);
  }
  const std::string_view name = takeWord(rest);
  if (!name.empty()) call.macro = macros.find(name);
  call.arguments = trim(rest);
  return call;
}

}  // namespace

void Macro::addLine(std::string_view text) {
  Line line{text, 0, std::string_view::npos};
  for (; line.parameter < std::min(lookedUp, parameters.size()); ++line.parameter) {
    line.at = text.find(parameters[line.parameter]);
    if (line.at != std::string_view::npos) break;
  }
  body.push_back(line);
}

Macro& MacroTable::define(std::string_view head) {
  Macro& macro = macros_.emplace_back();
  macro.head = head;
  const std::string_view name = takeWord(head);
  Fields parameters(head, ',');
  std::string_view parameter;
  while (parameters.next(parameter)) {
    parameter = trim(parameter);
    if (!parameter.empty()) macro.parameters.push_back(parameter);
  }
  byName_[name] = macros_.size() - 1;
  return macro;
}

const Macro* MacroTable::find(std::string_view name) const {
  const auto at = byName_.find(name);
  return at == byName_.end() ? nullptr : &macros_[at->second];
}

// Appends the lines of the body. Parameters are replaced one after the other, so a later one is also replaced where the
// argument of an earlier one has its name. Stops when the room is exhausted.
void MacroExpander::instantiate(const Macro& macro, std::string_view call, std::string_view arguments,
                                SourceLines& lines) {
  if (notes_ != nullptr) notes_->calls.push_back({call, macro.head, arguments});
  values_.clear();
  Fields fields(arguments, ',');
  std::string_view value;
  while (!arguments.empty() && fields.next(value))
    values_.push_back(trim(value));
  for (const Macro::Line& line : macro.body) {
    const std::string_view expanded = replaceParameters(macro, line);
    if (!room_.take(expanded.size() + lineCost)) return;
    const std::string_view made = addExpanded(expanded, lines);
    if (notes_ != nullptr) notes_->made.push_back({made, call, line.text});
  }
}

// The line with the arguments in place of the parameters; valid until the next call, and incomplete when the room is
// exhausted.
std::string_view MacroExpander::replaceParameters(const Macro& macro, const Macro::Line& line) {
  const size_t pairs = std::min(values_.size(), macro.parameters.size());
  std::string_view text = line.text;
  size_t at = line.at;
  for (size_t i = line.parameter; i < pairs; ++i) {
    const std::string_view name = macro.parameters[i];
    if (at == std::string_view::npos) {
      if (!room_.take(searchCost + text.size() / searchedPerByte)) return text;
      at = text.find(name);
    }
    if (at == std::string_view::npos) continue;
    replaceAll(text, at, name, values_[i]);
    line_.swap(replaced_);
    text = line_;
    at = std::string_view::npos;
  }
  return text;
}

// Copies the text to `replaced_` with the argument in place of the name, wherever it occurs; `at` is the first place.
// Stops when the room is exhausted.
void MacroExpander::replaceAll(std::string_view text, size_t at, std::string_view name, std::string_view argument) {
  replaced_.clear();
  size_t copied = 0;
  uint64_t cost = 0;
  for (; at != std::string_view::npos; at = text.find(name, copied)) {
    replaced_.append(text, copied, at - copied).append(argument);
    copied = at + name.size();
    cost += placeCost;
    if (!room_.has(cost + replaced_.size())) return room_.exhaust();
  }
  replaced_.append(text, copied);
  room_.take(cost);
}

// Lines expanded one after the other are stored with line ends between them, as one piece of the list. Otherwise the
// list would take as much memory as the text of a million calls of short macros.
std::string_view MacroExpander::addExpanded(std::string_view line, SourceLines& lines) {
  char* const stored = texts_.allocate(line.size() + 1);
  if (!line.empty()) std::memcpy(stored, line.data(), line.size());
  stored[line.size()] = '\n';
  const std::string_view expanded(stored, line.size());
  appendLine(lines, expanded, stored == nextExpanded_);
  nextExpanded_ = stored + line.size() + 1;
  return expanded;
}

size_t findMacroCall(const MacroTable& macros, const SourceLines& lines, size_t begin, size_t end) {
  LineReader reader(lines.pieces(), begin);
  std::string_view line;
  while (begin < end && reader.next(line) && reader.piece() < end) {
    if (findCall(macros, line).macro != nullptr) return reader.piece();
  }
  return end;
}

void MacroExpander::expand(const MacroTable& macros, SourceLines& lines, size_t begin) {
  const std::vector<SourceLines::Piece> originals = lines.takePieces(begin);
  LineReader reader(originals);
  std::string_view line;
  bool isKept = false;  // the line before was no call and is in the list unchanged
  while (reader.next(line)) {
    const Call call = findCall(macros, line);
    if (call.macro == nullptr) {
      appendLine(lines, line, isKept && reader.follows());
      isKept = true;
      nextExpanded_ = nullptr;
      continue;
    }
    isKept = false;
    if (!call.label.empty()) {
      lines.add(call.label);
      nextExpanded_ = nullptr;
    }
    instantiate(*call.macro, line, call.arguments, lines);
    if (room_.isExhausted()) return;
  }
}

}  // namespace kiln
