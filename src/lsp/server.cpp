#include "lsp/server.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/version.h"
#include "lsp/capabilities.h"
#include "lsp/methods.h"
#include "lsp/uri.h"

namespace kiln {
namespace {

// A client that does not say which formats it takes is shown Markdown.
bool takesMarkdown(const Json& formats) {
  return !formats.is_array() || formats.empty() ||
         std::find(formats.begin(), formats.end(), "markdown") != formats.end();
}

bool isRequest(const Json& message) { return message.contains("id") && message.contains("method"); }

}  // namespace

void Server::receive(std::string_view text) {
  attempt(nullptr, [&] {
    Json message = Json::parse(text, nullptr, false);
    if (message.is_discarded()) return reply(nullptr, Failure{ErrorCode::ParseError, "this is no JSON"});
    const std::string method = textOf(memberOf(message, {"method"}));
    if (method == "$/cancelRequest") return cancel(memberOf(message, {"params", "id"}));
    waiting_.push_back(std::move(message));
  });
}

bool Server::handleNext() {
  if (waiting_.empty() || isOver_) return false;
  const Json message = std::move(waiting_.front());
  waiting_.pop_front();
  attempt(memberOf(message, {"id"}), [&] { handle(message); });
  return true;
}

void Server::settle() {
  if (!hasChanged_ || !isInitialized_ || isShutDown_) return;
  hasChanged_ = false;
  attempt(nullptr, [this] {
    for (const Json& notification : published_.update(session_))
      output_.push_back(dumpJson(notification));
  });
}

std::vector<std::string> Server::takeOutput() { return std::exchange(output_, {}); }

template <typename Step>
void Server::attempt(const Json& id, Step step) {
  try {
    step();
  } catch (const std::exception& exception) {
    reply(id, Failure{ErrorCode::InternalError, exception.what()});
  }
}

void Server::cancel(const Json& id) {
  const auto request = std::find_if(waiting_.begin(), waiting_.end(), [&id](const Json& message) {
    return message.is_object() && isRequest(message) && message["id"] == id;
  });
  if (request == waiting_.end()) return;
  waiting_.erase(request);
  reply(id, Failure{ErrorCode::RequestCancelled, "cancelled"});
}

void Server::reply(const Json& id, Answer answer) {
  Json message = {{"jsonrpc", "2.0"}, {"id", id}};
  if (answer.failure.has_value()) {
    message["error"] = {{"code", static_cast<int>(answer.failure->code)}, {"message", answer.failure->message}};
  } else {
    message["result"] = std::move(answer.result);
  }
  output_.push_back(dumpJson(message));
}

void Server::handle(const Json& message) {
  if (message.is_object() && !message.contains("method") && message.contains("id")) return;  // an answer to nothing
  if (!message.is_object() || !message.contains("method") || !message["method"].is_string()) {
    return reply(memberOf(message, {"id"}), Failure{ErrorCode::InvalidRequest, "this is no request"});
  }
  if (isRequest(message)) return handleRequest(message);
  handleNotification(message["method"].get<std::string>(), memberOf(message, {"params"}));
}

void Server::handleRequest(const Json& message) {
  const auto method = message["method"].get<std::string>();
  reply(message["id"], answer(method, memberOf(message, {"params"})));
}

Answer Server::answer(const std::string& method, const Json& params) {
  if (isShutDown_) return Failure{ErrorCode::InvalidRequest, "the server is shut down"};
  if (method == "initialize") return initialize(params);
  if (!isInitialized_) return Failure{ErrorCode::ServerNotInitialized, "the server is not initialized"};
  if (method == "shutdown") {
    isShutDown_ = true;
    return Json();
  }
  const Method* const row = findMethod(method);
  if (row == nullptr) return Failure{ErrorCode::MethodNotFound, "unknown method " + method};
  return row->answer(session_, params);
}

Answer Server::initialize(const Json& params) {
  if (isInitialized_) return Failure{ErrorCode::InvalidRequest, "the server is initialized already"};
  isInitialized_ = true;
  const Json& encodings = memberOf(params, {"capabilities", "general", "positionEncodings"});
  const bool hasUtf8 =
      encodings.is_array() && std::find(encodings.begin(), encodings.end(), "utf-8") != encodings.end();
  session_.encoding = hasUtf8 ? Encoding::Utf8 : Encoding::Utf16;
  session_.takesMarkdown = takesMarkdown(memberOf(params, {"capabilities", "textDocument", "hover", "contentFormat"}));
  session_.hasSnippets =
      isTrue(memberOf(params, {"capabilities", "textDocument", "completion", "completionItem", "snippetSupport"}));
  session_.hasDocumentChanges =
      isTrue(memberOf(params, {"capabilities", "workspace", "workspaceEdit", "documentChanges"}));
  configure(memberOf(params, {"initializationOptions"}));
  const Json& folders = memberOf(params, {"workspaceFolders"});
  if (folders.is_array() && !folders.empty()) {
    changeFolders({{"added", folders}});
  } else {
    changeFolders({{"added", {{{"uri", memberOf(params, {"rootUri"})}}}}});
  }
  return Json{{"capabilities", capabilities(session_.encoding)},
              {"serverInfo", {{"name", "kiln-lsp"}, {"version", version}}}};
}

void Server::configure(const Json& settings) {
  const Json& hints = memberOf(settings, {"inlayHints"});
  if (hints.is_boolean()) session_.showsInlayHints = hints.get<bool>();
}

void Server::handleNotification(const std::string& method, const Json& params) {
  if (method == "exit") {
    isOver_ = true;
    return;
  }
  if (!isInitialized_ || isShutDown_) return;
  hasChanged_ = true;
  if (method == "textDocument/didOpen") return openDocument(params);
  if (method == "textDocument/didChange") return changeDocument(params);
  if (method == "textDocument/didClose") return closeDocument(params);
  if (method == "workspace/didChangeConfiguration") return configure(memberOf(params, {"settings", "kiln"}));
  if (method == "workspace/didChangeWorkspaceFolders") return changeFolders(memberOf(params, {"event"}));
  const bool mayBeOnDisk = method == "textDocument/didSave" || method == "workspace/didChangeWatchedFiles";
  if (mayBeOnDisk) session_.workspace.filesChanged();
}

void Server::openDocument(const Json& params) {
  const Json& item = memberOf(params, {"textDocument"});
  const std::string uri = textOf(memberOf(item, {"uri"}));
  const std::optional<std::string> path = pathOfUri(uri);
  if (!path.has_value()) return;
  session_.documents.open({uri, *path, memberOf(item, {"version"}), textOf(memberOf(item, {"text"}))});
  // The file may not be on the disk.
  session_.workspace.filesChanged();
}

void Server::changeDocument(const Json& params) {
  const std::optional<std::string> path = pathOfUri(textOf(memberOf(params, {"textDocument", "uri"})));
  if (!path.has_value()) return;
  const bool isOpen = session_.documents.change(*path, memberOf(params, {"textDocument", "version"}),
                                                memberOf(params, {"contentChanges"}), session_.encoding);
  if (isOpen) session_.workspace.fileChanged(*path);
}

void Server::closeDocument(const Json& params) {
  const std::optional<std::string> path = pathOfUri(textOf(memberOf(params, {"textDocument", "uri"})));
  if (!path.has_value()) return;
  session_.documents.close(*path);
  session_.workspace.filesChanged();
}

void Server::changeFolders(const Json& event) {
  const auto forEachPath = [](const Json& folders, auto&& use) {
    if (!folders.is_array()) return;
    for (const Json& folder : folders) {
      if (const std::optional<std::string> path = pathOfUri(textOf(memberOf(folder, {"uri"})))) use(*path);
    }
  };
  forEachPath(memberOf(event, {"removed"}), [this](const std::string& path) { std::erase(folders_, path); });
  forEachPath(memberOf(event, {"added"}), [this](const std::string& path) { folders_.push_back(path); });
  session_.workspace.setFolders(folders_);
}

}  // namespace kiln
