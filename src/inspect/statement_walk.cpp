#include "inspect/statement_walk.h"

#include "base/text.h"
#include "source/statements.h"

namespace kiln {

StatementWalk::StatementWalk(const Assembler& assembler)
    : statements_(assembler.iteration->statements.lines),
      labels_(assembler.iteration->statements.labels),
      lines_(assembler.lines.pieces()) {}

void StatementWalk::openLine(uint32_t lineNumber, Statement& statement) {
  lineNumber_ = lineNumber;
  statement.line = lines_.at(lineNumber - 1);
  const LineShape shape(statement.line);
  statement.hasQuote = shape.has(Quote);
  if (shape.splits()) {
    statement.code = withoutComment(statement.line);
    texts_.emplace(statement.code);
    ahead_ = texts_->next();
  } else {
    statement.code = shape.code();
    texts_.reset();
    ahead_ = statement.code;
  }
}

bool StatementWalk::next(Statement& statement) {
  while (next_ != statements_.size() && statements_[next_].autoSpill)
    ++next_;
  if (next_ == statements_.size()) return false;
  statement.index = next_;
  const AsLine& parsed = statements_[next_++];
  statement.parsed = &parsed;
  statement.isFirst = parsed.lineNumber != lineNumber_;
  if (statement.isFirst) openLine(parsed.lineNumber, statement);
  statement.text = ahead_.value_or(std::string_view());
  ahead_ = texts_.has_value() ? texts_->next() : std::nullopt;
  statement.isLast = !ahead_.has_value();
  statement.isMisread = false;
  statement.symbol = labels_.of(parsed);
  statement.label = {};
  statement.rest = statement.text;
  if (parsed.hasLabel) {
    const size_t colon = statement.text.find(':');
    statement.label = trim(statement.text.substr(0, colon));
    statement.rest = trim(statement.text.substr(colon + 1));
    if (!parsed.labelLocal && !statement.label.starts_with(longBranchLabel)) scope_ = statement.label;
  }
  statement.scope = scope_;
  std::string_view rest = statement.rest;
  statement.word = takeWord(rest);
  statement.argument = trim(rest);
  return true;
}

}  // namespace kiln
