#include "lsp/typed_text.h"

#include <algorithm>
#include <optional>

#include "base/text.h"
#include "inspect/name_text.h"
#include "isa/opcodes.h"
#include "source/kinds.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view includeWord = ".include ";
constexpr std::string_view macroWord = ".macro ";

// The statement that the code ends in; its blanks at the end are kept.
struct LastStatement {
  explicit LastStatement(std::string_view code) : text(code.substr(code.size())) {
    StatementTexts texts(code);
    size_t end = 0;
    while (const std::optional<std::string_view> statement = texts.next()) {
      isFirst = end == 0;
      text = code.substr(static_cast<size_t>(statement->data() - code.data()));
      end = code.size() - text.size() + statement->size();
    }
    if (code.substr(end).find(" : ") == std::string_view::npos) return;
    text = code.substr(code.size());
    isFirst = false;
  }

  std::string_view text;
  bool isFirst = true;
};

bool takesOperand(Mnemonic mnemonic) {
  return std::any_of(opcodeRows(), opcodeRows() + opcodeRowCount, [mnemonic](const OpcodeRow& row) {
    return row.mnemonic == mnemonic && row.mode != Mode::Implied && row.mode != Mode::Accumulator;
  });
}

const KindRow* directiveBefore(std::string_view text) {
  const auto* const row = std::find_if(kindRows.begin(), kindRows.end(), [text](const KindRow& kind) {
    return !kind.spelling.empty() && startsWithIgnoringCase(text, kind.spelling);
  });
  return row == kindRows.end() ? nullptr : row;
}

Slot slotOfDirective(const KindRow& row) {
  if (row.kind == Kind::Bank) return Slot::BankName;
  return row.argument == Argument::None || row.argument == Argument::Quoted ? Slot::Nothing : Slot::Operand;
}

// After the first word of a statement, which is complete.
void findSlotOfArgument(std::string_view rest, const MacroTable& macros, TypedText& typed) {
  std::string_view argument = rest;
  const std::string_view word = takeWord(argument);
  const Mnemonic mnemonic = mnemonicOf(word);
  const KindRow* const directive = directiveBefore(rest);
  if (rest.find('=') != std::string_view::npos && mnemonic == Mnemonic::None) {
    typed.slot = Slot::Operand;
  } else if (typed.isFirst && macros.find(word) != nullptr) {
    typed.slot = Slot::Operand;
    typed.isScoped = true;
  } else if (mnemonic != Mnemonic::None) {
    typed.slot = takesOperand(mnemonic) ? Slot::Operand : Slot::Nothing;
    typed.isScoped = true;
  } else if (directive != nullptr) {
    typed.slot = slotOfDirective(*directive);
    typed.isScoped = directive->qualifies;
  }
}

TypedText typedPath(std::string_view line, size_t cursor, size_t begin) {
  TypedText typed;
  while (begin < cursor && isBlank(line[begin]))
    ++begin;
  const bool isQuoted = begin < cursor && (line[begin] == '"' || line[begin] == '<');
  const std::string_view close = !isQuoted ? " \t;" : line[begin] == '"' ? "\"" : ">";
  if (isQuoted) ++begin;
  const std::string_view before = line.substr(begin, cursor - begin);
  if (before.find_first_of(close) != std::string_view::npos) return typed;
  typed.slot = Slot::IncludePath;
  typed.folder = before.substr(0, before.rfind('/') + 1);
  typed.typed = before.substr(typed.folder.size());
  const size_t end = std::min(line.find_first_of(close, cursor), trimRight(line).size());
  typed.word = line.substr(cursor - typed.typed.size(), std::max(end, cursor) - cursor + typed.typed.size());
  return typed;
}

void findWord(std::string_view line, size_t cursor, TypedText& typed) {
  size_t begin = cursor;
  while (begin > 0 && isNameCharacter(line[begin - 1]))
    --begin;
  size_t end = cursor;
  while (end < line.size() && isNameCharacter(line[end]))
    ++end;
  typed.word = line.substr(begin, end - begin);
  typed.typed = line.substr(begin, cursor - begin);
}

}  // namespace

TypedText typedAt(std::string_view line, size_t cursor, const MacroTable& macros) {
  TypedText typed;
  const std::string_view code = line.substr(0, cursor);
  if (withoutComment(code).size() != code.size()) return typed;
  const std::string_view start = trimLeft(code);
  if (startsWithIgnoringCase(start, includeWord)) {
    return typedPath(line, cursor, code.size() - start.size() + includeWord.size());
  }
  const bool isInText = std::count(code.begin(), code.end(), '"') % 2 != 0;
  if (isInText || startsWithIgnoringCase(start, macroWord)) return typed;
  findWord(line, cursor, typed);
  const LastStatement statement(code);
  typed.isFirst = statement.isFirst;
  std::string_view rest = statement.text;
  const size_t colon = rest.find(':');
  if (colon != std::string_view::npos && beginsLikeLabel(trim(rest.substr(0, colon)))) {
    typed.isAfterLabel = true;
    rest.remove_prefix(colon + 1);
  }
  rest = trimLeft(rest);
  if (rest.size() == typed.typed.size()) {
    typed.slot = Slot::Statement;
    return typed;
  }
  const bool isNumber = !typed.typed.empty() && isDigit(typed.typed.front());
  const char before = line[cursor - typed.typed.size() - 1];
  std::string_view argument = rest;
  const bool hasArgument = takeWord(argument).size() != rest.size();
  if (hasArgument && !isNumber && before != '$' && before != '\'') findSlotOfArgument(rest, macros, typed);
  return typed;
}

}  // namespace kiln
