// The requests that the server answers, each in a file of its own.
#pragma once

#include <string_view>

#include "lsp/answer.h"
#include "lsp/session.h"

namespace kiln {

struct Method {
  std::string_view name;
  // Null where there is nothing to say.
  Answer (*answer)(Session& session, const Json& params);
};

// Null for an unknown method.
const Method* findMethod(std::string_view name);

}  // namespace kiln
