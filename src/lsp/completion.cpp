#include "lsp/completion.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "lsp/completion_items.h"

namespace kiln {
namespace {

constexpr size_t mostItems = 2000;
constexpr int snippetFormat = 2;

Json toJson(const CompletionItem& item, const Range& range, bool isBeforeBlank) {
  std::string text = item.text.empty() ? item.label : item.text;
  if (isBeforeBlank && !item.isSnippet) text = trimRight(text);
  Json json = {{"label", item.label},
               {"kind", static_cast<int>(item.kind)},
               {"sortText", item.group + item.label},
               {"textEdit", {{"range", kiln::toJson(range)}, {"newText", std::move(text)}}}};
  if (!item.detail.empty()) json["detail"] = item.detail;
  if (item.isSnippet) json["insertTextFormat"] = snippetFormat;
  return json;
}

// Of too many items those that begin with what is typed. True when the editor has to ask again as more is typed.
bool limit(std::vector<CompletionItem>& items, std::string_view typed) {
  if (items.size() <= mostItems) return false;
  const std::string start = toLower(typed);
  std::erase_if(items, [&start](const CompletionItem& item) { return !startsWithIgnoringCase(item.label, start); });
  if (items.size() > mostItems) items.resize(mostItems);
  return true;
}

}  // namespace

Answer complete(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  const Position position = positionFrom(memberOf(params, {"position"}));
  const std::string_view line = target->index.lineAt(position.line);
  if (line.data() == nullptr) return Json();
  const char* const place = target->placeOf(position);
  const TypedText typed =
      typedAt(line, static_cast<size_t>(place - line.data()), target->analysis.program().notes.macros);
  std::vector<CompletionItem> items = completionItems(session, *target, typed, place);
  const bool isIncomplete = limit(items, typed.typed);
  Json list = Json::array();
  if (!items.empty()) {
    const Range range = target->rangeOf(typed.word);
    const char* const end = typed.word.data() + typed.word.size();
    const bool isBeforeBlank = end != line.data() + line.size() && isBlank(*end);
    for (const CompletionItem& item : items)
      list.push_back(toJson(item, range, isBeforeBlank));
  }
  return Json{{"isIncomplete", isIncomplete}, {"items", std::move(list)}};
}

}  // namespace kiln
