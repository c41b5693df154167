#include "inspect/line_reporter.h"

#include <utility>

#include "base/diagnostics.h"
#include "base/format.h"
#include "base/text.h"
#include "inspect/expression_names.h"
#include "source/data_items.h"
#include "source/expression.h"
#include "source/statements.h"

namespace kiln {

void LineReporter::add(Check check, const Statement& statement, Findings::Report report) {
  if (!findings_.wants(check)) return;
  explainMessages(statement);
  findings_.add(check, std::move(report));
}

// All that the assembler may say of its values: it says nothing of a name that it knows.
void LineReporter::explainMessages(const Statement& statement) {
  const AsLine& parsed = *statement.parsed;
  findings_.explainLine(parsed.lineNumber);
  if (parsed.kind == Kind::Instruction) {
    explainValue(instructionExpression(parsed, scratch_));
  } else if (parsed.kind == Kind::Assign) {
    explainValue(parsed.assignValue());
  } else if (rowOf(parsed.kind).argument == Argument::Items) {
    DataItems items(parsed.operand());
    while (const std::optional<std::string_view> item = items.next())
      explainValue(*item);
  } else if (parsed.kind != Kind::String) {
    explainValue(parsed.operand());
  }
}

void LineReporter::explainValue(std::string_view expression) {
  const SymbolTable none;
  MessageList messages;
  Evaluator(none, messages).evaluate(expression);
  for (size_t i = 0; i < messages.size(); ++i)
    findings_.explain(messages[i]);
}

void LineReporter::explainUndefined(std::string_view name) { findings_.explain(undefinedMessage(name)); }

Findings::Report separatorReport(std::string_view code, size_t colon, std::string text) {
  const std::string_view before = trimRight(code.substr(0, colon));
  const std::string_view after = trimLeft(code.substr(colon + 1));
  return {.at = code.substr(colon, 1),
          .text = std::move(text),
          .notes = {{{}, "a colon between statements needs a space on both sides"}},
          .fix = {{spanOf(endOf(before), after.substr(0, 0)), " : "}}};
}

std::string_view extentOf(const Statement& statement) {
  const bool isAlone = statement.isFirst && statement.isLast && statement.label.empty();
  return isAlone ? "this line" : "this statement";
}

}  // namespace kiln
