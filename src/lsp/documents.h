// The documents that are open in the editor.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "lsp/text_index.h"

namespace kiln {

struct Document {
  std::string uri;  // as the editor writes it
  std::string path;
  Json version;
  std::string text;
};

class Documents {
 public:
  // Null when the document is not open. Valid until it changes.
  const Document* find(std::string_view path) const;
  const std::map<std::string, Document, std::less<>>& all() const { return byPath_; }

  void open(Document document);
  void close(std::string_view path) { byPath_.erase(std::string(path)); }
  // Applies a list of "contentChanges", each to the text that the one before leaves. False when the document is not
  // open.
  bool change(std::string_view path, const Json& version, const Json& changes, Encoding encoding);

 private:
  std::map<std::string, Document, std::less<>> byPath_;
};

}  // namespace kiln
