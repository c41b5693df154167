// What comes of a request.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "lsp/json.h"

namespace kiln {

// The protocol's numbers.
enum class ErrorCode : int {
  ParseError = -32700,
  InvalidRequest = -32600,
  MethodNotFound = -32601,
  InvalidParams = -32602,
  InternalError = -32603,
  ServerNotInitialized = -32002,
  RequestFailed = -32803,
  RequestCancelled = -32800,
};

struct Failure {
  ErrorCode code;
  std::string message;
};

struct Answer {
  Answer(Json json) : result(std::move(json)) {}    // NOLINT: a result is an answer
  Answer(Failure why) : failure(std::move(why)) {}  // NOLINT

  Json result;
  std::optional<Failure> failure;
};

}  // namespace kiln
