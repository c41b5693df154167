#include "lsp/methods.h"

#include <algorithm>

#include "lsp/navigation.h"

namespace kiln {
namespace {

// clang-format off
constexpr Method methods[] = {
    {"textDocument/definition",        findDefinition},
    {"textDocument/documentHighlight", highlight},
    {"textDocument/references",        findReferences},
};
// clang-format on

}  // namespace

std::span<const Method> methodRows() { return methods; }

const Method* findMethod(std::string_view name) {
  const auto* const row = std::find_if(std::begin(methods), std::end(methods),
                                       [name](const Method& method) { return method.name == name; });
  return row == std::end(methods) ? nullptr : row;
}

}  // namespace kiln
