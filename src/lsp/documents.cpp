#include "lsp/documents.h"

#include <algorithm>
#include <utility>

namespace kiln {

const Document* Documents::find(std::string_view path) const {
  const auto document = byPath_.find(path);
  return document == byPath_.end() ? nullptr : &document->second;
}

void Documents::open(Document document) {
  std::string path = document.path;
  byPath_.insert_or_assign(std::move(path), std::move(document));
}

bool Documents::change(std::string_view path, const Json& version, const Json& changes, Encoding encoding) {
  const auto found = byPath_.find(path);
  if (found == byPath_.end()) return false;
  Document& document = found->second;
  document.version = version;
  if (!changes.is_array()) return true;
  for (const Json& change : changes) {
    std::string text = textOf(memberOf(change, {"text"}));
    const Json& range = memberOf(change, {"range"});
    if (!range.is_object()) {
      document.text = std::move(text);
      continue;
    }
    const TextIndex index(document.text, encoding);
    const auto [start, end] = rangeFrom(range);
    const size_t from = index.offsetOf(start);
    const size_t to = std::max(from, index.offsetOf(end));
    document.text.replace(from, to - from, text);
  }
  return true;
}

}  // namespace kiln
