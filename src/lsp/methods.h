// The requests that the server answers, each in a file of its own.
#pragma once

#include <span>
#include <string_view>

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

struct Method {
  std::string_view name;
  // Null where there is nothing to say.
  Answer (*answer)(Session& session, const Json& params);
};

// In the order of their names.
std::span<const Method> methodRows();

// Null for an unknown method.
const Method* findMethod(std::string_view name);

}  // namespace kiln
