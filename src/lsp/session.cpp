#include "lsp/session.h"

#include <algorithm>

#include "base/paths.h"
#include "lsp/uri.h"

namespace kiln {

std::optional<Target> findTarget(Session& session, const Json& params) {
  const std::optional<std::string> path = pathOfUri(textOf(memberOf(params, {"textDocument", "uri"})));
  const Document* const document = path.has_value() ? session.documents.find(*path) : nullptr;
  if (document == nullptr) return std::nullopt;
  for (const Analysis* analysis : session.workspace.programsOf(*path)) {
    const SourceNotes::File* const source = analysis->error().empty() ? analysis->sourceAt(*path) : nullptr;
    if (source == nullptr || source->text != document->text) continue;
    return Target{*document, *analysis, *source, TextIndex(source->text, session.encoding)};
  }
  return std::nullopt;
}

std::string_view Target::linesOf(Range range) const {
  const std::string_view text = source.text;
  const size_t first = index.offsetOf(range.start);
  const size_t last = std::max(first, index.offsetOf(range.end));
  const size_t begin = first == 0 ? 0 : text.rfind('\n', first - 1) + 1;  // npos + 1 = 0
  const size_t end = std::min(text.find('\n', last), text.size() - 1) + 1;
  return text.substr(begin, end - begin);
}

std::string uriOf(const Session& session, const std::string& path) {
  const Document* const document = session.documents.find(path);
  return document != nullptr ? document->uri : uriOfPath(path);
}

std::string Locations::uriOf(const SourceNotes::File& file) const {
  return kiln::uriOf(session_, plainPath(file.path));
}

Position Locations::FileIndex::positionOf(size_t at) {
  const uint32_t line = index.lineOf(at);
  if (line != position.line || at < offset) {
    offset = index.startOf(line);
    position = {line, 0};
  }
  position.character += index.unitsIn(offset, at);
  offset = at;
  return position;
}

Range Locations::rangeOf(const SourceNotes::File& file, std::string_view text) {
  auto found = indexes_.find(&file);
  if (found == indexes_.end()) {
    found = indexes_.emplace(&file, FileIndex{TextIndex(file.text, session_.encoding)}).first;
  }
  const auto begin = static_cast<size_t>(text.data() - file.text.data());
  const Position start = found->second.positionOf(begin);
  return {start, found->second.positionOf(begin + text.size())};
}

Json Locations::locationOf(std::string_view text) {
  const SourceNotes::File* const file = analysis_.map().fileOf(text);
  if (file == nullptr) return nullptr;
  return {{"uri", uriOf(*file)}, {"range", toJson(rangeOf(*file, text))}};
}

std::string_view Locations::textAt(const SourceMap& map, const Place& place) {
  if (place.line == 0) return {};
  const std::string_view line = map.lineOf(*place.file, place.line);
  const size_t begin = std::min<size_t>(place.column - 1, line.size());
  return line.substr(begin, place.endColumn - place.column);
}

}  // namespace kiln
