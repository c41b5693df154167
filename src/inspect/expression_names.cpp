#include "inspect/expression_names.h"

#include "base/format.h"
#include "base/text.h"
#include "inspect/name_text.h"
#include "source/data_items.h"
#include "source/literals.h"
#include "source/statements.h"

namespace kiln {
namespace {

constexpr std::string_view undefinedPrefix = "undefined symbol '";
constexpr std::string_view undefinedSuffix = "', using 0";

// Longer texts are not searched: for each of a million names in a line, that would take quadratic time.
constexpr size_t longestSearch = 4096;

// A name that may be written without its scope.
std::string_view findInScope(std::string_view text, std::string_view name, std::string_view scope) {
  const std::string_view found = findName(text, name);
  const bool isLocal =
      !scope.empty() && name.size() > scope.size() && name.starts_with(scope) && name[scope.size()] == '.';
  return found.data() != nullptr || !isLocal ? found : findName(text, name.substr(scope.size()));
}

}  // namespace

LookUp lookUpOf(Kind kind) {
  switch (kind) {
    case Kind::Instruction:
    case Kind::Byte:
    case Kind::Word:
    case Kind::Long:
      return LookUp::AtEnd;
    case Kind::Assign:
    case Kind::Org:
    case Kind::CodeRegions:
    case Kind::ShadowRanges:
    case Kind::ShadowStage:
    case Kind::CloakedSegment:
      return LookUp::InOrder;
    case Kind::Space:
      return LookUp::AtStart;
    case Kind::Empty:
    case Kind::LabelOnly:
    case Kind::String:
    case Kind::Bank:
    case Kind::SpillPoint:
    case Kind::CloakedSegmentEnd:
      break;
  }
  return LookUp::Never;
}

// Without any symbol, the evaluator's messages are exactly the names that it looks up.
const std::vector<std::string_view>& ExpressionNames::of(const AsLine& line) {
  names_.clear();
  if (line.nameHash != 0) {
    names_.push_back(instructionExpression(line, scratch_));
    return names_;
  }
  unknown_.clear();
  if (line.kind == Kind::Instruction) {
    if (!line.operand().empty()) evaluator_.evaluate(instructionExpression(line, scratch_));
  } else if (line.kind == Kind::Assign) {
    evaluator_.evaluate(line.assignValue());
  } else if (line.kind == Kind::CloakedSegment) {
    evaluator_.evaluate(line.firstItem());
  } else if (lookUpOf(line.kind) != LookUp::Never) {
    addItems(line.operand());
  }
  for (size_t i = 0; i < unknown_.size(); ++i)
    names_.push_back(undefinedName(unknown_[i]));
  return names_;
}

void ExpressionNames::addItems(std::string_view list) {
  DataItems items(list);
  while (const std::optional<std::string_view> item = items.next()) {
    if (parsePlainLiteral(*item) < 0) evaluator_.evaluate(*item);
  }
}

std::string undefinedMessage(std::string_view name) { return concat({undefinedPrefix, name, undefinedSuffix}); }

std::string_view undefinedName(std::string_view message) {
  if (!message.starts_with(undefinedPrefix) || !message.ends_with(undefinedSuffix)) return {};
  message.remove_prefix(undefinedPrefix.size());
  message.remove_suffix(undefinedSuffix.size());
  return message;
}

std::string_view usedName(const Statement& statement, std::string_view name) {
  const bool isAssignment = statement.parsed->kind == Kind::Assign;
  const std::string_view text =
      isAssignment ? trim(statement.rest.substr(statement.rest.find('=') + 1)) : statement.argument;
  if (text.size() > longestSearch) return statement.rest.substr(0, statement.word.size());
  const std::string_view used = findInScope(text, name, statement.scope);
  if (used.data() != nullptr) return used;
  return text.empty() ? statement.text : text;
}

std::string_view writtenName(const SourceMap& map, const Statement& statement, std::string_view name) {
  std::string_view written = usedName(statement, name);
  while (const SourceNotes::Made* const made = map.madeLine(written)) {
    if (made->origin.size() > longestSearch) break;
    const std::string_view original = findInScope(withoutComment(made->origin), name, statement.scope);
    if (original.data() == nullptr) break;
    written = original;
  }
  return written;
}

}  // namespace kiln
