#include "inspect/findings.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "inspect/carriage_returns.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view allowPrefix = "check: allow ";

std::string_view commentOf(std::string_view line) { return line.substr(withoutComment(line).size()); }

// True when the comment allows the check: "; check: allow NAME, NAME".
bool allows(std::string_view comment, std::string_view name) {
  const size_t at = comment.find(allowPrefix);
  if (at == std::string_view::npos) return false;
  Fields names(comment.substr(at + allowPrefix.size()), ',');
  std::string_view field;
  while (names.next(field)) {
    if (takeWord(field) == name) return true;
  }
  return false;
}

// Orders files as they were opened.
auto orderOf(const Finding& finding) {
  const Place& place = finding.place;
  return std::make_tuple(place.file, place.line, place.column, finding.check);
}

bool areSame(const Finding& a, const Finding& b) { return orderOf(a) == orderOf(b) && a.text == b.text; }

// What makes nothing is as wrong in each call of a macro, so it is reported once, at the line of the body.
bool isOfBody(Check check) {
  return check == Check::Vanished || check == Check::MissingArgument || check == Check::TabAfterDirective ||
         check == Check::MissingColon || check == Check::MacroInMacro;
}

// The text in the line of the macro's body that is, up to its end, the same as in the made line; null data when the
// arguments have changed it.
std::string_view sameInBody(std::string_view text, const SourceNotes::Made& made) {
  const auto begin = static_cast<size_t>(text.data() - made.text.data());
  const std::string_view upToEnd = made.text.substr(0, begin + text.size());
  return made.pattern.starts_with(upToEnd) ? made.pattern.substr(begin, text.size()) : std::string_view();
}

// Moves a fix from a made line to the line of the body; empty when the arguments have changed one of its texts.
void moveFix(std::vector<std::pair<std::string_view, std::string>>& fix, const SourceNotes::Made& made) {
  for (auto& [text, words] : fix) {
    text = sameInBody(text, made);
    if (text.data() == nullptr) return fix.clear();
  }
}

}  // namespace

bool isAllowedIn(std::string_view line, Check check) { return allows(commentOf(line), rowOf(check).name); }

CheckLevels::CheckLevels() {
  for (const CheckRow& row : checkRows)
    isOn[static_cast<size_t>(row.check)] = !row.isExtra;
}

void Findings::add(Check check, Report report) {
  const bool isError = levels_.isError[static_cast<size_t>(check)];
  if (!wants(check) || isExplainedText(report.at)) return;
  add(check, std::move(report), isError ? Severity::Error : Severity::Warning);
}

void Findings::explain(std::string_view message) {
  const uint32_t hash = symbolHash(message);
  if (explained_.find(message, hash) == nullptr) explained_.enter(HashedName(texts_.join({message}), hash));
}

void Findings::explainText(std::string_view text) {
  const char* begin = text.data();
  const char* end = begin + text.size();
  auto next = explainedTexts_.upper_bound(begin);
  if (next != explainedTexts_.begin() && !std::less<>()(std::prev(next)->second, begin)) --next;
  while (next != explainedTexts_.end() && !std::less<>()(end, next->first)) {
    begin = std::min(begin, next->first, std::less<>());
    end = std::max(end, next->second, std::less<>());
    next = explainedTexts_.erase(next);
  }
  explainedTexts_.emplace_hint(next, begin, end);
}

bool Findings::overlapsExplained(std::string_view text) const {
  const auto after = explainedTexts_.lower_bound(text.data() + text.size());
  return after != explainedTexts_.begin() && std::less<>()(text.data(), std::prev(after)->second);
}

bool Findings::isExplainedText(std::string_view text) const {
  if (explainedTexts_.empty() || text.data() == nullptr) return false;
  while (const SourceNotes::Made* const made = map_.madeLine(text)) {
    if (overlapsExplained(text)) return true;
    if (made->pattern.data() != nullptr) return overlapsExplained(made->pattern);
    text = made->origin;
  }
  return overlapsExplained(text);
}

void Findings::add(Check check, Report report, Severity severity) {
  const SourceNotes::Made* const made = map_.madeLine(report.at);
  std::optional<RepeatKey> key = repeatKey(check, report, made);
  if (key.has_value()) {
    const auto known = repeats_.find(*key);
    if (known != repeats_.end()) {
      ++known->second.count;
      return;
    }
  }
  Finding finding = resolve(check, std::move(report));
  finding.severity = severity;
  if (isAllowed(finding, made)) return;
  if (key.has_value()) repeats_.emplace(std::move(*key), Repeats{findings_.size(), 0});
  findings_.push_back(std::move(finding));
}

// Absent for what depends on the arguments of the call, or is no matter of a macro.
std::optional<Findings::RepeatKey> Findings::repeatKey(Check check, const Report& report,
                                                       const SourceNotes::Made* made) {
  if (made == nullptr) return std::nullopt;
  const std::string_view inBody = sameInBody(report.at, *made);
  if (inBody.data() == nullptr) return std::nullopt;
  return RepeatKey(inBody.data(), check, report.text);
}

// A comment can allow a warning, and what else is wrong with a line that a carriage return spoils shows when that is
// gone.
bool Findings::isAllowed(const Finding& finding, const SourceNotes::Made* made) {
  const std::string_view name = rowOf(finding.check).name;
  if (made != nullptr && allows(commentOf(made->text), name)) return true;
  if (finding.place.line == 0) return false;
  const LineFacts& facts = factsOf(finding.place);
  if (finding.severity == Severity::Warning && allows(facts.comment, name)) return true;
  return facts.isSpoiled && wants(Check::CarriageReturn) && finding.check != Check::CarriageReturn;
}

const Findings::LineFacts& Findings::factsOf(const Place& place) {
  const std::string_view line = map_.lineOf(*place.file, place.line);
  if (line.data() != facts_.line.data()) facts_ = {line, commentOf(line), isSpoiledByReturn(line)};
  return facts_;
}

Finding Findings::resolve(Check check, Report report) const {
  Finding finding;
  finding.check = check;
  finding.text = std::move(report.text);
  std::string_view at = report.at;
  while (const SourceNotes::Made* const made = map_.madeLine(at)) {
    const std::string_view inBody = isOfBody(check) ? sameInBody(at, *made) : std::string_view();
    if (inBody.data() != nullptr) {
      report.notes.emplace_back(trim(withoutComment(made->origin)), "in this call of the macro");
      moveFix(report.fix, *made);
      at = inBody;
      break;
    }
    if (made->pattern.data() != nullptr) {
      report.notes.emplace_back(trim(made->pattern), "in this line of the macro");
    }
    at = trim(withoutComment(made->origin));
    report.fix.clear();
    report.alternatives.clear();
  }
  finding.place = map_.placeOf(at);
  if (finding.place.line != 0) finding.alternatives = std::move(report.alternatives);
  for (auto& [text, words] : report.notes)
    finding.notes.push_back({map_.placeOf(text), std::move(words)});
  for (auto& [text, words] : report.fix)
    finding.fix.push_back({map_.placeOf(text), std::move(words)});
  return finding;
}

void Findings::noteRepeats() {
  for (const auto& [key, repeats] : repeats_) {
    if (repeats.count == 0 || isOfBody(std::get<Check>(key))) continue;
    findings_[repeats.finding].notes.push_back(
        {{},
         concat({"the same in ", decimal(static_cast<int64_t>(repeats.count)), " more ",
                 repeats.count == 1 ? "call" : "calls", " of the macro"})});
  }
}

std::vector<Finding> Findings::take() {
  noteRepeats();
  std::stable_sort(findings_.begin(), findings_.end(),
                   [](const Finding& a, const Finding& b) { return orderOf(a) < orderOf(b); });
  findings_.erase(std::unique(findings_.begin(), findings_.end(), areSame), findings_.end());
  return std::move(findings_);
}

}  // namespace kiln
