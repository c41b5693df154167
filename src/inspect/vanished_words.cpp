// A statement that begins with a word which the assembler does not know makes nothing, without a message. The cases,
// from the surest to the vaguest: a known word that is written wrongly, a colon or an equals sign in the wrong place, a
// label without its colon, a word of another assembler, a misspelled word.
#include "inspect/vanished_words.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "inspect/foreign_words.h"
#include "inspect/statement_words.h"
#include "inspect/wording.h"

namespace kiln {
namespace {

// The mnemonics with few modes first.
std::array<std::string_view, mnemonicCount> orderMnemonics() {
  std::array<std::pair<int, Mnemonic>, mnemonicCount> counts;
  for (size_t i = 0; i < mnemonicCount; ++i) {
    const auto mnemonic = static_cast<Mnemonic>(i + 1);
    const auto hasMnemonic = [mnemonic](const OpcodeRow& row) { return row.mnemonic == mnemonic; };
    const auto count = std::count_if(opcodeRows(), opcodeRows() + opcodeRowCount, hasMnemonic);
    counts[i] = {static_cast<int>(count), mnemonic};
  }
  std::sort(counts.begin(), counts.end());
  std::array<std::string_view, mnemonicCount> texts;
  for (size_t i = 0; i < mnemonicCount; ++i)
    texts[i] = mnemonicText(counts[i].second);
  return texts;
}

// What can be said of words that begin with a sign.
std::string_view adviceFor(std::string_view rest) {
  if (isDigit(rest.front())) return "a label begins with a letter, '_' or '.'";
  switch (rest.front()) {
    case '@':
    case ']':
      return "a local label is written '.name:', and the same dot is written where it is used";
    case ':':
    case '+':
    case '-':
      return "there are no labels without a name: write '.name:'";
    case '*':
    case '/':
    case '\'':
      return "a comment begins with ';'";
    default:
      return isProse(rest) ? "a comment begins with ';'" : "";
  }
}

std::string unknownText(const Statement& statement, std::string_view word) {
  return concat({inQuotes(word), " is no instruction, directive or macro: ", extentOf(statement), " makes nothing"});
}

}  // namespace

VanishedWords::VanishedWords(const Program& program, UsedNames& used, LineReporter& reporter)
    : program_(program), used_(used), reporter_(reporter) {}

void VanishedWords::report(const Statement& statement) {
  if (isOfMacro(statement)) return;
  (void)(reportDirective(statement) || reportColon(statement) || reportMissingSpace(statement) ||
         reportEquals(statement) || reportMissingColon(statement) || reportForeignWord(statement) ||
         (reportUnknown(statement), true));
}

bool VanishedWords::reportNoAddress(const Statement& statement) {
  Findings::Report report{.at = statement.word,
                          .text = concat({inQuotes(statement.word), " has no argument: the segment begins at $0000"})};
  report.addNote("write its address, '.cloaked_segment $5000'");
  reporter_.add(Check::MissingArgument, statement, std::move(report));
  return true;
}

// What the checks of macros report: a call that is none, and lines that make no sense in a macro's body.
bool VanishedWords::isOfMacro(const Statement& statement) const {
  if (program_.notes.macros.find(statement.word) != nullptr) return true;
  const DirectiveWord* const directive = directiveOf(statement.word);
  const bool isPreprocessed = directive != nullptr && (directive->word == ".include" || directive->word == ".macro");
  const bool mayBeOdd = isPreprocessed || startsWithIgnoringCase(statement.word, ".endm");
  return mayBeOdd && program_.map->madeLine(statement.word) != nullptr;
}

// A directive that is spelled rightly.
bool VanishedWords::reportDirective(const Statement& statement) {
  const DirectiveWord* const directive = directiveOf(statement.word);
  if (directive == nullptr) return false;
  const std::string name = inQuotes(statement.word);
  if (statement.argument.empty()) {
    Findings::Report report{.at = statement.word,
                            .text = concat({name, " has no argument: ", extentOf(statement), " makes nothing"})};
    report.addNote(concat({"it is written '", directive->word, " ", directive->example, "'"}));
    reporter_.add(Check::MissingArgument, statement, std::move(report));
  } else if (statement.rest[statement.word.size()] == '\t') {
    Findings::Report report{.at = statement.word,
                            .text = concat({name, " is followed by a tab: ", extentOf(statement), " makes nothing"})};
    report.addNote("a directive needs a space after it");
    report.fix.emplace_back(statement.rest.substr(statement.word.size(), 1), " ");
    reporter_.add(Check::TabAfterDirective, statement, std::move(report));
  } else {
    Findings::Report report{.at = statement.word,
                            .text = concat({name, " is not alone in its line: this statement makes nothing"})};
    report.addNote("write it in a line of its own");
    reporter_.add(Check::Vanished, statement, std::move(report));
  }
  return true;
}

// "LDA#1", "BNEloop", ".byte$10": the space after the word is missing.
bool VanishedWords::reportMissingSpace(const Statement& statement) {
  const std::string_view word = statement.word;
  const DirectiveWord* const directive = directiveInFrontOf(word);
  const bool hasMnemonic = word.size() > 3 && mnemonicOf(word.substr(0, 3)) != Mnemonic::None;
  if (directive == nullptr && !hasMnemonic) return false;
  const size_t size = directive != nullptr ? directive->word.size() : 3;
  const std::string_view known = word.substr(0, size);
  const std::string_view after = statement.rest.substr(size);
  const bool isSign = !isIdentifierCharacter(after.front()) && after.front() != '.';
  const bool isShift = hasMnemonic && opcodeFor(mnemonicOf(known), Mode::Accumulator) >= 0 && word.size() == 4 &&
                       toUpper(after.front()) == 'A';
  if (!isSign && !isShift && (used_.contains(word) || !isKnownName(statement, after))) return false;
  Findings::Report report{
      .at = word,
      .text = concat({inQuotes(known), " has no space after it: ", extentOf(statement), " makes nothing"}),
      .fix = {{endOf(known), " "}}};
  report.addNote(concat({"write '", known, " ", word.substr(size), "'"}));
  reporter_.add(Check::Vanished, statement, std::move(report));
  return true;
}

// True for a number, and when the text begins with a name of the program.
bool VanishedWords::isKnownName(const Statement& statement, std::string_view text) const {
  if (isDigit(text.front())) return true;
  const std::string_view name = leadingSymbol(text);
  const SymbolTable& symbols = program_.iteration().symbols;
  if (name.starts_with('.')) return symbols.find(concat({statement.scope, name})) != nullptr;
  return !name.empty() && symbols.find(name) != nullptr;
}

// A colon that is not that of the label: "start: TXA: PHA", "start: LDA: #1", "start:: NOP", "first: second: NOP".
bool VanishedWords::reportColon(const Statement& statement) {
  const size_t at = statement.rest.find(':');
  if (at == std::string_view::npos || statement.label.empty()) return false;
  const std::string_view before = trimRight(statement.rest.substr(0, at));
  const std::string_view colon = statement.rest.substr(at, 1);
  const bool isStatement = beginsStatement(before, program_.notes.macros);
  if (isStatement && beginsStatement(statement.rest.substr(at + 1), program_.notes.macros)) {
    const std::string text = concat({inQuotes(before), " is no statement, because the colon belongs to it"});
    reporter_.add(Check::Separator, statement, separatorReport(statement.rest, at, text));
  } else if (isStatement || before.empty()) {
    Findings::Report report{.at = colon, .text = "a second colon after the label: what comes after it makes nothing"};
    report.addNote("leave it out");
    report.fix.emplace_back(colon, before.empty() ? "" : " ");
    reporter_.add(Check::GreedyColon, statement, std::move(report));
  } else if (isPlainLabel(before)) {
    Findings::Report report{.at = before, .text = "a second label in the statement: neither it nor the rest is made"};
    report.addNote("write each label in a line of its own");
    reporter_.add(Check::Vanished, statement, std::move(report));
  } else {
    return false;
  }
  return true;
}

// "name := 5", "*=$2000", "= 5", "name =".
bool VanishedWords::reportEquals(const Statement& statement) {
  const std::string_view rest = statement.rest;
  const bool isOrigin = rest.front() == '*' && trimLeft(rest.substr(1)).starts_with('=');
  if (rest.front() != '=' && !isOrigin && !trimRight(rest).ends_with('=')) return false;
  Findings::Report report{.at = rest, .text = unknownText(statement, statement.word)};
  if (isOrigin) {
    const std::string_view sign = rest.substr(0, rest.find('=') + 1);
    const std::string_view address = trimLeft(rest.substr(sign.size()));
    report = {.at = sign, .text = unknownText(statement, sign)};
    report.addNote(concat({"write '.org ", address, "'"}));
    report.fix.emplace_back(spanOf(sign, address.substr(0, 0)), ".org ");
  } else if (rest.front() == '=' && !statement.label.empty()) {
    report = {.at = rest,
              .text = concat({"the colon makes ", inQuotes(statement.label), " a label, whose value is an address"})};
    report.addNote(concat({"write '", statement.label, " ", rest, "'"}));
    report.fix.emplace_back(spanOf(endOf(statement.label), rest.substr(0, 0)), " ");
  } else if (rest.front() == '=') {
    report.text = "an assignment without a name: this statement makes nothing";
    report.addNote("write 'name = value'");
  } else {
    report.text = "an assignment without a value: this statement makes nothing";
    report.addNote("write the value after the '='");
  }
  reporter_.add(Check::Vanished, statement, std::move(report));
  return true;
}

// A name alone, or before a statement.
bool VanishedWords::isLabelWithoutColon(const Statement& statement) {
  const std::string_view word = statement.word;
  if (!isPlainLabel(word) || !statement.label.empty()) return false;
  const std::string_view name = word.starts_with('>') ? word.substr(1) : word;
  const bool isBeforeStatement = beginsStatement(statement.argument, program_.notes.macros);
  if (statement.argument.empty() || isBeforeStatement) {
    if (used_.contains(name)) return true;
  }
  if (!statement.argument.empty()) return isBeforeStatement && countWords(statement.argument) <= 2;
  return foreignWordOf(word) == nullptr && directiveInFrontOf(word) == nullptr && nearWords(word).words.empty();
}

bool VanishedWords::reportMissingColon(const Statement& statement) {
  if (!isLabelWithoutColon(statement)) return false;
  const std::string_view word = statement.word;
  const std::string_view name = word.substr(word.starts_with('>') ? 1 : 0);
  Findings::Report report{.at = word, .text = unknownText(statement, word)};
  if (statement.argument.empty() && !statement.isLast) {
    report.addNote(concat({"a label has its colon directly after it: '", word, ":'"}));
  } else {
    report.addNote(concat({"a label needs a colon: '", word, ":'"}));
    if (used_.contains(name)) {
      report.fix.emplace_back(endOf(word), ":");
    } else {
      report.alternatives.push_back(concat({word, ":"}));
    }
  }
  reporter_.add(Check::MissingColon, statement, std::move(report));
  reporter_.explainUndefined(word.starts_with('.') ? concat({statement.scope, word}) : std::string(name));
  return true;
}

bool VanishedWords::reportForeignWord(const Statement& statement) {
  if (isProse(statement.rest)) return false;
  std::string_view rest = statement.argument;
  const std::string_view second = takeWord(rest);
  std::string_view word = statement.word;
  const ForeignWords* foreign = foreignWordOf(word);
  if (foreign == nullptr && isPlainLabel(word) && !second.empty()) {
    foreign = foreignWordOf(second);
    if (foreign != nullptr && !foreign->followsName) foreign = nullptr;
    word = second;
  }
  if (foreign == nullptr) return false;
  Findings::Report report{.at = word, .text = unknownText(statement, word)};
  report.addNote(foreign->advice);
  const bool isEquals = foreign->replacement == "=";
  const bool isSecond = word.data() != statement.word.data();
  const bool hasText = statement.rest.find_first_of("\"'") != std::string_view::npos;
  if (!foreign->replacement.empty() && !hasText && isEquals == isSecond)
    report.fix.emplace_back(word, foreign->replacement);
  if (statement.argument.empty() && isLetter(word.front()))
    report.addNote(concat({"if it is a label, it needs a colon: '", word, ":'"}));
  reporter_.add(Check::Vanished, statement, std::move(report));
  return true;
}

void VanishedWords::reportUnknown(const Statement& statement) {
  const std::string_view word = statement.word;
  Findings::Report report{.at = word, .text = unknownText(statement, word)};
  const Suggestion near = isProse(statement.rest) ? Suggestion() : nearWords(word);
  const DirectiveWord* const directive = directiveInFrontOf(word);
  // A file that cannot be found may define the word as a macro.
  if (near.words.empty() && !program_.notes.errorLines.empty()) return;
  if (!near.words.empty()) {
    report.addNote(near.hint);
    report.alternatives = near.words;
  } else if (word.size() > 3 && word[3] == '.' && mnemonicOf(word.substr(0, 3)) != Mnemonic::None) {
    report.addNote("an instruction has a space after its name, and no size");
  } else if (directive != nullptr) {
    report.addNote(concat({"a directive needs a space after it: '", directive->word, " '"}));
  } else if (used_.contains(word) && isPlainLabel(word)) {
    report.addNote(concat({"a name gets a value with '=': '", word, " = ", statement.argument, "'"}));
  } else {
    report.addNote(adviceFor(statement.rest));
  }
  reporter_.add(Check::Vanished, statement, std::move(report));
}

VanishedWords::Suggestion VanishedWords::nearWords(std::string_view word) {
  static const std::array mnemonics = orderMnemonics();
  const bool hasSign = word.starts_with('!') || word.starts_with('#');
  const std::string dotted = concat({".", word.substr(hasSign ? 1 : 0)});
  if (directiveOf(dotted) != nullptr) return {concat({"did you mean '", toLower(dotted), "'?"}), {toLower(dotted)}};
  near_.begin(word);
  if (word.starts_with('.')) {
    for (const DirectiveWord& directive : directiveWords)
      near_.offer(directive.word);
  } else {
    for (std::string_view mnemonic : mnemonics)
      near_.offer(mnemonic);
  }
  offerMacros();
  Suggestion suggestion{near_.hint(), {}};
  const bool isSmall = toLower(word) == word;
  for (std::string_view name : near_.names())
    suggestion.words.push_back(isSmall && mnemonicOf(name) != Mnemonic::None ? toLower(name) : std::string(name));
  return suggestion;
}

void VanishedWords::offerMacros() {
  for (const Macro& macro : program_.notes.macros.all()) {
    if (macrosLeft_ == 0) return;
    --macrosLeft_;
    std::string_view head = macro.head;
    near_.offer(takeWord(head));
  }
}

}  // namespace kiln
