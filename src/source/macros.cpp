#include "source/macros.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"
#include "source/statements.h"

namespace kiln {
namespace {

// A label is seen before a macro's name only when its colon stands in the first columns.
constexpr size_t labelColumns = 20;

// What a line takes of the expansion room beside its text, for its place in the list of lines.
constexpr uint64_t lineCost = 16;
// A search for a parameter takes as much as an eighth of the text in which it searches and some more, and as a short
// text for each place where it finds one.
constexpr uint64_t searchCost = 8;
constexpr uint64_t searchedPerByte = 8;
constexpr uint64_t placeCost = 16;

// Which parameter of a macro stands first in a line is looked up when the line is read, so that a call need not search
// for those that do not (a tenth of the time of a source of macro calls); but not for any number of them.
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
  for (const Macro::Line& line : macro.body) {
    const std::string_view made = replaceParameters(macro, line);
    if (!room_.take(made.size() + lineCost)) return;
    addMade(made, lines);
  }
}

// The line with the arguments in place of the parameters; good until the next call, and of no use when the room is
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

// Writes the text into `replaced_` with the argument for every occurrence of the name, from left to right. The first of
// them is known. Leaves off when the room is exhausted.
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

// Lines that are made one after the other are laid down with line ends between them, and so are one piece of the list:
// a million calls of short macros would else need as much room for the list as for the text.
void MacroExpander::addMade(std::string_view line, SourceLines& lines) {
  char* const made = texts_.allocate(line.size() + 1);
  if (!line.empty()) std::memcpy(made, line.data(), line.size());
  made[line.size()] = '\n';
  appendLine(lines, {made, line.size()}, made == nextMade_);
  nextMade_ = made + line.size() + 1;
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
      nextMade_ = nullptr;
      continue;
    }
    isKept = false;
    if (!call.label.empty()) {
      lines.add(call.label);
      nextMade_ = nullptr;
    }
    instantiate(*call.macro, call.arguments, lines);
    if (room_.isExhausted()) return;
  }
}

}  // namespace kiln
