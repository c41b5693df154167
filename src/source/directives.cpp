#include "source/directives.h"

#include "base/arithmetic.h"
#include "base/text.h"
#include "base/utf8.h"
#include "source/data_items.h"

namespace kiln {
namespace {

constexpr size_t shortestSpelling = 5;

void readArgument(std::string_view text, const KindRow& row, Evaluator& evaluator, AsLine& line) {
  switch (row.argument) {
    case Argument::None:
      return;
    case Argument::Text:
      break;
    case Argument::Items:
      line.size = row.itemSize * countItems(text);
      break;
    case Argument::Quoted:
      text = withoutEnclosing(text, '"', '"');
      line.size = static_cast<uint32_t>(utf16Length(text)) + 1;
      break;
    case Argument::Count:
      line.size = low32(evaluator.evaluate(text));
      break;
  }
  line.setOperand(text);
}

}  // namespace

bool parseDirective(std::string_view text, Evaluator& evaluator, AsLine& line) {
  if (text.front() != '.' || text.size() < shortestSpelling) return false;
  const char second = toLower(text[1]);
  for (const KindRow& row : kindRows) {
    if (row.spelling.empty() || row.spelling[1] != second || !startsWithIgnoringCase(text, row.spelling)) continue;
    line.kind = row.kind;
    readArgument(trim(text.substr(row.spelling.size())), row, evaluator, line);
    return true;
  }
  return false;
}

}  // namespace kiln
