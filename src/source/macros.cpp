#include "source/macros.h"

#include <algorithm>

#include "base/text.h"
#include "source/statements.h"

namespace kiln {
namespace {

// A label is seen before a macro's name only when its colon stands in the first columns.
constexpr size_t labelColumns = 20;

// What a line takes of the expansion room beside its text, for its place in the list of lines.
constexpr uint64_t lineCost = 16;
// A search for a parameter takes as much as an eighth of the text in which it searches, and as a short text for each
// place where it finds one.
constexpr uint64_t searchedPerByte = 8;
constexpr uint64_t placeCost = 16;

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

Macro& MacroTable::define(std::string_view head) {
  const std::string_view name = takeWord(head);
  Macro& macro = macros_.emplace_back();
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

void MacroExpander::instantiate(const Macro& macro, std::string_view arguments, SourceLines& lines) {
  values_.clear();
  Fields fields(arguments, ',');
  std::string_view value;
  while (!arguments.empty() && fields.next(value))
    values_.push_back(trim(value));
  const size_t pairs = std::min(values_.size(), macro.parameters.size());
  for (std::string_view bodyLine : macro.body) {
    line_ = bodyLine;
    for (size_t i = 0; i < pairs; ++i) {
      if (!replaceAll(macro.parameters[i], values_[i])) return;
    }
    if (!room_.take(line_.size() + lineCost)) return;
    lines.add(line_ == bodyLine ? bodyLine : texts_.join({line_}));
  }
}

// Every occurrence of `name` in the line, from left to right. False when the room is exhausted.
bool MacroExpander::replaceAll(std::string_view name, std::string_view argument) {
  if (!room_.take(line_.size() / searchedPerByte)) return false;
  size_t at = line_.find(name);
  if (at == std::string::npos) return true;
  replaced_.clear();
  size_t copied = 0;
  uint64_t cost = 0;
  for (; at != std::string::npos; at = line_.find(name, copied)) {
    replaced_.append(line_, copied, at - copied).append(argument);
    copied = at + name.size();
    cost += placeCost;
    if (!room_.has(cost + replaced_.size())) return room_.take(cost + replaced_.size());
  }
  replaced_.append(line_, copied);
  line_.swap(replaced_);
  return room_.take(cost);
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
  bool isKept = false;  // the line before was no call and stands in the list as it was
  while (reader.next(line)) {
    const Call call = findCall(macros, line);
    if (call.macro == nullptr) {
      appendLine(lines, line, isKept && reader.follows());
      isKept = true;
      continue;
    }
    isKept = false;
    if (!call.label.empty()) lines.add(call.label);
    instantiate(*call.macro, call.arguments, lines);
    if (room_.isExhausted()) return;
  }
}

}  // namespace kiln
