#include "inspect/macro_calls.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/format.h"
#include "inspect/expression_names.h"
#include "inspect/name_text.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view separator = " : ";
constexpr std::string_view newLine = "\n        ";

std::string_view between(const char* begin, const char* end) { return {begin, static_cast<size_t>(end - begin)}; }

std::string_view endOf(std::string_view text) { return text.substr(text.size()); }

bool isHexNumber(std::string_view line, std::string_view word) {
  const bool hasSign = word.data() != line.data() && *std::prev(word.data()) == '$';
  return hasSign && word.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

bool isWholeStatement(const MacroUse& use) {
  const std::vector<Macro::Line>& body = use.macro->body;
  return std::any_of(body.begin(), body.end(), [&use](const Macro::Line& line) {
    const auto parameters = use.parameters();
    return std::find(parameters.begin(), parameters.end(), BodyLine(line.text).code) != parameters.end();
  });
}

// True when the line has the parameter where a number has to be.
bool needsNumber(std::string_view line, std::string_view parameter) {
  const BodyLine parsed(line);
  if (mnemonicOf(parsed.word) == Mnemonic::None) return false;
  const std::string_view word = findWhole(parsed.code, parameter);
  if (word.data() == nullptr) return false;
  const std::string_view before = trimRight(between(parsed.code.data(), word.data()));
  const std::string_view after = trimLeft(between(word.data() + word.size(), endOf(parsed.code).data()));
  constexpr std::string_view beforeNumbers = "#<>(+-*/";
  constexpr std::string_view afterNumbers = "+-*/,)";
  return (!before.empty() && beforeNumbers.find(before.back()) != std::string_view::npos) ||
         (!after.empty() && afterNumbers.find(after.front()) != std::string_view::npos);
}

// True for an argument with half of a pair of parentheses or quotes.
bool isPartOfOne(std::string_view argument) {
  const auto count = [argument](char c) { return std::count(argument.begin(), argument.end(), c); };
  return count('(') != count(')') || count('"') % 2 != 0;
}

std::string plural(size_t count, std::string_view noun) {
  return concat({count == 0 ? "no" : decimal(static_cast<int64_t>(count)), " ", noun, count == 1 ? "" : "s"});
}

// The call from the macro's name on.
std::string_view withoutLabel(const SourceNotes::Call& call, std::string_view name) {
  const std::string_view code = trim(withoutComment(call.line));
  const char* const begin = call.arguments.empty() ? endOf(code).data() : call.arguments.data();
  const std::string_view upToName = trimRight(between(code.data(), begin));
  return code.substr(upToName.size() - name.size());
}

}  // namespace

MacroCalls::MacroCalls(const Program& program, const MacroUses& uses, Findings& findings)
    : program_(program), uses_(uses), findings_(findings), traits_(uses.all().size()) {}

void MacroCalls::check(const std::vector<bool>& isBroken) {
  std::span<const SourceNotes::Made> made = program_.notes.made;
  for (const SourceNotes::Call& noted : program_.notes.calls) {
    const size_t index = uses_.indexOf(noted);
    const MacroUse& use = uses_.all()[index];
    const size_t lines = std::min(use.macro->body.size(), made.size());
    checkCall({noted, use, made.first(lines)}, index);
    if (isBroken[index]) findings_.explainText(noted.arguments);
    made = made.subspan(lines);
  }
}

void MacroCalls::checkCall(const Call& call, size_t index) {
  arguments_.clear();
  Fields fields(call.noted.arguments, ',');
  std::string_view argument;
  while (!call.noted.arguments.empty() && fields.next(argument))
    arguments_.push_back(trim(argument));
  if (call.noted.line.find(':') != std::string_view::npos) checkLabel(call);
  if (checkStatements(call)) return;
  Traits& traits = traitsOf(call.use, index);
  if (arguments_.size() > call.use.macro->parameters.size()) checkIgnored(call);
  if (!traits.used.empty() && traits.used.back() >= arguments_.size()) checkMissing(call, traits);
  checkEmpty(call);
  checkNested(call);
  if (!traits.inners.empty() && traits.comparisonsLeft != 0) checkInners(call, traits);
}

// Any text before the first colon counts as the call's label.
void MacroCalls::checkLabel(const Call& call) {
  const std::string_view name = withoutLabel(call.noted, call.use.name());
  const std::string_view before = trim(between(call.noted.line.data(), name.data()));
  const std::string_view label = trimRight(before.substr(0, before.empty() ? 0 : before.size() - 1));
  std::string_view rest = label;
  const std::string_view word = takeWord(rest);
  const bool isSeparated = before.size() > label.size() + 1;
  const bool isCall = isSeparated && program_.notes.macros.find(word) != nullptr;
  if (rest.empty() && mnemonicOf(word) == Mnemonic::None && !isCall) return;
  findings_.add(Check::MacroLine, {.at = label,
                                   .text = concat({"'", label, "' is a label here: a call needs a line of its own"}),
                                   .fix = {{between(endOf(label).data(), name.data()), std::string(newLine)}}});
  if (findings_.wants(Check::MacroLine)) findings_.explainText(label);
}

// True when the arguments go on with another statement. A macro that has an argument for a statement is fine.
bool MacroCalls::checkStatements(const Call& call) {
  const std::string_view arguments = call.noted.arguments;
  size_t at = arguments.starts_with(trimLeft(separator)) ? 0 : arguments.find(separator);
  if (at == std::string_view::npos) return false;
  const auto quotes = std::count(arguments.data(), arguments.data() + at, '"');
  if (quotes % 2 != 0 || isWholeStatement(call.use)) return false;
  const std::string_view end = trimRight(arguments.substr(0, at));
  const std::string_view statement = trimLeft(arguments.substr(arguments.find(':', at) + 1));
  const std::string_view name = withoutLabel(call.noted, call.use.name()).substr(0, call.use.name().size());
  const char* const gap = end.empty() ? endOf(name).data() : endOf(end).data();
  findings_.add(Check::MacroLine,
                {.at = statement,
                 .text = concat({"this is a part of the arguments of '", name, "': a call needs a line of its own"}),
                 .fix = {{between(gap, statement.data()), std::string(newLine)}}});
  return true;
}

std::string MacroCalls::countsOf(const Call& call) const {
  return concat({"the macro '", call.use.name(), "' has ", plural(call.use.macro->parameters.size(), "parameter"),
                 ", and the call ", plural(arguments_.size(), "argument")});
}

void MacroCalls::checkIgnored(const Call& call) {
  const size_t expected = call.use.macro->parameters.size();
  const std::string_view ignored = between(arguments_[expected].data(), endOf(call.noted.arguments).data());
  // Nothing is lost with a comma at the end.
  if (ignored.find_first_not_of(", \t") == std::string_view::npos) return;
  Findings::Report report{.at = ignored,
                          .text = concat({countsOf(call), ": '", ignored, "' is ignored"}),
                          .notes = {{call.use.macro->head, "the macro begins here"}}};
  const bool isCut = std::any_of(arguments_.begin(), arguments_.end(), isPartOfOne);
  if (isCut)
    report.notes.emplace_back(call.noted.arguments, "commas in parentheses and quotes separate arguments, too");
  findings_.add(Check::MacroArguments, std::move(report));
  if (!isCut || !findings_.wants(Check::MacroArguments)) return;
  for (const SourceNotes::Made& made : call.made)
    findings_.explainText(made.text);
}

void MacroCalls::checkMissing(const Call& call, const Traits& traits) {
  if (!findings_.wants(Check::MacroArguments)) return;
  const auto first = std::lower_bound(traits.used.begin(), traits.used.end(), arguments_.size());
  const std::string_view parameter = call.use.macro->parameters[*first];
  findings_.add(Check::MacroArguments, {.at = withoutLabel(call.noted, call.use.name()),
                                        .text = concat({countsOf(call), ": '", parameter, "' stays as it is"}),
                                        .notes = {{call.use.macro->head, "the macro begins here"}}});
  for (auto index = first; index != traits.used.end(); ++index)
    explainIn(call, call.use.macro->parameters[*index]);
}

void MacroCalls::checkEmpty(const Call& call) {
  const Macro& macro = *call.use.macro;
  for (size_t i = 0; i < std::min(arguments_.size(), call.use.parameters().size()); ++i) {
    const std::string_view parameter = macro.parameters[i];
    const auto needsThis = [parameter](const Macro::Line& line) { return needsNumber(line.text, parameter); };
    if (!arguments_[i].empty() || std::none_of(macro.body.begin(), macro.body.end(), needsThis)) continue;
    findings_.add(Check::MacroArguments,
                  {.at = withoutLabel(call.noted, call.use.name()),
                   .text = concat({"the argument for '", parameter, "' is empty: nothing comes in its place"}),
                   .notes = {{macro.head, "the macro begins here"}}});
    if (!findings_.wants(Check::MacroArguments)) return;
    for (const SourceNotes::Made& made : call.made) {
      if (needsNumber(made.pattern, parameter)) findings_.explainText(made.text);
    }
  }
}

// The texts of one parameter that the call leaves in its lines.
void MacroCalls::explainIn(const Call& call, std::string_view parameter) {
  findings_.explain(undefinedMessage(parameter));
  for (const SourceNotes::Made& made : call.made) {
    std::string_view rest = made.text;
    for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest)) {
      if (word == parameter) findings_.explainText(word);
    }
  }
}

// The text with the arguments of the parameters from one on, as the call replaces them.
std::string MacroCalls::replaced(const Call& call, std::string_view text, size_t firstParameter) const {
  std::string result(text);
  const auto parameters = call.use.parameters();
  for (size_t i = firstParameter; i < std::min(parameters.size(), arguments_.size()); ++i) {
    for (size_t at = result.find(parameters[i]); at != std::string::npos;
         at = result.find(parameters[i], at + arguments_[i].size())) {
      result.replace(at, parameters[i].size(), arguments_[i]);
    }
  }
  return result;
}

// An argument with the letters of a later parameter.
void MacroCalls::checkNested(const Call& call) {
  const Macro& macro = *call.use.macro;
  const auto parameters = call.use.parameters().first(std::min(call.use.parameters().size(), arguments_.size()));
  for (size_t i = 0; i + 1 < parameters.size(); ++i) {
    const std::string_view argument = arguments_[i];
    const std::string_view parameter = parameters[i];
    const auto isIn = [argument](std::string_view later) { return argument.find(later) != std::string_view::npos; };
    const auto after = parameters.subspan(i + 1);
    const auto later = std::find_if(after.begin(), after.end(), isIn);
    if (later == after.end()) continue;
    const std::string result = replaced(call, argument, i + 1);
    const auto has = [parameter](const Macro::Line& line) { return line.text.find(parameter) != std::string::npos; };
    if (result == argument || std::none_of(macro.body.begin(), macro.body.end(), has)) continue;
    findings_.add(
        Check::MacroParameter,
        {.at = argument,
         .text = concat({"the parameter '", *later, "' is replaced in this argument, too: it becomes '", result, "'"}),
         .notes = {{macro.head, "longer names would keep the parameters apart"}}});
    if (!findings_.wants(Check::MacroParameter)) return;
    for (const SourceNotes::Made& made : call.made) {
      if (made.pattern.find(parameter) != std::string_view::npos) findings_.explainText(made.text);
    }
  }
}

MacroCalls::Traits& MacroCalls::traitsOf(const MacroUse& use, size_t index) {
  Traits& traits = traits_[index];
  if (std::exchange(traits.isKnown, true)) return traits;
  findInners(use, findUsed(use, traits), traits);
  return traits;
}

// Which parameters are whole words of the body. One whose name has a value elsewhere has that by default.
std::vector<bool> MacroCalls::findUsed(const MacroUse& use, Traits& traits) const {
  const auto parameters = use.parameters();
  std::vector<bool> isWhole(parameters.size());
  std::vector<bool> isLabel(parameters.size());
  const auto mark = [parameters](std::string_view word, std::vector<bool>& marks) {
    const auto found = std::find(parameters.begin(), parameters.end(), word);
    if (found != parameters.end()) marks[static_cast<size_t>(found - parameters.begin())] = true;
  };
  for (const Macro::Line& line : use.macro->body) {
    const BodyLine parsed(line.text);
    std::string_view rest = parsed.code;
    for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest))
      mark(word, isWhole);
    mark(parsed.label, isLabel);
  }
  for (size_t i = 0; i < parameters.size(); ++i) {
    if (isWhole[i] && (isLabel[i] || !meansSomething(program_, parameters[i]))) traits.used.push_back(i);
  }
  return isWhole;
}

void MacroCalls::findInners(const MacroUse& use, const std::vector<bool>& isWhole, Traits& traits) const {
  const auto parameters = use.parameters();
  for (const Macro::Line& line : use.macro->body) {
    const BodyLine parsed(line.text);
    if (equalIgnoringCase(parsed.word, ".string")) continue;
    std::string_view rest = parsed.code;
    for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest)) {
      for (size_t i = 0; i < parameters.size(); ++i) {
        const bool isInner = word != parameters[i] && word.find(parameters[i]) != std::string_view::npos;
        if (!isInner) continue;
        const bool isNumber = isHexNumber(parsed.code, word);
        // The arguments of the parameters before it are put in first.
        const bool isLater =
            std::find(parameters.begin() + static_cast<std::ptrdiff_t>(i), parameters.end(), word) != parameters.end();
        const bool isBroken = isNumber ? isWhole[i] : isLater || meansSomething(program_, word);
        const std::string_view whole = isNumber ? between(word.data() - 1, endOf(word).data()) : word;
        if (isBroken) traits.inners.push_back({whole, parameters[i], isNumber});
        break;
      }
    }
  }
}

// A word that means something is broken when it becomes one that does not.
void MacroCalls::checkInners(const Call& call, Traits& traits) {
  --traits.comparisonsLeft;
  const auto isReported = [this, &call](const Inner& inner) {
    const std::string result = replaced(call, inner.word, 0);
    if (result == inner.word || (!inner.isNumber && meansSomething(program_, result))) return false;
    findings_.add(Check::MacroParameter,
                  {.at = inner.word,
                   .text = concat({"the parameter '", inner.parameter, "' is replaced inside '", inner.word,
                                   "', too: a call makes it '", result, "'"}),
                   .notes = {{withoutLabel(call.noted, call.use.name()), "in this call"},
                             {call.use.macro->head, "a longer name would keep the parameter apart"}}});
    if (findings_.wants(Check::MacroParameter)) findings_.explainText(inner.word);
    return true;
  };
  std::erase_if(traits.inners, isReported);
}

}  // namespace kiln
