// An editor that talks to the language server, in memory.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "lsp/json.h"
#include "lsp/server.h"
#include "support/memory_host.h"

namespace kiln::test {

// All files are in the folder "/project", which the editor shows, and are named without it.
class Editor {
 public:
  // The files on the disk. `parameters` are merged into those of "initialize".
  explicit Editor(const std::map<std::string, std::string>& files = {}, const Json& parameters = Json::object());

  // Opens a document. A "|" in the text is taken out; it is where the cursor is then.
  void open(const std::string& file, const std::string& text);
  // Replaces the whole text of an open document, likewise.
  void change(const std::string& file, const std::string& text);
  void close(const std::string& file);
  // Replaces a part of an open document, as an editor does while one types.
  void edit(const std::string& file, Range range, const std::string& text);

  // The result of a request, or the error object. For a method without parameters of its own, `more` is empty: the
  // document and the position of the cursor are added to it.
  Json request(const std::string& method, Json more = Json::object());
  // Sends a message as it is.
  void send(const Json& message);
  // What the server has sent since the last call, requests' results aside.
  std::vector<Json> takeMessages();

  // The diagnostics of a file that hold now, as "LINE:COLUMN CODE", counted from 1.
  std::vector<std::string> diagnosticsOf(const std::string& file);

  static std::string uriOf(const std::string& file) { return "file:///project/" + file; }

 private:
  Json take(int id);
  void settle();
  std::string setCursor(const std::string& file, std::string text);

  MemoryHost disk_;
  Server server_;
  std::string cursorFile_;
  Position cursor_;
  int lastId_ = 0;
  std::vector<Json> messages_;
  std::map<std::string, Json> diagnostics_;  // by URI
};

// The text with a list of "TextEdit", which are in order and do not touch.
std::string applied(std::string text, const Json& edits);

// "FILE LINE:COLUMN-COLUMN" for a location or a range, LINE:COLUMN at its beginning counted from 1;
// "LINE:COLUMN-LINE:COLUMN" when it is longer than a line. Without "FILE " for a range alone.
std::string placeText(const Json& location);
// The same for a list.
std::vector<std::string> placeTexts(const Json& locations);

}  // namespace kiln::test
