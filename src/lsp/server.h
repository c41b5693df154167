// The protocol: requests are answered in order, notifications change the session. Nothing here reads or writes.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "lsp/answer.h"
#include "lsp/published_findings.h"
#include "lsp/session.h"

namespace kiln {

class Server {
 public:
  // The disk has to outlive it. `programPath` is this program's own path.
  Server(const Host& disk, std::string programPath) : session_(disk, std::move(programPath)) {}

  // Takes a message, as text, to be handled later. Only what cannot wait is done at once: a request that is cancelled
  // before its turn is answered so.
  void receive(std::string_view text);
  // Handles the next message; false when there is none.
  bool handleNext();
  // To be called when no more messages wait: brings the editor's diagnostics up to date.
  void settle();

  // What is to be sent since the last call, without frames.
  std::vector<std::string> takeOutput();

  // After "exit".
  bool isOver() const { return isOver_; }
  int exitStatus() const { return isShutDown_ ? 0 : 1; }

 private:
  // Runs a step. When it fails, most likely for lack of memory, the answer to `id` is an error.
  template <typename Step>
  void attempt(const Json& id, Step step);
  void handle(const Json& message);
  void handleRequest(const Json& message);
  void handleNotification(const std::string& method, const Json& params);
  Answer answer(const std::string& method, const Json& params);
  Answer initialize(const Json& params);
  void configure(const Json& settings);
  void cancel(const Json& id);
  void reply(const Json& id, Answer answer);

  void openDocument(const Json& params);
  void changeDocument(const Json& params);
  void closeDocument(const Json& params);
  void changeFolders(const Json& event);

  Session session_;
  PublishedFindings published_;
  std::deque<Json> waiting_;
  std::vector<std::string> output_;
  std::vector<std::string> folders_;
  bool isInitialized_ = false;
  bool isShutDown_ = false;
  bool isOver_ = false;
  bool hasChanged_ = false;  // since settle()
};

}  // namespace kiln
