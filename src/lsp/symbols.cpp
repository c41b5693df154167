#include "lsp/symbols.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/text.h"
#include "lsp/outline.h"

namespace kiln {
namespace {

constexpr size_t mostFound = 1000;

// The protocol's numbers.
int symbolKindOf(OutlineKind kind) {
  switch (kind) {
    case OutlineKind::Code:
      return 12;  // function
    case OutlineKind::Data:
      return 13;  // variable
    case OutlineKind::LocalLabel:
      return 8;  // field
    case OutlineKind::Assignment:
      return 14;  // constant
    case OutlineKind::Macro:
      return 6;  // method
    case OutlineKind::Region:
      return 4;  // package
    case OutlineKind::Bank:
    case OutlineKind::Move:
      break;
  }
  return 2;  // module
}

// As the outline shows it: a local label without its scope, a directive as written.
std::string_view shownName(const OutlineItem& item) {
  const bool isNamed = item.kind != OutlineKind::LocalLabel && item.kind != OutlineKind::Region;
  return isNamed ? item.name : item.text;
}

Json toJson(const OutlinePart& part, const Target& target) {
  const size_t own = target.source.text.find('\n', part.begin);
  const bool isLine = part.item.kind == OutlineKind::Region;
  const size_t end = isLine ? std::min(own, target.source.text.size()) : part.end;
  return {{"name", shownName(part.item)},
          {"kind", symbolKindOf(part.item.kind)},
          {"range", kiln::toJson(target.index.rangeOf(part.begin, end))},
          {"selectionRange", kiln::toJson(target.rangeOf(part.item.text))}};
}

bool containsIgnoringCase(std::string_view text, std::string_view wanted) {
  const auto isSame = [](char a, char b) { return toLower(a) == toLower(b); };
  return std::search(text.begin(), text.end(), wanted.begin(), wanted.end(), isSame) != text.end() || wanted.empty();
}

}  // namespace

Answer documentSymbols(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json::array();
  const std::vector<OutlinePart> parts = outlineOfFile(target->analysis, target->source);
  std::vector<Json> lists(parts.size() + 1, Json::array());  // of children, the last ones first; of all, at the end
  for (size_t i = parts.size(); i-- != 0;) {
    Json symbol = toJson(parts[i], *target);
    std::reverse(lists[i].begin(), lists[i].end());
    if (!lists[i].empty()) symbol["children"] = std::move(lists[i]);
    lists[parts[i].parent == i ? parts.size() : parts[i].parent].push_back(std::move(symbol));
  }
  std::reverse(lists.back().begin(), lists.back().end());
  return std::move(lists.back());
}

Answer workspaceSymbols(Session& session, const Json& params) {
  const std::string query = textOf(memberOf(params, {"query"}));
  Json list = Json::array();
  std::set<std::pair<std::string, size_t>> seen;  // a file may be part of several programs
  for (const Analysis* analysis : session.workspace.programsOfOpenDocuments()) {
    if (!analysis->error().empty()) continue;
    Locations locations(session, *analysis);
    for (const OutlineItem& item : outlineOf(*analysis)) {
      if (list.size() == mostFound) return list;
      if (item.kind == OutlineKind::Move || item.kind == OutlineKind::Region) continue;
      if (!containsIgnoringCase(item.name, query)) continue;
      const SourceNotes::File& file = *analysis->map().fileOf(item.text);
      const auto offset = static_cast<size_t>(item.text.data() - file.text.data());
      if (!seen.emplace(locations.uriOf(file), offset).second) continue;
      Json symbol = {
          {"name", item.name}, {"kind", symbolKindOf(item.kind)}, {"location", locations.locationOf(item.text)}};
      if (item.kind == OutlineKind::LocalLabel) symbol["containerName"] = item.scope;
      list.push_back(std::move(symbol));
    }
  }
  return list;
}

}  // namespace kiln
