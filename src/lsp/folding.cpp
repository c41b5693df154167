#include "lsp/folding.h"

#include "base/text.h"
#include "lsp/outline.h"

namespace kiln {
namespace {

constexpr uint32_t fewestComments = 3;

void addRange(Json& list, uint32_t first, uint32_t last, const char* kind) {
  if (last <= first) return;
  Json range = {{"startLine", first}, {"endLine", last}};
  if (kind != nullptr) range["kind"] = kind;
  list.push_back(std::move(range));
}

void addComments(Json& list, const TextIndex& index) {
  uint32_t count = 0;  // of comment lines in a row
  for (uint32_t line = 0; line <= index.lineCount(); ++line) {
    const bool isComment = line < index.lineCount() && trimWhitespace(index.lineAt(line)).starts_with(';');
    if (!isComment && count >= fewestComments) addRange(list, line - count, line - 1, "comment");
    count = isComment ? count + 1 : 0;
  }
}

}  // namespace

Answer foldingRanges(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json::array();
  Json list = Json::array();
  for (const OutlinePart& part : outlineOfFile(target->analysis, target->source)) {
    const bool isRegion = part.item.kind == OutlineKind::Region || part.item.kind == OutlineKind::Bank;
    const bool isFolded = isRegion || part.item.kind == OutlineKind::Code || part.item.kind == OutlineKind::Data ||
                          part.item.kind == OutlineKind::Macro;
    if (!isFolded) continue;
    const auto [start, end] = target->index.rangeOf(part.begin, part.end);
    addRange(list, start.line, end.line, isRegion ? "region" : nullptr);
  }
  addComments(list, target->index);
  return list;
}

}  // namespace kiln
