#include "lsp/navigation.h"

#include <algorithm>

namespace kiln {
namespace {

constexpr int highlightRead = 2;
constexpr int highlightWrite = 3;

const Occurrence* occurrenceAt(const Target& target, const Json& params) {
  return target.analysis.names().at(target.placeOf(positionFrom(memberOf(params, {"position"}))));
}

// A file that is included twice has each of its places twice.
void addOnce(Json& list, Json item) {
  if (!item.is_null() && std::find(list.begin(), list.end(), item) == list.end()) list.push_back(std::move(item));
}

}  // namespace

Answer findDefinition(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  const Occurrence* const occurrence = target.has_value() ? occurrenceAt(*target, params) : nullptr;
  if (occurrence == nullptr) return Json();
  Locations locations(session, target->analysis);
  if (occurrence->thing == Thing::File) {
    const SourceNotes::File& file = target->analysis.program().notes.files[occurrence->id];
    return Json{{"uri", locations.uriOf(file)}, {"range", toJson(Range())}};
  }
  Json list = Json::array();
  for (const Occurrence* other : target->analysis.names().sameAs(*occurrence)) {
    if (other->isDefinition) addOnce(list, locations.locationOf(other->text));
  }
  return list;
}

Answer findReferences(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  const Occurrence* const occurrence = target.has_value() ? occurrenceAt(*target, params) : nullptr;
  if (occurrence == nullptr) return Json();
  const bool withDefinitions = isTrue(memberOf(params, {"context", "includeDeclaration"}));
  Locations locations(session, target->analysis);
  Json list = Json::array();
  for (const Occurrence* other : target->analysis.names().sameAs(*occurrence)) {
    if (withDefinitions || !other->isDefinition) addOnce(list, locations.locationOf(other->text));
  }
  return list;
}

Answer highlight(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  const Occurrence* const occurrence = target.has_value() ? occurrenceAt(*target, params) : nullptr;
  if (occurrence == nullptr) return Json();
  Json list = Json::array();
  for (const Occurrence* other : target->analysis.names().sameAs(*occurrence)) {
    if (target->analysis.map().fileOf(other->text) != &target->source) continue;
    list.push_back({{"range", toJson(target->rangeOf(other->text))},
                    {"kind", other->isDefinition ? highlightWrite : highlightRead}});
  }
  return list;
}

}  // namespace kiln
