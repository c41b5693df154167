#include "inspect/text_checks.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "base/utf8.h"
#include "inspect/statement_words.h"
#include "inspect/wording.h"

namespace kiln {
namespace {

constexpr size_t longestAsNumbers = 100;

size_t countQuotes(std::string_view text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '"')); }

bool isBeyondAscii(char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; }

// "65,66": the bytes of the text.
std::string numbersOf(std::string_view text) {
  std::string numbers;
  for (char c : text) {
    if (!numbers.empty()) numbers += ',';
    numbers += decimal(static_cast<unsigned char>(c));
  }
  return numbers;
}

bool endsItem(std::string_view list, size_t at) { return at == list.size() || list[at] == ',' || isBlank(list[at]); }

// The text of a quoted argument without other quotes, when it is short enough to be written as numbers; empty
// otherwise.
std::string_view plainText(std::string_view argument) {
  const bool isQuoted = argument.size() > 2 && argument.front() == '"' && argument.back() == '"';
  return isQuoted && countQuotes(argument) == 2 && argument.size() <= longestAsNumbers
             ? argument.substr(1, argument.size() - 2)
             : std::string_view();
}

}  // namespace

bool TextChecks::isString(std::string_view text) { return startsWithIgnoringCase(text, ".string "); }

bool TextChecks::visitQuotedLine(const Statement& statement) {
  const std::string_view code = statement.code;
  if (countQuotes(code) % 2 == 0) return false;
  const size_t last = code.rfind('"');
  const bool hasComment = code.find(';', last) != std::string_view::npos;
  const std::string_view argument = statement.argument;
  // .string "5" disk" stores what it says.
  const bool isCut = statement.parsed->kind == Kind::String &&
                     (argument.size() == 1 || argument.starts_with('"') != argument.ends_with('"'));
  if (!hasComment && !isCut) return false;
  Findings::Report report{.at = trimRight(code.substr(last))};
  if (hasComment) {
    report.text = "an odd number of quotes in the line: the comment belongs to the statement";
    report.addNote("close the text before the comment; a quote that stands for itself is the number 34");
  } else {
    report.at = argument;
    report.text = "the text has only one of its quotes, which is stored, too";
    report.addNote("write the other one");
  }
  reporter_.add(Check::OddQuote, statement, std::move(report));
  return true;
}

bool TextChecks::visitList(const Statement& statement) {
  const std::string_view list = statement.argument;
  size_t begin = statement.hasQuote ? list.find('"') : std::string_view::npos;
  if (begin == std::string_view::npos || (begin != 0 && list[begin - 1] == '\'')) begin = list.find('\'');
  if (begin == std::string_view::npos) return false;
  const size_t end = list.find(list[begin], begin + 1);
  // A single character between single quotes is an operand like any other.
  if (list[begin] == '\'' && (end == std::string_view::npos || end <= begin + 2 || !endsItem(list, end + 1)))
    return false;
  const std::string_view text = list.substr(begin, end == std::string_view::npos ? end : end - begin + 1);
  Findings::Report report{
      .at = text,
      .text = concat({"there are no texts in lists: ", inQuotes(text), " is an unknown name, which counts as 0"})};
  const std::string_view letters = text.size() > 2 ? text.substr(1, text.size() - 2) : std::string_view();
  const bool isBytes = statement.parsed->kind == Kind::Byte && end != std::string_view::npos;
  if (isBytes && !letters.empty() && letters.size() <= longestAsNumbers && countQuotes(list) <= 2) {
    report.fix.emplace_back(text, numbersOf(letters));
  }
  report.addNote("write a '.string', which adds a 0, or the codes of the letters");
  reporter_.add(Check::TextInList, statement, std::move(report));
  return true;
}

bool TextChecks::visitString(const Statement& statement) {
  const std::string_view argument = statement.argument;
  if (!statement.isLast && argument.starts_with('"') && countQuotes(argument) % 2 != 0) {
    const std::string_view whole = trimRight(spanOf(statement.rest, endOf(statement.code)));
    reportCutText(statement, whole, " : ");
    return true;
  }
  const std::string_view stored = statement.parsed->operand();
  if (stored.size() + 1 == statement.parsed->size) return false;
  const size_t begin =
      static_cast<size_t>(std::find_if(argument.begin(), argument.end(), isBeyondAscii) - argument.begin());
  size_t end = begin;
  while (end < argument.size() && isBeyondAscii(argument[end]))
    ++end;
  const auto off = static_cast<int64_t>(stored.size() + 1 - statement.parsed->size);
  Findings::Report report{.at = argument.substr(begin, end - begin)};
  report.text = concat({"the text takes ", decimal(static_cast<int64_t>(stored.size())), " bytes but counts ",
                        decimal(int64_t{statement.parsed->size} - 1), ": labels after it are ", decimal(off),
                        off == 1 ? " byte too low" : " bytes too low"});
  report.addNote("use letters of ASCII alone, or write the bytes as numbers after '.byte'");
  reporter_.add(Check::NonAsciiText, statement, std::move(report));
  return false;
}

void TextChecks::reportCutText(const Statement& statement, std::string_view text, std::string_view sign) {
  Findings::Report report{.at = text};
  if (sign == ":") {
    report.text = "everything before the colon is a label: the text is not stored";
    report.addNote("write the codes of the letters, 58 for ':', or put a label before the '.string'");
  } else if (sign == "=") {
    report.text = "the '=' makes this an assignment: the text is not stored";
    report.addNote("write the codes of the letters, 61 for '='");
  } else {
    report.text = "the text ends at ' : ', which ends the statement";
    report.addNote("write the codes of the letters, 58 for ':'");
  }
  std::string_view rest = text;
  takeWord(rest);
  const std::string_view letters = plainText(trim(rest));
  if (!letters.empty()) report.fix.emplace_back(text, concat({".byte ", numbersOf(letters), ",0"}));
  reporter_.add(Check::CutText, statement, std::move(report));
}

}  // namespace kiln
