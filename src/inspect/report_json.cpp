// The reports for programs: JSON lines and SARIF. Text that is not valid UTF-8 is shown with replacement characters.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/version.h"
#include "inspect/report.h"

namespace kiln {
namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string_view pathOf(const Place& place) { return place.file == nullptr ? std::string_view() : place.file->path; }

std::string_view nameOf(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

// A note without a place of its own is about that of the finding.
Json toJson(const std::vector<Note>& notes, const Place& placeOfFinding) {
  Json list = Json::array();
  for (const Note& note : notes) {
    const Place& place = note.place.line != 0 ? note.place : placeOfFinding;
    list.push_back({{"file", pathOf(place)}, {"line", place.line}, {"column", place.column}, {"text", note.text}});
  }
  return list;
}

Json toJson(const Edit& edit) {
  return {{"file", pathOf(edit.place)},
          {"line", edit.place.line},
          {"column", edit.place.column},
          {"endColumn", edit.place.endColumn},
          {"text", edit.text}};
}

Json toJson(const std::vector<Edit>& edits) {
  Json list = Json::array();
  for (const Edit& edit : edits)
    list.push_back(toJson(edit));
  return list;
}

Json toJson(const Finding& finding) {
  return {{"file", pathOf(finding.place)},
          {"line", finding.place.line},
          {"column", finding.place.column},
          {"endColumn", finding.place.endColumn},
          {"severity", nameOf(finding.severity)},
          {"check", rowOf(finding.check).name},
          {"text", finding.text},
          {"notes", toJson(finding.notes, finding.place)},
          {"fix", finding.fix.empty() ? Json() : toJson(finding.fix)}};
}

// A URI reference.
std::string uriOf(std::string_view path) {
  if (!isAbsolute(path)) return uriPath(path);
  return concat({isSeparator(path.front()) ? "file://" : "file:///", uriPath(path)});
}

class SarifWriter {
 public:
  explicit SarifWriter(const SourceMap& map) : map_(map) {}

  Json result(const Finding& finding) const {
    Json result = {{"ruleId", rowOf(finding.check).name},
                   {"ruleIndex", static_cast<size_t>(finding.check)},
                   {"level", nameOf(finding.severity)},
                   {"message", {{"text", finding.text}}}};
    if (finding.place.line != 0) {
      result["locations"] = Json::array({{{"physicalLocation", physicalLocation(finding.place)}}});
    }
    for (const Note& note : finding.notes)
      result["relatedLocations"].push_back(relatedLocation(note));
    if (!finding.fix.empty()) result["fixes"] = Json::array({fix(finding.fix)});
    return result;
  }

 private:
  // A column in characters: bytes are not among the units that SARIF knows.
  size_t inCharacters(const Place& place, uint32_t column) const {
    const std::string_view before = map_.lineOf(*place.file, place.line).substr(0, column - 1);
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    return column - static_cast<size_t>(std::count_if(before.begin(), before.end(), isContinuation));
  }

  Json region(const Place& place) const {
    return {{"startLine", place.line},
            {"startColumn", inCharacters(place, place.column)},
            {"endColumn", inCharacters(place, place.endColumn)}};
  }

  static Json artifact(const Place& place) { return {{"uri", uriOf(pathOf(place))}}; }

  Json physicalLocation(const Place& place) const {
    return {{"artifactLocation", artifact(place)}, {"region", region(place)}};
  }

  Json relatedLocation(const Note& note) const {
    Json related = {{"message", {{"text", note.text}}}};
    if (note.place.line != 0) related["physicalLocation"] = physicalLocation(note.place);
    return related;
  }

  Json fix(const std::vector<Edit>& edits) const {
    Json changes = Json::array();
    for (const Edit& edit : edits) {
      const Json replacement = {{"deletedRegion", region(edit.place)}, {"insertedContent", {{"text", edit.text}}}};
      changes.push_back({{"artifactLocation", artifact(edit.place)}, {"replacements", Json::array({replacement})}});
    }
    return {{"artifactChanges", changes}};
  }

  const SourceMap& map_;
};

Json rules() {
  Json list = Json::array();
  for (const CheckRow& row : checkRows) {
    list.push_back({{"id", row.name},
                    {"shortDescription", {{"text", row.summary}}},
                    {"defaultConfiguration", {{"enabled", !row.isExtra}, {"level", "warning"}}}});
  }
  return list;
}

}  // namespace

std::string renderJson(std::span<const Finding> findings) {
  std::string lines;
  for (const Finding& finding : findings)
    lines += dump(toJson(finding), -1);
  return lines;
}

std::string renderSarif(std::span<const ProgramFindings> programs) {
  Json results = Json::array();
  for (const ProgramFindings& program : programs) {
    const SarifWriter writer(*program.map);
    for (const Finding& finding : program.findings)
      results.push_back(writer.result(finding));
  }
  const Json driver = {{"name", "kiln-check"}, {"version", version}, {"rules", rules()}};
  const Json run = {{"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", results}};
  return dump({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
               {"version", "2.1.0"},
               {"runs", Json::array({run})}},
              2);
}

}  // namespace kiln
