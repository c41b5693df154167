#include "lsp/editor_host.h"

#include "base/paths.h"

namespace kiln {

const Document* EditorHost::documentAt(const std::string& path) const {
  return documents_.all().empty() ? nullptr : documents_.find(plainPath(path));
}

std::optional<std::string> EditorHost::readFile(const std::string& path) const {
  const Document* const document = documentAt(path);
  return document != nullptr ? document->text : disk_.readFile(path);
}

bool EditorHost::exists(const std::string& path) const { return documentAt(path) != nullptr || disk_.exists(path); }

}  // namespace kiln
