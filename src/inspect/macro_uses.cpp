#include "inspect/macro_uses.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "isa/opcodes.h"
#include "source/kinds.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::array<std::string_view, 4> registers = {"a", "x", "y", "sp"};

bool isDirective(std::string_view word) {
  const auto isOf = [word](const KindRow& row) {
    return !row.spelling.empty() && equalIgnoringCase(word, trim(row.spelling));
  };
  return std::any_of(kindRows.begin(), kindRows.end(), isOf);
}

}  // namespace

bool meansSomething(const Program& program, std::string_view word) {
  if (mnemonicOf(word) != Mnemonic::None || isDirective(word)) return true;
  const auto isWord = [word](std::string_view name) { return equalIgnoringCase(word, name); };
  return std::any_of(registers.begin(), registers.end(), isWord) ||
         program.iteration().symbols.findIgnoringCase(word, symbolHash(word)) != nullptr;
}

BodyLine::BodyLine(std::string_view line) : code(trim(withoutComment(line))) {
  std::string_view rest = code.substr(0, code.find(" : "));
  const size_t colon = rest.find(':');
  if (colon != std::string_view::npos && beginsLikeLabel(rest)) {
    label = trimRight(rest.substr(0, colon));
    rest.remove_prefix(colon + 1);
  }
  word = takeWord(rest);
}

std::string_view TextLines::next() {
  const size_t end = rest_.find('\n');
  const std::string_view line = rest_.substr(0, end);
  rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + 1);
  return line;
}

TextLines linesAfter(const Macro& macro, const SourceMap& map) {
  const std::string_view last = macro.body.empty() ? macro.head : macro.body.back().text;
  const SourceNotes::File* const file = map.fileOf(last);
  if (file == nullptr) return TextLines({});
  const size_t end = file->text.find('\n', static_cast<size_t>(last.data() - file->text.data()));
  return TextLines(end == std::string_view::npos ? std::string_view() : file->text.substr(end + 1));
}

std::string_view MacroUse::name() const {
  std::string_view head = macro->head;
  return takeWord(head);
}

std::string_view MacroUse::body() const {
  if (macro->body.empty()) return {};
  const std::string_view first = macro->body.front().text;
  const std::string_view last = macro->body.back().text;
  return {first.data(), static_cast<size_t>(last.data() + last.size() - first.data())};
}

bool MacroUse::mayReplaceIn(std::string_view text) const {
  const auto names = parameters();
  const auto isIn = [text](std::string_view name) { return text.find(name) != std::string_view::npos; };
  return std::any_of(names.begin(), names.end(), isIn);
}

MacroUses::MacroUses(const SourceNotes& notes) {
  for (const Macro& macro : notes.macros.all()) {
    byHead_.emplace(macro.head.data(), uses_.size());
    uses_.push_back({.macro = &macro});
  }
  for (const SourceNotes::Call& call : notes.calls) {
    MacroUse& use = uses_[indexOf(call)];
    if (use.calls++ == 0) use.firstCall = call.line;
  }
}

}  // namespace kiln
