#include "support/editor.h"

#include <gtest/gtest.h>

#include "base/format.h"

namespace kiln::test {
namespace {

constexpr std::string_view folder = "/project/";

MemoryHost diskWith(const std::map<std::string, std::string>& files) {
  MemoryHost disk;
  disk.directories = {"/project"};
  for (const auto& [file, text] : files)
    disk.files[std::string(folder) + file] = text;
  for (const auto& [file, text] : files) {
    if (const size_t slash = file.find('/'); slash != std::string::npos)
      disk.directories.insert(std::string(folder) + file.substr(0, slash));
  }
  return disk;
}

std::string positionText(const Json& position) {
  return concat({decimal(position["line"].get<int>() + 1), ":", decimal(position["character"].get<int>() + 1)});
}

}  // namespace

Editor::Editor(const std::map<std::string, std::string>& files, const Json& parameters)
    : disk_(diskWith(files)), server_(disk_, "/bin/kiln-lsp") {
  Json all = {{"capabilities", Json::object()}, {"rootUri", "file:///project"}};
  all.update(parameters);
  request("initialize", all);
  send({{"jsonrpc", "2.0"}, {"method", "initialized"}, {"params", Json::object()}});
}

std::string Editor::setCursor(const std::string& file, std::string text) {
  const size_t at = text.find('|');
  if (at == std::string::npos) return text;
  text.erase(at, 1);
  cursorFile_ = file;
  cursor_ = TextIndex(text, Encoding::Utf16).positionOf(at);
  return text;
}

void Editor::open(const std::string& file, const std::string& text) {
  const Json document = {{"uri", uriOf(file)}, {"languageId", "kiln"}, {"version", 1}, {"text", setCursor(file, text)}};
  send({{"jsonrpc", "2.0"}, {"method", "textDocument/didOpen"}, {"params", {{"textDocument", document}}}});
}

void Editor::change(const std::string& file, const std::string& text) {
  const Json params = {{"textDocument", {{"uri", uriOf(file)}, {"version", 2}}},
                       {"contentChanges", {{{"text", setCursor(file, text)}}}}};
  send({{"jsonrpc", "2.0"}, {"method", "textDocument/didChange"}, {"params", params}});
}

void Editor::edit(const std::string& file, Range range, const std::string& text) {
  const Json params = {{"textDocument", {{"uri", uriOf(file)}, {"version", 2}}},
                       {"contentChanges", {{{"range", toJson(range)}, {"text", text}}}}};
  send({{"jsonrpc", "2.0"}, {"method", "textDocument/didChange"}, {"params", params}});
}

void Editor::close(const std::string& file) {
  send({{"jsonrpc", "2.0"},
        {"method", "textDocument/didClose"},
        {"params", {{"textDocument", {{"uri", uriOf(file)}}}}}});
}

void Editor::send(const Json& message) {
  server_.receive(message.dump());
  settle();
}

void Editor::settle() {
  while (server_.handleNext()) {
  }
  server_.settle();
  for (const std::string& text : server_.takeOutput()) {
    Json message = Json::parse(text);
    if (message.value("method", "") == "textDocument/publishDiagnostics") {
      diagnostics_[message["params"]["uri"]] = message["params"]["diagnostics"];
    }
    messages_.push_back(std::move(message));
  }
}

Json Editor::take(int id) {
  for (auto message = messages_.begin(); message != messages_.end(); ++message) {
    if (message->value("id", Json()) != id) continue;
    Json result = message->contains("error") ? (*message)["error"] : (*message)["result"];
    messages_.erase(message);
    return result;
  }
  ADD_FAILURE() << "no answer";
  return {};
}

Json Editor::request(const std::string& method, Json more) {
  if (!cursorFile_.empty()) {
    more.emplace("textDocument", Json{{"uri", uriOf(cursorFile_)}});
    more.emplace("position", toJson(cursor_));
  }
  send({{"jsonrpc", "2.0"}, {"id", ++lastId_}, {"method", method}, {"params", more}});
  return take(lastId_);
}

std::vector<Json> Editor::takeMessages() { return std::exchange(messages_, {}); }

std::vector<std::string> Editor::diagnosticsOf(const std::string& file) {
  std::vector<std::string> list;
  for (const Json& diagnostic : diagnostics_[uriOf(file)])
    list.push_back(positionText(diagnostic["range"]["start"]) + " " + diagnostic.value("code", ""));
  return list;
}

std::string applied(std::string text, const Json& edits) {
  for (size_t i = edits.size(); i-- > 0;) {
    const TextIndex index(text, Encoding::Utf16);
    const Range range = rangeFrom(edits[i]["range"]);
    const size_t begin = index.offsetOf(range.start);
    text.replace(begin, index.offsetOf(range.end) - begin, edits[i]["newText"].get<std::string>());
  }
  return text;
}

std::string placeText(const Json& location) {
  if (location.is_null()) return "null";
  if (location.contains("uri")) {
    const std::string uri = location["uri"];
    const std::string prefix = Editor::uriOf("");
    return uri.substr(uri.starts_with(prefix) ? prefix.size() : 0) + " " + placeText(location["range"]);
  }
  const Json& start = location["start"];
  const Json& end = location["end"];
  const std::string endText =
      start["line"] == end["line"] ? decimal(end["character"].get<int>() + 1) : positionText(end);
  return positionText(start) + "-" + endText;
}

std::vector<std::string> placeTexts(const Json& locations) {
  std::vector<std::string> list;
  for (const Json& location : locations)
    list.push_back(placeText(location));
  return list;
}

}  // namespace kiln::test
