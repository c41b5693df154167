#include "lsp/published_findings.h"

#include <unordered_set>
#include <utility>

#include "base/paths.h"
#include "lsp/uri.h"

namespace kiln {
namespace {

constexpr int severityError = 1;
constexpr int severityWarning = 2;
constexpr int tagUnnecessary = 1;

// More would be of no use to anybody, and an editor keeps them all.
constexpr size_t mostOfFile = 10000;

struct List {
  Json items = Json::array();
  std::unordered_set<std::string> seen;  // the items as texts
};

using Lists = std::map<std::string, List>;  // by URI

void add(Lists& lists, const std::string& uri, Json diagnostic) {
  List& list = lists[uri];
  // A file of several programs has the same findings in each.
  if (list.items.size() < mostOfFile && list.seen.insert(dumpJson(diagnostic)).second) {
    list.items.push_back(std::move(diagnostic));
  }
}

Json simpleDiagnostic(uint32_t line, const std::string& text) {
  return {{"range", toJson(Range{{line, 0}, {line + 1, 0}})},
          {"severity", severityError},
          {"source", "kiln"},
          {"message", text}};
}

void addFindings(const Session& session, const Analysis& analysis, Lists& lists) {
  Locations locations(session, analysis);
  const SourceNotes::File& mainFile = analysis.program().notes.files.front();
  for (const Finding& finding : analysis.findings()) {
    const SourceNotes::File& file = finding.place.line != 0 ? *finding.place.file : mainFile;
    add(lists, locations.uriOf(file), diagnosticOf(analysis, finding, locations));
  }
}

// Why a program cannot be read: at its line in ".kiln", or in the document itself.
void addError(const Session& session, const Analysis& analysis, Lists& lists) {
  const CommandLine& line = analysis.commandLine();
  const bool hasProject = !line.projectPath.empty();
  const std::string path = hasProject ? line.projectPath : line.arguments.front();
  add(lists, uriOf(session, plainPath(path)),
      simpleDiagnostic(hasProject ? line.projectLine - 1 : 0, analysis.error()));
}

}  // namespace

// A note has a place of its own, or is a line of the message.
Json diagnosticOf(const Analysis& analysis, const Finding& finding, Locations& locations) {
  const SourceMap& map = analysis.map();
  const Range range =
      finding.place.line == 0 ? Range() : locations.rangeOf(*finding.place.file, Locations::textAt(map, finding.place));
  std::string message = finding.text;
  Json related = Json::array();
  for (const Note& note : finding.notes) {
    const bool isElsewhere =
        note.place.line != 0 && (note.place.file != finding.place.file || note.place.line != finding.place.line);
    if (isElsewhere) {
      related.push_back(
          {{"location", locations.locationOf(Locations::textAt(map, note.place))}, {"message", note.text}});
    } else {
      message += "\n" + note.text;
    }
  }
  Json diagnostic = {{"range", toJson(range)},
                     {"severity", finding.severity == Severity::Error ? severityError : severityWarning},
                     {"code", rowOf(finding.check).name},
                     {"source", "kiln"},
                     {"message", std::move(message)}};
  if (!related.empty()) diagnostic["relatedInformation"] = std::move(related);
  if (finding.check == Check::Vanished) diagnostic["tags"] = {tagUnnecessary};
  return diagnostic;
}

std::vector<Json> PublishedFindings::update(Session& session) {
  Lists lists;
  for (const auto& [uri, text] : sent_)
    lists[uri];
  for (const Analysis* analysis : session.workspace.programsOfOpenDocuments())
    analysis->error().empty() ? addFindings(session, *analysis, lists) : addError(session, *analysis, lists);
  std::vector<Json> notifications;
  std::map<std::string, std::string> sent;
  for (auto& [uri, list] : lists) {
    std::string text = dumpJson(list.items);
    const auto before = sent_.find(uri);
    if (before == sent_.end() || before->second != text) {
      Json params = {{"uri", uri}, {"diagnostics", std::move(list.items)}};
      const std::optional<std::string> path = pathOfUri(uri);
      const Document* const document = path.has_value() ? session.documents.find(*path) : nullptr;
      if (document != nullptr && document->version.is_number()) params["version"] = document->version;
      notifications.push_back({{"jsonrpc", "2.0"}, {"method", "textDocument/publishDiagnostics"}, {"params", params}});
    }
    if (text != "[]") sent.emplace(uri, std::move(text));
  }
  sent_ = std::move(sent);
  return notifications;
}

}  // namespace kiln
