#include "lsp/code_actions.h"

#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/format.h"
#include "base/text.h"
#include "inspect/wording.h"
#include "lsp/published_findings.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view quickFix = "quickfix";
constexpr std::string_view rewrite = "refactor.rewrite";
constexpr std::string_view fixAll = "source.fixAll";
constexpr std::string_view allowPrefix = "check: allow ";
constexpr size_t longestText = 1000;
constexpr size_t mostFindings = 100;  // nobody chooses from a longer menu

// A text as a title names it.
std::string named(std::string_view text) {
  if (text.find('\n') != std::string_view::npos) return "a line end";
  if (trim(text).empty()) return text == "\t" ? "a tab" : text == " " ? "a space" : "blanks";
  return inQuotes(text);
}

std::string titleOf(std::string_view before, std::string_view after) {
  if (before.empty()) return concat({"Insert ", named(after)});
  if (after.empty()) return concat({"Remove ", named(before)});
  return concat({"Replace ", named(before), " with ", named(after)});
}

// The kinds that the editor asks for: all of a kind "a" are "a" and "a.b". Without any, those of the place.
class Wanted {
 public:
  explicit Wanted(const Json& only) {
    if (!only.is_array()) return;
    for (const Json& kind : only)
      kinds_.push_back(textOf(kind));
  }

  bool isGiven() const { return !kinds_.empty(); }
  bool has(std::string_view kind) const {
    return kinds_.empty() || std::any_of(kinds_.begin(), kinds_.end(), [kind](const std::string& wanted) {
             return kind == wanted || wanted.empty() || kind.starts_with(wanted + ".");
           });
  }

 private:
  std::vector<std::string> kinds_;
};

// The codes of the Atari's screen memory for ASCII.
uint32_t screenCode(char c) {
  const auto code = static_cast<uint32_t>(static_cast<unsigned char>(c));
  return code < 0x20 ? code + 0x40 : code < 0x60 ? code - 0x20 : code;
}

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; });
}

// ".byte" with the screen codes of a .string, and its final 0, so that no address changes.
std::string asScreenCodes(std::string_view text) {
  std::string list = ".byte ";
  for (char c : text)
    list += concat({decimal(int64_t{screenCode(c)}), ","});
  return list + "0";
}

class ActionList {
 public:
  ActionList(const Session& session, const Target& target, Range range, Wanted wanted)
      : target_(target), range_(range), wanted_(std::move(wanted)), locations_(session, target.analysis) {}

  Json build() {
    if (wanted_.has(quickFix)) addQuickFixes();
    if (wanted_.has(rewrite)) addScreenCodes();
    if (wanted_.has(fixAll)) addFixAll();
    return std::move(actions_);
  }

 private:
  const SourceMap& map() const { return target_.analysis.map(); }
  std::string_view textAt(const Place& place) const { return Locations::textAt(map(), place); }

  bool isInFile(const Finding& finding) const {
    return finding.place.line != 0 && finding.place.file == &target_.source;
  }

  // The lines of the assembler end with "\n" only.
  bool isInRange(const Finding& finding) {
    if (!isInFile(finding)) return false;
    const Range at = locations_.rangeOf(target_.source, textAt(finding.place));
    return range_.start.line <= at.end.line && at.start.line <= range_.end.line;
  }

  void addQuickFixes() {
    std::vector<const Finding*> found;
    for (const Finding& finding : target_.analysis.findings()) {
      if (found.size() < mostFindings && isInRange(finding)) found.push_back(&finding);
    }
    for (const Finding* finding : found)
      addFixes(*finding);
    for (const Finding* finding : found)
      addAllowance(*finding);
  }

  void addFixes(const Finding& finding) {
    const size_t count = finding.alternatives.size() + (finding.fix.empty() ? 0 : 1);
    const bool isOnly = count == 1;
    if (!finding.fix.empty()) addFix(finding, titleOfFix(finding), finding.fix, isOnly);
    for (const std::string& text : finding.alternatives)
      addFix(finding, titleOf(textAt(finding.place), text), {{finding.place, text}}, isOnly);
  }

  std::string titleOfFix(const Finding& finding) const {
    if (finding.check == Check::ByteOrderMark) return "Remove the byte order mark";
    return titleOf(textAt(finding.fix.front().place), finding.fix.front().text);
  }

  void addFix(const Finding& finding, const std::string& title, const std::vector<Edit>& edits, bool isPreferred) {
    Json action = {{"title", title},
                   {"kind", quickFix},
                   {"diagnostics", Json::array({diagnosticOf(target_.analysis, finding, locations_)})},
                   {"edit", editOf(edits)}};
    if (isPreferred) action["isPreferred"] = true;
    actions_.push_back(std::move(action));
  }

  Json editOf(const std::vector<Edit>& edits) {
    Json changes = Json::object();
    for (const Edit& edit : edits) {
      if (edit.place.line == 0) continue;
      const Range range = locations_.rangeOf(*edit.place.file, textAt(edit.place));
      changes[locations_.uriOf(*edit.place.file)].push_back({{"range", toJson(range)}, {"newText", edit.text}});
    }
    return {{"changes", std::move(changes)}};
  }

  Json editOf(std::string_view at, const std::string& text) {
    const Json edit = {{"range", toJson(target_.rangeOf(at))}, {"newText", text}};
    return {{"changes", {{locations_.uriOf(target_.source), Json::array({edit})}}}};
  }

  // A comment that allows the finding from now on. Offered when it does.
  void addAllowance(const Finding& finding) {
    const std::string_view name = rowOf(finding.check).name;
    const std::string_view text = textAt(finding.place);
    const std::string_view line = target_.index.lineAt(locations_.rangeOf(target_.source, text).start.line);
    const std::string_view comment = line.substr(withoutComment(line).size());
    const bool hasAllowance = comment.find(allowPrefix) != std::string_view::npos;
    const std::string added = hasAllowance ? concat({", ", name}) : concat({" ; ", allowPrefix, name});
    const bool helps = finding.severity == Severity::Warning && !isAllowedIn(line, finding.check) &&
                       isAllowedIn(concat({line, added}), finding.check);
    if (!helps || !allowed_.insert({line.data(), finding.check}).second) return;
    Json action = {{"title", concat({"Allow '", name, "' in this line"})},
                   {"kind", quickFix},
                   {"diagnostics", Json::array({diagnosticOf(target_.analysis, finding, locations_)})},
                   {"edit", editOf(line.substr(line.size()), added)}};
    actions_.push_back(std::move(action));
  }

  void addScreenCodes() {
    const std::string_view lines = linesInRange();
    for (size_t index : target_.analysis.statementsIn(lines)) {
      const Statement& statement = target_.analysis.statements()[index];
      const std::string_view text = statement.parsed->operand();
      const bool isText = statement.parsed->kind == Kind::String && !text.empty() && text.size() <= longestText;
      if (!isText || !isAscii(text)) continue;
      const std::string list = asScreenCodes(text);
      actions_.push_back({{"title", concat({"Convert ", inQuotes(text), " to Atari screen codes"})},
                          {"kind", rewrite},
                          {"edit", editOf(statement.rest, list)}});
    }
  }

  std::string_view linesInRange() const {
    const size_t begin = target_.index.offsetOf({range_.start.line, 0});
    const std::string_view last = target_.index.lineAt(range_.end.line);
    const size_t end = last.data() == nullptr
                           ? target_.source.text.size()
                           : static_cast<size_t>(last.data() + last.size() - target_.source.text.data());
    return target_.source.text.substr(begin, std::max(begin, end) - begin);
  }

  // Absent when a fix changes what another one does, or another file.
  std::optional<std::vector<Edit>> independentEdits() const {
    std::vector<Edit> edits;
    for (const Finding& finding : target_.analysis.findings()) {
      if (isInFile(finding)) edits.insert(edits.end(), finding.fix.begin(), finding.fix.end());
    }
    const auto orderOf = [](const Edit& edit) { return std::tie(edit.place.line, edit.place.column, edit.text); };
    std::sort(edits.begin(), edits.end(), [&](const Edit& a, const Edit& b) { return orderOf(a) < orderOf(b); });
    for (size_t i = 0; i < edits.size(); ++i) {
      const Place& place = edits[i].place;
      if (place.file != &target_.source) return std::nullopt;
      const bool followsInLine = i > 0 && edits[i - 1].place.line == place.line;
      const bool touches =
          followsInLine && (edits[i - 1].place.endColumn > place.column || edits[i - 1].place.column == place.column);
      if (touches) return std::nullopt;
    }
    return edits;
  }

  // Unasked only when it does more than the fixes of one place.
  void addFixAll() {
    const std::optional<std::vector<Edit>> edits = independentEdits();
    if (!edits.has_value() || edits->size() < (wanted_.isGiven() ? 1U : 2U)) return;
    actions_.push_back({{"title", "Fix all in this file"}, {"kind", fixAll}, {"edit", editOf(*edits)}});
  }

  const Target& target_;
  Range range_;
  Wanted wanted_;
  Locations locations_;
  std::set<std::pair<const char*, Check>> allowed_;  // by line
  Json actions_ = Json::array();
};

}  // namespace

Answer listCodeActions(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  const Range range = rangeFrom(memberOf(params, {"range"}));
  return ActionList(session, *target, range, Wanted(memberOf(params, {"context", "only"}))).build();
}

}  // namespace kiln
