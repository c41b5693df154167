#include "inspect/line_checks.h"

#include <algorithm>

#include "base/text.h"

namespace kiln {
namespace {

// True for what vanishes without harm, such as a form feed or the mark of the file's end, or because of how the file
// was saved.
bool isOfFile(std::string_view text) {
  const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; };
  return std::all_of(text.begin(), text.end(), isControl) || text.starts_with("\xEF\xBB\xBF");
}

}  // namespace

LineChecks::LineChecks(const Program& program, Findings& findings)
    : used_(program.assembler),
      reporter_(findings),
      vanished_(program, used_, reporter_),
      colons_(program, used_, reporter_),
      texts_(reporter_) {}

// Most statements are instructions without a label or a quote.
bool LineChecks::visit(const Statement& statement) {
  const bool isPlain =
      statement.parsed->kind == Kind::Instruction && !statement.parsed->hasLabel && !statement.hasQuote;
  if (isPlain && !statement.argument.starts_with('=')) return false;
  return visitOdd(statement);
}

bool LineChecks::visitOdd(const Statement& statement) {
  if (statement.parsed->lineNumber == skippedLine_) return true;
  if (statement.isFirst && statement.hasQuote && texts_.visitQuotedLine(statement)) return skipLine(statement);
  if (statement.parsed->hasLabel) {
    if (TextChecks::isString(statement.label)) {
      texts_.reportCutText(statement, statement.text, ":");
      return skipLine(statement);
    }
    if (colons_.visitLabel(statement)) return true;
  }
  return visitMeaning(statement);
}

bool LineChecks::visitMeaning(const Statement& statement) {
  switch (statement.parsed->kind) {
    case Kind::Empty:
      if (!isOfFile(statement.rest)) vanished_.report(statement);
      return true;
    case Kind::Assign:
      if (!TextChecks::isString(statement.rest)) return colons_.visitAssignment(statement);
      texts_.reportCutText(statement, statement.rest, "=");
      return skipLine(statement);
    case Kind::Byte:
    case Kind::Word:
    case Kind::Long:
      return texts_.visitList(statement);
    case Kind::String:
      return texts_.visitString(statement) && skipLine(statement);
    case Kind::Instruction:
      return statement.argument.starts_with('=') && colons_.reportMnemonicName(statement);
    case Kind::CloakedSegment:
      // It needs no space before its argument.
      return trim(statement.parsed->firstItem()).empty() && vanished_.reportNoAddress(statement);
    default:
      return false;
  }
}

bool LineChecks::skipLine(const Statement& statement) {
  skippedLine_ = statement.parsed->lineNumber;
  return true;
}

}  // namespace kiln
