#include "lsp/formatting.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/text.h"
#include "inspect/name_text.h"
#include "inspect/statement_words.h"
#include "lsp/code_columns.h"
#include "lsp/same_program.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view includeWord = ".include ";
constexpr size_t widestTab = 64;

enum class LineKind : uint8_t {
  Code,
  Fixed,       // not understood, or the head of a macro
  MacroBody,   // begins with a blank, and has to
  AfterMacro,  // ends the macro, and must not begin with a blank then
};

// Findings that say that a line is not what its writer meant.
bool isMisread(Check check) {
  return (check >= Check::Vanished && check <= Check::CutText) || check == Check::MacroEnd ||
         check == Check::MacroInMacro || check == Check::MacroLine;
}

class Formatter {
 public:
  Formatter(const Target& target, Filling filling)
      : target_(target), filling_(filling), kinds_(target.index.lineCount(), LineKind::Code) {
    for (const Macro& macro : target.analysis.program().notes.macros.all())
      markMacro(macro);
    for (const Finding& finding : target.analysis.findings()) {
      if (finding.place.file == &target.source && isMisread(finding.check))
        kinds_[finding.place.line - 1] = LineKind::Fixed;
    }
    for (const SourceNotes::Call& call : target.analysis.program().notes.calls)
      calls_.insert(call.line.data());
  }

  // Absent for a line that stays.
  std::optional<std::string> format(uint32_t line) const {
    const std::string_view text = target_.index.lineAt(line);
    const bool isInBody = kinds_[line] == LineKind::MacroBody;
    const std::optional<LineParts> parts = partsOf(line);
    if (!parts.has_value()) return std::nullopt;
    if (trim(text).empty()) return isInBody ? std::nullopt : std::optional<std::string>("");
    const bool isComment = parts->label.empty() && parts->name.empty() && parts->statements.empty();
    if (isComment && !isBlank(text.front())) return std::string(trimRight(text));
    std::string formatted = isComment ? inColumns(*parts, false, codeColumn, filling_)
                                      : inColumns(*parts, isInBody, commentColumnOf(line), filling_);
    const bool mayMove = kinds_[line] != LineKind::AfterMacro || isBlank(formatted.front()) == isBlank(text.front());
    return mayMove ? std::optional(std::move(formatted)) : std::nullopt;
  }

 private:
  void markMacro(const Macro& macro) {
    const std::optional<uint32_t> head = lineOf(macro.head);
    if (!head.has_value()) return;
    kinds_[*head] = LineKind::Fixed;
    size_t line = *head + size_t{1};
    for (size_t i = 0; i < macro.body.size() && line < kinds_.size(); ++i)
      kinds_[line++] = LineKind::MacroBody;
    if (line < kinds_.size()) kinds_[line] = LineKind::AfterMacro;
  }

  // Absent for a text of another file.
  std::optional<uint32_t> lineOf(std::string_view text) const {
    if (target_.analysis.map().fileOf(text) != &target_.source) return std::nullopt;
    return target_.rangeOf(text).start.line;
  }

  // Absent for a line that stays.
  std::optional<LineParts> partsOf(uint32_t number) const {
    if (kinds_[number] == LineKind::Fixed) return std::nullopt;
    const bool isInBody = kinds_[number] == LineKind::MacroBody;
    const std::string_view line = target_.index.lineAt(number);
    LineParts parts;
    const std::string_view code = withoutComment(line);
    parts.comment = trimRight(line.substr(code.size()));
    const std::string_view text = trim(code);
    if (text.empty()) return parts;
    if (calls_.contains(line.data()) || (!isInBody && startsWithIgnoringCase(text, includeWord))) {
      return addWhole(text, parts) ? std::optional(parts) : std::nullopt;
    }
    StatementTexts statements(code);
    for (size_t i = 0; const std::optional<std::string_view> statement = statements.next(); ++i) {
      if (!addStatement(*statement, i, parts)) return std::nullopt;
    }
    return parts;
  }

  // A macro call or an include: nothing but a label comes before it, and the rest is its argument.
  static bool addWhole(std::string_view text, LineParts& parts) {
    if (!takeLabel(text, parts)) return false;
    std::string_view argument = text;
    const std::string_view word = takeWord(argument);
    parts.statements.push_back({word, trim(argument)});
    return true;
  }

  // False for a statement that is not understood, and so has to stay.
  bool addStatement(std::string_view text, size_t number, LineParts& parts) const {
    const Statement* const statement = target_.analysis.statementAt(text.data());
    if (statement != nullptr && statement->parsed->kind == Kind::Empty) return false;
    std::string_view rest = text;
    if (!takeLabel(rest, parts)) return false;
    const bool isLabelled = rest.data() != text.data();
    if (number > 0 && (isLabelled || !parts.name.empty())) return false;
    if (rest.empty()) return true;
    if (rest.find('=') != std::string_view::npos) {
      return !isLabelled && number == 0 && statement != nullptr && addAssignment(*statement, rest, parts);
    }
    std::string_view argument = rest;
    const std::string_view word = takeWord(argument);
    parts.statements.push_back({word, trim(argument)});
    return mnemonicOf(word) != Mnemonic::None || directiveOf(word) != nullptr;
  }

  static bool takeLabel(std::string_view& text, LineParts& parts) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos || !beginsLikeLabel(text)) return true;
    const std::string_view label = text.substr(0, colon);
    if (!isPlainLabel(label)) return false;
    parts.label = text.substr(0, colon + 1);
    text = trimLeft(text.substr(colon + 1));
    return true;
  }

  static bool addAssignment(const Statement& statement, std::string_view text, LineParts& parts) {
    const size_t equals = text.find('=');
    parts.name = trimRight(text.substr(0, equals));
    parts.value = trimLeft(text.substr(equals + 1));
    return statement.parsed->kind == Kind::Assign && isPlainName(parts.name);
  }

  // The column of the line's comment, or 0 without one after code.
  size_t writtenColumn(uint32_t line) const {
    if (line >= kinds_.size()) return 0;
    const std::string_view text = target_.index.lineAt(line);
    const std::string_view code = withoutComment(text);
    return code.size() == text.size() || trim(code).empty() ? 0 : columnAfter(code, filling_.tabSize);
  }

  // The column at which the line's code ends when it is formatted.
  size_t codeWidth(uint32_t line) const {
    std::optional<LineParts> parts = partsOf(line);
    if (!parts.has_value()) {
      return columnAfter(trimRight(withoutComment(target_.index.lineAt(line))), filling_.tabSize);
    }
    parts->comment = {};
    return columnAfter(inColumns(*parts, kinds_[line] == LineKind::MacroBody, 0, filling_), filling_.tabSize);
  }

  // Whether the line's comment is at the column, and has room there when its code is formatted.
  bool hasCommentAt(uint32_t line, size_t column) const {
    return writtenColumn(line) == column && codeWidth(line) < column;
  }

  // Comments that are together further to the right stay there, and so does one after code that is too long. All of
  // this is decided by the formatted code, so that formatting again changes nothing.
  size_t commentColumnOf(uint32_t line) const {
    const size_t column = writtenColumn(line);
    if (column <= commentColumn || column % 8 != 0) return commentColumn;
    const size_t width = codeWidth(line);
    const bool isLong = width >= commentColumn && width + 1 < column;
    const bool hasNeighbour = hasCommentAt(line + 1, column) || (line > 0 && hasCommentAt(line - 1, column));
    return isLong || hasNeighbour ? column : commentColumn;
  }

  const Target& target_;
  Filling filling_;
  std::vector<LineKind> kinds_;            // by line
  std::unordered_set<const char*> calls_;  // the lines that call macros
};

// An editor needs long for more edits than these.
constexpr size_t mostEdits = 1000;

struct LineEdit {
  uint32_t line;
  std::string text;
};

// The part of the line that differs.
Json toJson(const Target& target, const LineEdit& edit) {
  const std::string_view before = target.index.lineAt(edit.line);
  const std::string_view after = edit.text;
  const size_t shorter = std::min(before.size(), after.size());
  size_t begin = 0;
  while (begin < shorter && before[begin] == after[begin])
    ++begin;
  size_t same = 0;
  while (same < shorter - begin && before[before.size() - same - 1] == after[after.size() - same - 1])
    ++same;
  const Range range = target.rangeOf(before.substr(begin, before.size() - same - begin));
  return {{"range", toJson(range)}, {"newText", after.substr(begin, after.size() - same - begin)}};
}

// All changed lines, each for itself; of very many, those that follow each other at once.
Json toJson(const Target& target, const std::vector<LineEdit>& edits) {
  Json list = Json::array();
  for (size_t i = 0; i < edits.size();) {
    const size_t first = i++;
    if (edits.size() <= mostEdits) {
      list.push_back(toJson(target, edits[first]));
      continue;
    }
    std::string text = edits[first].text;
    for (; i < edits.size() && edits[i].line == edits[i - 1].line + 1; ++i)
      text += "\n" + edits[i].text;
    const std::string_view last = target.index.lineAt(edits[i - 1].line);
    const std::string_view begin = target.index.lineAt(edits[first].line);
    const std::string_view lines(begin.data(), static_cast<size_t>(last.data() + last.size() - begin.data()));
    list.push_back({{"range", toJson(target.rangeOf(lines))}, {"newText", std::move(text)}});
  }
  return list;
}

std::string textWith(const Target& target, const std::vector<LineEdit>& edits) {
  const std::string_view text = target.source.text;
  std::string changed;
  size_t copied = 0;
  for (const LineEdit& edit : edits) {
    const std::string_view line = target.index.lineAt(edit.line);
    const auto begin = static_cast<size_t>(line.data() - text.data());
    changed.append(text, copied, begin - copied).append(edit.text);
    copied = begin + line.size();
  }
  return changed.append(text, copied);
}

// True when all programs of the document stay what they are with this text.
bool keepsPrograms(Session& session, const std::string& path, const std::string& text) {
  const std::vector<const Analysis*> programs = session.workspace.programsOf(path);
  return std::all_of(programs.begin(), programs.end(), [&](const Analysis* program) {
    if (!program->error().empty()) return false;
    const std::unique_ptr<Analysis> after = session.workspace.analyseWith(program->commandLine(), {{path, text}});
    return after->error().empty() && areSameButBlanks(*program, *after);
  });
}

Filling fillingOf(const Json& options) {
  const Json& usesSpaces = memberOf(options, {"insertSpaces"});
  const size_t tabSize = numberOf(memberOf(options, {"tabSize"}), 8);
  const bool hasSize = tabSize > 0 && tabSize <= widestTab;
  return {hasSize ? tabSize : 8, hasSize && usesSpaces.is_boolean() && !usesSpaces.get<bool>()};
}

// The lines from `first` to `last`.
Answer formatLines(Session& session, const Json& params, uint32_t first, uint32_t last) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value() || !target->analysis.program().isAssembled) return Json();
  // A carriage return belongs to the code.
  if (target->source.text.find('\r') != std::string_view::npos) return Json();
  const Formatter formatter(*target, fillingOf(memberOf(params, {"options"})));
  std::vector<LineEdit> edits;
  for (uint32_t line = first; line <= last && line < target->index.lineCount(); ++line) {
    std::optional<std::string> text = formatter.format(line);
    if (text.has_value() && *text != target->index.lineAt(line)) edits.push_back({line, std::move(*text)});
  }
  const std::string& path = target->document.path;
  if (!edits.empty() && !keepsPrograms(session, path, textWith(*target, edits))) return Json();
  return toJson(*target, edits);
}

}  // namespace

Answer format(Session& session, const Json& params) { return formatLines(session, params, 0, UINT32_MAX); }

Answer formatRange(Session& session, const Json& params) {
  const Range range = rangeFrom(memberOf(params, {"range"}));
  // A range of whole lines ends at the beginning of the next one.
  const bool endsBefore = range.end.character == 0 && range.end.line > range.start.line;
  return formatLines(session, params, range.start.line, range.end.line - (endsBefore ? 1 : 0));
}

}  // namespace kiln
