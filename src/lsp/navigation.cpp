#include "lsp/navigation.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/paths.h"

namespace kiln {
namespace {

constexpr int highlightRead = 2;
constexpr int highlightWrite = 3;

const Occurrence* occurrenceAt(const Target& target, const Json& params) {
  return target.analysis.names().at(target.placeOf(positionFrom(memberOf(params, {"position"}))));
}

using Key = std::pair<Thing, uint32_t>;
using Offset = std::pair<std::string, size_t>;  // by the path of the file

Key keyOf(const Occurrence& occurrence) { return {occurrence.thing, occurrence.id}; }

Offset offsetOf(const Analysis& analysis, const Occurrence& occurrence) {
  const SourceNotes::File& file = *analysis.map().fileOf(occurrence.text);
  return {plainPath(file.path), static_cast<size_t>(occurrence.text.data() - file.text.data())};
}

enum class Wanted : uint8_t { Definitions, Uses, All };

// Places as the protocol lists them. A file that is included twice, or by two programs, has each of its places once.
class PlaceList {
 public:
  PlaceList(const Session& session, Wanted wanted) : session_(session), wanted_(wanted) {}

  void add(const Analysis& analysis, const std::set<Key>& keys) {
    Locations locations(session_, analysis);
    for (const Occurrence& occurrence : analysis.names().all()) {
      const bool isWanted = wanted_ == Wanted::All || occurrence.isDefinition == (wanted_ == Wanted::Definitions);
      if (!isWanted || !keys.contains(keyOf(occurrence))) continue;
      if (seen_.insert(offsetOf(analysis, occurrence)).second) list_.push_back(locations.locationOf(occurrence.text));
    }
  }

  Json take() { return std::move(list_); }

 private:
  const Session& session_;
  const Wanted wanted_;
  std::set<Offset> seen_;
  Json list_ = Json::array();
};

std::set<Offset> definitionsOf(const Analysis& analysis, const Occurrence& occurrence) {
  std::set<Offset> places;
  for (const Occurrence* other : analysis.names().sameAs(occurrence)) {
    if (other->isDefinition) places.insert(offsetOf(analysis, *other));
  }
  return places;
}

// What the program defines at these places.
std::set<Key> definedAt(const Analysis& analysis, const std::set<Offset>& places) {
  std::set<Key> keys;
  for (const Occurrence& occurrence : analysis.names().all()) {
    if (occurrence.isDefinition && places.contains(offsetOf(analysis, occurrence))) keys.insert(keyOf(occurrence));
  }
  return keys;
}

// The programs that files of the places are part of, some of them perhaps repeatedly.
std::vector<const Analysis*> programsWith(Session& session, const std::set<Offset>& places) {
  std::set<std::string> paths;
  for (const auto& [path, offset] : places)
    paths.insert(path);
  std::vector<const Analysis*> programs;
  for (const std::string& path : paths) {
    for (const Analysis* program : session.workspace.programsOf(path)) {
      if (program->error().empty()) programs.push_back(program);
    }
  }
  return programs;
}

}  // namespace

Answer findDefinition(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  const Occurrence* const occurrence = target.has_value() ? occurrenceAt(*target, params) : nullptr;
  if (occurrence == nullptr) return Json();
  if (occurrence->thing == Thing::File) {
    Locations locations(session, target->analysis);
    const SourceNotes::File& file = target->analysis.program().notes.files[occurrence->id];
    return Json{{"uri", locations.uriOf(file)}, {"range", toJson(Range())}};
  }
  PlaceList list(session, Wanted::Definitions);
  list.add(target->analysis, {keyOf(*occurrence)});
  return list.take();
}

// What an include file defines is used in all programs that include it.
Answer findReferences(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  const Occurrence* const occurrence = target.has_value() ? occurrenceAt(*target, params) : nullptr;
  if (occurrence == nullptr) return Json();
  const bool hasDefinitions = isTrue(memberOf(params, {"context", "includeDeclaration"}));
  PlaceList list(session, hasDefinitions ? Wanted::All : Wanted::Uses);
  list.add(target->analysis, {keyOf(*occurrence)});
  const std::set<Offset> places = definitionsOf(target->analysis, *occurrence);
  for (const Analysis* program : programsWith(session, places)) {
    if (program != &target->analysis) list.add(*program, definedAt(*program, places));
  }
  return list.take();
}

Answer highlight(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  const Occurrence* const occurrence = target.has_value() ? occurrenceAt(*target, params) : nullptr;
  if (occurrence == nullptr) return Json();
  Locations locations(session, target->analysis);
  Json list = Json::array();
  for (const Occurrence* other : target->analysis.names().sameAs(*occurrence)) {
    if (target->analysis.map().fileOf(other->text) != &target->source) continue;
    list.push_back({{"range", toJson(locations.rangeOf(target->source, other->text))},
                    {"kind", other->isDefinition ? highlightWrite : highlightRead}});
  }
  return list;
}

}  // namespace kiln
