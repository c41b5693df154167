#include "inspect/macro_ends.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/format.h"
#include "inspect/expression_names.h"
#include "inspect/flow_checks.h"
#include "inspect/name_text.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view indentation = "        ";

bool isBlankOrComment(std::string_view line) { return line.empty() || line.front() == ';'; }

bool isInstruction(const BodyLine& line) { return line.label.empty() && mnemonicOf(line.word) != Mnemonic::None; }

bool isAtMargin(std::string_view line) {
  return !line.empty() && isLetter(line.front()) && isInstruction(BodyLine(line));
}

bool placesData(std::string_view word) {
  const auto isOf = [word](const KindRow& row) {
    return row.emits && !row.spelling.empty() && equalIgnoringCase(word, trim(row.spelling));
  };
  return std::any_of(kindRows.begin(), kindRows.end(), isOf);
}

// True for lines that a macro's body does not go on with.
bool startsAnew(const BodyLine& line, std::string_view macroName) {
  return line.word == macroName || (line.word.starts_with('.') && !placesData(line.word));
}

// Such a label has given the parameter's name a value.
bool hasParameterForLabel(const MacroUse& use, const BodyLine& line) {
  const auto parameters = use.parameters();
  return std::find(parameters.begin(), parameters.end(), line.label) != parameters.end();
}

std::string_view indentationOf(const SourceMap& map, std::string_view inLine) {
  const Place place = map.placeOf(inLine);
  const std::string_view line = place.line == 0 ? std::string_view() : map.lineOf(*place.file, place.line);
  return line.substr(0, line.size() - trimLeft(line).size());
}

}  // namespace

bool MacroEnds::check(const MacroUse& use) {
  // With Windows line ends no blank line is empty.
  if (use.macro->head.ends_with('\r')) return false;
  TextLines lines = linesAfter(*use.macro, *program_.map);
  const std::string_view line = lines.next();
  if (line.data() == nullptr) return false;
  const bool isNested = !line.empty() && isBlank(line.front());
  if (isNested) checkNested(use, line);
  if (isNested || !findings_.wants(Check::MacroEnd)) return false;
  collectParameters(use);
  const std::string_view left = isBlankOrComment(line) ? checkGap(use, line, lines) : checkStatement(use, line);
  if (!left.empty()) explainLeft(use, left);
  return !left.empty();
}

// Parameters whose names mean something outside of the macro as well are no sign of its body.
void MacroEnds::collectParameters(const MacroUse& use) {
  parameters_.clear();
  for (std::string_view parameter : use.parameters()) {
    if (!meansSomething(program_, parameter)) parameters_.push_back(parameter);
  }
}

bool MacroEnds::isParameter(std::string_view word) const {
  return std::find(parameters_.begin(), parameters_.end(), word) != parameters_.end();
}

std::string_view MacroEnds::unknownParameterIn(std::string_view code) const {
  code = code.substr(0, code.find('"'));
  for (std::string_view word = takeNameLike(code); !word.empty(); word = takeNameLike(code)) {
    if (isParameter(word)) return word;
  }
  return {};
}

// What is left of the macro's body, up to the last line with a parameter, is no program of its own. Nor do calls make
// sense.
void MacroEnds::explainLeft(const MacroUse& use, std::string_view left) {
  const SourceNotes::File* const file = program_.map->fileOf(left);
  TextLines lines(file->text.substr(static_cast<size_t>(left.data() - file->text.data())));
  size_t size = left.size();
  for (std::string_view line = lines.next(); line.data() != nullptr; line = lines.next()) {
    const BodyLine parsed(line);
    const bool isIndented = isBlankOrComment(line) || isBlank(line.front()) || isInstruction(parsed);
    if (line.data() != left.data() && (!isIndented || startsAnew(parsed, use.name()))) break;
    std::string_view code = parsed.code;
    for (std::string_view word = takeNameLike(code); !word.empty(); word = takeNameLike(code)) {
      if (!isParameter(word)) continue;
      findings_.explain(undefinedMessage(word));
      size = static_cast<size_t>(parsed.code.data() + parsed.code.size() - left.data());
    }
  }
  findings_.explainText({left.data(), size});
  findings_.explainText(use.body());
}

// A line with a statement that is not indented.
std::string_view MacroEnds::checkStatement(const MacroUse& use, std::string_view line) {
  const BodyLine parsed(line);
  if (startsAnew(parsed, use.name())) return {};
  std::string_view parameter = unknownParameterIn(parsed.code);
  if (hasParameterForLabel(use, parsed)) parameter = parsed.label;
  const bool isLost = isAtMargin(line) && isOutdented(line);
  if (parameter.empty() && !isLost) return {};
  Findings::Report report{
      .at = parsed.code,
      .text = concat({"the macro '", use.name(), "' ends at this line: indent it to continue the macro"}),
      .fix = {{line.substr(0, 0), std::string(indentation)}}};
  if (!parameter.empty()) report.notes.emplace_back(parameter, concat({"'", parameter, "' is its parameter"}));
  findings_.add(Check::MacroEnd, std::move(report));
  return parsed.code;
}

// True when these are the only instructions of the file that are not indented: the line, and those directly below it.
bool MacroEnds::isOutdented(std::string_view line) {
  const SourceNotes::File* const file = program_.map->fileOf(line);
  const auto [counted, isNew] = atMargin_.try_emplace(file, 0);
  if (isNew) {
    TextLines lines(file->text);
    for (std::string_view each = lines.next(); each.data() != nullptr; each = lines.next())
      counted->second += isAtMargin(each) ? 1 : 0;
  }
  TextLines lines(file->text.substr(static_cast<size_t>(line.data() - file->text.data())));
  size_t count = 0;
  for (line = lines.next(); isAtMargin(line); line = lines.next())
    ++count;
  if (count != counted->second) return false;
  while (line.data() != nullptr && !isInstruction(BodyLine(line)))
    line = lines.next();
  return line.data() != nullptr;
}

// An indented .macro, which ends the macro, too. It may be as good as one at the margin.
void MacroEnds::checkNested(const MacroUse& use, std::string_view line) {
  const std::string_view own = indentationOf(*program_.map, use.macro->head);
  const std::string_view inner = line.substr(0, line.size() - trimLeft(line).size());
  if (inner.size() <= own.size() || !inner.starts_with(own)) return;
  findings_.add(Check::MacroInMacro,
                {.at = trim(withoutComment(line)),
                 .text = concat({"the macro '", use.name(), "' ends here, as a macro cannot be in another one"})});
}

// Blank lines and comments, the first of which has ended the macro.
std::string_view MacroEnds::checkGap(const MacroUse& use, std::string_view line, TextLines lines) {
  End end{&use, {}};
  std::string_view left;
  std::string_view parameter;
  bool isDirectlyBelow = true;  // no gap has come after the first statement
  for (; line.data() != nullptr; line = lines.next()) {
    if (isBlankOrComment(line)) {
      if (left.empty()) end.lines.push_back(line);
      isDirectlyBelow = left.empty();
      continue;
    }
    const BodyLine parsed(line);
    if (!isBlank(line.front()) || startsAnew(parsed, use.name())) break;
    if (parsed.code.empty()) continue;
    parameter = unknownParameterIn(parsed.code);
    if (isDirectlyBelow && hasParameterForLabel(use, parsed)) parameter = parsed.label;
    if (left.empty()) left = parsed.code;
    if (!parameter.empty()) break;
  }
  if (!parameter.empty()) {
    report(end, parameter, concat({"'", parameter, "' is its parameter"}));
    return left;
  }
  if (left.empty() || !isInstruction(BodyLine(left))) return {};
  if (use.macro->body.empty() && use.calls != 0) {
    report(end, left, "this line does not belong to it");
    return left;
  }
  left_.try_emplace(left.data(), std::move(end));
  return {};
}

// Code that neither a label leads to nor the code before it can only be a part of the macro.
void MacroEnds::findLeft(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  if (line.hasLabel || rowOf(line.kind).moves) isReached_ = true;
  if (!emitsBytes(line.kind)) return;
  const auto left = isReached_ || !statement.isFirst ? left_.end() : left_.find(statement.text.data());
  if (left != left_.end() && (hasBytes_ || hasOrigin())) {
    report(left->second, statement.text, "no label leads to this line");
    findings_.explainText(statement.text);
  }
  hasBytes_ = true;
  isReached_ = line.kind != Kind::Instruction || !endsFlow(line.mnemonic);
}

bool MacroEnds::hasOrigin() const {
  const std::vector<AsLine>& lines = program_.iteration().statements.lines;
  return std::any_of(lines.begin(), lines.end(), [](const AsLine& line) { return rowOf(line.kind).moves; });
}

void MacroEnds::report(const End& end, std::string_view left, std::string_view reason) {
  const std::string_view first = end.lines.front();
  const bool isBlankLine = first.empty();
  Findings::Report report{
      .at = trimRight(first),
      .text = concat({"the macro '", end.use->name(), "' ends at this ", isBlankLine ? "blank line" : "comment",
                      end.use->macro->body.empty() ? ", so it is empty" : "",
                      isBlankLine ? ": remove the line" : ": indent it", " to continue the macro"}),
      .notes = {{left, std::string(reason)}}};
  for (std::string_view line : end.lines)
    report.fix.emplace_back(line.substr(0, 0), indentation);
  findings_.add(Check::MacroEnd, std::move(report));
}

}  // namespace kiln
