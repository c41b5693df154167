// The state of a session, and what all requests need of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "lsp/analysis.h"
#include "lsp/documents.h"
#include "lsp/text_index.h"
#include "lsp/workspace.h"

namespace kiln {

struct Session {
  // The disk has to outlive it. `programPath` is this program's own path.
  Session(const Host& disk, std::string programPath) : workspace(disk, documents, std::move(programPath)) {}

  Documents documents;
  Workspace workspace;
  Encoding encoding = Encoding::Utf16;
  bool showsInlayHints = true;
  bool takesMarkdown = true;
  bool hasSnippets = false;         // the editor can fill in placeholders
  bool hasDocumentChanges = false;  // the editor takes edits for a version of a document
};

// An open document in the first program that has it.
struct Target {
  const Document& document;
  const Analysis& analysis;
  const SourceNotes::File& source;  // the document in the program, with the same text
  TextIndex index;                  // of source.text

  // The byte of the source at a position.
  const char* placeOf(Position position) const { return source.text.data() + index.offsetOf(position); }
  // The range of a part of source.text.
  Range rangeOf(std::string_view part) const {
    const auto begin = static_cast<size_t>(part.data() - source.text.data());
    return index.rangeOf(begin, begin + part.size());
  }
  // The part of source.text that has the range, whole lines as the assembler has them, with the last line's end.
  std::string_view linesOf(Range range) const;
};

// The document that "textDocument" names; absent when it is not open, or no text of any program.
std::optional<Target> findTarget(Session& session, const Json& params);

// Ranges in all the files of a program.
class Locations {
 public:
  Locations(const Session& session, const Analysis& analysis) : session_(session), analysis_(analysis) {}

  // {"uri", "range"} of a view into the text of a file; null for other texts.
  Json locationOf(std::string_view text);
  std::string uriOf(const SourceNotes::File& file) const;
  Range rangeOf(const SourceNotes::File& file, std::string_view text);
  // The text at the place, as a view into the file.
  static std::string_view textAt(const SourceMap& map, const Place& place);

 private:
  // The text of a file, and the place asked for last: places come in order, mostly, and a line may be long.
  struct FileIndex {
    Position positionOf(size_t at);

    TextIndex index;
    size_t offset = 0;
    Position position = {};
  };

  const Session& session_;
  const Analysis& analysis_;
  std::unordered_map<const SourceNotes::File*, FileIndex> indexes_;
};

// The URI of a file: the editor's own for an open document.
std::string uriOf(const Session& session, const std::string& path);

}  // namespace kiln
